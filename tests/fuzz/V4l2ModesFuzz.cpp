// Any answers of a driver to the questions about its modes.
#include <cerrno>

#include "linux/camera/V4l2Formats.h"
#include "tests/fuzz/Camera.h"

using namespace vistrel;

namespace {

/// A driver that says what the fuzzer says. It refuses what follows the end of the input.
class Driver final : public camera::V4l2System {
 public:
  explicit Driver(fuzz::Bytes bytes) : bytes_(bytes) {}

  std::vector<std::string> nodes() override { return {}; }
  bool isAlias(const std::string& /*path*/) override { return false; }
  std::string groupOf(const std::string& /*path*/) override { return {}; }
  Label label(const std::string& /*path*/) override { return {}; }
  int open(const std::string& /*path*/) override { return 3; }
  void close(int /*fd*/) override {}
  int ioctl(int /*fd*/, unsigned long request, void* argument) override {
    if (bytes_.isEmpty() || bytes_.take<std::uint8_t>() % 8 == 0) return -EINVAL;
    const auto answer = bytes_.block(bytes_.take<std::uint8_t>() % _IOC_SIZE(request));
    std::copy(answer.begin(), answer.end(), static_cast<std::uint8_t*>(argument));
    return 0;
  }
  const void* map(int /*fd*/, std::size_t /*length*/, std::size_t /*offset*/) override { return nullptr; }
  void unmap(const void* /*memory*/, std::size_t /*length*/) override {}
  Clock::time_point now() override { return {}; }
  bool waitUntil(std::condition_variable& /*changed*/, std::unique_lock<std::mutex>& /*lock*/,
                 Clock::time_point /*deadline*/, const std::function<bool()>& isDone) override {
    return isDone();
  }

 private:
  fuzz::Bytes bytes_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  fuzz::Bytes bytes(data, length);
  (void)camera::colorOf(bytes.take<v4l2_pix_format>());
  Driver driver(bytes);
  fuzz::useModes(camera::modesOf(driver, 3));
  return 0;
}
