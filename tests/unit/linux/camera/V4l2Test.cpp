#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <utility>

#include "ScriptedV4l2.h"
#include "linux/camera/V4l2Provider.h"
#include "tests/unit/linux/PollReactor.h"

namespace vistrel::camera {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr PixelSize kSize{64, 48};
constexpr milliseconds kPatience{250};
constexpr int kMostTurns = 10000;

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
  void captureFailed(const Error& error) override { failures_.push_back(error.message); }

  const fs::path folder_ = fs::temp_directory_path() / ("v4l2-test-" + std::to_string(::getpid()));
  desktop::PollReactor reactor_;
  ScriptedV4l2 system_;
  std::unique_ptr<V4l2Provider> provider_;
  std::unique_ptr<CaptureDevice> device_;
  int started_ = 0;
  int arrived_ = 0;
  std::vector<std::string> failures_;
  V4l2System::Clock::time_point asked_;
};

TEST_F(V4l2Test, ListsEachUsableCameraOnce) {
  system_.script[node(0)] = {.card = "UVC"};
  system_.script[node(1)] = {.card = "UVC", .deviceCaps = V4L2_CAP_META_CAPTURE | V4L2_CAP_STREAMING};
  system_.script[node(2)] = {.card = "Infrared",
                             .modes = {{.format = V4L2_PIX_FMT_GREY}, {.format = V4L2_PIX_FMT_Y10}}};
  system_.script[node(3)] = {.card = std::string(40, 'L'), .place = "usb1", .openResult = -EACCES};
  system_.script[node(4)] = {.card = "Decoder", .seemsCamera = false, .openResult = -EPERM};
  system_.script[node(5)] = {.card = "Dead", .openResult = -ENXIO};
  system_.script[node(6)] = {.card = "<b>&\n", .modes = {{.format = V4L2_PIX_FMT_MJPEG, .rates = {}}}};
  system_.script[node(7)] = {.card = "Kamera \xd0\x9a\xd0"};
  system_.script[node(8)] = {.card = "Busy", .seemsCamera = false, .openResult = -EBUSY};
  system_.script[node(9)] = {.card = "Busy", .index = 1, .openResult = -EBUSY};
  makeProvider();
  EXPECT_EQ(names(),
            (std::vector<std::string>{"UVC", std::string(31, 'L'), "<b>&\n", "Kamera \u041a\ufffd", "Busy"}));
  EXPECT_EQ(provider_->cameras()[1].path, "usb1");
  EXPECT_EQ(system_.openCount(), 0);
}

TEST_F(V4l2Test, NoticesNodesThatComeAndGo) {
  makeProvider();
  EXPECT_TRUE(names().empty());
  system_.script[node(0)] = {.card = "Late"};
  std::ofstream(node(0)).close();
  EXPECT_EQ(names(), std::vector<std::string>{"Late"});
  system_.script.clear();
  fs::remove(node(0));
  EXPECT_TRUE(names().empty());
}

TEST_F(V4l2Test, TakesACameraThatFollowsOnTheSameNodeForAnotherOne) {
  system_.script[node(0)] = {};
  std::ofstream(node(0)).close();
  makeProvider();
  const auto first = idOf(0);
  fs::permissions(node(0), fs::perms::owner_read);
  EXPECT_EQ(idOf(0), first);
  fs::remove(node(0));
  std::ofstream(node(0)).close();
  EXPECT_NE(idOf(0), first);
  EXPECT_EQ(openError(idOf(0)), "");
  EXPECT_EQ(openError(first), "The camera is no longer connected.");
}

TEST_F(V4l2Test, WaitsOnceForOpeningAndStarting) {
  struct Case {
    milliseconds opening;
    bool hangsAtOpening, hangsAtStarting;
    milliseconds waited;
  } const cases[] = {
      {milliseconds(0), false, false, milliseconds(0)},
      {milliseconds(100), false, false, milliseconds(100)},
      {milliseconds(0), true, false, milliseconds(250)},
      {milliseconds(100), false, true, milliseconds(250)},
  };
  for (const Case& c : cases) {
    system_.script[node(0)] = {.openTakes = c.opening};
    makeProvider();
    waited();
    started_ = arrived_ = 0;
    system_.holdOpening(c.hangsAtOpening);
    system_.holdStreaming(c.hangsAtStarting);
    const bool hangs = c.hangsAtOpening || c.hangsAtStarting;
    EXPECT_EQ(start(), hangs ? backend::StreamStart::Pending : backend::StreamStart::Running);
    EXPECT_EQ(waited(), c.waited);
    EXPECT_EQ(started_, 0);
    system_.holdOpening(false);
    system_.holdStreaming(false);
    EXPECT_TRUE(runUntil([&] { return !hangs || started_ > 0; }));
    system_.deliver(9);
    EXPECT_TRUE(runUntil([&] { return arrived_ > 0; }));
    device_.reset();
  }
}

