#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vistrel::camera {

/// Working memory that grows to the largest need and is then kept, so that no frame allocates.
class Scratch {
 public:
  /// At least `bytes` of memory; its contents are undefined.
  [[nodiscard]] std::uint8_t* take(std::size_t bytes) {
    if (memory_.size() < bytes) memory_.resize(bytes);
    return memory_.data();
  }

 private:
  std::vector<std::uint8_t> memory_;
};

}  // namespace vistrel::camera
