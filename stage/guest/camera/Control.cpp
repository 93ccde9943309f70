#include "stage/guest/camera/Control.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vistrel::stage {
namespace {

// USB 2.0, chapter 9.
constexpr std::uint8_t kGetStatus = 0;
constexpr std::uint8_t kClearFeature = 1;
constexpr std::uint8_t kSetFeature = 3;
constexpr std::uint8_t kSetAddress = 5;
constexpr std::uint8_t kGetDescriptor = 6;
constexpr std::uint8_t kGetConfiguration = 8;
constexpr std::uint8_t kSetConfiguration = 9;
constexpr std::uint8_t kGetInterface = 10;
constexpr std::uint8_t kSetInterface = 11;
// USB Video Class 1.0, 4.3 and A.8.
constexpr std::uint8_t kSetCur = 0x01;
constexpr std::uint8_t kGetCur = 0x81;
constexpr std::uint8_t kGetMin = 0x82;
constexpr std::uint8_t kGetMax = 0x83;
constexpr std::uint8_t kGetLength = 0x85;
constexpr std::uint8_t kGetInfo = 0x86;
constexpr std::uint8_t kGetDefault = 0x87;
constexpr std::uint8_t kProbe = 1;
constexpr std::uint8_t kCommit = 2;
// Where the agreement's fields stand.
constexpr std::size_t kFormat = 2;
constexpr std::size_t kFrame = 3;
constexpr std::size_t kInterval = 4;
constexpr std::size_t kFrameBytes = 18;
constexpr std::size_t kPayloadBytes = 22;
constexpr std::uint32_t kRoomForHeader = 1024;

template <class Agreement>
void put(Agreement& agreement, std::size_t at, std::uint32_t value) {
  std::memcpy(agreement.data() + at, &value, sizeof value);
}

template <class Agreement>
std::uint32_t get(const Agreement& agreement, std::size_t at) {
  std::uint32_t value = 0;
  std::memcpy(&value, agreement.data() + at, sizeof value);
  return value;
}

}  // namespace

Control::Control(std::vector<Mode> modes, std::string name, std::string serial)
    : modes_(std::move(modes)), texts_{"", "Vistrel's Stage", std::move(name), std::move(serial)} {
  settle(probe_);
  commit_ = probe_;
}

std::optional<Bytes> Control::answer(const UsbRequest& request) {
  const auto& setup = request.setup;
  const std::uint8_t kind = setup[0] & 0x60U;
  if (kind == 0) return answerStandard(setup[1], static_cast<std::uint16_t>(setup[2] | setup[3] << 8));
  if (kind == 0x20 && setup[4] == kStreamInterface) return answerAgreement(setup[1], setup[3], request.data);
  if (kind == 0x20 && setup[1] == kGetCur) return Bytes{0};
  return std::nullopt;
}

std::optional<Bytes> Control::answerStandard(std::uint8_t request, std::uint16_t value) {
  switch (request) {
    case kGetDescriptor:
      return describe(value);
    case kGetStatus:
      return Bytes{0, 0};
    case kGetConfiguration:
      return Bytes{1};
    case kGetInterface:
      return Bytes{0};
    case kClearFeature:
      ++restarts_;
      return Bytes{};
    case kSetFeature:
    case kSetAddress:
    case kSetConfiguration:
    case kSetInterface:
      return Bytes{};
    default:
      return std::nullopt;
  }
}

std::optional<Bytes> Control::describe(std::uint16_t value) const {
  const std::size_t index = value & 0xffU;
  switch (value >> 8U) {
    case 1:
      return deviceDescriptor();
    case 2:
      return configurationDescriptor(modes_);
    case 3:
      if (index == 0) return Bytes{4, 3, 0x09, 0x04};
      if (index < texts_.size()) return stringDescriptor(texts_[index]);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

std::optional<Bytes> Control::answerAgreement(std::uint8_t request, std::uint8_t selector,
                                              const Bytes& data) {
  if (selector != kProbe && selector != kCommit) return std::nullopt;
  Agreement& agreement = selector == kProbe ? probe_ : commit_;
  switch (request) {
    case kSetCur:
      std::copy_n(data.begin(), std::min(data.size(), agreement.size()), agreement.begin());
      settle(agreement);
      if (selector == kCommit) ++restarts_;
      return Bytes{};
    case kGetCur:
    case kGetMin:
    case kGetMax:
    case kGetDefault:
      return Bytes(agreement.begin(), agreement.end());
    case kGetLength:
      return Bytes{kAgreementBytes, 0};
    case kGetInfo:
      return Bytes{3};
    default:
      return std::nullopt;
  }
}

void Control::settle(Agreement& agreement) const {
  const Mode& mode = find(agreement);
  const std::uint32_t wanted = get(agreement, kInterval);
  std::uint32_t interval = 0;
  for (const int rate : mode.offer.rates) {
    const std::uint32_t offered = kIntervalsPerSecond / static_cast<std::uint32_t>(rate);
    const auto distance = [&](std::uint32_t value) {
      return value > wanted ? value - wanted : wanted - value;
    };
    if (interval == 0 || (wanted != 0 && distance(offered) < distance(interval))) interval = offered;
  }
  agreement = {};
  agreement[kFormat] = mode.format;
  agreement[kFrame] = mode.frame;
  put(agreement, kInterval, interval);
  put(agreement, kFrameBytes, mode.maximumBytes());
  put(agreement, kPayloadBytes, mode.maximumBytes() + kRoomForHeader);
}

const Mode& Control::find(const Agreement& agreement) const {
  const auto found = std::find_if(modes_.begin(), modes_.end(), [&](const Mode& mode) {
    return mode.format == agreement[kFormat] && mode.frame == agreement[kFrame];
  });
  return found == modes_.end() ? modes_.front() : *found;
}

const Mode& Control::mode() const { return find(commit_); }

std::uint32_t Control::interval() const { return get(commit_, kInterval); }

}  // namespace vistrel::stage
