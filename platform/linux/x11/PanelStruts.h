#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/Geometry.h"
#include "linux/x11/X11Connection.h"

namespace vistrel::x11 {

/// A strip along an edge of the desktop that a panel keeps for itself (EWMH, _NET_WM_STRUT_PARTIAL), in
/// pixels of the root window.
struct Strut {
  enum class Edge { Left, Right, Top, Bottom };
  Edge edge = Edge::Top;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// The strips that a panel's property tells on a desktop of that size in pixels: of the partial kind, or of
/// the older one, whose four strips are as long as the desktop.
[[nodiscard]] std::vector<Strut> strutsIn(std::span<const std::uint32_t> values, PixelSize desktop);

/// The strips of all the windows that the window manager knows; where it tells no work area those of all
/// windows, and those that docks cover without keeping any. Asks the server; main thread only.
[[nodiscard]] std::vector<Strut> panelStruts(X11Connection& connection);

/// The room that panels leave (EWMH, _NET_WORKAREA), in pixels of the root window, as the window manager
/// tells it; some tell none, and neither do most Wayland compositors. Asks the server; main thread only.
[[nodiscard]] std::optional<Rect> workArea(X11Connection& connection);

/// The same from what is told of it, with the size that the desktop is said to have. When the scale of
/// programs of X11 changes, KWin 6 tells both as they are at the scale before, and a later change of the room
/// rightly.
[[nodiscard]] Rect workAreaIn(PixelSize root, const Rect& told, PixelSize toldDesktop);

}  // namespace vistrel::x11
