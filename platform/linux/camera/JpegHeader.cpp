#include "linux/camera/JpegHeader.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "linux/camera/StandardHuffman.h"

namespace vistrel::camera {
namespace {

enum Marker : std::uint8_t {
  kBaseline = 0xc0,
  kExtended = 0xc1,
  kHuffmanTables = 0xc4,
  kStart = 0xd8,
  kScan = 0xda,
  kQuantTables = 0xdb,
  kRestartInterval = 0xdd,
  kApplication0 = 0xe0,
  kAdobe = 0xee,
  kApplication15 = 0xef,
  kComment = 0xfe,
};

constexpr int kSlots = 4;
constexpr int kMostDcSize = 15;
constexpr int kLastCoefficient = kJpegCoefficients - 1;

/// Bytes that are taken from the front; once there are too few, all that is taken is 0.
class Bytes {
 public:
  explicit Bytes(std::span<const std::uint8_t> left) : left_(left) {}

  [[nodiscard]] bool isShort() const { return isShort_; }
  [[nodiscard]] bool isEmpty() const { return left_.empty(); }
  [[nodiscard]] std::span<const std::uint8_t> rest() const { return left_; }
  std::span<const std::uint8_t> take(std::size_t count) {
    if (count > left_.size()) {
      isShort_ = true;
      left_ = {};
      return {};
    }
    const auto taken = left_.first(count);
    left_ = left_.subspan(count);
    return taken;
  }
  int byte() {
    const auto taken = take(1);
    return taken.empty() ? 0 : taken[0];
  }
  int word() {
    const int high = byte();
    return high * 256 + byte();
  }

 private:
  std::span<const std::uint8_t> left_;
  bool isShort_ = false;
};

class HeaderReader {
 public:
  explicit HeaderReader(std::span<const std::uint8_t> jpeg) : bytes_(jpeg) {}

  std::optional<JpegHeader> read() {
    if (bytes_.word() != 0xff00 + kStart) return std::nullopt;
    while (true) {
      const int marker = takeMarker();
      const int length = bytes_.word();
      if (marker < 0 || length < 2) return std::nullopt;
      Bytes segment(bytes_.take(static_cast<std::size_t>(length) - 2));
      if (bytes_.isShort()) return std::nullopt;
      if (marker == kScan) return finish(segment);
      if (!takeSegment(marker, segment)) return std::nullopt;
    }
  }

 private:
  struct FrameComponent {
    int id = 0, x = 0, y = 0, quantSlot = 0;
  };

  int takeMarker() {
    if (bytes_.byte() != 0xff) return -1;
    int marker = 0xff;
    while (marker == 0xff && !bytes_.isShort()) marker = bytes_.byte();
    return marker;
  }

  bool takeSegment(int marker, Bytes& segment) {
    switch (marker) {
      case kBaseline:
      case kExtended:
        return takeFrame(segment);
      case kHuffmanTables:
        return takeAll(segment, &HeaderReader::takeHuffman);
      case kQuantTables:
        return takeAll(segment, &HeaderReader::takeQuant);
      case kRestartInterval:
        header_.restartInterval = segment.word();
        return !segment.isShort() && segment.isEmpty();
      case kAdobe:  // which may say that the colors are no YCbCr
        return false;
      default:
        return marker == kComment || (marker >= kApplication0 && marker <= kApplication15);
    }
  }

  bool takeAll(Bytes& segment, bool (HeaderReader::*one)(Bytes&)) {
    while (!segment.isEmpty())
      if (!(this->*one)(segment)) return false;
    return !segment.isShort();
  }

  bool takeQuant(Bytes& segment) {
    const int kind = segment.byte();
    const int slot = kind % 16;
    if (slot >= kSlots || kind / 16 > 1) return false;
    hasQuant_[slot] = true;
    for (auto& factor : quant_[slot])
      factor = static_cast<std::int16_t>(kind / 16 == 1 ? segment.word() : segment.byte());
    return !segment.isShort();
  }

  bool takeHuffman(Bytes& segment) {
    const int kind = segment.byte();
    const int slot = kind % 16;
    if (slot >= kSlots || kind / 16 > 1) return false;
    const auto counts = segment.take(16);
    const std::size_t total = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
    const auto symbols = segment.take(std::min<std::size_t>(total, 257));
    if (segment.isShort() || total > 256) return false;
    HuffmanSpec spec;
    std::copy(counts.begin(), counts.end(), spec.counts.begin());
    std::copy(symbols.begin(), symbols.end(), spec.symbols.begin());
    (kind / 16 == 1 ? ac_ : dc_)[slot] = spec;
    return true;
  }

