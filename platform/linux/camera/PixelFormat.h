#pragma once

namespace vistrel::camera {

/// The formats that can be shown, the cheapest to show first. The names of packed and RGB formats give the
/// order of the bytes in memory; an X is a byte without meaning.
enum class PixelFormat { I420, Yv12, Nv12, Yuy2, Uyvy, Bgrx, Rgbx, Xrgb, Xbgr, Bgr24, Rgb24, Mjpeg };

}  // namespace vistrel::camera
