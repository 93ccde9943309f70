#include "linux/camera/PixelFormat.h"

#include <cstddef>

namespace vistrel::camera {
namespace {

// In the order of the enumeration.
constexpr std::array<PixelLayout, 12> kLayouts = {{
    {PixelFamily::Planar, 3, 1, {0, 1, 2}},      // I420
    {PixelFamily::Planar, 3, 1, {0, 2, 1}},      // Yv12
    {PixelFamily::SemiPlanar, 2, 1, {0, 1, 1}},  // Nv12
    {PixelFamily::Packed, 1, 4, {0, 1, 3}},      // Yuy2
    {PixelFamily::Packed, 1, 4, {1, 0, 2}},      // Uyvy
    {PixelFamily::Rgb, 1, 4, {2, 1, 0}},         // Bgrx
    {PixelFamily::Rgb, 1, 4, {0, 1, 2}},         // Rgbx
    {PixelFamily::Rgb, 1, 4, {1, 2, 3}},         // Xrgb
    {PixelFamily::Rgb, 1, 4, {3, 2, 1}},         // Xbgr
    {PixelFamily::Rgb, 1, 3, {2, 1, 0}},         // Bgr24
    {PixelFamily::Rgb, 1, 3, {0, 1, 2}},         // Rgb24
    {},                                          // Mjpeg
}};
static_assert(kLayouts.size() == static_cast<std::size_t>(PixelFormat::Mjpeg) + 1);

}  // namespace

const PixelLayout& layoutOf(PixelFormat format) { return kLayouts[static_cast<std::size_t>(format)]; }

}  // namespace vistrel::camera
