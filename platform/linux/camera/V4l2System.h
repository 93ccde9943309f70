#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "linux/camera/DeviceLocation.h"

namespace vistrel::camera {

/// The system calls that V4L2 is made of and the waiting for them, so that a test can stand in for the kernel
/// and its clock. Calls answer a negative errno for a failure. May be called from several threads at once.
class V4l2System {
 public:
  using Clock = std::chrono::steady_clock;

  virtual ~V4l2System() = default;

  /// The real one.
  [[nodiscard]] static V4l2System& kernel();

  /// Every "/dev/video" node, by whatever name.
  [[nodiscard]] virtual std::vector<std::string> nodes() = 0;
  /// See `DeviceLocation.h`.
  [[nodiscard]] virtual bool isAlias(const std::string& path) = 0;
  /// What the kernel tells of a node without opening it.
  struct Label {
    std::string name;
    /// Its number among those of its device.
    int index = 0;
    /// See `DeviceLocation.h`.
    bool seemsCamera = false;
    std::string place;
    DeviceLocation attachment = DeviceLocation::External;
  };
  [[nodiscard]] virtual Label label(const std::string& path) = 0;

  /// See `DeviceLocation.h`.
  [[nodiscard]] virtual std::string groupOf(const std::string& path) = 0;

  virtual int open(const std::string& path) = 0;
  virtual void close(int fd) = 0;
  virtual int ioctl(int fd, unsigned long request, void* argument) = 0;
  /// Maps a buffer for reading; nullptr on failure.
  virtual const void* map(int fd, std::size_t length, std::size_t offset) = 0;
  virtual void unmap(const void* memory, std::size_t length) = 0;

  [[nodiscard]] virtual Clock::time_point now() = 0;
  /// Waits for what another thread does and announces through `changed`; false when it is not done at
  /// `deadline`.
  virtual bool waitUntil(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                         Clock::time_point deadline, const std::function<bool()>& isDone) = 0;
};

}  // namespace vistrel::camera
