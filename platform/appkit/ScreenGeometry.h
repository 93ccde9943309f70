#pragma once

#include <optional>
#include <vector>

#include "appkit/NSWindow.h"
#include "backend/Session.h"
#include "base/Geometry.h"

namespace vistrel {

/// The screen that holds the point, else the nearest one. `screens` is not empty.
[[nodiscard]] const backend::Screen& screenAt(Point location, const std::vector<backend::Screen>& screens);

/// A rectangle of that size in the middle of the main screen's free area.
[[nodiscard]] Rect centeredOnMainScreen(Size size, const std::vector<backend::Screen>& screens);

/// The rectangle where it is, or moved wholly onto the nearest screen's free area.
[[nodiscard]] Rect movedOntoScreen(const Rect& frame, const std::vector<backend::Screen>& screens);

/// Where a popover lies and where its tip touches the anchor.
struct PopoverPlace {
  Rect frame;
  std::optional<PopoverTip> tip;  ///< none where there is nothing to point at
};

/// Places a popover of `size` beside `anchor`, on the side that points away from the panel, wholly on the
/// anchor's screen; a size that is too large shrinks and keeps its aspect. Without an anchor it hangs from
/// the panel of the pointer's screen, beside the pointer.
[[nodiscard]] PopoverPlace placePopover(Size size, const std::optional<Rect>& anchor, Point pointer,
                                        const std::vector<backend::Screen>& screens);

/// Places a popover on a desktop that has no tray: without a tip, in the corner of the pointer's screen where
/// a tray would be, beside the panel if there is one.
[[nodiscard]] PopoverPlace placeWithoutTray(Size size, Point pointer,
                                            const std::vector<backend::Screen>& screens);

/// How far a popover stays from its anchor: room for the tip.
inline constexpr double kPopoverTipLength = 8;

}  // namespace vistrel
