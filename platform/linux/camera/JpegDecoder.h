#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

#include "base/Geometry.h"
#include "linux/camera/Picture.h"

namespace vistrel::camera {

/// Decodes JPEG (ITU-T T.81) by libjpeg, at every scale, to planar YUV. Belongs to one thread at a time.
class JpegDecoder {
 public:
  /// While `isCalledOff` is set, which any thread may do, decoding gives up within a few rows.
  explicit JpegDecoder(const std::atomic<bool>& isCalledOff = kNever);
  ~JpegDecoder();
  JpegDecoder(const JpegDecoder&) = delete;
  JpegDecoder& operator=(const JpegDecoder&) = delete;

  /// Decodes at 1, 1/2, 1/4 or 1/8 of the size: the smallest that is not below `glass`. False for anything
  /// that is damaged, cut short, called off or no picture of a camera; `out` is undefined then. The end
  /// marker may be missing.
  bool decode(std::span<const std::uint8_t> jpeg, PixelSize glass, OwnedPicture& out);

  struct State;

 private:
  static constexpr std::atomic<bool> kNever{false};

  std::unique_ptr<State> state_;
};

}  // namespace vistrel::camera
