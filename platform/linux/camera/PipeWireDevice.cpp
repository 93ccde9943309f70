#include "linux/camera/PipeWireDevice.h"

#include <linux/dma-buf.h>
#include <spa/buffer/meta.h>
#include <sys/ioctl.h>

#include <array>
#include <utility>

#include "base/Program.h"
#include "linux/camera/CameraError.h"
#include "linux/camera/DeviceLocation.h"

namespace vistrel::camera {
namespace {

bool isDamaged(const spa_buffer& buffer) {
  const auto* header = static_cast<const spa_meta_header*>(
      spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
  return (header && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED)) || buffer.n_datas == 0 ||
         !buffer.datas[0].chunk || (buffer.datas[0].chunk->flags & SPA_CHUNK_FLAG_CORRUPTED);
}

// Memory of another device has to be made visible to the processor, and given up again.
void syncMemory(const spa_buffer& buffer, std::uint64_t moment) {
  for (std::uint32_t i = 0; i < buffer.n_datas; ++i) {
    if (buffer.datas[i].type != SPA_DATA_DmaBuf) continue;
    dma_buf_sync sync{};
    sync.flags = moment | DMA_BUF_SYNC_READ;
    ::ioctl(static_cast<int>(buffer.datas[i].fd), DMA_BUF_IOCTL_SYNC, &sync);
  }
}

pw_properties* streamProperties(const std::string& target) {
  return pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE,
                           "Camera", PW_KEY_TARGET_OBJECT, target.c_str(), nullptr);
}

std::string targetOf(const PipeWireNode& node) {
  const auto* serial = node.property(PW_KEY_OBJECT_SERIAL);
  return serial ? *serial : std::to_string(node.globalId());
}

}  // namespace

PipeWireDevice::PipeWireDevice(std::shared_ptr<PipeWireGraph> graph, const PipeWireNode& node,
                               std::optional<PixelSize> source, std::chrono::milliseconds waited)
    : graph_(std::move(graph)),
      nodeId_(node.globalId()),
      target_(targetOf(node)),
      modes_(node.modes()),
      waited_(waited) {
  for (VideoMode& mode : modes_)
    if (source) mode.limitTo(*source);
  graph_->loop().add(*this);
}

PipeWireDevice::~PipeWireDevice() {
  closeStream();
  graph_->loop().remove(*this);
}

void PipeWireDevice::begin(const ModeChoice& mode, CaptureClient& client) {
  stop();
  client_ = &client;
  // The request leaves with the next turn of the loop.
  if (openStream(mode)) waitForStream({});
}

void PipeWireDevice::waitForStream(std::chrono::milliseconds patience) {
  const auto isOver = [this] { return failure_ || state_ == PW_STREAM_STATE_STREAMING; };
  graph_->loop().waitUntil(isOver, patience);
}

// A daemon that hangs was waited for before.
backend::StreamStart PipeWireDevice::awaitStart(std::chrono::milliseconds patience) {
  const std::chrono::milliseconds none{0};
  const auto left = std::max(none, patience - std::exchange(waited_, none));
  if (!failure_) waitForStream(graph_->hangs() ? none : left);
  if (failure_) return backend::StreamStart::Failed;
  const bool isRunning = state_ == PW_STREAM_STATE_STREAMING;
  isStartUntold_ = !isRunning;
  return isRunning ? backend::StreamStart::Running : backend::StreamStart::Pending;
}

void PipeWireDevice::stop() {
  closeStream();
  client_ = nullptr;
  failure_.reset();
  isFrameUntold_ = isUnusableUntold_ = isStartUntold_ = false;
}

bool PipeWireDevice::openStream(const ModeChoice& mode) {
  static const pw_stream_events events = [] {
    pw_stream_events e{};
    e.version = PW_VERSION_STREAM_EVENTS;
    e.state_changed = onState;
    e.param_changed = onParam;
    e.add_buffer = onAddBuffer;
    e.remove_buffer = onRemoveBuffer;
    e.process = onProcess;
    return e;
  }();
  PipeWireNode* node = graph_->find(nodeId_);
  if (!graph_->isConnected() || !node) return fail(errorOf(CameraError::Gone)), false;
  node->keepAwake();
  errorsBefore_ = node->errorCount();
  stream_.reset(pw_stream_new(graph_->core(), program::kName, streamProperties(target_)));
  if (!stream_) return fail({"PipeWire made no stream for the camera."}), false;
  pw_stream_add_listener(stream_.get(), &listener_, &events, this);
  state_ = PW_STREAM_STATE_CONNECTING;
  std::array<std::uint8_t, 512> memory{};
  spa_pod_builder builder;
  spa_pod_builder_init(&builder, memory.data(), memory.size());
  std::array offers{offerOf(builder, mode)};
  const int direct = graph_->loop().carriesFrames() ? PW_STREAM_FLAG_RT_PROCESS : 0;
  const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                                  PW_STREAM_FLAG_DONT_RECONNECT | direct);
  const int result =
      pw_stream_connect(stream_.get(), PW_DIRECTION_INPUT, PW_ID_ANY, flags, offers.data(), offers.size());
  if (result >= 0) return true;
  fail(errorOfCall(-result));
  return false;
}

