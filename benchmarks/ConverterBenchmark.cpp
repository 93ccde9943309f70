// Scaling, converting and mirroring raw frames, in nanoseconds for each pixel of the glass, beside a plain
// copy of a finished glass as the floor.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "benchmarks/BenchFrames.h"
#include "linux/camera/PictureConverter.h"

namespace vistrel::bench {
namespace {

using camera::PixelFormat;

// The time of one pixel, and of one frame beside it.
void tell(benchmark::State& state, PixelSize glass) {
  const double pixels = static_cast<double>(glass.width) * glass.height;
  state.counters["s/pixel"] =
      benchmark::Counter(pixels, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void convert(benchmark::State& state, PixelFormat format, PixelSize source, PixelSize glass, bool isMirrored,
             Rect part = {0, 0, 1, 1}) {
  const auto frames = rawFrames(format, source);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(glass.width) * 4 * glass.height);
  const camera::GlassTarget target{pixels.data(), glass.width * 4, glass, isMirrored, part};
  camera::PictureConverter converter;
  std::size_t turn = 0;
  for ([[maybe_unused]] auto _ : state) {
    const camera::PlaneMemory memory{frames[turn++ % frames.size()], 0};
    converter.convert(*pictureIn({&memory, 1}, format, source, camera::YuvColor::Bt601Limited), target);
    benchmark::ClobberMemory();
  }
  tell(state, glass);
}

void copy(benchmark::State& state, PixelSize glass) {
  const auto frames = rawFrames(PixelFormat::Bgrx, glass);
  std::vector<std::uint8_t> pixels(frames[0].size());
  std::size_t turn = 0;
  for ([[maybe_unused]] auto _ : state) {
    std::memcpy(pixels.data(), frames[turn++ % frames.size()].data(), pixels.size());
    benchmark::ClobberMemory();
  }
  tell(state, glass);
}

std::string text(PixelSize size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

void registerConverter(const char* name, PixelFormat format, PixelSize source, PixelSize glass) {
  const std::string title = std::string(name) + "/" + text(source) + "/" + text(glass);
  for (const bool isMirrored : {true, false})
    benchmark::RegisterBenchmark(
        (title + (isMirrored ? "/mirrored" : "/as_is")).c_str(),
        [=](benchmark::State& state) { convert(state, format, source, glass, isMirrored); })
        ->Unit(benchmark::kMicrosecond);
}

const bool kRegistered = [] {
  struct {
    const char* name;
    PixelFormat format;
  } const formats[] = {{"YUY2", PixelFormat::Yuy2}, {"UYVY", PixelFormat::Uyvy}, {"NV12", PixelFormat::Nv12},
                       {"I420", PixelFormat::I420}, {"BGRX", PixelFormat::Bgrx}, {"RGBX", PixelFormat::Rgbx},
                       {"RGB", PixelFormat::Rgb24}, {"BGR", PixelFormat::Bgr24}};
  for (const PixelSize source : {kSources[0], kSources[1]})  // of 4:3 and of 16:9
    for (const PixelSize wide : kGlasses) {
      const PixelSize glass = glassFor(source, wide);
      benchmark::RegisterBenchmark(("copy/" + text(glass)).c_str(), [=](benchmark::State& s) {
        copy(s, glass);
      })->Unit(benchmark::kMicrosecond);
    }
  for (const auto& format : formats)
    for (const PixelSize source : kSources)
      for (const PixelSize glass : kGlasses)
        registerConverter(format.name, format.format, source, glassFor(source, glass));
  benchmark::RegisterBenchmark("YUY2/3840x2160/426x240/mirrored/magnified", [](benchmark::State& s) {
    convert(s, PixelFormat::Yuy2, kSources[3], kGlasses[0], true, kMagnifiedPart);
  })->Unit(benchmark::kMicrosecond);
  return true;
}();

}  // namespace
}  // namespace vistrel::bench
