#include "benchmarks/BenchFrames.h"

#include <algorithm>
#include <array>
#include <random>

#include "linux/camera/Picture.h"
#include "tests/unit/linux/camera/JpegEncoder.h"

namespace vistrel::bench {
namespace {

constexpr int kFrames = 6;
constexpr std::size_t kNoise = 65521;  // of which a row is no multiple
constexpr int kPlainQuality = 80;
constexpr int kRichQuality = 75;
constexpr unsigned kGrain = 12;

void fillRow(std::vector<std::uint8_t>& row, PixelSize size, int y, Scene scene, std::minstd_rand& random) {
  for (int x = 0; x < size.width; ++x) {
    const int grain =
        scene == Scene::Rich ? static_cast<int>(random() % (2UL * kGrain)) - static_cast<int>(kGrain) : 0;
    const int edge = scene == Scene::Rich && (x / 9 + y / 7) % 3 == 0 ? 60 : 0;
    const int luma = 40 + x * 120 / size.width + y * 30 / size.height + edge + grain;
    row[3 * static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(std::clamp(luma, 0, 255));
    row[3 * static_cast<std::size_t>(x) + 1] = static_cast<std::uint8_t>(90 + x * 60 / size.width);
    row[3 * static_cast<std::size_t>(x) + 2] =
        static_cast<std::uint8_t>(100 + y * 60 / size.height + grain / 2);
  }
}

}  // namespace

PixelSize glassFor(PixelSize source, PixelSize glass) {
  return source.width * 3 == source.height * 4 ? PixelSize{glass.height * 4 / 3, glass.height} : glass;
}

std::vector<std::vector<std::uint8_t>> rawFrames(camera::PixelFormat format, PixelSize size) {
  std::minstd_rand random(1);
  std::vector<std::vector<std::uint8_t>> frames(kFrames,
                                                std::vector<std::uint8_t>(camera::rawBytes(format, size)));
  std::array<std::uint8_t, kNoise> noise{};
  for (auto& byte : noise) byte = static_cast<std::uint8_t>(random() >> 8);
  for (auto& frame : frames)
    for (std::size_t at = 0; at < frame.size(); at += kNoise)
      std::copy_n(noise.begin(), std::min(kNoise, frame.size() - at),
                  frame.begin() + static_cast<std::ptrdiff_t>(at));
  return frames;
}

std::vector<std::uint8_t> jpegFrame(PixelSize size, Scene scene) {
  std::minstd_rand random(1);
  const int quality = scene == Scene::Rich ? kRichQuality : kPlainQuality;
  return camera::encodeJpeg({.size = size, .quality = quality}, [&](int y, std::vector<std::uint8_t>& row) {
    fillRow(row, size, y, scene, random);
  });
}

}  // namespace vistrel::bench
