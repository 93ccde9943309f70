#include "stage/camera/TestCamera.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <utility>
#include <vector>

#include <spa/buffer/meta.h>
#include <spa/pod/builder.h>
#include <unistd.h>

#include "stage/camera/StreamParameters.h"

namespace vistrel::stage {
namespace {

constexpr int kNanosecondsPerMillisecond = 1'000'000;
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr int kPulledCable = 9;
constexpr std::size_t kOfferBytes = 1 << 20;

std::int64_t now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

template <class... Arguments>
void say(const char* format, Arguments... arguments) {
  std::printf(format, arguments...);
  std::putchar('\n');
  std::fflush(stdout);
}

void endLoop(void* loop, int /*signal*/) { pw_main_loop_quit(static_cast<pw_main_loop*>(loop)); }

}  // namespace

TestCamera::TestCamera(Options options) : options_(std::move(options)) {
  if (options_.memory) memory_.emplace(*options_.memory);
  mainLoop_ = pw_main_loop_new(nullptr);
  pw_loop_add_signal(loop(), SIGINT, endLoop, mainLoop_);
  pw_loop_add_signal(loop(), SIGTERM, endLoop, mainLoop_);
  timer_ = pw_loop_add_timer(loop(), timerFired, this);
  if (options_.isObeying)
    pw_loop_add_io(loop(), STDIN_FILENO, SPA_IO_IN | SPA_IO_HUP, false, inputReady, this);
  makeStream();
}

TestCamera::~TestCamera() {
  if (stream_ != nullptr) pw_stream_destroy(stream_);
  pw_main_loop_destroy(mainLoop_);
}

void TestCamera::makeStream() {
  static constexpr pw_stream_events kEvents = [] {
    pw_stream_events events{};
    events.version = PW_VERSION_STREAM_EVENTS;
    events.state_changed = stateChanged;
    events.param_changed = parameterChanged;
    events.add_buffer = bufferAdded;
    events.remove_buffer = bufferRemoved;
    events.process = frameWanted;
    return events;
  }();
  pw_properties* const properties =
      pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", PW_KEY_MEDIA_ROLE, "Camera", PW_KEY_NODE_NAME,
                        options_.nodeName.c_str(), PW_KEY_NODE_DESCRIPTION, options_.name.c_str(), nullptr);
  for (const auto& [key, value] : options_.properties)
    pw_properties_set(properties, key.c_str(), value.c_str());
  stream_ = pw_stream_new_simple(loop(), options_.nodeName.c_str(), properties, &kEvents, this);
}

void TestCamera::offerAnew() {
  std::vector<std::uint8_t> memory(kOfferBytes);
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, memory.data(), static_cast<std::uint32_t>(memory.size()));
  auto formats = describeFormats(builder, options_);
  pw_stream_update_params(stream_, formats.data(), static_cast<std::uint32_t>(formats.size()));
}

bool TestCamera::connect() {
  if (stream_ == nullptr) return false;
  std::vector<std::uint8_t> memory(kOfferBytes);
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, memory.data(), static_cast<std::uint32_t>(memory.size()));
  auto formats = describeFormats(builder, options_);
  const int buffers = memory_ ? PW_STREAM_FLAG_ALLOC_BUFFERS : PW_STREAM_FLAG_MAP_BUFFERS;
  const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | buffers);
  return pw_stream_connect(stream_, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, formats.data(), formats.size()) >=
         0;
}

int TestCamera::run() {
  if (!connect()) {
    say("ERROR no PipeWire");
    return 1;
  }
  pw_main_loop_run(mainLoop_);
  return 0;
}

void TestCamera::setTimer(bool isOn) {
  const std::int64_t period = kNanosecondsPerSecond * rate_.denom / std::max(1U, rate_.num);
  timespec first{0, isOn ? 1 : 0};
  timespec interval{isOn ? period / kNanosecondsPerSecond : 0, isOn ? period % kNanosecondsPerSecond : 0};
  pw_loop_update_timer(loop(), timer_, &first, &interval, false);
}

