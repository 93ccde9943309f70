#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "stage/camera/Options.h"
#include "stage/guest/camera/UsbIp.h"

namespace vistrel::stage {

inline constexpr std::uint8_t kStreamEndpoint = 1;
inline constexpr std::uint8_t kStreamInterface = 1;
inline constexpr std::uint32_t kIntervalsPerSecond = 10'000'000;  // UVC counts in 100 ns

/// An offer, with the numbers that USB Video Class 1.0 gives it.
struct Mode {
  Offer offer;
  std::uint8_t format = 0;
  std::uint8_t frame = 0;

  [[nodiscard]] std::uint32_t maximumBytes() const {
    return static_cast<std::uint32_t>(offer.width) * static_cast<std::uint32_t>(offer.height) * 2;
  }
};

/// MJPEG and YUY2 are what the camera speaks: offers in other layouts are left out.
[[nodiscard]] std::vector<Mode> modesOf(const std::vector<Offer>& offers);

/// The device's descriptors (USB 2.0 chapter 9, USB Video Class 1.0): one camera, one bulk stream.
[[nodiscard]] Bytes deviceDescriptor();
[[nodiscard]] Bytes configurationDescriptor(const std::vector<Mode>& modes);
[[nodiscard]] Bytes stringDescriptor(std::string_view text);

}  // namespace vistrel::stage