// A buffer still held when its stream goes would starve the camera at its next openings.
void PipeWireDevice::closeStream() {
  if (!stream_) return;
  letGo();
  agreed_.reset();
  buffers_.clear();
  spa_hook_remove(&listener_);
  const auto reader = pw_stream_get_node_id(stream_.get());
  stream_.reset();
  state_ = PW_STREAM_STATE_UNCONNECTED;
  stateError_.clear();
  graph_->readerLeft(nodeId_, reader);
}

void PipeWireDevice::fail(Error error) {
  closeStream();
  failure_ = std::move(error);
  graph_->loop().deliverLater();
}

void PipeWireDevice::onState(void* data, pw_stream_state, pw_stream_state state, const char* error) {
  auto& device = *static_cast<PipeWireDevice*>(data);
  device.state_ = state;
  if (error) device.stateError_ = error;
}

// The answer to a format is due inside this call.
void PipeWireDevice::onParam(void* data, std::uint32_t id, const spa_pod* param) {
  auto& device = *static_cast<PipeWireDevice*>(data);
  if (id != SPA_PARAM_Format) return;
  device.agreed_ = agreedFormat(param);
  if (!param) return;
  std::array<std::uint8_t, 512> memory{};
  spa_pod_builder builder;
  spa_pod_builder_init(&builder, memory.data(), memory.size());
  std::array offers{bufferOffer(builder), headerOffer(builder), transformOffer(builder)};
  pw_stream_update_params(device.stream_.get(), offers.data(), offers.size());
}

void PipeWireDevice::onAddBuffer(void* data, pw_buffer* buffer) {
  static_cast<PipeWireDevice*>(data)->buffers_.try_emplace(buffer, *buffer->buffer);
}

void PipeWireDevice::onRemoveBuffer(void* data, pw_buffer* buffer) {
  auto& device = *static_cast<PipeWireDevice*>(data);
  if (device.held_ == buffer) {
    device.held_ = nullptr;
    device.frame_.reset();
  }
  device.buffers_.erase(buffer);
}

void PipeWireDevice::onProcess(void* data) {
  auto& device = *static_cast<PipeWireDevice*>(data);
  while (auto* buffer = pw_stream_dequeue_buffer(device.stream_.get())) device.hold(buffer);
}

void PipeWireDevice::hold(pw_buffer* buffer) {
  const auto frame = frameIn(*buffer);
  isUnusableUntold_ = isUnusableUntold_ || !frame;
  if (!frame) {
    pw_stream_queue_buffer(stream_.get(), buffer);
    return;
  }
  letGo();
  syncMemory(*buffer->buffer, DMA_BUF_SYNC_START);
  held_ = buffer;
  frame_ = frame;
  orientation_ = orientationOf(*buffer->buffer);
  isFrameUntold_ = true;
}

void PipeWireDevice::letGo() {
  frame_.reset();
  if (!held_) return;
  syncMemory(*held_->buffer, DMA_BUF_SYNC_END);
  pw_stream_queue_buffer(stream_.get(), held_);
  held_ = nullptr;
}

std::optional<Frame> PipeWireDevice::frameIn(const pw_buffer& buffer) const {
  const auto found = buffers_.find(&buffer);
  if (!agreed_ || found == buffers_.end() || isDamaged(*buffer.buffer)) return std::nullopt;
  std::array<PlaneMemory, StreamBuffer::kMostBlocks> planes;
  const std::size_t count = found->second.blockCount();
  for (std::size_t i = 0; i < count; ++i) planes[i] = found->second.content(i);
  if (planes[0].bytes.empty()) return std::nullopt;
  if (agreed_->format == PixelFormat::Mjpeg) return planes[0].bytes;
  const auto picture = pictureIn({planes.data(), count}, agreed_->format, agreed_->size, agreed_->color);
  return picture ? std::optional<Frame>(*picture) : std::nullopt;
}

void PipeWireDevice::afterIteration() {
  if (!stream_) return;
  const PipeWireNode* node = graph_->find(nodeId_);
  const bool hasEnded = state_ == PW_STREAM_STATE_ERROR || state_ == PW_STREAM_STATE_UNCONNECTED;
  if (node && node->errorCount() != errorsBefore_)
    return fail(errorOfMessage(node->lastError(), groupOf(node->v4l2Path())));
  if (const auto* reason = graph_->linkError(pw_stream_get_node_id(stream_.get())))
    return fail(errorOfMessage(*reason, node ? groupOf(node->v4l2Path()) : std::string()));
  // A stream that ends without a word has lost its camera.
  if (hasEnded || !node) fail(stateError_.empty() ? errorOf(CameraError::Gone) : errorOfMessage(stateError_));
}

void PipeWireDevice::connectionLost() {
  if (stream_) fail({"The connection to PipeWire was lost."});
}

// The client may destroy this device in any of the calls, so each is the last thing that touches it.
void PipeWireDevice::deliver() {
  if (!client_) return;
  if (failure_) {
    const Error failure = *std::exchange(failure_, std::nullopt);
    return std::exchange(client_, nullptr)->captureFailed(failure);
  }
  if (isStartUntold_ && state_ == PW_STREAM_STATE_STREAMING) {
    isStartUntold_ = false;
    if (isFrameUntold_) graph_->loop().deliverLater();
    return client_->captureStarted();
  }
  if (std::exchange(isUnusableUntold_, false)) client_->unusableFrameArrived();
  if (std::exchange(isFrameUntold_, false)) client_->frameArrived();
}

}  // namespace vistrel::camera
