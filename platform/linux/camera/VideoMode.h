#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/Geometry.h"
#include "linux/camera/PixelFormat.h"

namespace vistrel::camera {

/// Frames a second as a fraction.
struct FrameRate {
  std::uint32_t numerator = 0;
  std::uint32_t denominator = 1;
  bool operator==(const FrameRate&) const = default;
  [[nodiscard]] double perSecond() const {
    return denominator == 0 ? 0 : static_cast<double>(numerator) / denominator;
  }
};

/// One way in which a camera can deliver: a format, the sizes it comes in and its rates at them.
struct VideoMode {
  /// No picture is longer in any direction.
  static constexpr int kLongestSide = 16384;

  PixelFormat format = PixelFormat::Yuy2;
  /// The provider's own code of the format.
  std::uint32_t nativeFormat = 0;
  PixelSize smallest;
  PixelSize largest;
  PixelSize step{1, 1};
  /// Empty is valid: the driver does not say.
  std::vector<FrameRate> rates;
  /// The rates are the ends of a range rather than a list.
  bool isRateRange = false;

  [[nodiscard]] bool reaches(PixelSize size) const;
  /// The largest size in both directions that is not above `limit`; the smallest where all are.
  [[nodiscard]] PixelSize largestWithin(PixelSize limit) const;
  /// Takes from it the sizes that no picture has; false when none is left.
  [[nodiscard]] bool limitToPossible();
  /// Takes from a range of sizes what is larger than the camera's own picture, which drivers enlarge or put
  /// into an empty frame. A size from a list is the camera's own.
  void limitTo(PixelSize source);
};

/// More modes than any camera has: what one tells beyond them is not listened to.
inline constexpr std::size_t kMostModes = 4096;

/// What a stream is started with.
struct ModeChoice {
  PixelFormat format = PixelFormat::Yuy2;
  std::uint32_t nativeFormat = 0;
  PixelSize size;
  /// None where the driver does not say what it offers.
  std::optional<FrameRate> rate;
};

/// True when some mode reaches `size` at 24 frames a second or more.
[[nodiscard]] bool supportsSize(std::span<const VideoMode> modes, PixelSize size);

/// The best way to get `size`: 30 frames a second where offered, else the highest rate; at equal rates raw
/// before MJPEG.
[[nodiscard]] std::optional<ModeChoice> chooseMode(std::span<const VideoMode> modes, PixelSize size);

/// The choice without a wanted size: the largest size up to 1920 × 1080 that reaches 24 frames a second, else
/// the fastest, the larger of equals.
[[nodiscard]] std::optional<ModeChoice> chooseMode(std::span<const VideoMode> modes);

}  // namespace vistrel::camera