TEST_F(V4l2Test, TellsOfAnOpeningThatFailsLate) {
  const std::pair<ScriptedNode, const char*> cases[] = {
      {{.openResult = -ENODEV}, "The camera is no longer connected."},
      {{.openResult = -EACCES}, "Access to the camera is denied."},
      {{.buffersResult = -EBUSY}, "The camera is in use by another program."},
  };
  for (const auto& [becomes, text] : cases) {
    system_.script[node(0)] = {};
    makeProvider();
    failures_.clear();
    system_.holdOpening(true);
    EXPECT_EQ(start(), backend::StreamStart::Pending);
    system_.script[node(0)] = becomes;
    system_.holdOpening(false);
    EXPECT_TRUE(runUntil([&] { return !failures_.empty(); }));
    EXPECT_EQ(failures_, std::vector<std::string>{text});
  }
}

TEST_F(V4l2Test, RefusesADeviceThatDoesNotAnswerAndWasNeverAsked) {
  system_.script[node(0)] = {.openResult = -EBUSY};
  makeProvider();
  const auto id = idOf(0);
  system_.script[node(0)] = {};
  system_.holdOpening(true);
  waited();
  EXPECT_EQ(openError(id), "The camera does not answer.");
  EXPECT_EQ(waited(), milliseconds(250));
  system_.holdOpening(false);
  EXPECT_TRUE(waitForOpenCount(0));
  EXPECT_EQ(openError(id), "");
}

TEST_F(V4l2Test, ListsADeviceThatAnswersLateWhenItDoes) {
  system_.script[node(0)] = {};
  system_.holdOpening(true);
  makeProvider();
  std::ofstream(node(0)).close();
  EXPECT_TRUE(names().empty());
  EXPECT_EQ(waited(), milliseconds(250)) << "for all the looks together";
  system_.holdOpening(false);
  EXPECT_TRUE(runUntil([&] { return names() == std::vector<std::string>{"Camera"}; }));
}

TEST_F(V4l2Test, OpensAnewWithoutWaitingForAStartThatWasStopped) {
  system_.script[node(0)] = {};
  ASSERT_EQ(start(), backend::StreamStart::Running);
  device_->stop();
  system_.holdOpening(true);
  device_->begin(chooseMode(device_->modes(), kSize).value(), *this);
  EXPECT_EQ(device_->awaitStart(kPatience), backend::StreamStart::Pending);
  system_.holdOpening(false);
  EXPECT_TRUE(runUntil([&] { return started_ > 0; }));
}

TEST_F(V4l2Test, TellsWhyACameraCannotBeOpened) {
  system_.script[node(0)] = {};
  system_.script[node(1)] = {.openResult = -EACCES};
  system_.script[node(2)] = {.openResult = -EBUSY};
  system_.script[node(3)] = {.buffersResult = -EBUSY};
  system_.script[node(4)] = {.openResult = -EPERM};
  const std::string texts[] = {"",
                               "Access to the camera is denied.",
                               "The camera is in use by another program.",
                               "The camera is in use by another program.",
                               "Access to the camera is denied.",
                               "The camera is no longer connected."};
  makeProvider();
  for (int i = 0; i < 6; ++i) EXPECT_EQ(openError(idOf(i)), texts[i]) << i;
  EXPECT_EQ(system_.openCount(), 0);
}