void TestCamera::stateChanged(void* self, pw_stream_state old, pw_stream_state state, const char* error) {
  auto& camera = *static_cast<TestCamera*>(self);
  say("STATE %s %s", pw_stream_state_as_string(state), error != nullptr ? error : "");
  if (state == PW_STREAM_STATE_PAUSED && old == PW_STREAM_STATE_CONNECTING)
    say("READY %u", pw_stream_get_node_id(camera.stream_));
  if (state == PW_STREAM_STATE_STREAMING) camera.blackLeft_ = camera.options_.blackFrames;
  camera.setTimer(state == PW_STREAM_STATE_STREAMING);
  if (state == PW_STREAM_STATE_UNCONNECTED) pw_main_loop_quit(camera.mainLoop_);
}

void TestCamera::parameterChanged(void* self, std::uint32_t id, const spa_pod* parameter) {
  if (id == SPA_PARAM_Format) static_cast<TestCamera*>(self)->useFormat(parameter);
}

void TestCamera::useFormat(const spa_pod* format) {
  if (format == nullptr) return say("FORMAT none");
  if (options_.manner == Manner::Refusing) {
    say("FORMAT refused");
    pw_stream_set_error(stream_, -EBUSY, "device busy");
    return;
  }
  const auto chosen = parseFormat(format);
  if (!chosen) return;
  const auto offer = std::find_if(options_.offers.begin(), options_.offers.end(),
                                  [&](auto& o) { return matches(o, *chosen); });
  if (offer == options_.offers.end()) return;
  if (chosen->rate.num != 0) rate_ = chosen->rate;
  if (source_ == nullptr || &*offer != drawn_) source_ = PictureSource::create(*offer, options_);
  drawn_ = &*offer;
  say("FORMAT %s %dx%d %u/%u", offer->formatName.c_str(), offer->width, offer->height, rate_.num,
      rate_.denom);
  announceBuffers();
}

void TestCamera::announceBuffers() {
  std::array<std::uint8_t, 1024> memory{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, memory.data(), memory.size());
  const int types = memory_ ? 1 << memory_->dataType() : (1 << SPA_DATA_MemFd) | (1 << SPA_DATA_MemPtr);
  auto parameters = describeBuffers(builder, *source_, types);
  pw_stream_update_params(stream_, parameters.data(), parameters.size());
}

Look TestCamera::nextLook() {
  if (isGarbage_) return Look::Garbage;
  if (blackLeft_ <= 0) return Look::Normal;
  --blackLeft_;
  return Look::Black;
}

void TestCamera::bufferAdded(void* self, pw_buffer* buffer) {
  auto& camera = *static_cast<TestCamera*>(self);
  if (!camera.memory_ || camera.source_ == nullptr) return;
  if (!camera.memory_->add(*buffer, camera.source_->maximumBytes())) say("ERROR no memory");
}

void TestCamera::bufferRemoved(void* self, pw_buffer* buffer) {
  auto& camera = *static_cast<TestCamera*>(self);
  if (camera.memory_) camera.memory_->remove(*buffer);
}

