#include "simulated/SimulatedCameras.h"

#include <algorithm>
#include <utility>

#include "base/Log.h"

namespace vistrel::simulated {

std::vector<backend::CameraDevice> SimulatedCameras::devices() {
  std::vector<backend::CameraDevice> result;
  for (const auto& camera : cameras_) result.push_back(camera->device);
  return result;
}

Result<std::unique_ptr<backend::CameraStream>> SimulatedCameras::open(const std::string& id) {
  const auto hasId = [&](const auto& camera) { return camera->device.id == id; };
  const auto found = std::find_if(cameras_.begin(), cameras_.end(), hasId);
  if (found == cameras_.end()) return Error{"the camera is gone"};
  if (!(*found)->openError.empty()) return Error{(*found)->openError};
  return std::unique_ptr<backend::CameraStream>(std::make_unique<SimulatedStream>(*this, *found));
}

SimulatedCamera& SimulatedCameras::plug(const std::string& name) {
  auto camera = std::make_shared<SimulatedCamera>();
  camera->device.id = "camera" + std::to_string(nextId_++);
  camera->device.localizedName = name;
  return *cameras_.emplace_back(std::move(camera));
}

SimulatedCamera& SimulatedCameras::camera(const std::string& name) {
  for (const auto& camera : cameras_) {
    if (camera->device.localizedName == name) return *camera;
  }
  fatalError("there is no simulated camera named " + name);
}

void SimulatedCameras::unplug(const std::string& name) {
  const auto hasName = [&](const auto& camera) { return camera->device.localizedName == name; };
  const auto found = std::find_if(cameras_.begin(), cameras_.end(), hasName);
  if (found == cameras_.end()) return;
  const auto camera = *found;
  cameras_.erase(found);
  const auto streams = camera->streams;
  for (auto* stream : streams) stream->fail("the camera was unplugged");
}

std::size_t SimulatedCameras::openStreams() const {
  std::size_t count = 0;
  for (const auto& camera : cameras_) {
    for (const auto* stream : camera->streams) count += stream->isActive() ? 1 : 0;
  }
  return count;
}

SimulatedStream::SimulatedStream(SimulatedCameras& owner, std::shared_ptr<SimulatedCamera> camera)
    : owner_(owner), camera_(std::move(camera)), self_(std::make_shared<SimulatedStream*>(this)) {
  camera_->streams.push_back(this);
}

SimulatedStream::~SimulatedStream() {
  *self_ = nullptr;
  std::erase(camera_->streams, this);
}

bool SimulatedStream::supports(PixelSize size) const {
  return std::find(camera_->sizes.begin(), camera_->sizes.end(), size) != camera_->sizes.end();
}

void SimulatedStream::begin(std::optional<PixelSize> size, backend::CameraStreamClient& client) {
  client_ = &client;
  lastFrame_ = owner_.loop_.now();
  owner_.lastStart = size ? std::to_string(size->width) + "x" + std::to_string(size->height) : "own choice";
}

backend::StreamStart SimulatedStream::awaitStart(std::chrono::milliseconds /*patience*/) {
  switch (camera_->behavior) {
    case StartBehavior::Runs:
      hasPicture_ = true;
      return backend::StreamStart::Running;
    case StartBehavior::RefusesFormat:
      fail("the camera refused the format");
      return backend::StreamStart::Failed;
    case StartBehavior::HangsForEver:
    case StartBehavior::StartsLater:
      if (owner_.whileWaiting) owner_.whileWaiting();
      break;
  }
  return backend::StreamStart::Pending;
}

void SimulatedStream::stop() {
  client_ = nullptr;
  hasPicture_ = false;
}

void SimulatedStream::sendFrame() {
  lastFrame_ = owner_.loop_.now();
  hasPicture_ = hasSentPicture_ = true;
}

// Reports come from the loop, as a real camera's do, and reach nobody when the stream is gone by then.
void SimulatedStream::begin() {
  owner_.loop_.post([self = self_] {
    if (*self && (*self)->client_) (*self)->client_->streamDidStart();
  });
}

void SimulatedStream::fail(const std::string& reason) {
  owner_.loop_.post([self = self_, reason] {
    if (*self && (*self)->client_) std::exchange((*self)->client_, nullptr)->streamDidFail({reason});
  });
}

}  // namespace vistrel::simulated
