#pragma once

#include <functional>
#include <utility>

namespace vistrel::swiftui {

/// A value that lives elsewhere, as a control reads and writes it.
template <class T>
struct Binding {
  std::function<T()> get;
  std::function<void(const T&)> set;
  /// The user chose a value: sets it unless it was chosen already.
  void choose(const T& value) const {
    if (get() != value) set(value);
  }
};

}  // namespace vistrel::swiftui
