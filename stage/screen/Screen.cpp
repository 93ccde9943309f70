#include "stage/screen/Screen.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <X11/Xutil.h>
#include <X11/extensions/Xfixes.h>

#include <png.h>

namespace vistrel::stage {
namespace {

/// Windows come and go between two requests; an answer that a window is gone is no error here.
int ignoreError(Display* /*display*/, XErrorEvent* /*event*/) { return 0; }

}  // namespace

Screen::Screen() : display_(XOpenDisplay(nullptr)) {
  if (display_ == nullptr) {
    std::fputs("vistrel-screen: no display\n", stderr);
    std::exit(1);
  }
  XSetErrorHandler(ignoreError);
}

Screen::~Screen() { XCloseDisplay(display_); }

Rectangle Screen::whole() const {
  Window unused = 0;
  int x = 0;
  int y = 0;
  unsigned width = 0;
  unsigned height = 0;
  unsigned border = 0;
  unsigned depth = 0;
  XGetGeometry(display_, root(), &unused, &x, &y, &width, &height, &border, &depth);
  return {0, 0, static_cast<int>(width), static_cast<int>(height)};
}

Atom Screen::atom(const std::string& name) const { return XInternAtom(display_, name.c_str(), False); }

Image Screen::capture(Rectangle part) const {
  const Rectangle all = whole();
  const int left = std::clamp(part.x, 0, all.width);
  const int top = std::clamp(part.y, 0, all.height);
  Image image;
  image.width = std::clamp(part.x + part.width, left, all.width) - left;
  image.height = std::clamp(part.y + part.height, top, all.height) - top;
  if (image.width == 0 || image.height == 0) return {};
  XImage* const raw = XGetImage(display_, root(), left, top, image.width, image.height, AllPlanes, ZPixmap);
  if (raw == nullptr) return {};
  image.pixels.reserve(std::size_t(image.width) * image.height);
  for (int y = 0; y < image.height; ++y) {
    const auto* const row =
        reinterpret_cast<const std::uint32_t*>(raw->data + std::ptrdiff_t(y) * raw->bytes_per_line);
    for (int x = 0; x < image.width; ++x) image.pixels.push_back(row[x] & 0xffffffU);
  }
  XDestroyImage(raw);
  return image;
}

Pointer Screen::pointer() const {
  XFixesCursorImage* const image = XFixesGetCursorImage(display_);
  if (image == nullptr) return {};
  const std::size_t count = std::size_t(image->width) * image->height;
  Pointer pointer{image->x, image->y, std::vector<std::uint32_t>(count)};
  std::copy_n(image->pixels, count, pointer.pixels.begin());
  XFree(image);
  return pointer;
}

Image readPng(const std::string& path) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&png, path.c_str()) == 0) return {};
  png.format = PNG_FORMAT_RGB;
  std::vector<png_byte> bytes(PNG_IMAGE_SIZE(png));
  if (png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr) == 0) return {};
  Image image{static_cast<int>(png.width), static_cast<int>(png.height), {}};
  for (std::size_t at = 0; at + 2 < bytes.size(); at += 3)
    image.pixels.push_back(std::uint32_t{bytes[at]} << 16U | std::uint32_t{bytes[at + 1]} << 8U |
                           bytes[at + 2]);
  return image;
}

bool writePng(const Image& image, const std::string& path) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width);
  png.height = static_cast<png_uint_32>(image.height);
  png.format = PNG_FORMAT_RGB;
  std::vector<png_byte> bytes;
  bytes.reserve(image.pixels.size() * 3);
  for (const std::uint32_t pixel : image.pixels)
    for (const unsigned shift : {16U, 8U, 0U}) bytes.push_back(static_cast<png_byte>(pixel >> shift & 0xffU));
  return png_image_write_to_file(&png, path.c_str(), 0, bytes.data(), 0, nullptr) != 0;
}

}  // namespace vistrel::stage
