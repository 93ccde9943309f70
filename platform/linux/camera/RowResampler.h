#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "linux/camera/RowSampler.h"
#include "linux/camera/Scratch.h"

namespace vistrel::camera {

enum class Direction { AsIs, Mirrored };

/// Brings rows of samples to the glass's width, and mirrors them in the same pass. Strong reductions average
/// pairs until less than a factor of two is left, and interpolate that.
class RowResampler {
 public:
  /// Lays the work out; cheap when nothing has changed.
  void prepare(const Axis& axis, Direction direction);
  /// The row at the glass's width, valid until the next call; `in` itself when there is nothing to do.
  const std::uint8_t* apply(const std::uint8_t* in);

 private:
  static constexpr std::size_t kLanes = 8;
  /// Eight results: each is blended from two neighbours within sixteen bytes from `base`.
  struct Block {
    alignas(16) std::array<std::uint8_t, 2 * kLanes> pick{};
    alignas(16) std::array<std::uint8_t, 2 * kLanes> weights{};
    int base = 0;
  };

  static void blend(const std::vector<Block>& blocks, const std::uint8_t* in, std::uint8_t* out);
  static void blendFast(const std::vector<Block>& blocks, const std::uint8_t* in, std::uint8_t* out);
  [[nodiscard]] double positionOf(std::size_t result) const;
  void layOut();

  Axis axis_;
  Direction direction_ = Direction::AsIs;
  int halvings_ = 0;
  int samples_ = 0;  // that are left after halving
  bool isIdentity_ = false;
  std::vector<Block> blocks_;
  Scratch halves_[2];
  Scratch out_;
};

}  // namespace vistrel::camera
