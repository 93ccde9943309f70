#include "linux/camera/VideoMode.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace vistrel::camera {
namespace {

constexpr FrameRate kWanted{30, 1};
constexpr double kFluent = 24;
// 30000/1001 is what half of the world means by 30, and 24000/1001 by 24.
constexpr double kTolerance = 0.05;
constexpr PixelSize kLargestByDefault{1920, 1080};

bool isAbout30(FrameRate rate) { return std::abs(rate.perSecond() - kWanted.perSecond()) <= kTolerance; }

bool isSlower(FrameRate a, FrameRate b) { return a.perSecond() < b.perSecond(); }

FrameRate bestOfRange(FrameRate a, FrameRate b) {
  const auto [low, high] = std::minmax(a, b, isSlower);
  const bool contains30 = low.perSecond() <= 30 + kTolerance && high.perSecond() >= 30 - kTolerance;
  return contains30 ? kWanted : high;
}

std::optional<FrameRate> bestRate(const VideoMode& mode) {
  if (mode.rates.empty()) return std::nullopt;
  if (mode.isRateRange && mode.rates.size() >= 2) return bestOfRange(mode.rates[0], mode.rates[1]);
  const auto thirty = std::find_if(mode.rates.begin(), mode.rates.end(), isAbout30);
  return thirty != mode.rates.end() ? *thirty
                                    : *std::max_element(mode.rates.begin(), mode.rates.end(), isSlower);
}

// A driver that does not name its rates is taken at its word for the usual one.
double rateOf(const ModeChoice& choice) { return choice.rate.value_or(kWanted).perSecond(); }

bool isFluent(const ModeChoice& choice) { return rateOf(choice) >= kFluent - kTolerance; }

auto rank(const ModeChoice& choice) {
  const bool isThirty = isAbout30(choice.rate.value_or(kWanted));
  // Rates a hair apart are equal, so that 29.97 raw is not beaten by 30 compressed.
  return std::tuple(isThirty, isThirty ? 0 : std::lround(rateOf(choice) * 10),
                    -static_cast<int>(choice.format));
}

std::int64_t area(PixelSize size) { return static_cast<std::int64_t>(size.width) * size.height; }

auto defaultRank(const ModeChoice& choice) {
  const bool isWithin =
      choice.size.width <= kLargestByDefault.width && choice.size.height <= kLargestByDefault.height;
  const bool isGood = isWithin && isFluent(choice);
  const double rate = isGood ? 0 : rateOf(choice);
  return std::tuple(isGood, rate, area(choice.size));
}

bool divides(int offset, int step) { return step <= 1 || offset % step == 0; }

}  // namespace

bool VideoMode::reaches(PixelSize size) const {
  return size.width >= smallest.width && size.width <= largest.width && size.height >= smallest.height &&
         size.height <= largest.height && divides(size.width - smallest.width, step.width) &&
         divides(size.height - smallest.height, step.height);
}

PixelSize VideoMode::largestWithin(PixelSize limit) const {
  const auto fit = [](int least, int most, int by, int end) {
    return least + (std::clamp(end, least, most) - least) / std::max(by, 1) * std::max(by, 1);
  };
  return {fit(smallest.width, largest.width, step.width, limit.width),
          fit(smallest.height, largest.height, step.height, limit.height)};
}

bool VideoMode::limitToPossible() {
  largest = {std::min(largest.width, kLongestSide), std::min(largest.height, kLongestSide)};
  return smallest.width >= 0 && smallest.height >= 0 && largest.width > 0 && largest.height > 0 &&
         smallest.width <= largest.width && smallest.height <= largest.height;
}

void VideoMode::limitTo(PixelSize source) {
  if (source.width >= smallest.width && source.height >= smallest.height) largest = largestWithin(source);
}

bool supportsSize(std::span<const VideoMode> modes, PixelSize size) {
  const auto choice = chooseMode(modes, size);
  return choice && isFluent(*choice);
}

std::optional<ModeChoice> chooseMode(std::span<const VideoMode> modes, PixelSize size) {
  std::optional<ModeChoice> best;
  for (const VideoMode& mode : modes) {
    if (!mode.reaches(size)) continue;
    const ModeChoice choice{mode.format, mode.nativeFormat, size, bestRate(mode)};
    if (!best || rank(choice) > rank(*best)) best = choice;
  }
  return best;
}

std::optional<ModeChoice> chooseMode(std::span<const VideoMode> modes) {
  std::optional<ModeChoice> best;
  for (const VideoMode& mode : modes) {
    const auto choice = chooseMode(modes, mode.largestWithin(kLargestByDefault));
    if (choice && (!best || defaultRank(*choice) > defaultRank(*best))) best = choice;
  }
  return best;
}

}  // namespace vistrel::camera
