#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace vistrel::fuzz {

/// What a fuzzer hands in, taken from the front; zeros once it is used up.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t length) : left_(data, length) {}

  template <class T>
  T take() {
    T value{};
    const auto count = std::min(sizeof value, left_.size());
    if (count > 0) std::memcpy(&value, left_.data(), count);
    left_ = left_.subspan(count);
    return value;
  }
  /// In memory of its own, so that a byte beyond it is noticed.
  std::vector<std::uint8_t> block(std::size_t count) {
    count = std::min(count, left_.size());
    std::vector<std::uint8_t> bytes(left_.begin(), left_.begin() + static_cast<std::ptrdiff_t>(count));
    left_ = left_.subspan(count);
    return bytes;
  }
  [[nodiscard]] bool isEmpty() const { return left_.empty(); }
  [[nodiscard]] std::size_t size() const { return left_.size(); }
  [[nodiscard]] std::string_view text() const {
    return {reinterpret_cast<const char*>(left_.data()), left_.size()};
  }

 private:
  std::span<const std::uint8_t> left_;
};

/// Ends the run with what was found.
inline void check(bool isRight, const char* what) {
  if (isRight) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

}  // namespace vistrel::fuzz
