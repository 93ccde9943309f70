#pragma once

#include <memory>
#include <optional>
#include <string>

#include "backend/StatusArea.h"
#include "base/Program.h"
#include "linux/tray/HostMessages.h"
#include "linux/tray/IconMenu.h"
#include "linux/tray/TrayHostWatch.h"
#include "linux/tray/TrayIcon.h"
#include "linux/tray/TrayImage.h"
#include "linux/x11/HostMenuWatch.h"

namespace vistrel::backend {
class Session;
}

namespace vistrel::tray {

/// The tray icon: one native icon, changed in place. It is made when the desktop has a place for it, however
/// late, and made anew only for a tray host of another kind.
class QtStatusArea final : public backend::StatusArea {
 public:
  QtStatusArea(backend::Session& session, x11::X11Connection& x11, HostMessages& messages);
  ~QtStatusArea() override;

  void setClient(backend::StatusAreaClient* client) override { client_ = client; }
  void setIcon(const std::string& imagePath) override;
  void hideIcon() override;
  void setToolTip(const std::string& text) override;
  void setHighlighted(bool isHighlighted) override;
  void mirrorMenu(std::shared_ptr<NSMenu> menu) override;
  void popUpMenu(std::shared_ptr<NSMenu> menu) override;
  void dismissMenu() override;
  [[nodiscard]] std::optional<Rect> iconFrame() override;
  [[nodiscard]] bool tellsOfReleases() override;
  [[nodiscard]] bool hasTray() override { return icon_ != nullptr; }

  /// A press that the host does not get. Whether it was on the icon, as far as its place was told; then it
  /// counts as one that the host told of.
  bool pressIcon(backend::PointerButton button, Point place);

  /// The desktop's screens changed: where the icon was last pressed tells nothing any more.
  void forgetIconFrame() { guessedFrame_.reset(); }

 private:
  void makeIcon(TrayHost host);
  void update();
  void tellClosed();
  void tellChosen(std::shared_ptr<NSMenuItem> item);
  void pressed(QSystemTrayIcon::ActivationReason reason);
  void clicked(backend::PointerButton button);
  void report(backend::PointerButton button, Point location);
  /// Where the icon is as its host or a press has told, not as it may be guessed without a word.
  [[nodiscard]] std::optional<Rect> toldIconFrame() const;
  void hostWillOpenMenu();
  Point rememberPress();
  [[nodiscard]] std::optional<Rect> framePressed();

  backend::Session& session_;
  backend::StatusAreaClient* client_ = nullptr;
  x11::X11Connection& x11_;
  HostMessages& messages_;
  x11::HostMenuWatch hostMenu_;
  /// The X server of a Wayland session hears nothing of the pointer while it is over the panel.
  bool isPointerStale_;
  std::unique_ptr<TrayIcon> icon_;
  std::shared_ptr<NSMenu> menu_;
  std::unique_ptr<IconMenu> popUp_;
  TrayImage image_;
  std::string toolTip_ = program::kName;
  bool isShown_ = false;
  bool isHighlighted_ = false;
  std::optional<Rect> guessedFrame_;
  TrayHostWatch hosts_;
};

}  // namespace vistrel::tray
