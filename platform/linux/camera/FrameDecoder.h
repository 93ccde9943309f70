#pragma once

#include <atomic>
#include <cstdint>
#include <span>

#include "linux/camera/JpegDecoder.h"
#include "linux/camera/ReducedJpegDecoder.h"

namespace vistrel::camera {

/// Decodes a camera's compressed frames for the glass: by the reduced decoder whatever that can decode, and
/// by libjpeg the rest. Belongs to one thread at a time.
class FrameDecoder {
 public:
  /// While `isCalledOff` is set, which any thread may do, decoding gives up within a few rows.
  explicit FrameDecoder(const std::atomic<bool>& isCalledOff = kNever)
      : reduced_(isCalledOff), library_(isCalledOff) {}

  /// As `JpegDecoder` does.
  bool decode(std::span<const std::uint8_t> jpeg, PixelSize glass, OwnedPicture& out) {
    using Outcome = ReducedJpegDecoder::Outcome;
    const Outcome outcome = reduced_.decode(jpeg, glass, out);
    return outcome == Outcome::Unsuitable ? library_.decode(jpeg, glass, out) : outcome == Outcome::Decoded;
  }

 private:
  static constexpr std::atomic<bool> kNever{false};

  ReducedJpegDecoder reduced_;
  JpegDecoder library_;
};

}  // namespace vistrel::camera
