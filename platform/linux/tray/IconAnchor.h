#pragma once

#include <optional>
#include <vector>

#include "backend/Session.h"
#include "base/Geometry.h"

namespace vistrel::tray {

/// Where the icon most likely is when the tray host does not tell, judged by where the pointer was at the
/// press: a small rectangle across the panel (what the screen's free area leaves out), or at the screen's
/// edge where a panel reserves no room. None when the pointer was nowhere near an edge.
[[nodiscard]] std::optional<Rect> guessIconFrame(Point pointer, const std::vector<backend::Screen>& screens);

/// Where an icon most likely is when nothing at all is known of it: at the end of the panel that takes the
/// most room of the main screen, at its upper right corner where none does. `screens` is not empty.
[[nodiscard]] Rect iconFrameAtPanelEnd(const std::vector<backend::Screen>& screens);

}  // namespace vistrel::tray
