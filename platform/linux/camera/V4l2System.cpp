#include "linux/camera/V4l2System.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace vistrel::camera {
namespace {

namespace fs = std::filesystem;

class Kernel final : public V4l2System {
 public:
  std::vector<std::string> nodes() override {
    std::vector<std::string> paths;
    std::error_code error;
    fs::directory_iterator entry("/dev", error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
      if (entry->path().filename().string().starts_with("video")) paths.push_back(entry->path().string());
    return paths;
  }

  bool isAlias(const std::string& path) override { return camera::isAlias(path); }

  Label label(const std::string& path) override {
    const auto folder = fs::path("/sys/class/video4linux") / fs::path(path).filename();
    Label label;
    std::ifstream name(folder / "name");
    std::getline(name, label.name);
    std::ifstream(folder / "index") >> label.index;
    label.seemsCamera = seemsCamera(path);
    label.place = placeOf(path);
    label.attachment = deviceLocationOf(path);
    return label;
  }

  std::string groupOf(const std::string& path) override { return camera::groupOf(path); }

  int open(const std::string& path) override {
    const int fd = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    return fd < 0 ? -errno : fd;
  }

  void close(int fd) override { ::close(fd); }

  int ioctl(int fd, unsigned long request, void* argument) override {
    int result = 0;
    do {
      result = ::ioctl(fd, request, argument);
    } while (result < 0 && errno == EINTR);
    return result < 0 ? -errno : result;
  }

  const void* map(int fd, std::size_t length, std::size_t offset) override {
    void* memory = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, static_cast<off_t>(offset));
    return memory == MAP_FAILED ? nullptr : memory;
  }

  void unmap(const void* memory, std::size_t length) override { ::munmap(const_cast<void*>(memory), length); }

  Clock::time_point now() override { return Clock::now(); }

  bool waitUntil(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
                 Clock::time_point deadline, const std::function<bool()>& isDone) override {
    return changed.wait_until(lock, deadline, isDone);
  }
};

}  // namespace

V4l2System& V4l2System::kernel() {
  // Never destroyed: a thread that a driver holds up may outlive the end of the program.
  static auto* const kernel = new Kernel;
  return *kernel;
}

}  // namespace vistrel::camera
