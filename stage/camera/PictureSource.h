#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "stage/camera/Options.h"

namespace vistrel::stage {

enum class Look { Normal, Black, Garbage };

/// Makes the frames of one offer. Everything but the clock is drawn beforehand, so that a frame costs little
/// more than a copy and the camera does not eat the processor time that is to be measured.
class PictureSource {
 public:
  virtual ~PictureSource() = default;
  static std::unique_ptr<PictureSource> create(const Offer& offer, const Options& options);

  [[nodiscard]] virtual std::size_t maximumBytes() const = 0;
  /// Bytes from one line to the next; 0 for MJPEG.
  [[nodiscard]] virtual int stride() const = 0;
  /// Writes frame `counter`, taken at `milliseconds`, and answers its length; 0 when it does not fit.
  virtual std::size_t write(std::uint32_t counter, std::uint32_t milliseconds, Look look,
                            std::span<std::uint8_t> target) = 0;
};

}  // namespace vistrel::stage
