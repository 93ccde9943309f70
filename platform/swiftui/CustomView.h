#pragma once

#include <functional>
#include <utility>

#include "swiftui/View.h"

namespace vistrel::swiftui {

/// A view made of others, with state of its own. Whoever shows it draws it again when its state changes.
class CustomView {
 public:
  CustomView() = default;
  CustomView(const CustomView&) = delete;
  CustomView& operator=(const CustomView&) = delete;
  virtual ~CustomView() = default;

  /// What the view shows now; made anew on each call.
  [[nodiscard]] virtual View body() = 0;

  /// `handler` is called after each change of state; an empty one is nobody.
  void setRedrawHandler(std::function<void()> handler) { redraw_ = std::move(handler); }
  void stateDidChange() {
    if (redraw_) redraw_();
  }

 private:
  std::function<void()> redraw_;
};

/// One value of a view's state. Writing it has the view drawn again.
template <class T>
class State {
 public:
  /// `owner` is the view that has this member.
  State(CustomView& owner, T initial) : owner_(owner), value_(std::move(initial)) {}

  [[nodiscard]] const T& get() const { return value_; }
  void set(T value) {
    value_ = std::move(value);
    owner_.stateDidChange();
  }

 private:
  CustomView& owner_;
  T value_;
};

}  // namespace vistrel::swiftui