  bool takeFrame(Bytes& segment) {
    if (count_ != 0 || segment.byte() != 8) return false;
    header_.size.height = segment.word();
    header_.size.width = segment.word();
    count_ = segment.byte();
    if (count_ != 1 && count_ != 3) return false;
    for (int i = 0; i < count_; ++i) {
      FrameComponent& component = frame_[i];
      component.id = segment.byte();
      const int sampling = segment.byte();
      component.x = sampling / 16;
      component.y = sampling % 16;
      component.quantSlot = segment.byte();
    }
    header_.isGrey = count_ == 1;
    const auto [width, height] = header_.size;
    return !segment.isShort() && segment.isEmpty() && hasUsualSampling() && hasUsualColors() && width > 0 &&
           height > 0 && width <= kLargestJpegSide && height <= kLargestJpegSide;
  }

  bool hasUsualSampling() {
    const auto isSmall = [](int factor) { return factor == 1 || factor == 2; };
    if (!isSmall(frame_[0].x) || !isSmall(frame_[0].y)) return false;
    if (header_.isGrey) return true;  // blocks stand one by one, whatever the factors are
    header_.lumaX = frame_[0].x;
    header_.lumaY = frame_[0].y;
    return std::all_of(frame_.begin() + 1, frame_.end(),
                       [](const FrameComponent& c) { return c.x == 1 && c.y == 1; });
  }

  /// Numbers as of YCbCr, not letters as of RGB.
  [[nodiscard]] bool hasUsualColors() const {
    if (header_.isGrey) return true;
    const int first = frame_[0].id;
    return first <= 1 && frame_[1].id == first + 1 && frame_[2].id == first + 2;
  }

  std::optional<JpegHeader> finish(Bytes& segment) {
    if (count_ == 0 || segment.byte() != count_) return std::nullopt;
    for (int i = 0; i < count_; ++i)
      if (!takeComponent(segment, frame_[i], header_.components[i])) return std::nullopt;
    const std::tuple spectrum{segment.byte(), segment.byte(), segment.byte()};
    if (spectrum != std::tuple{0, kLastCoefficient, 0} || segment.isShort() || !segment.isEmpty())
      return std::nullopt;
    header_.scan = bytes_.rest();
    return header_;
  }

  bool takeComponent(Bytes& segment, const FrameComponent& frame, JpegComponent& component) {
    if (segment.byte() != frame.id) return false;
    const int slots = segment.byte();
    if (slots / 16 >= kSlots || slots % 16 >= kSlots) return false;
    const auto& dc = dc_[slots / 16];
    const auto& ac = ac_[slots % 16];
    if (frame.quantSlot >= kSlots || !hasQuant_[frame.quantSlot] || !dc || !ac) return false;
    component = {quant_[frame.quantSlot], *dc, *ac};
    return std::all_of(dc->symbols.begin(), dc->symbols.end(), [](int size) { return size <= kMostDcSize; });
  }

  Bytes bytes_;
  JpegHeader header_;
  int count_ = 0;
  std::array<FrameComponent, 3> frame_;
  std::array<bool, kSlots> hasQuant_{};
  std::array<JpegFactors, kSlots> quant_{};
  std::array<std::optional<HuffmanSpec>, kSlots> dc_{standardDcCode(false), standardDcCode(true)};
  std::array<std::optional<HuffmanSpec>, kSlots> ac_{standardAcCode(false), standardAcCode(true)};
};

}  // namespace

PixelSize JpegHeader::units() const {
  const int width = lumaX * kJpegBlock;
  const int height = lumaY * kJpegBlock;
  return {(size.width + width - 1) / width, (size.height + height - 1) / height};
}

std::optional<JpegHeader> readJpegHeader(std::span<const std::uint8_t> jpeg) {
  return HeaderReader(jpeg).read();
}

int reductionFor(PixelSize picture, PixelSize glass) {
  for (int reduction = kJpegBlock; reduction > 1; reduction /= 2) {
    const bool isWideEnough = (picture.width + reduction - 1) / reduction >= glass.width;
    const bool isHighEnough = (picture.height + reduction - 1) / reduction >= glass.height;
    if (isWideEnough && isHighEnough) return reduction;
  }
  return 1;
}

}  // namespace vistrel::camera
