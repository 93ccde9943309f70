#pragma once

#include <functional>
#include <utility>

namespace vistrel::swiftui {

/// A value that lives elsewhere, as a control reads and writes it.
template <class T>
struct Binding {
  std::function<T()> get;
  std::function<void(const T&)> set;
};

}  // namespace vistrel::swiftui
