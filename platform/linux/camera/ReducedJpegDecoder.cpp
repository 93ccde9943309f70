#include "linux/camera/ReducedJpegDecoder.h"

#include <algorithm>
#include <optional>

#include "linux/camera/BlockReader.h"
#include "linux/camera/HuffmanCode.h"
#include "linux/camera/JpegBits.h"
#include "linux/camera/ReducedTransform.h"

namespace vistrel::camera {
namespace {

constexpr int kComponents = 3;
constexpr int kLeastBitsOfBlock = 2;
constexpr int kRestartNumbers = 8;
constexpr int kRowPadding = 64;

/// The tables that a component had in the last frame, with what they were made from.
struct KeptCode {
  HuffmanSpec dc, ac;
  std::unique_ptr<const BlockCode> code;
};

/// One component of the frame that is being decoded.
struct Channel {
  const BlockCode* code = nullptr;
  const JpegFactors* factors = nullptr;
  std::uint8_t* samples = nullptr;  // of the row of blocks in work
  std::ptrdiff_t stride = 0;
  int side = 1;    // samples of a block
  int across = 1;  // blocks in a unit
  int down = 1;
  std::int16_t dc = 0;
};

int dividedUp(int value, int by) { return (value + by - 1) / by; }

/// Fewer bits than any picture of that many blocks takes.
bool isTooShort(const JpegHeader& header) {
  const auto units = header.units();
  const std::size_t blocks =
      std::size_t{1} * units.width * units.height * (header.isGrey ? 1 : header.lumaX * header.lumaY + 2);
  return header.scan.size() * 8 < blocks * kLeastBitsOfBlock;
}

/// A component's blocks grow as long as there are fewer samples of it than of luma, as they do for libjpeg.
int sideOfChroma(const JpegHeader& header, int luma) {
  return header.lumaX == 2 && header.lumaY == 2 ? 2 * luma : luma;
}

template <int side>
[[gnu::always_inline]] inline void readBlock(BlockReader& reader, Channel& channel, std::uint8_t* samples,
                                             Coefficients& block) {
  if constexpr (side == 1) {
    channel.dc = static_cast<std::int16_t>(channel.dc + reader.readDc(*channel.code));
    *samples = wholeSample(channel.dc * (*channel.factors)[0]);
    return;
  }
  int difference = 0;
  const bool hasMore = reader.readAll(*channel.code, *channel.factors, difference, block);
  channel.dc = static_cast<std::int16_t>(channel.dc + difference);
  const auto dc = static_cast<std::int16_t>(channel.dc * (*channel.factors)[0]);
  if (hasMore) {
    block[0] = dc;
    transform<side>(block, samples, channel.stride);
    block.fill(0);
  } else {
    for (int y = 0; y < side; ++y) std::memset(samples + y * channel.stride, flatSample(dc), side);
  }
}

template <int side>
[[gnu::always_inline]] inline void readBlocks(BlockReader& reader, Channel& channel, int unit,
                                              Coefficients& block) {
  std::uint8_t* first = channel.samples + std::ptrdiff_t{side} * unit * channel.across;
  for (int y = 0; y < channel.down; ++y, first += side * channel.stride)
    for (int x = 0; x < channel.across; ++x)
      readBlock<side>(reader, channel, first + std::ptrdiff_t{side} * x, block);
}

}  // namespace

struct ReducedJpegDecoder::State {
  explicit State(const std::atomic<bool>& calledOff) : isCalledOff(calledOff) {}

  Outcome decode(std::span<const std::uint8_t> jpeg, PixelSize glass, OwnedPicture& out);
  bool chooseCodes();
  const BlockCode* codeFor(std::size_t index);
  void layOut(OwnedPicture& out, int reduction);
  bool readPicture();
  template <int luma, int chroma>
  bool readRows();
  template <int luma, int chroma>
  bool readRow();
  bool goOn(BlockReader& reader);
  bool restart(BlockReader& reader);

