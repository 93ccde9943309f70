#pragma once

#include <cstdint>
#include <vector>

#include "stage/camera/RawPicture.h"

namespace vistrel::stage {

using Bytes = std::vector<std::uint8_t>;

/// A JPEG picture cut at its restart markers, one piece for each eight lines. Every piece stands for itself,
/// so pieces of one picture can replace pieces of another of the same width and quality.
struct JpegPieces {
  Bytes head;
  std::vector<Bytes> pieces;

  /// Encodes a picture of layout `I422Full`, whose height is a multiple of eight, as cameras do: 4:2:2,
  /// standard Huffman tables.
  [[nodiscard]] static JpegPieces encode(RawPicture& picture, int quality);

  /// The whole file. `row(i)` names the piece for the i-th eight lines.
  template <class Row>
  [[nodiscard]] Bytes join(int rows, Row row) const;
};

template <class Row>
Bytes JpegPieces::join(int rows, Row row) const {
  Bytes file = head;
  for (int i = 0; i < rows; ++i) {
    const Bytes& piece = row(i);
    file.insert(file.end(), piece.begin(), piece.end());
    file.push_back(0xff);
    file.push_back(i + 1 == rows ? 0xd9 : 0xd0 + i % 8);
  }
  return file;
}

/// The same picture without restart markers, if its last 16 columns are `kNeutral`: every interval then ends
/// with the prediction that the next one begins with.
[[nodiscard]] Bytes withoutRestarts(const Bytes& file);

/// The color whose DC coefficients are all zero.
inline constexpr Color kNeutral{128, 128, 128};

}  // namespace vistrel::stage
