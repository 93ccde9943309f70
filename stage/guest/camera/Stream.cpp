#include "stage/guest/camera/Stream.h"

#include <algorithm>

namespace vistrel::stage {
namespace {

using namespace std::chrono;

constexpr std::uint8_t kHeaderBytes = 2;
// The payload header's bits (USB Video Class 1.0, 2.4.3.3).
constexpr unsigned kFrameId = 0x01;
constexpr unsigned kEndOfFrame = 0x02;
constexpr unsigned kErrorBit = 0x40;
constexpr unsigned kEndOfHeader = 0x80;
constexpr std::size_t kEndMarkerBytes = 2;
constexpr milliseconds kLongLate{200};

std::uint32_t nowMilliseconds() {
  return static_cast<std::uint32_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace

void Stream::enqueue(std::uint32_t sequence, std::uint32_t length) { waiting_.push_back({sequence, length}); }

bool Stream::giveUp(std::uint32_t sequence) {
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [&](const Transfer& transfer) { return transfer.sequence == sequence; });
  if (found == waiting_.end()) return false;
  waiting_.erase(found);
  restart();
  return true;
}

void Stream::restart() {
  payload_.clear();
  sent_ = 0;
}

Stream::Clock::time_point Stream::advance(const Mode& mode, std::uint32_t interval) {
  const auto now = Clock::now();
  if (waiting_.empty()) return now + 1s;
  if (payload_.empty() && now >= due_) {
    if (due_ < now - kLongLate) due_ = now;
    due_ += microseconds(interval / 10);
    if (fault_ != StreamFault::Frozen) begin(mode);
  }
  send();
  return due_;
}

void Stream::begin(const Mode& mode) {
  PictureSource& pictures = source(mode);
  payload_.resize(kHeaderBytes + pictures.maximumBytes());
  const auto look = fault_ == StreamFault::Garbage ? Look::Garbage : Look::Normal;
  std::size_t length =
      pictures.write(counter_, nowMilliseconds(), look, std::span(payload_).subspan(kHeaderBytes));
  if (fault_ == StreamFault::Truncated) length /= 3;
  if (fault_ == StreamFault::NoEnd && !mode.offer.raw) length -= kEndMarkerBytes;
  payload_.resize(kHeaderBytes + length);
  payload_[0] = kHeaderBytes;
  payload_[1] = static_cast<std::uint8_t>(kEndOfHeader | kEndOfFrame | (counter_ % 2 == 1 ? kFrameId : 0) |
                                          (fault_ == StreamFault::Error ? kErrorBit : 0));
  ++counter_;
}

void Stream::send() {
  while (!payload_.empty() && !waiting_.empty()) {
    const Transfer transfer = waiting_.front();
    waiting_.pop_front();
    std::size_t part = std::min<std::size_t>(transfer.length, payload_.size() - sent_);
    // Only a transfer that is not full tells the end of a payload.
    const bool isLast = sent_ + part == payload_.size() && part < transfer.length;
    usb_.deliver(transfer.sequence, std::span(payload_).subspan(sent_, part));
    sent_ += part;
    if (!isLast) continue;
    if (fault_ != StreamFault::None) ++faultyFrames_;
    restart();
  }
}

PictureSource& Stream::source(const Mode& mode) {
  auto& kept = sources_[{mode.format, mode.frame}];
  if (!kept) kept = PictureSource::create(mode.offer, options_);
  return *kept;
}

}  // namespace vistrel::stage
