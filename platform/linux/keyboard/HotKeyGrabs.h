#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "backend/Keyboard.h"
#include "linux/keyboard/ModifierMap.h"
#include "linux/x11/X11Connection.h"

namespace vistrel::keyboard {

/// Hot keys by passive grabs on the root window, one for every state of the lock keys. No timer runs but
/// while a hot key is held down.
class HotKeyGrabs final : public backend::HotKeys {
 public:
  explicit HotKeyGrabs(x11::X11Connection& connection);
  ~HotKeyGrabs() override;

  bool grab(std::uint32_t token, backend::HotKeyCombination combination) override;
  void release(std::uint32_t token) override;
  void setHandler(std::function<void(std::uint32_t, backend::HotKeyPhase)> handler) override;

  /// Whether it is one of this program's hot keys.
  [[nodiscard]] bool holds(backend::HotKeyCombination combination) const;
  /// A key event that another connection of this program got because it holds the keyboard: dealt with as if
  /// it had come here. Answers whether it was a hot key's.
  bool offer(const xcb_generic_event_t& event);

 private:
  /// `DownBefore`: the key was down already when it was taken, so nobody pressed the hot key yet.
  enum class Key { Up, Held, DownBefore };
  struct Entry {
    std::uint32_t token;
    std::uint32_t modifiers;
    xcb_keycode_t code;
    Key state = Key::Up;
    bool isTaken = false;
  };
  void eventCame(const xcb_generic_event_t& event);
  [[nodiscard]] bool isPressedBy(const Entry& entry, const xcb_key_press_event_t& event) const;
  void keyPressed(const xcb_key_press_event_t& event);
  void keyReleased(xcb_keycode_t key);
  void checkHeldKeys();
  void watchHeldKeys();
  [[nodiscard]] x11::Reply<xcb_query_keymap_reply_t> keysDown();
  void renew();
  bool take(const Entry& entry);
  void giveBack(const Entry& entry);
  [[nodiscard]] bool isShared(const Entry& entry) const;
  void tell(std::uint32_t token, backend::HotKeyPhase phase) const;

  x11::X11Connection& connection_;
  ModifierMap modifiers_;
  std::vector<Entry> entries_;
  std::function<void(std::uint32_t, backend::HotKeyPhase)> handler_;
  std::shared_ptr<x11::X11Connection::Handler> subscription_;
  std::unique_ptr<desktop::Registration> heldWatch_;
  std::unique_ptr<desktop::Registration> renewal_;
};

}  // namespace vistrel::keyboard