void TestCamera::frameWanted(void* self) {
  auto& camera = *static_cast<TestCamera*>(self);
  pw_buffer* const wrapped = pw_stream_dequeue_buffer(camera.stream_);
  if (wrapped == nullptr) return;  // the consumer holds them all; the counter shows the gap
  spa_data& data = wrapped->buffer->datas[0];
  if (data.data != nullptr && camera.source_ != nullptr) {
    const std::int64_t taken = now() - std::int64_t{camera.latency_} * kNanosecondsPerMillisecond;
    const std::size_t room = std::min<std::size_t>(data.maxsize, camera.source_->maximumBytes());
    const std::span<std::uint8_t> target(static_cast<std::uint8_t*>(data.data), room);
    data.chunk->offset = 0;
    const auto milliseconds = static_cast<std::uint32_t>(taken / kNanosecondsPerMillisecond);
    data.chunk->size = camera.source_->write(camera.isStill_ ? 0 : camera.counter_,
                                             camera.isStill_ ? 0 : milliseconds, camera.nextLook(), target);
    data.chunk->stride = camera.source_->stride();
    data.chunk->flags = 0;
    auto* const header = static_cast<spa_meta_header*>(
        spa_buffer_find_meta_data(wrapped->buffer, SPA_META_Header, sizeof(spa_meta_header)));
    if (header != nullptr) *header = {0, 0, taken, 0, camera.counter_};
    auto* const turn = static_cast<spa_meta_videotransform*>(
        spa_buffer_find_meta_data(wrapped->buffer, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)));
    if (turn != nullptr) turn->transform = static_cast<std::uint32_t>(camera.options_.transform);
    if (camera.options_.evil) spoil(*camera.options_.evil, *wrapped->buffer);
    if (camera.memory_) camera.memory_->wrote(*wrapped);
  }
  pw_stream_queue_buffer(camera.stream_, wrapped);
}

void TestCamera::timerFired(void* self, std::uint64_t /*expirations*/) {
  auto& camera = *static_cast<TestCamera*>(self);
  ++camera.counter_;
  const bool isTenth = camera.counter_ % 10 == 0;
  if (camera.options_.evil == Evil::Renegotiates && isTenth) camera.offerAnew();
  if (!camera.isStalled_ && camera.options_.manner != Manner::Silent)
    pw_stream_trigger_process(camera.stream_);
}

void TestCamera::inputReady(void* self, int descriptor, std::uint32_t /*mask*/) {
  auto& camera = *static_cast<TestCamera*>(self);
  std::array<char, 4096> bytes{};
  const ssize_t count = read(descriptor, bytes.data(), bytes.size());
  if (count <= 0) return pw_main_loop_quit(camera.mainLoop_), void();
  camera.input_.append(bytes.data(), static_cast<std::size_t>(count));
  for (std::size_t end = 0; (end = camera.input_.find('\n')) != std::string::npos;) {
    const std::string line = camera.input_.substr(0, end);
    camera.input_.erase(0, end + 1);
    camera.obey(line);
  }
}

void TestCamera::obey(const std::string& line) {
  const std::size_t blank = std::min(line.find(' '), line.size());
  const std::string argument = line.substr(std::min(blank + 1, line.size()));
  say(carryOut(line.substr(0, blank), argument) ? "OK %s" : "UNKNOWN %s", line.c_str());
}

bool TestCamera::carryOut(const std::string& command, const std::string& argument) {
  if (command == "stall") {
    isStalled_ = true;
  } else if (command == "resume") {
    isStalled_ = isGarbage_ = isStill_ = false;
  } else if (command == "garbage") {
    isGarbage_ = true;
  } else if (command == "still") {
    isStill_ = true;
  } else if (command == "black") {
    blackLeft_ = options_.blackFrames = std::atoi(argument.c_str());
  } else if (command == "slow") {
    latency_ = std::atoi(argument.c_str());
  } else if (command == "refuse") {
    options_.manner = Manner::Refusing;
  } else if (command == "accept") {
    options_.manner = Manner::Willing;
  } else if (command == "rename") {
    rename(argument);
  } else if (command == "error") {
    const int number = argument == "busy" ? EBUSY : argument == "denied" ? EACCES : EIO;
    pw_stream_set_error(stream_, -number, "%s", argument.c_str());
  } else if (command == "die") {
    _exit(kPulledCable);
  } else if (command == "quit") {
    pw_main_loop_quit(mainLoop_);
  } else {
    return false;
  }
  return true;
}

void TestCamera::rename(const std::string& name) {
  options_.name = name;
  const spa_dict_item item = SPA_DICT_ITEM_INIT(PW_KEY_NODE_DESCRIPTION, options_.name.c_str());
  const spa_dict change = SPA_DICT_INIT(&item, 1);
  pw_stream_update_properties(stream_, &change);
}

}  // namespace vistrel::stage
