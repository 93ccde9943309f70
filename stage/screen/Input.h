#pragma once

#include <optional>
#include <string>

#include "stage/screen/Screen.h"

namespace vistrel::stage {

enum class Motion { Down, Up };

/// Real input, through XTEST: what a person's mouse and keyboard would send.
class Input {
 public:
  explicit Input(const Screen& screen);

  void move(int x, int y) const;
  void button(unsigned button, Motion motion) const;
  /// Comes from the left, as a hand does: not from nowhere.
  void click(unsigned which, int x, int y) const;
  /// A key by its keysym name ("Control_L", "m") or by its evdev code ("evdev:50"). None: no such key here.
  [[nodiscard]] std::optional<unsigned> keyCode(const std::string& name) const;
  void key(unsigned keyCode, Motion motion) const;
  /// Whether another program has taken the key with these modifiers (X11's bits) on the root window.
  [[nodiscard]] bool isTaken(unsigned keyCode, unsigned modifiers) const;
  /// Whether a program that asked for the whole keyboard would get it.
  [[nodiscard]] bool isKeyboardFree() const;
  /// How often the bell has rung since it was asked last.
  [[nodiscard]] int bells() const;
  void drag(int fromX, int fromY, int toX, int toY) const;

 private:
  const Screen& screen_;
  int firstXkbEvent_ = 0;
};

}  // namespace vistrel::stage
