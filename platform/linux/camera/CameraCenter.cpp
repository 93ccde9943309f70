#include "linux/camera/CameraCenter.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "linux/camera/CameraError.h"
#include "linux/camera/CaptureStream.h"
#include "linux/camera/DeviceLocation.h"
#include "linux/camera/PipeWireProvider.h"
#include "linux/camera/V4l2Provider.h"

namespace vistrel::camera {
namespace {

// A daemon's socket appears a moment before anybody listens on it.
constexpr int kAttempts = 10;
constexpr std::chrono::milliseconds kBetweenAttempts{50};

std::string environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody writes the environment
  return value ? value : "";
}

// Where the daemon's socket is, by the rules of its client library.
std::filesystem::path daemonSocket() {
  std::string name = environment("PIPEWIRE_REMOTE");
  if (name.empty()) name = "pipewire-0";
  for (const char* variable : {"PIPEWIRE_RUNTIME_DIR", "XDG_RUNTIME_DIR"})
    if (const std::string folder = environment(variable); !folder.empty())
      return std::filesystem::path(folder) / name;
  return std::filesystem::path("/run/pipewire") / name;
}

}  // namespace

bool isListedBefore(const CameraEntry& a, const CameraEntry& b) {
  if (a.device.isBuiltIn != b.device.isBuiltIn) return a.device.isBuiltIn;
  if (a.path != b.path) return isPathBefore(a.path, b.path);
  return isPathBefore(a.device.id, b.device.id);
}

CameraCenter::CameraCenter(desktop::Reactor& reactor)
    : reactor_(reactor), graph_(std::make_shared<PipeWireGraph>(reactor)) {
  graph_->setLostHandler([this] { connect(kAttempts); });
  connect(kAttempts);
}

CameraCenter::~CameraCenter() { graph_->setLostHandler(nullptr); }

std::vector<backend::CameraDevice> CameraCenter::devices() {
  auto entries = pipewire_ ? pipewire_->cameras() : std::vector<CameraEntry>();
  if (entries.empty())
    entries = v4l2().cameras();
  else
    v4l2_.reset();
  std::sort(entries.begin(), entries.end(), isListedBefore);
  const auto isBuiltIn = [](const CameraEntry& entry) { return entry.device.isBuiltIn; };
  const bool isLidClosed =
      isLidClosed_ && std::any_of(entries.begin(), entries.end(), isBuiltIn) && isLidClosed_();
  std::vector<backend::CameraDevice> devices;
  devices.reserve(entries.size());
  for (auto& entry : entries) entry.device.isSuspended = isLidClosed && entry.device.isBuiltIn;
  for (auto& entry : entries) devices.push_back(std::move(entry.device));
  return devices;
}

Result<std::unique_ptr<backend::CameraStream>> CameraCenter::open(const std::string& id) {
  auto* provider = id.starts_with(V4l2Provider::kIdPrefix) ? &v4l2() : pipewire_.get();
  if (!provider) return errorOf(CameraError::Gone);
  auto device = provider->open(id);
  if (!device) return device.error();
  auto stream = std::make_unique<CaptureStream>(reactor_, std::move(device).value());
  std::erase_if(streams_, [](const auto& handle) { return handle.expired(); });
  streams_.push_back(stream->handle());
  return std::unique_ptr<backend::CameraStream>(std::move(stream));
}

void CameraCenter::setAsleep(bool isAsleep) {
  for (const auto& handle : streams_)
    if (const auto stream = handle.lock(); stream && *stream) (*stream)->setAsleep(isAsleep);
}

void CameraCenter::connect(int attempts) {
  retry_.reset();
  std::error_code unreachable;
  const bool mayRun = std::filesystem::exists(daemonSocket(), unreachable);
  if (mayRun && graph_->connect()) {
    daemonWatch_.reset();
    pipewire_ = std::make_unique<PipeWireProvider>(graph_, V4l2System::kernel());
    return;
  }
  pipewire_.reset();
  if (!daemonWatch_) watchForDaemon();
  v4l2();
  if (mayRun && attempts > 1)
    retry_ = reactor_.after(kBetweenAttempts, [this, attempts] { connect(attempts - 1); });
}

// An opened stream outlives its provider.
CameraProvider& CameraCenter::v4l2() {
  if (!v4l2_) v4l2_ = std::make_unique<V4l2Provider>(reactor_, V4l2System::kernel(), "/dev");
  return *v4l2_;
}

void CameraCenter::watchForDaemon() {
  const auto socket = daemonSocket();
  daemonWatch_ = std::make_unique<FileWatch>(reactor_, socket.parent_path(),
                                             [this, socket](const std::string& name, auto) {
                                               if (name == socket.filename() && !graph_->isConnected())
                                                 connect(kAttempts);
                                             });
}

}  // namespace vistrel::camera
