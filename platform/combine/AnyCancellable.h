#pragma once

#include <functional>
#include <utility>

namespace vistrel {

/// A subscription in force. Its end, by `cancel` or by its death, is the end of the subscription.
class [[nodiscard]] AnyCancellable {
 public:
  AnyCancellable() = default;
  explicit AnyCancellable(std::function<void()> end) : end_(std::move(end)) {}
  AnyCancellable(AnyCancellable&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
  AnyCancellable& operator=(AnyCancellable&& other) noexcept {
    if (this == &other) return *this;
    cancel();
    end_ = std::exchange(other.end_, nullptr);
    return *this;
  }
  ~AnyCancellable() { cancel(); }

  void cancel() {
    if (const auto end = std::exchange(end_, nullptr)) end();
  }

 private:
  std::function<void()> end_;
};

}  // namespace vistrel
