#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/Geometry.h"

namespace vistrel {
class NSMenu;
class NSMenuItem;
}  // namespace vistrel

namespace vistrel::backend {

enum class PointerButton { Left, Right, Middle };

/// What the tray reports about the icon. Called on the main thread from the main loop.
class StatusAreaClient {
 public:
  virtual ~StatusAreaClient() = default;
  /// A press on the icon, at `location` for all that can be known. `modifiers` are event modifier flags. A
  /// double click is two presses.
  virtual void statusIconPressed(PointerButton button, std::uint64_t modifiers, Point location) = 0;
  /// The host, or the backend, is about to show the mirrored menu: the secondary press of hosts that draw
  /// the menu themselves.
  virtual void statusMenuWillOpen() = 0;
  /// The shown menu has closed. Some hosts never report it.
  virtual void statusMenuDidClose() = 0;
  /// The user chose an item of the menu that was on screen.
  virtual void statusMenuItemChosen(std::shared_ptr<NSMenuItem> item) = 0;
};

/// The one icon of the program in the desktop's status area (StatusNotifierItem or XEmbed system tray). It
/// outlives the status items of the vocabulary. Main thread only.
class StatusArea {
 public:
  virtual ~StatusArea() = default;
  virtual void setClient(StatusAreaClient* client) = 0;
  /// Shows the icon, or changes it in place: absolute path of a scalable image.
  virtual void setIcon(const std::string& imagePath) = 0;
  virtual void hideIcon() = 0;
  /// What the desktop says of the icon, in its tooltip; UTF-8.
  virtual void setToolTip(const std::string& text) = 0;
  virtual void setHighlighted(bool isHighlighted) = 0;
  /// What hosts that draw the menu themselves show from now on. Reconciled in place, and never inside a
  /// showing or a closing. Keeps the items alive that it shows.
  virtual void mirrorMenu(std::shared_ptr<NSMenu> menu) = 0;
  /// Pops the menu up at the icon and returns; the end is reported like any other showing's.
  virtual void popUpMenu(std::shared_ptr<NSMenu> menu) = 0;
  /// Takes down a menu that `popUpMenu` shows.
  virtual void dismissMenu() = 0;
  /// Where the icon is, or most likely is: from the host if it tells, else from the last press on it, else
  /// none.
  [[nodiscard]] virtual std::optional<Rect> iconFrame() = 0;
  /// Whether the tray host gets the press that closes the popover or a menu, too, and tells of its click when
  /// the button comes up.
  [[nodiscard]] virtual bool tellsOfReleases() = 0;
  /// Whether the desktop has had a place for icons since the program started.
  [[nodiscard]] virtual bool hasTray() = 0;
};

}  // namespace vistrel::backend