TEST_F(V4l2Test, AsksForTheSizeAndTheRateThatTheDriverOffers) {
  using Mode = ScriptedNode::Mode;
  const Mode range{.width = 3840, .height = 2160, .rates = {10}, .rateBelow = 30};
  struct Case {
    Mode mode;
    PixelSize size;
    bool isSupported;
    std::uint32_t rate;  // 0: the driver is left its own
  } const cases[] = {
      {{.rates = {15, 60, 30}}, kSize, true, 30},
      {{.rates = {15, 20}}, kSize, false, 20},
      {{.rates = {}}, kSize, true, 0},
      {{.rates = {60}, .slowest = 5}, kSize, true, 30},
      {{.rates = {15}, .slowest = 5}, kSize, false, 15},
      {range, {3840, 2160}, false, 10},
      {range, {1920, 1080}, true, 30},
      {range, {1280, 720}, true, 30},
      {{.format = V4L2_PIX_FMT_UYVY, .width = 352, .height = 288, .listsSizes = false}, {352, 288}, true, 30},
  };
  for (const Case& c : cases) {
    system_.script[node(0)] = {.modes = {c.mode}};
    makeProvider();
    EXPECT_EQ(start(c.size), backend::StreamStart::Running);
    EXPECT_EQ(supportsSize(device_->modes(), c.size), c.isSupported) << c.size.width << ' ' << c.rate;
    const auto asked = system_.askedFormat();
    EXPECT_EQ(asked.pixelformat, c.mode.format);
    EXPECT_EQ((PixelSize{static_cast<int>(asked.width), static_cast<int>(asked.height)}), c.size);
    const auto interval = system_.takeAskedInterval();
    EXPECT_EQ(interval.numerator, c.rate == 0 ? 0U : 1U);
    EXPECT_EQ(interval.denominator, c.rate);
    device_.reset();
  }
}

TEST_F(V4l2Test, HoldsTheNewestFrameAndGivesTheOthersBack) {
  system_.script[node(0)] = {};
  ASSERT_EQ(start(), backend::StreamStart::Running);
  system_.deliver(1);
  system_.deliver(2);
  EXPECT_TRUE(runUntil([&] { return arrived_ > 0; }));
  EXPECT_EQ(arrived_, 1);
  EXPECT_EQ(firstByte(), 2);
  EXPECT_EQ(system_.queuedCount(), 2U);
  system_.deliver(3, V4L2_BUF_FLAG_ERROR);
  system_.deliver(4);
  EXPECT_TRUE(runUntil([&] { return arrived_ > 1; }));
  EXPECT_EQ(firstByte(), 4);
  device_->stop();
  EXPECT_EQ(system_.openCount(), 0);
  EXPECT_EQ(system_.mappedCount(), 0);
}

TEST_F(V4l2Test, StopsWithoutWaitingForADriverThatHangs) {
  system_.script[node(0)] = {};
  for (const bool hangsWhileRunning : {false, true}) {
    system_.holdStreaming(!hangsWhileRunning);
    ASSERT_EQ(start(), hangsWhileRunning ? backend::StreamStart::Running : backend::StreamStart::Pending);
    system_.holdStreaming(true);
    waited();
    device_->stop();
    EXPECT_LE(waited(), milliseconds(100));
    EXPECT_EQ(system_.openCount(), 1);
    system_.holdStreaming(false);
    EXPECT_TRUE(waitForOpenCount(0));
    EXPECT_EQ(started_, 0);
  }
}

TEST_F(V4l2Test, ReportsARefusedFormatFromTheMainLoop) {
  system_.script[node(0)] = {.grantsOtherSize = true};
  EXPECT_EQ(start(), backend::StreamStart::Failed);
  EXPECT_TRUE(failures_.empty());
  EXPECT_TRUE(runUntil([&] { return !failures_.empty(); }));
  EXPECT_EQ(failures_, std::vector<std::string>{"The camera refused the picture format."});
}

TEST_F(V4l2Test, ReportsABrokenStreamOnce) {
  const std::pair<int, const char*> cases[] = {
      {-ENODEV, "The camera is no longer connected."},
      {-EIO, "The camera reported an error: Input/output error"},
  };
  for (const auto& [result, text] : cases) {
    system_.script[node(0)] = {};
    system_.breakStream(0);
    arrived_ = 0;
    failures_.clear();
    ASSERT_EQ(start(), backend::StreamStart::Running);
    system_.deliver(1);
    EXPECT_TRUE(runUntil([&] { return arrived_ > 0; }));
    system_.breakStream(result);
    EXPECT_TRUE(runUntil([&] { return !failures_.empty(); }));
    EXPECT_FALSE(device_->frame());
    bool isLater = false;
    reactor_.post([&] { isLater = true; });
    EXPECT_TRUE(runUntil([&] { return isLater; }));
    EXPECT_EQ(failures_, std::vector<std::string>{text});
  }
}

}  // namespace
}  // namespace vistrel::camera
