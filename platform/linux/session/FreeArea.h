#pragma once

#include <QMargins>
#include <QRect>
#include <vector>

#include "linux/x11/PanelStruts.h"

namespace vistrel::session {

/// How far panels reach into a screen from its edges; all in pixels. A strip that leaves nothing of the
/// screen belongs to a panel of a screen beyond.
[[nodiscard]] QMargins panelMargins(const QRect& screen, const std::vector<x11::Strut>& struts);

}  // namespace vistrel::session
