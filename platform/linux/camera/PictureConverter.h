#pragma once

#include <array>

#include "linux/camera/GlassSource.h"
#include "linux/camera/Picture.h"
#include "linux/camera/RowResampler.h"
#include "linux/camera/RowSampler.h"
#include "linux/camera/Scratch.h"

namespace vistrel::camera {

/// Scales, converts, turns and mirrors a part of a picture into a glass, and reads no more of the picture
/// than that part. Works row by row, so that all that lies between the frame and the glass stays in the first
/// cache; flips are a matter of the order, and only what is turned by a quarter takes a second pass, over the
/// scaled picture. Keeps its working memory from one picture to the next.
class PictureConverter {
 public:
  /// Fills all of `target`, whose size must not be empty.
  void convert(const Picture& picture, const GlassTarget& target);

 private:
  static constexpr int kChannels = 3;
  using Rows = std::array<const std::uint8_t*, kChannels>;
  using SplitRows = std::array<std::uint8_t*, kChannels + 1>;

  /// Fills `target` with its part of the picture as it is stored; its stride may be negative.
  void paint(const Picture& picture, const GlassTarget& target);
  /// Prepares the channels, and gives the rows and columns of the picture that will be read.
  [[nodiscard]] Picture prepare(const Picture& picture, const GlassTarget& target);
  /// The three channels of a row of the glass, still at the picture's width.
  [[nodiscard]] Rows rowsAt(const Picture& picture, int y);
  [[nodiscard]] Rows planarRows(const Picture& picture, int y);
  [[nodiscard]] Rows semiPlanarRows(const Picture& picture, int y);
  [[nodiscard]] Rows packedRows(const Picture& picture, int y);
  [[nodiscard]] Rows rgbRows(const Picture& picture, int y);
  /// Room for the channels of a packed row, and for a byte without meaning.
  [[nodiscard]] SplitRows splitRows(int width);
  void paintRow(const Picture& picture, const Rows& rows, std::uint8_t* out, int width) const;

  struct Channel {
    Axis across;
    Axis down;
    RowSampler sampler;
    RowResampler resampler;
  };
  std::array<Channel, kChannels> channels_;
  Scratch split_;
  Scratch lying_;  // the scaled picture before a quarter turn
};

}  // namespace vistrel::camera
