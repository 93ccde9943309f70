#include "linux/camera/JpegBits.h"

#include <algorithm>

namespace vistrel::camera {
namespace {

constexpr std::uint8_t kMark = 0xff;
constexpr int kFirstRestart = 0xd0;
constexpr std::size_t kStep = sizeof(std::uint64_t);
constexpr std::ptrdiff_t kLookAhead = kStep;  // what a refill may have read and nobody taken

bool hasMark(std::uint64_t bytes) {
  const std::uint64_t inverse = ~bytes;
  return ((inverse - 0x0101010101010101U) & ~inverse & 0x8080808080808080U) != 0;
}

}  // namespace

BitWindow JpegBits::start(std::span<const std::uint8_t> scan) {
  from_ = scan.data();
  end_ = from_ + scan.size();
  return begin();
}

BitWindow JpegBits::begin() {
  isAtEnd_ = false;
  fill(0);
  return {0, 0, buffer_.data()};
}

BitWindow JpegBits::more(const BitWindow& window) {
  if (isAtEnd_) return window;
  // The bits in the window stay there: only what it has not read yet is kept.
  const auto kept = static_cast<std::size_t>(filled_ - window.next);
  std::memmove(buffer_.data(), window.next, kept);
  fill(kept);
  return {window.bits, window.count, buffer_.data()};
}

void JpegBits::fill(std::size_t kept) {
  auto* end = copy(buffer_.data() + kept);
  filled_ = end;
  std::memset(end, 0, kReach);
  limit_ = isAtEnd_ ? end + kLookAhead : end - kReach;
}

// Up to a marker, or as much as there is room for.
std::uint8_t* JpegBits::copy(std::uint8_t* to) {
  const std::uint8_t* const full = buffer_.data() + kChunk;
  while (to < full) {
    std::uint64_t some = ~std::uint64_t{0};
    if (end_ - from_ >= static_cast<std::ptrdiff_t>(kStep)) std::memcpy(&some, from_, kStep);
    if (hasMark(some)) {
      for (std::size_t i = 0; i < kStep; ++i)
        if (!copyByte(to)) return to;
      continue;
    }
    std::memcpy(to, &some, kStep);
    to += kStep;
    from_ += kStep;
  }
  return to;
}

bool JpegBits::copyByte(std::uint8_t*& to) {
  const auto* const last = std::find_if(from_, end_, [](std::uint8_t byte) { return byte != kMark; });
  const bool isMarked = last != from_;
  isAtEnd_ = last == end_ || (isMarked && *last != 0);
  if (isAtEnd_) {
    from_ = last == end_ ? end_ : last - 1;
    return false;
  }
  *to++ = isMarked ? kMark : *last;
  from_ = last + 1;
  return true;
}

bool JpegBits::restart(int number, BitWindow& window) {
  while (!isAtEnd_) copy(buffer_.data());
  if (end_ - from_ < 2 || from_[1] != kFirstRestart + number) return false;
  from_ += 2;
  window = begin();
  return true;
}

bool JpegBits::isOverrun(const BitWindow& window) const {
  return isAtEnd_ && (window.next - filled_) * 8 > static_cast<std::ptrdiff_t>(window.count);
}

}  // namespace vistrel::camera
