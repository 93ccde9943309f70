#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <X11/Xlib.h>

namespace vistrel::stage {

struct Rectangle {
  int x = 0, y = 0, width = 0, height = 0;
};

/// A copy of a part of the screen.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;  ///< 0xRRGGBB, row by row

  [[nodiscard]] std::uint32_t at(int x, int y) const { return pixels[std::size_t(y) * width + x]; }
  [[nodiscard]] int red(int x, int y) const { return static_cast<int>(at(x, y) >> 16U & 0xffU); }
  [[nodiscard]] int green(int x, int y) const { return static_cast<int>(at(x, y) >> 8U & 0xffU); }
  [[nodiscard]] int blue(int x, int y) const { return static_cast<int>(at(x, y) & 0xffU); }
  [[nodiscard]] bool isLight(int x, int y) const {
    return 3 * red(x, y) + 6 * green(x, y) + blue(x, y) > 1280;
  }
};

/// The pointer on the screen: where it is, and its picture, 0xAARRGGBB row by row.
struct Pointer {
  int x = 0;
  int y = 0;
  std::vector<std::uint32_t> pixels;
};

/// A connection to the X server that DISPLAY names. Stops the program when there is none.
class Screen {
 public:
  Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  [[nodiscard]] Display* display() const { return display_; }
  [[nodiscard]] Window root() const { return DefaultRootWindow(display_); }
  [[nodiscard]] Rectangle whole() const;
  [[nodiscard]] Atom atom(const std::string& name) const;
  /// What the root window shows there, with everything that covers it; the part off the screen is left out.
  [[nodiscard]] Image capture(Rectangle part) const;
  /// What the server knows of it: in a Wayland session where it last was over a window of X11.
  [[nodiscard]] Pointer pointer() const;

 private:
  Display* display_;
};

/// The picture in a file; empty when it cannot be read.
[[nodiscard]] Image readPng(const std::string& path);
/// Writes `image` to `path`; false when that fails.
[[nodiscard]] bool writePng(const Image& image, const std::string& path);

}  // namespace vistrel::stage
