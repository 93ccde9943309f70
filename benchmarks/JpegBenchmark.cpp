// Decoding MJPEG for a glass, beside the library's own decoding of the same frame at the same scale, and at
// one eighth with nothing kept of it.
#include <benchmark/benchmark.h>

#include <string>

#include "benchmarks/BareDecoder.h"
#include "benchmarks/BenchFrames.h"
#include "linux/camera/FrameDecoder.h"
#include "linux/camera/PictureConverter.h"

namespace vistrel::bench {
namespace {

void floorOf(benchmark::State& state, PixelSize source, Scene scene) {
  const auto jpeg = jpegFrame(source, scene);
  BareDecoder decoder;
  for ([[maybe_unused]] auto _ : state) decoder.decode(jpeg.data(), jpeg.size());
  state.counters["bytes"] = static_cast<double>(jpeg.size());
}

template <class Decoder>
void decode(benchmark::State& state, PixelSize source, PixelSize glass, Scene scene) {
  const auto jpeg = jpegFrame(source, scene);
  Decoder decoder;
  camera::OwnedPicture picture;
  for ([[maybe_unused]] auto _ : state)
    if (!decoder.decode(jpeg, glass, picture)) state.SkipWithError("the frame was not decoded");
  state.counters["bytes"] = static_cast<double>(jpeg.size());
}

PixelSize magnified(PixelSize glass) { return {glass.width * kMagnification, glass.height * kMagnification}; }

void paint(benchmark::State& state, PixelSize source, PixelSize glass, Scene scene,
           bool isMagnified = false) {
  const auto jpeg = jpegFrame(source, scene);
  camera::FrameDecoder decoder;
  camera::OwnedPicture picture;
  if (!decoder.decode(jpeg, isMagnified ? magnified(glass) : glass, picture))
    return state.SkipWithError("the frame was not decoded");
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(glass.width) * 4 * glass.height);
  camera::PictureConverter converter;
  for ([[maybe_unused]] auto _ : state) {
    converter.convert(picture.picture, {pixels.data(), glass.width * 4, glass, true,
                                        isMagnified ? kMagnifiedPart : Rect{0, 0, 1, 1}});
    benchmark::ClobberMemory();
  }
}

template <class Body>
void add(const std::string& name, Body body) {
  benchmark::RegisterBenchmark(name.c_str(), body)->Unit(benchmark::kMicrosecond);
}

const bool kRegistered = [] {
  for (const Scene scene : {Scene::Plain, Scene::Rich})
    for (const PixelSize source : kSources) {
      const std::string frame = (scene == Scene::Rich ? "rich/" : "plain/") + std::to_string(source.height);
      add("jpeg_floor/" + frame, [=](benchmark::State& s) { floorOf(s, source, scene); });
      for (const PixelSize wide : kGlasses) {
        const PixelSize glass = glassFor(source, wide);
        const std::string name = frame + "/" + std::to_string(glass.height);
        add("jpeg_library/" + name,
            [=](benchmark::State& s) { decode<camera::JpegDecoder>(s, source, glass, scene); });
        add("jpeg_decode/" + name,
            [=](benchmark::State& s) { decode<camera::FrameDecoder>(s, source, glass, scene); });
        if (scene == Scene::Plain)
          add("jpeg_paint/" + name, [=](benchmark::State& s) { paint(s, source, glass, scene); });
      }
    }
  const PixelSize largest = kSources[3];
  for (const Scene scene : {Scene::Plain, Scene::Rich})
    add(std::string("jpeg_decode/") + (scene == Scene::Rich ? "rich" : "plain") + "/2160/240/magnified",
        [=](benchmark::State& s) {
          decode<camera::FrameDecoder>(s, largest, magnified(kGlasses[0]), scene);
        });
  add("jpeg_paint/plain/2160/240/magnified",
      [=](benchmark::State& s) { paint(s, largest, kGlasses[0], Scene::Plain, true); });
  return true;
}();

}  // namespace
}  // namespace vistrel::bench
