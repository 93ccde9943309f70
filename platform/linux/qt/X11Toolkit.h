#pragma once

#include <xcb/xcb.h>

#include <QPoint>
#include <QRect>

namespace vistrel::qt {

/// The toolkit's own connection to the X server, on which the windows get their events; null on another
/// window system. Main thread only, like everything here.
[[nodiscard]] xcb_connection_t* toolkitConnection();

/// The X server's time of this moment; asks the server.
[[nodiscard]] xcb_timestamp_t serverTime();

/// Where a pixel of the root window is on the desktop: screens of different scales have different pixels.
[[nodiscard]] QPoint fromPixels(QPoint pixels);

/// Where a part of a screen is on the root window, in pixels.
[[nodiscard]] QRect toPixels(const QRect& part);

/// Whether the X server's input focus is on one of the program's windows. Qt alone does not tell: a grab by
/// any client looks to it as if the focus had left.
[[nodiscard]] bool isInputFocusOurs();

/// Where the window that had the focus is off the screen, has Qt know at once that none has it. By itself it
/// waits 0.4 s for another one to get it, and then closes the menu that is open by then.
void endFocusOfHidden();

}  // namespace vistrel::qt
