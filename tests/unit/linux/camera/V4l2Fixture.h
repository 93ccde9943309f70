#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "linux/camera/V4l2Provider.h"
#include "tests/unit/linux/PollReactor.h"
#include "tests/unit/linux/camera/ScriptedV4l2.h"

namespace vistrel::camera {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

inline constexpr PixelSize kSize{64, 48};
inline constexpr milliseconds kPatience{250};
inline constexpr int kMostTurns = 10000;

/// Cameras on a scripted V4L2, listed from a folder of their own and told to this client.
class V4l2Test : public testing::Test, public CaptureClient {
 protected:
  V4l2Test() { fs::create_directories(folder_); }
  ~V4l2Test() override { fs::remove_all(folder_); }

  std::string node(int number) { return folder_ / ("video" + std::to_string(number)); }
  std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& entry : provider_->cameras()) names.push_back(entry.device.localizedName);
    return names;
  }
  // Waits for its first look, too.
  void makeProvider() {
    provider_ = std::make_unique<V4l2Provider>(reactor_, system_, folder_);
    names();
  }
  std::string idOf(int number) {
    for (const auto& entry : provider_->cameras())
      if (entry.device.id.starts_with("v4l2:" + node(number))) return entry.device.id;
    return {};
  }
  std::string openError(const std::string& id) {
    const auto device = provider_->open(id);
    return device ? "" : device.error().message;
  }
  bool waitForOpenCount(int count) {
    return runUntil([&] { return system_.openCount() == count; });
  }
  // Opens and starts the scripted camera.
  backend::StreamStart start(PixelSize size = kSize) {
    if (!provider_) makeProvider();
    device_ = std::move(provider_->open(idOf(0))).value();
    device_->stop();
    EXPECT_EQ(system_.openCount(), 1) << "nothing was begun";
    device_->begin(chooseMode(device_->modes(), size).value(), *this);
    return device_->awaitStart(kPatience);
  }
  // For how long somebody stood waiting since the last time of asking.
  milliseconds waited() {
    const auto since = std::exchange(asked_, system_.now());
    return std::chrono::duration_cast<milliseconds>(asked_ - since);
  }
  // Looks again and again, since a thread that ends wakes no loop.
  bool runUntil(const std::function<bool()>& isDone) {
    for (int turns = 0; !isDone(); ++turns) {
      if (turns == kMostTurns) return false;
      reactor_.turn(milliseconds(1));
    }
    return true;
  }
  int firstByte() { return std::get<Picture>(device_->frame().value()).planes[0].data[0]; }

  void captureStarted() override { ++started_; }
  void frameArrived() override { ++arrived_; }
  void unusableFrameArrived() override { ++unusable_; }
  void captureFailed(const Error& error) override { failures_.push_back(error.message); }

  const fs::path folder_ = fs::temp_directory_path() / ("v4l2-test-" + std::to_string(::getpid()));
  desktop::PollReactor reactor_;
  ScriptedV4l2 system_;
  std::unique_ptr<V4l2Provider> provider_;
  std::unique_ptr<CaptureDevice> device_;
  int started_ = 0;
  int arrived_ = 0;
  int unusable_ = 0;
  std::vector<std::string> failures_;
  V4l2System::Clock::time_point asked_;
};

}  // namespace vistrel::camera
