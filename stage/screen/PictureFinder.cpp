#include "stage/screen/PictureFinder.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace vistrel::stage {
namespace {

enum class Hue { Other, Red, Green, Blue };

constexpr int kSaturation = 50;
constexpr int kWidestGap = 128;  // the white bar, up to a picture of 4K
constexpr int kNarrowest = 100;  // below that, cells of the clock are two pixels wide
constexpr int kRowStep = 8;

Hue hueAt(const Image& image, int x, int y) {
  const int red = image.red(x, y);
  const int green = image.green(x, y);
  const int blue = image.blue(x, y);
  if (red > std::max(green, blue) + kSaturation) return Hue::Red;
  if (green > std::max(red, blue) + kSaturation) return Hue::Green;
  if (blue > std::max(red, green) + kSaturation) return Hue::Blue;
  return Hue::Other;
}

struct Run {
  int start = 0, end = 0;
  bool hasRed = false, hasBlue = false;
  [[nodiscard]] int length() const { return end - start; }
};

/// The longest stretch of row `y` in the colors of the picture's body, across the bar, with both halves in
/// it.
Run bodyInRow(const Image& image, int y) {
  Run best;
  Run run;
  for (int x = 0; x < image.width; ++x) {
    const Hue hue = hueAt(image, x, y);
    if (hue == Hue::Other) continue;
    if (x - run.end > kWidestGap || run.length() == 0) run = {x, x, false, false};
    run.end = x + 1;
    run.hasRed = run.hasRed || hue == Hue::Red;
    run.hasBlue = run.hasBlue || hue == Hue::Blue;
    if (run.hasRed && run.hasBlue && run.length() > best.length()) best = run;
  }
  return best;
}

/// How far the body goes from row `y` in one direction, by the column that gets farthest (the bar and what
/// lies over the picture stop some of them).
int edgeFrom(const Image& image, const Run& run, int y, int step) {
  int farthest = y;
  for (const int eighth : {1, 3, 5, 7}) {
    const int x = run.start + run.length() * eighth / 8;
    int at = y;
    while (at + step >= 0 && at + step < image.height && hueAt(image, x, at + step) != Hue::Other) at += step;
    if (std::abs(at - y) > std::abs(farthest - y)) farthest = at;
  }
  return farthest;
}

/// Where the clock's first cell, which is always light, ends below; `guess` where there is no clear end.
int clockBottom(const Image& image, Rectangle guess, bool isMirrored) {
  constexpr int kDoubt = 6;
  const int inset = guess.width / (2 * clock::kCells);
  const int x = isMirrored ? guess.x + guess.width - 1 - inset : guess.x + inset;
  const int expected = guess.y + guess.height;
  int y = expected - guess.height / (2 * clock::kRowsPerPicture);
  while (y < image.height && y <= expected + kDoubt && image.isLight(x, y)) ++y;
  return std::abs(y - expected) > kDoubt ? expected : y;
}

/// The picture that begins at `top` and has about that height. The edges are a pixel soft.
std::optional<Rectangle> pictureAt(const Image& image, const Run& run, int top, int height) {
  for (const int taller : {0, 1, -1, 2, -2, 3, -3, 4, -4}) {
    for (const int inset : {0, 1, -1}) {
      const Rectangle place{run.start + inset, top, run.length() - 2 * inset, height + taller};
      const auto reading = readClock(image, place);
      if (!reading) continue;
      return Rectangle{place.x, top, place.width, clockBottom(image, place, reading->isMirrored) - top};
    }
  }
  return std::nullopt;
}

/// The picture whose body is given, above the clock; of one with a strip for a clock the lower part, in which
/// the strip is as high as the clock is elsewhere.
std::optional<Rectangle> wholePicture(const Image& image, const Run& run, int top, int bottom) {
  constexpr int kAll = clock::kRowsPerPicture;
  constexpr int kStrip = clock::kStripRowsPerPicture;
  const int body = bottom - top;
  if (const auto place = pictureAt(image, run, top, body * kAll / (kAll - clock::kRows))) return place;
  const int part = body * kAll / (kStrip - clock::kRows);
  return pictureAt(image, run, bottom - part * (kAll - clock::kRows) / kAll, part);
}

}  // namespace

std::optional<clock::Reading> readClock(const Image& image, Rectangle place) {
  if (place.x < 0 || place.y < 0 || place.x + place.width > image.width ||
      place.y + place.height > image.height)
    return std::nullopt;
  if (place.width < kNarrowest) return std::nullopt;
  return clock::read(place.width, place.height,
                     [&](int x, int y) { return image.isLight(place.x + x, place.y + y); });
}

std::optional<Rectangle> findPicture(const Image& image) {
  for (int y = kRowStep; y < image.height; y += kRowStep) {
    const Run run = bodyInRow(image, y);
    if (run.length() < kNarrowest) continue;
    const int top = edgeFrom(image, run, y, -1);
    const int bottom = edgeFrom(image, run, y, 1) + 1;
    // Half-way down no corner is rounded and no green block covers the bar's edge.
    const Run middle = bodyInRow(image, (top + bottom) / 2);
    if (const auto place = wholePicture(image, middle, top, bottom)) return place;
  }
  return std::nullopt;
}

bool isUpright(const Image& image, Rectangle place, bool isMirrored) {
  const int inset = place.width / 16;
  const int x = isMirrored ? place.x + place.width - 1 - inset : place.x + inset;
  return hueAt(image, x, place.y + place.height / 6) == Hue::Green;
}

double softness(const Image& image, Rectangle place) {
  constexpr int kDark = 48;
  constexpr int kBright = 207;
  const int y = place.y + (clock::rowTop(place.height, 0) + clock::rowTop(place.height, 1)) / 2;
  int between = 0;
  int borders = 0;
  bool wasLight = image.isLight(place.x, y);
  for (int x = place.x + 1; x < place.x + place.width - 1; ++x) {
    if (image.isLight(x, y) != wasLight) ++borders;
    wasLight = image.isLight(x, y);
    if (image.green(x, y) > kDark && image.green(x, y) < kBright) ++between;
  }
  return borders == 0 ? 0 : static_cast<double>(between) / borders;
}

}  // namespace vistrel::stage
