#include "stage/screen/PictureWatch.h"

#include <algorithm>
#include <array>
#include <thread>

namespace vistrel::stage {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenLooks{1};
constexpr std::chrono::milliseconds kBetweenSearches{20};

using Milliseconds = std::chrono::duration<double, std::milli>;

std::uint32_t wholeMilliseconds(Clock::time_point time) {
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count());
}

/// The clock tells whole milliseconds; in the mean a picture was taken half of one later.
double ageOf(const clock::Reading& reading) {
  constexpr double kHalf = 0.5;
  const auto now = Clock::now();
  const Milliseconds fraction =
      now.time_since_epoch() - std::chrono::floor<std::chrono::milliseconds>(now.time_since_epoch());
  return clock::difference(wholeMilliseconds(now), reading.milliseconds) + fraction.count() - kHalf;
}

std::optional<Rectangle> search(const Screen& screen, Clock::time_point deadline) {
  for (;;) {
    if (const auto place = findPicture(screen.capture(screen.whole()))) return place;
    if (Clock::now() >= deadline) return std::nullopt;
    std::this_thread::sleep_for(kBetweenSearches);
  }
}

/// One line of each row of the clock is all that a look has to fetch. The counter comes first: when the next
/// picture comes between the two, it is the counter of a picture that was seen already.
std::optional<clock::Reading> look(const Screen& screen, Rectangle place) {
  std::array<Image, clock::kRows> lines;
  for (int row = 0; row < clock::kRows; ++row) {
    const int middle = (clock::rowTop(place.height, row) + clock::rowTop(place.height, row + 1)) / 2;
    lines[row] = screen.capture({place.x, place.y + middle, place.width, 1});
    if (lines[row].width != place.width || lines[row].height != 1) return std::nullopt;
  }
  const int second = clock::rowTop(place.height, 1);
  return clock::read(place.width, place.height,
                     [&](int x, int y) { return lines[y < second ? 0 : 1].isLight(x, 0); });
}

void take(Sighting& sighting, std::optional<clock::Reading>& last, const clock::Reading& reading) {
  if (!last) last = reading;  // it may have been there for long: it tells nothing
  if (last->counter == reading.counter) return;
  sighting.skipped += std::max(0, clock::difference(reading.counter, last->counter) - 1);
  sighting.isMirrored = reading.isMirrored;
  sighting.ages.push_back(ageOf(reading));
  ++sighting.frames;
  last = reading;
}

}  // namespace

double Sighting::age(int percent) const {
  if (ages.empty()) return -1;
  return ages[std::min(ages.size() - 1, ages.size() * percent / 100)];
}

std::optional<Sighting> watchPicture(const Screen& screen, std::optional<Rectangle> place, int frames,
                                     std::chrono::milliseconds patience) {
  const auto deadline = Clock::now() + patience;
  if (!place) place = search(screen, deadline);
  if (!place) return std::nullopt;
  Sighting sighting;
  sighting.place = *place;
  std::optional<clock::Reading> last;
  Clock::time_point first;
  Clock::time_point latest;
  while (Clock::now() < deadline && (frames == 0 || sighting.frames < frames)) {
    const auto reading = look(screen, *place);
    const int before = sighting.frames;
    reading ? take(sighting, last, *reading) : void(++sighting.unreadable);
    if (sighting.frames != before) latest = Clock::now();
    if (before == 0) first = latest;
    std::this_thread::sleep_for(kBetweenLooks);
  }
  sighting.seconds = std::chrono::duration<double>(latest - first).count();
  const Image image = screen.capture(screen.whole());
  sighting.isUpright = isUpright(image, *place, sighting.isMirrored);
  sighting.softness = softness(image, *place);
  std::sort(sighting.ages.begin(), sighting.ages.end());
  return sighting;
}

std::optional<double> awaitPicture(const Screen& screen, Rectangle place,
                                   std::chrono::milliseconds patience) {
  const auto begin = wholeMilliseconds(Clock::now());
  const auto deadline = Clock::now() + patience;
  while (Clock::now() < deadline) {
    const auto reading = look(screen, place);
    const auto now = Clock::now();
    if (reading && clock::difference(reading->milliseconds, begin) >= 0)
      return std::chrono::duration<double>(now.time_since_epoch()).count();
    std::this_thread::sleep_for(kBetweenLooks);
  }
  return std::nullopt;
}

}  // namespace vistrel::stage
