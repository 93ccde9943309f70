#include "stage/guest/camera/Descriptors.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace vistrel::stage {
namespace {

constexpr std::uint8_t kSpecific = 0x24;  // a class-specific interface descriptor
constexpr std::uint8_t kMjpegFormat = 6;
constexpr std::uint8_t kMjpegFrame = 7;
constexpr std::uint8_t kRawFormat = 4;
constexpr std::uint8_t kRawFrame = 5;
constexpr std::array<std::uint8_t, 16> kYuy2 = {'Y',  'U', 'Y', '2',  0, 0,    0x10, 0,
                                                0x80, 0,   0,   0xaa, 0, 0x38, 0x9b, 0x71};

bool isRaw(const Mode& mode) { return mode.offer.raw.has_value(); }

class Writer {
 public:
  void bytes(std::initializer_list<int> values) {
    for (const int value : values) bytes_.push_back(static_cast<std::uint8_t>(value));
  }
  void number(std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  void setNumber(std::size_t at, std::size_t value) {
    bytes_[at] = static_cast<std::uint8_t>(value);
    bytes_[at + 1] = static_cast<std::uint8_t>(value >> 8);
  }
  [[nodiscard]] std::size_t size() const { return bytes_.size(); }
  Bytes take() { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

/// A camera, unit 1, that leads to an output, unit 2.
void writeControlInterface(Writer& out) {
  out.bytes({8, 11, 0, 2, 14, 3, 0, 2});
  out.bytes({9, 4, 0, 0, 0, 14, 1, 0, 2});
  out.bytes({13, kSpecific, 1, 0x00, 0x01, 13 + 18 + 9, 0});
  out.number(48'000'000, 4);
  out.bytes({1, kStreamInterface});
  out.bytes({18, kSpecific, 2, 1, 0x01, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0});
  out.bytes({9, kSpecific, 3, 2, 0x01, 0x01, 0, 1, 0});
}

void writeFrame(Writer& out, const Mode& mode) {
  const auto& rates = mode.offer.rates;
  const auto [slowest, fastest] = std::minmax_element(rates.begin(), rates.end());
  const auto bits = std::uint64_t{mode.maximumBytes()} * 8;
  const auto capped = [](std::uint64_t rate) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(rate, 0x7fffffff));
  };
  out.bytes({static_cast<int>(26 + 4 * rates.size()), kSpecific, isRaw(mode) ? kRawFrame : kMjpegFrame,
             mode.frame, 0});
  out.number(static_cast<std::uint32_t>(mode.offer.width), 2);
  out.number(static_cast<std::uint32_t>(mode.offer.height), 2);
  out.number(capped(bits * static_cast<std::uint64_t>(*slowest)), 4);
  out.number(capped(bits * static_cast<std::uint64_t>(*fastest)), 4);
  out.number(mode.maximumBytes(), 4);
  out.number(kIntervalsPerSecond / static_cast<std::uint32_t>(rates.front()), 4);
  out.bytes({static_cast<int>(rates.size())});
  for (const int rate : rates) out.number(kIntervalsPerSecond / static_cast<std::uint32_t>(rate), 4);
}

void writeFormat(Writer& out, const std::vector<Mode>& modes, std::uint8_t format) {
  const auto first =
      std::find_if(modes.begin(), modes.end(), [&](const Mode& m) { return m.format == format; });
  const auto count =
      std::count_if(modes.begin(), modes.end(), [&](const Mode& m) { return m.format == format; });
  if (isRaw(*first)) {
    out.bytes({27, kSpecific, kRawFormat, format, static_cast<int>(count)});
    for (const std::uint8_t value : kYuy2) out.number(value, 1);
    out.bytes({16, 1, 0, 0, 0, 0});
  } else {
    out.bytes({11, kSpecific, kMjpegFormat, format, static_cast<int>(count), 1, 1, 0, 0, 0, 0});
  }
  for (const Mode& mode : modes)
    if (mode.format == format) writeFrame(out, mode);
  out.bytes({6, kSpecific, 0x0d, 1, 1, 4});  // BT.709 primaries, BT.601 matrix, as webcams say
}

}  // namespace

std::vector<Mode> modesOf(const std::vector<Offer>& offers) {
  std::vector<Mode> modes;
  std::uint8_t format = 0;
  for (const bool raw : {false, true}) {
    std::uint8_t frame = 0;
    for (const Offer& offer : offers) {
      const bool speaks = !offer.raw || *offer.raw == PixelFormat::Yuy2;
      if (!speaks || offer.raw.has_value() != raw) continue;
      if (frame == 0) ++format;
      modes.push_back({offer, format, ++frame});
    }
  }
  return modes;
}

Bytes deviceDescriptor() { return {18, 1, 0, 2, 0xef, 2, 1, 64, 0x09, 0x12, 1, 0, 0, 1, 1, 2, 3, 1}; }

Bytes configurationDescriptor(const std::vector<Mode>& modes) {
  const std::uint8_t formats = modes.back().format;
  Writer out;
  out.bytes({9, 2, 0, 0, 2, 1, 0, 0x80, 250});
  writeControlInterface(out);
  out.bytes({9, 4, kStreamInterface, 0, 1, 14, 2, 0, 0});
  const std::size_t start = out.size();
  out.bytes({13 + formats, kSpecific, 1, formats, 0, 0, 0x80 | kStreamEndpoint, 0, 2, 0, 0, 0, 1});
  for (int i = 0; i < formats; ++i) out.bytes({0});
  for (std::uint8_t format = 1; format <= formats; ++format) writeFormat(out, modes, format);
  out.setNumber(start + 4, out.size() - start);
  out.bytes({7, 5, 0x80 | kStreamEndpoint, 2, 0x00, 0x02, 0});
  out.setNumber(2, out.size());
  return out.take();
}

Bytes stringDescriptor(std::string_view text) {
  Bytes bytes = {static_cast<std::uint8_t>(2 + 2 * text.size()), 3};
  for (const char letter : text) {
    bytes.push_back(static_cast<std::uint8_t>(letter));
    bytes.push_back(0);
  }
  return bytes;
}

}  // namespace vistrel::stage
