#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace vistrel::camera {

/// The next bits of an interval. A value that the inner loops keep in registers.
struct BitWindow {
  std::uint64_t bits = 0;  ///< the next one on top
  unsigned count = 0;      ///< how many of them are taken from the bytes before `next`
  const std::uint8_t* next = nullptr;

  /// At least 56 bits are there afterwards.
  void refill() {
    std::uint64_t more = 0;
    std::memcpy(&more, next, sizeof more);
    if constexpr (std::endian::native == std::endian::little) more = __builtin_bswap64(more);
    bits |= more >> count;
    next += (63 - count) / 8;
    count |= 56U;
  }
  /// The next `length` bits, 1 to 32 of them.
  [[nodiscard]] unsigned peek(unsigned length) const { return static_cast<unsigned>(bits >> (64 - length)); }
  void drop(unsigned length) {
    bits <<= length;
    count -= length;
  }
};

/// The picture data of a JPEG, interval by interval, without the zeros that it has behind each 0xff. Whoever
/// asks for `more` in time can read on without a check; behind an interval's end zeros are read.
class JpegBits {
 public:
  /// Bytes that may be read from a window which does not ask for more.
  static constexpr std::size_t kReach = 1536;

  /// Begins the first interval. Reads nothing beyond `scan`.
  BitWindow start(std::span<const std::uint8_t> scan);
  /// True when the window has to be exchanged for `more` of it.
  [[nodiscard]] bool isLow(const BitWindow& window) const { return window.next > limit_; }
  /// The same place of the interval with more behind it. Behind its end the data has `isOverrun`.
  BitWindow more(const BitWindow& window);
  /// Begins the interval behind the restart marker of that number, 0 to 7. False: that is not what follows.
  [[nodiscard]] bool restart(int number, BitWindow& window);
  /// True when more bits were taken than the interval has.
  [[nodiscard]] bool isOverrun(const BitWindow& window) const;

 private:
  static constexpr std::size_t kChunk = 16384;

  BitWindow begin();
  void fill(std::size_t kept);
  std::uint8_t* copy(std::uint8_t* to);
  bool copyByte(std::uint8_t*& to);

  const std::uint8_t* from_ = nullptr;
  const std::uint8_t* end_ = nullptr;
  const std::uint8_t* limit_ = nullptr;
  const std::uint8_t* filled_ = nullptr;
  bool isAtEnd_ = false;  // of the interval: what follows is a marker, or nothing
  std::array<std::uint8_t, kChunk + 2 * kReach> buffer_;
};

}  // namespace vistrel::camera