  const std::atomic<bool>& isCalledOff;
  JpegHeader header;
  std::array<KeptCode, kComponents> kept;
  std::array<Channel, kComponents> channels;
  JpegBits bits;
  BitWindow window;
  int unitsToRestart = 0;
  int nextRestart = 0;
  Coefficients block{};  // zeros between two blocks
};

ReducedJpegDecoder::Outcome ReducedJpegDecoder::State::decode(std::span<const std::uint8_t> jpeg,
                                                              PixelSize glass, OwnedPicture& out) {
  const auto found = readJpegHeader(jpeg);
  const int reduction = found ? reductionFor(found->size, glass) : 1;
  if (reduction == 1) return Outcome::Unsuitable;
  header = *found;
  if (!chooseCodes()) return Outcome::Unsuitable;
  if (isTooShort(header)) return Outcome::Damaged;
  layOut(out, reduction);
  return readPicture() ? Outcome::Decoded : Outcome::Damaged;
}

bool ReducedJpegDecoder::State::chooseCodes() {
  for (int i = 0; i < header.componentCount(); ++i) {
    channels[i].code = codeFor(static_cast<std::size_t>(i));
    channels[i].factors = &header.components[i].factors;
    if (!channels[i].code) return false;
  }
  return true;
}

/// Tables are made when a frame's codes differ from those of the last one.
const BlockCode* ReducedJpegDecoder::State::codeFor(std::size_t index) {
  const auto& [factors, dc, ac] = header.components[index];
  const auto& before = header.components[index == 0 ? 0 : index - 1];
  if (index > 0 && before.dc == dc && before.ac == ac) return channels[index - 1].code;
  KeptCode& own = kept[index];
  if (!own.code || own.dc != dc || own.ac != ac) {
    own = {dc, ac, nullptr};
    if (const auto made = BlockCode::from(dc, ac)) own.code = std::make_unique<const BlockCode>(*made);
  }
  return own.code.get();
}

void ReducedJpegDecoder::State::layOut(OwnedPicture& out, int reduction) {
  const int luma = kJpegBlock / reduction;
  const PixelSize units = header.units();
  std::array<std::size_t, kComponents + 1> offsets{};
  for (int i = 0; i < header.componentCount(); ++i) {
    Channel& channel = channels[i];
    channel.side = i == 0 ? luma : sideOfChroma(header, luma);
    channel.across = i == 0 ? header.lumaX : 1;
    channel.down = i == 0 ? header.lumaY : 1;
    channel.stride =
        std::ptrdiff_t{kRowPadding} * dividedUp(units.width * channel.across * channel.side, kRowPadding);
    offsets[i + 1] =
        offsets[i] + static_cast<std::size_t>(channel.stride) * units.height * channel.down * channel.side;
  }
  std::uint8_t* memory = out.memory.take(offsets[header.componentCount()]);
  const auto sizeOf = [this](const Channel& c, int x, int y) {
    return PixelSize{dividedUp(header.size.width * c.side, x * kJpegBlock),
                     dividedUp(header.size.height * c.side, y * kJpegBlock)};
  };
  out.picture = {PixelFormat::I420, sizeOf(channels[0], 1, 1), {}, {}, decideColor(PixelFormat::Mjpeg, {})};
  if (!header.isGrey) out.picture.chromaSize = sizeOf(channels[1], header.lumaX, header.lumaY);
  for (int i = 0; i < header.componentCount(); ++i) {
    channels[i].samples = memory + offsets[i];
    out.picture.planes[i] = {channels[i].samples, static_cast<int>(channels[i].stride)};
  }
}

bool ReducedJpegDecoder::State::readPicture() {
  window = bits.start(header.scan);
  unitsToRestart = header.restartInterval;
  nextRestart = 0;
  for (Channel& channel : channels) channel.dc = 0;
  const bool hasLargeChroma = !header.isGrey && channels[1].side != channels[0].side;
  switch (channels[0].side) {
    case 1:
      return hasLargeChroma ? readRows<1, 2>() : readRows<1, 1>();
    case 2:
      return hasLargeChroma ? readRows<2, 4>() : readRows<2, 2>();
    default:
      return hasLargeChroma ? readRows<4, 8>() : readRows<4, 4>();
  }
}

template <int luma, int chroma>
bool ReducedJpegDecoder::State::readRows() {
  for (int row = header.units().height; row > 0; --row) {
    if (isCalledOff || !readRow<luma, chroma>()) return false;
    for (int i = 0; i < header.componentCount(); ++i)
      channels[i].samples += channels[i].stride * channels[i].down * channels[i].side;
  }
  return !bits.isOverrun(window);
}

template <int luma, int chroma>
bool ReducedJpegDecoder::State::readRow() {
  BlockReader reader(window);
  const int units = header.units().width;
  for (int unit = 0; unit < units; ++unit) {
    if (header.restartInterval > 0 && unitsToRestart-- == 0 && !restart(reader)) return false;
    if (bits.isLow(reader.window) && !goOn(reader)) return false;
    readBlocks<luma>(reader, channels[0], unit, block);
    if (!header.isGrey) {
      readBlocks<chroma>(reader, channels[1], unit, block);
      readBlocks<chroma>(reader, channels[2], unit, block);
    }
    if (reader.isBroken) return false;
  }
  window = reader.window;
  return true;
}

bool ReducedJpegDecoder::State::goOn(BlockReader& reader) {
  reader.window = bits.more(reader.window);
  return !bits.isOverrun(reader.window);
}

bool ReducedJpegDecoder::State::restart(BlockReader& reader) {
  unitsToRestart = header.restartInterval - 1;
  for (Channel& channel : channels) channel.dc = 0;
  if (bits.isOverrun(reader.window) || !bits.restart(nextRestart, reader.window)) return false;
  nextRestart = (nextRestart + 1) % kRestartNumbers;
  return true;
}

ReducedJpegDecoder::ReducedJpegDecoder(const std::atomic<bool>& isCalledOff)
    : state_(std::make_unique<State>(isCalledOff)) {}

ReducedJpegDecoder::~ReducedJpegDecoder() = default;

ReducedJpegDecoder::Outcome ReducedJpegDecoder::decode(std::span<const std::uint8_t> jpeg, PixelSize glass,
                                                       OwnedPicture& out) {
  return state_->decode(jpeg, glass, out);
}

}  // namespace vistrel::camera
