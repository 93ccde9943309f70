#pragma once

#include <cstdint>
#include <vector>

#include "base/Geometry.h"
#include "linux/camera/PixelFormat.h"

namespace vistrel::bench {

inline constexpr PixelSize kSources[] = {{640, 480}, {1280, 720}, {1920, 1080}, {3840, 2160}};
/// The three glasses, for cameras of 16:9.
inline constexpr PixelSize kGlasses[] = {{426, 240}, {852, 480}, {1278, 720}};

/// What the user sees magnified four times: the middle of the picture.
inline constexpr int kMagnification = 4;
inline constexpr Rect kMagnifiedPart = {.375, .375, .25, .25};

/// The glass of that height with the source's own shape.
[[nodiscard]] PixelSize glassFor(PixelSize source, PixelSize glass);

enum class Scene { Plain, Rich };

/// Several frames in a row in memory of their own, as a camera's buffers are, so that the caches hold no more
/// of them than they would of a camera's.
[[nodiscard]] std::vector<std::vector<std::uint8_t>> rawFrames(camera::PixelFormat format, PixelSize size);

/// A 4:2:2 JPEG, as UVC cameras send them: of smooth surfaces, or of detail everywhere.
[[nodiscard]] std::vector<std::uint8_t> jpegFrame(PixelSize size, Scene scene);

}  // namespace vistrel::bench
