#include "stage/screen/PictureWatch.h"

#include <algorithm>
#include <thread>

namespace vistrel::stage {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenLooks{2};
constexpr std::chrono::milliseconds kBetweenSearches{20};

std::uint32_t millisecondsNow() {
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count());
}

std::optional<Rectangle> search(const Screen& screen, Clock::time_point deadline) {
  for (;;) {
    if (const auto place = findPicture(screen.capture(screen.whole()))) return place;
    if (Clock::now() >= deadline) return std::nullopt;
    std::this_thread::sleep_for(kBetweenSearches);
  }
}

/// The clock alone: a sixth of the picture is all that each look has to fetch.
std::optional<clock::Reading> look(const Screen& screen, Rectangle place) {
  const int top = clock::rowTop(place.height, 0);
  const Image strip = screen.capture({place.x, place.y + top, place.width, place.height - top});
  if (strip.width != place.width || strip.height != place.height - top) return std::nullopt;
  return clock::read(place.width, place.height, [&](int x, int y) { return strip.isLight(x, y - top); });
}

void take(Sighting& sighting, std::optional<clock::Reading>& last, const clock::Reading& reading) {
  if (!last) last = reading;  // it may have been there for long: it tells nothing
  if (last->counter == reading.counter) return;
  sighting.skipped += std::max(0, clock::difference(reading.counter, last->counter) - 1);
  sighting.isMirrored = reading.isMirrored;
  sighting.ages.push_back(clock::difference(millisecondsNow(), reading.milliseconds));
  ++sighting.frames;
  last = reading;
}

}  // namespace

int Sighting::age(int percent) const {
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
  const auto begin = millisecondsNow();
  const auto deadline = Clock::now() + patience;
  while (Clock::now() < deadline) {
    const auto reading = look(screen, place);
    const auto now = Clock::now();
    if (reading && clock::difference(reading->milliseconds, begin) >= 0)
      return std::chrono::duration<double>(now.time_since_epoch()).count();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return std::nullopt;
}

}  // namespace vistrel::stage
