#include "stage/camera/PictureSource.h"

#include <algorithm>
#include <array>
#include <vector>

#include "stage/PictureClock.h"
#include "stage/camera/Jpeg.h"
#include "stage/camera/PersonPicture.h"

namespace vistrel::stage {
namespace {

constexpr Color kRed{220, 20, 20};
constexpr Color kBlue{20, 20, 220};
constexpr Color kGreen{20, 200, 20};
constexpr Color kWhite{255, 255, 255};
constexpr Color kBlack{0, 0, 0};
constexpr int kPhases = 8;
constexpr int kBlock = 8;
constexpr int kJpegUnit = 16;  // columns
constexpr int kRoughness = 26;

int clockTop(int height, int row, const Options& options) {
  const bool isStrip = options.picture == Picture::Person;
  return clock::rowTop(height, row, isStrip ? clock::kStripRowsPerPicture : clock::kRowsPerPicture);
}

void drawBody(RawPicture& picture, int phase, const Options& options) {
  const int bottom = clockTop(picture.height(), 0, options);
  if (options.picture == Picture::Person) return drawPerson(picture, bottom);
  const int width = picture.width();
  picture.fill({0, 0, width / 2, bottom}, kRed);
  picture.fill({width / 2, 0, width, bottom}, kBlue);
  picture.fill({0, 0, width / 8, bottom * 3 / 10}, kGreen);
  const int bar = width / 40;
  const int left = width / 8 + (width * 3 / 4 - bar) * phase / kPhases;
  picture.fill({left, 0, left + bar, bottom}, kWhite);
  if (options.picture == Picture::Rich) picture.roughen(bottom, kRoughness);
}

void drawClockRow(RawPicture& picture, int top, int bottom, std::uint32_t value) {
  const std::uint64_t cells = clock::encode(value);
  for (int cell = 0; cell < clock::kCells; ++cell) {
    const bool isLight = (cells >> (clock::kCells - 1 - cell) & 1U) != 0;
    picture.fill(
        {cell * picture.width() / clock::kCells, top, (cell + 1) * picture.width() / clock::kCells, bottom},
        isLight ? kWhite : kBlack);
  }
}

class RawSource : public PictureSource {
 public:
  RawSource(const Offer& offer, const Options& options)
      : options_(options), black_(*offer.raw, offer.width, offer.height, options.transform) {
    black_.fill({0, 0, black_.width(), black_.height()}, kBlack);
    for (int phase = 0; phase < kPhases; ++phase) {
      phases_.emplace_back(*offer.raw, offer.width, offer.height, options.transform);
      drawBody(phases_.back(), phase, options);
    }
  }

  std::size_t maximumBytes() const override { return black_.bytes().size(); }
  int stride() const override { return black_.stride(); }

  std::size_t write(std::uint32_t counter, std::uint32_t milliseconds, Look look,
                    std::span<std::uint8_t> target) override {
    RawPicture& picture = look == Look::Black ? black_ : phases_[counter % kPhases];
    if (look != Look::Black) {
      const int height = picture.height();
      const int second = clockTop(height, 1, options_);
      drawClockRow(picture, clockTop(height, 0, options_), second, counter);
      drawClockRow(picture, second, height, milliseconds);
    }
    const auto bytes = picture.bytes();
    if (bytes.size() > target.size()) return 0;
    std::copy(bytes.begin(), bytes.end(), target.begin());
    return look == Look::Garbage ? bytes.size() / 3 : bytes.size();
  }

 private:
  Options options_;
  RawPicture black_;
  std::vector<RawPicture> phases_;
};

class JpegSource : public PictureSource {
 public:
  JpegSource(const Offer& offer, const Options& options)
      : width_(offer.width),
        height_(offer.height),
        quality_(options.quality),
        isContinuous_(options.isContinuous),
        firstClockLine_(clockTop(height_, 0, options)),
        secondClockLine_(clockTop(height_, 1, options)),
        clockRow_(PixelFormat::I422Full, width_, kBlock) {
    RawPicture picture(PixelFormat::I422Full, width_, height_);
    for (int phase = 0; phase < kPhases; ++phase) {
      drawBody(picture, phase, options);
      phases_.push_back(encode(picture));
    }
    picture.fill({0, 0, width_, height_}, kBlack);
    black_ = encode(picture);
  }

  std::size_t maximumBytes() const override { return std::size_t(width_) * height_ * 2; }
  int stride() const override { return 0; }

  std::size_t write(std::uint32_t counter, std::uint32_t milliseconds, Look look,
                    std::span<std::uint8_t> target) override {
    Bytes file = look == Look::Black ? blackFile() : clockedFile(counter, milliseconds);
    if (isContinuous_) file = withoutRestarts(file);
    if (look == Look::Garbage) spoil(file, counter);
    if (file.size() > target.size()) return 0;
    std::copy(file.begin(), file.end(), target.begin());
    return file.size();
  }

 private:
  JpegPieces encode(RawPicture& picture) const {
    if (isContinuous_) picture.fill({width_ - kJpegUnit, 0, width_, picture.height()}, kNeutral);
    return JpegPieces::encode(picture, quality_);
  }

  Bytes blackFile() const {
    return black_.join(height_ / kBlock, [&](int row) -> const Bytes& { return black_.pieces[row]; });
  }

  Bytes clockedFile(std::uint32_t counter, std::uint32_t milliseconds) {
    const JpegPieces& body = phases_[counter % kPhases];
    const Bytes first = clockPiece(counter);
    const Bytes second = clockPiece(milliseconds);
    const int firstRow = firstClockLine_ / kBlock;
    const int secondRow = secondClockLine_ / kBlock;
    return body.join(height_ / kBlock, [&](int row) -> const Bytes& {
      if (row < firstRow) return body.pieces[row];
      return row < secondRow ? first : second;
    });
  }

  Bytes clockPiece(std::uint32_t value) {
    drawClockRow(clockRow_, 0, kBlock, value);
    return encode(clockRow_).pieces.front();
  }

  /// By turns: cut short, no JPEG at all, the right frame around wrong data, empty.
  static void spoil(Bytes& file, std::uint32_t counter) {
    switch (counter % 4) {
      case 0:
        file.resize(file.size() / 3);
        break;
      case 1:
        std::fill(file.begin(), file.end(), std::uint8_t{0x5a});
        break;
      case 2:
        std::fill(file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2), file.end(),
                  std::uint8_t{0xff});
        break;
      default:
        file.clear();
        break;
    }
  }

  int width_;
  int height_;
  int quality_;
  bool isContinuous_;
  int firstClockLine_;
  int secondClockLine_;
  RawPicture clockRow_;
  std::vector<JpegPieces> phases_;
  JpegPieces black_;
};

}  // namespace

std::unique_ptr<PictureSource> PictureSource::create(const Offer& offer, const Options& options) {
  if (offer.raw) return std::make_unique<RawSource>(offer, options);
  return std::make_unique<JpegSource>(offer, options);
}

}  // namespace vistrel::stage
