// What no viewer can go below: takes a camera's frames from PipeWire and does nothing with them, or decodes
// JPEG at one eighth and keeps nothing.
//   vistrel_stream_floor NODE SECONDS     for so long from the first frame on; prints one JSON object, with
//                                         times in milliseconds
#include <spa/buffer/meta.h>
#include <spa/param/video/format-utils.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include <pipewire/pipewire.h>

#include "benchmarks/BareDecoder.h"

namespace {

constexpr double kNanoseconds = 1e9;
constexpr double kMilliseconds = 1e3;
constexpr double kPatience = 15;  // seconds for the first frame

double clockNow(clockid_t clock) {
  timespec t{};
  clock_gettime(clock, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / kNanoseconds;
}

struct Reader {
  pw_main_loop* loop = nullptr;
  pw_stream* stream = nullptr;
  vistrel::bench::BareDecoder decoder;
  spa_source* end = nullptr;
  double length = 0;
  double start = 0;
  double firstFrame = 0;
  double decoding = 0;
  std::size_t bytes = 0;
  std::vector<double> ages;
};

void endIn(Reader& reader, double seconds) {
  timespec time{};
  time.tv_sec = static_cast<decltype(time.tv_sec)>(seconds);
  time.tv_nsec = static_cast<decltype(time.tv_nsec)>(std::fmod(seconds, 1) * kNanoseconds);
  pw_loop_update_timer(pw_main_loop_get_loop(reader.loop), reader.end, &time, nullptr, false);
}

void take(Reader& reader, const spa_buffer& buffer) {
  const auto* header = static_cast<const spa_meta_header*>(
      spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
  const double now = clockNow(CLOCK_MONOTONIC);
  if (reader.ages.empty()) {
    reader.firstFrame = now - reader.start;
    endIn(reader, reader.length);
  }
  reader.ages.push_back(header ? now - static_cast<double>(header->pts) / kNanoseconds : 0);
  const auto& data = buffer.datas[0];
  reader.bytes = data.chunk->size;
  const auto* bytes = static_cast<const unsigned char*>(data.data);
  if (!bytes || reader.bytes < 2 || bytes[0] != 0xff || bytes[1] != 0xd8) return;
  const double before = clockNow(CLOCK_THREAD_CPUTIME_ID);
  reader.decoder.decode(bytes, reader.bytes);
  reader.decoding += clockNow(CLOCK_THREAD_CPUTIME_ID) - before;
}

void process(void* data) {
  auto& reader = *static_cast<Reader*>(data);
  pw_buffer* newest = nullptr;
  while (auto* buffer = pw_stream_dequeue_buffer(reader.stream)) {
    if (newest) pw_stream_queue_buffer(reader.stream, newest);
    newest = buffer;
  }
  if (!newest) return;
  take(reader, *newest->buffer);
  pw_stream_queue_buffer(reader.stream, newest);
}

void formatChanged(void* data, std::uint32_t id, const spa_pod* format) {
  if (id != SPA_PARAM_Format || !format) return;
  std::array<std::uint8_t, 512> memory{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, memory.data(), memory.size());
  std::array offers{static_cast<const spa_pod*>(spa_pod_builder_add_object(
      &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type, SPA_POD_Id(SPA_META_Header),
      SPA_PARAM_META_size, SPA_POD_Int(sizeof(spa_meta_header))))};
  pw_stream_update_params(static_cast<Reader*>(data)->stream, offers.data(), offers.size());
}

// Once the loop has ended, frames would come on PipeWire's own thread: the stream has to end before.
void timeIsOver(void* data, std::uint64_t /*expirations*/) {
  auto& reader = *static_cast<Reader*>(data);
  pw_stream_disconnect(reader.stream);
  pw_main_loop_quit(reader.loop);
}

const spa_pod* anyFormat(spa_pod_builder& builder, std::uint32_t subtype) {
  return static_cast<const spa_pod*>(spa_pod_builder_add_object(
      &builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType,
      SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype, SPA_POD_Id(subtype)));
}

bool connect(Reader& reader, const char* node) {
  static const pw_stream_events events = [] {
    pw_stream_events e{};
    e.version = PW_VERSION_STREAM_EVENTS;
    e.param_changed = formatChanged;
    e.process = process;
    return e;
  }();
  auto* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY, "Capture",
                                       PW_KEY_TARGET_OBJECT, node, nullptr);
  reader.stream =
      pw_stream_new_simple(pw_main_loop_get_loop(reader.loop), "floor", properties, &events, &reader);
  std::array<std::uint8_t, 1024> memory{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, memory.data(), memory.size());
  std::array offers{anyFormat(builder, SPA_MEDIA_SUBTYPE_raw), anyFormat(builder, SPA_MEDIA_SUBTYPE_mjpg)};
  constexpr auto kFlags =
      static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS);
  return pw_stream_connect(reader.stream, PW_DIRECTION_INPUT, PW_ID_ANY, kFlags, offers.data(),
                           offers.size()) >= 0;
}

void tell(Reader& reader) {
  std::sort(reader.ages.begin(), reader.ages.end());
  const double age = reader.ages.empty() ? 0 : reader.ages[reader.ages.size() / 2];
  std::printf("{\"frames\": %zu, \"first\": %.3f, \"age\": %.3f, \"decoding\": %.4f, \"bytes\": %zu}\n",
              reader.ages.size(), reader.firstFrame * kMilliseconds, age * kMilliseconds,
              reader.decoding / std::max<double>(1, static_cast<double>(reader.ages.size())) * kMilliseconds,
              reader.bytes);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  pw_init(nullptr, nullptr);
  Reader reader;
  reader.loop = pw_main_loop_new(nullptr);
  reader.length = std::atof(argv[2]);
  reader.end = pw_loop_add_timer(pw_main_loop_get_loop(reader.loop), timeIsOver, &reader);
  endIn(reader, kPatience);
  reader.start = clockNow(CLOCK_MONOTONIC);
  if (!connect(reader, argv[1])) return 1;
  pw_main_loop_run(reader.loop);
  tell(reader);
  pw_stream_destroy(reader.stream);
  pw_main_loop_destroy(reader.loop);
  return reader.ages.empty() ? 1 : 0;
}
