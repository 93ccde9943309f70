#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/Geometry.h"

namespace vistrel::x11 {

/// A picture in memory that the X server reads too, drawn straight into a window of the program. It has a
/// connection of its own that nobody polls: the server's word that it has read the picture waits there until
/// the next one is due, and wakes no thread. Main thread only.
class SharedPicture {
 public:
  /// Null where the server shares no memory with us, or where the pixels of `window` are not 32 bits of B, G,
  /// R and X, or A, in memory.
  [[nodiscard]] static std::unique_ptr<SharedPicture> create(xcb_window_t window);
  SharedPicture(const SharedPicture&) = delete;
  SharedPicture& operator=(const SharedPicture&) = delete;
  ~SharedPicture();

  /// Memory for a picture of that size in pixels, row by row without gaps, once the server has read the
  /// picture before. Null when there is no memory, or no server any more.
  [[nodiscard]] std::uint8_t* pixels(PixelSize size);
  /// Draws it, its upper left corner at `x`, `y` of the window.
  void draw(int x, int y);

 private:
  SharedPicture(xcb_connection_t* connection, xcb_window_t window)
      : connection_(connection), window_(window) {}

  [[nodiscard]] bool isUsable();
  bool allocate(PixelSize size);
  bool share(int file);
  void release();
  void awaitServer();

  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_window_t window_;
  xcb_gcontext_t context_ = XCB_NONE;
  xcb_shm_seg_t segment_ = XCB_NONE;
  std::uint8_t* memory_ = nullptr;
  std::size_t bytes_ = 0;
  PixelSize size_;
  std::uint8_t depth_ = 0;
  bool isBeingRead_ = false;
  xcb_get_input_focus_cookie_t afterReading_{};
};

}  // namespace vistrel::x11
