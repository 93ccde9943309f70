#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vistrel::backend {

/// A hot key as the window system takes it: a virtual key code (the platform's `kVK_` numbering, a position
/// on the keyboard) and hot-key modifier bits (`cmdKey` and the others of base/KeyCodes.h).
struct HotKeyCombination {
  std::uint32_t keyCode = 0;
  std::uint32_t modifiers = 0;
};

enum class HotKeyPhase { Pressed, Released };

/// System-wide hot keys. Main thread only; the handler is called from the main loop.
class HotKeys {
 public:
  virtual ~HotKeys() = default;
  /// Takes the combination for this program under `token`; false when it is known at once that nothing can
  /// serve it. A window system that has to be asked may refuse it later; then it is never pressed.
  virtual bool grab(std::uint32_t token, HotKeyCombination combination) = 0;
  virtual void release(std::uint32_t token) = 0;
  /// Who is told: once a press and once its release, whatever lock keys are on; repeats are dropped.
  virtual void setHandler(std::function<void(std::uint32_t token, HotKeyPhase phase)> handler) = 0;
};

/// The keyboard as it is now. Main thread only.
class Keyboard {
 public:
  virtual ~Keyboard() = default;
  /// The unshifted text of the key at a virtual key code on the layout that types ASCII: empty when the
  /// layout gives the key nothing; none when no keymap can be had.
  [[nodiscard]] virtual std::optional<std::string> displayCharacter(std::uint16_t keyCode) = 0;
  /// The desktop's own shortcuts that are in force: those that it tells of, else those that are seen to be
  /// taken; none where neither can be had.
  [[nodiscard]] virtual std::optional<std::vector<HotKeyCombination>> symbolicHotKeys() = 0;
  /// The window system's bell.
  virtual void beep() = 0;
  /// Routes every key of the keyboard to this program's focused window, window-manager bindings included,
  /// until `false`; answers whether it could.
  virtual bool setKeyboardCaptured(bool isCaptured) = 0;
};

}  // namespace vistrel::backend
