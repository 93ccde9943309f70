#pragma once

#include "backend/Keyboard.h"
#include "linux/keyboard/HotKeyGrabs.h"
#include "linux/keyboard/Keymap.h"
#include "linux/x11/X11Connection.h"

namespace vistrel::keyboard {

/// The keyboard of an X server.
class X11Keyboard final : public backend::Keyboard {
 public:
  /// `toolkit` is the connection on which the program's windows get their keys: the server hands a captured
  /// keyboard to one connection only. Null where there is none; then nothing can be captured. `hotKeys` are
  /// this program's own.
  X11Keyboard(x11::X11Connection& connection, xcb_connection_t* toolkit, const HotKeyGrabs& hotKeys);

  [[nodiscard]] std::optional<std::string> displayCharacter(std::uint16_t keyCode) override;
  [[nodiscard]] std::optional<std::vector<backend::HotKeyCombination>> symbolicHotKeys() override;
  void beep() override;
  bool setKeyboardCaptured(bool isCaptured) override;
  [[nodiscard]] Keymap& keymap() { return keymap_; }
  /// The toolkit has given the keyboard back, which it takes for its own popups: a captured keyboard is
  /// captured again.
  void toolkitGaveBack();

 private:
  bool capture();
  void giveBack();
  [[nodiscard]] bool isAnyKeyDown();

  x11::X11Connection& connection_;
  xcb_connection_t* toolkit_;
  const HotKeyGrabs& hotKeys_;
  Keymap keymap_;
  bool isCaptured_ = false;
  std::unique_ptr<desktop::Registration> givingBack_;  // while a key is down
};

}  // namespace vistrel::keyboard
