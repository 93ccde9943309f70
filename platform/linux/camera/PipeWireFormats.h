#pragma once

#include <spa/buffer/buffer.h>
#include <spa/pod/builder.h>
#include <spa/pod/pod.h>

#include <vector>

#include "linux/camera/Picture.h"
#include "linux/camera/VideoMode.h"

namespace vistrel::camera {

/// Adds the modes that an offered format stands for; formats that cannot be shown add none.
void appendModes(const spa_pod* offer, std::vector<VideoMode>& modes);

/// The offer of a stream that accepts this choice alone.
[[nodiscard]] const spa_pod* offerOf(spa_pod_builder& builder, const ModeChoice& choice);

/// What both sides settled on.
struct AgreedFormat {
  PixelFormat format = PixelFormat::Yuy2;
  PixelSize size;
  YuvColor color = YuvColor::Bt601Limited;
};
/// None when its frames cannot be shown.
[[nodiscard]] std::optional<AgreedFormat> agreedFormat(const spa_pod* format);

/// The memory that a stream takes its frames in.
[[nodiscard]] const spa_pod* bufferOffer(spa_pod_builder& builder);
/// Asks for the header that marks damaged frames.
[[nodiscard]] const spa_pod* headerOffer(spa_pod_builder& builder);
/// Asks for what tells how frames are turned.
[[nodiscard]] const spa_pod* transformOffer(spa_pod_builder& builder);
/// How the frame in the buffer is turned; upright where nothing is said.
[[nodiscard]] Orientation orientationOf(const spa_buffer& buffer);

}  // namespace vistrel::camera
