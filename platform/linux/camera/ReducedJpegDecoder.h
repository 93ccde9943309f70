#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

#include "base/Geometry.h"
#include "linux/camera/Picture.h"

namespace vistrel::camera {

/// Decodes the JPEG frames that cameras send to planar YUV at 1/8, 1/4 or 1/2 of their size, and reads no
/// more of them than that takes: at 1/8 the coefficients that nobody would see are passed several at a time.
/// The samples are libjpeg's, bit by bit. Belongs to one thread at a time.
class ReducedJpegDecoder {
 public:
  /// `Unsuitable`: another decoder has to look at it, which may still find it damaged.
  enum class Outcome { Decoded, Damaged, Unsuitable };

  /// While `isCalledOff` is set, which any thread may do, decoding gives up after the row of blocks.
  explicit ReducedJpegDecoder(const std::atomic<bool>& isCalledOff = kNever);
  ~ReducedJpegDecoder();
  ReducedJpegDecoder(const ReducedJpegDecoder&) = delete;
  ReducedJpegDecoder& operator=(const ReducedJpegDecoder&) = delete;

  /// Decodes at the smallest scale that is not below `glass`. A frame with a wrong code, without one of its
  /// restart markers, cut short or called off is damaged; the end marker may be missing. `out` is undefined
  /// then. Takes no memory for a picture that has too few bytes to be whole.
  Outcome decode(std::span<const std::uint8_t> jpeg, PixelSize glass, OwnedPicture& out);

 private:
  static constexpr std::atomic<bool> kNever{false};

  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vistrel::camera
