#include <cerrno>

#include "linux/camera/CaptureStream.h"
#include "tests/unit/linux/camera/V4l2Fixture.h"

namespace vistrel::camera {
namespace {

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

TEST_F(V4l2Test, OffersNoSizeAboveWhatTheCameraSees) {
  for (const bool tellsTimings : {false, true}) {
    const ScriptedNode::Mode range{.width = 3840, .height = 2160, .rateBelow = 30};
    system_.script[node(0)] = {.modes = {range}, .source = {1280, 720}, .tellsTimings = tellsTimings};
    makeProvider();
    EXPECT_EQ(start({1280, 720}), backend::StreamStart::Running);
    EXPECT_FALSE(chooseMode(device_->modes(), {1920, 1080}));
    device_.reset();
  }
}

struct StreamClient final : backend::CameraStreamClient {
  int started = 0;
  std::vector<std::string> failures;
  void streamDidStart() override { ++started; }
  void streamDidFail(const Error& error) override { failures.push_back(error.message); }
};

TEST_F(V4l2Test, GoesOnAfterTheComputerSleptOrTellsWhyNot) {
  struct Case {
    bool hangsBefore, hangsAfter;
    int openResult;
    int started;
    std::vector<std::string> failures;
  } const cases[] = {
      {false, false, 0, 0, {}},
      {false, true, 0, 0, {}},
      {true, false, 0, 1, {}},
      {false, false, -ENODEV, 0, {"The camera is no longer connected."}},
  };
  for (const Case& c : cases) {
    system_.script[node(0)] = {};
    makeProvider();
    StreamClient client;
    CaptureStream stream(reactor_, std::move(provider_->open(idOf(0))).value());
    system_.holdStreaming(c.hangsBefore);
    stream.begin(kSize, client);
    EXPECT_EQ(stream.awaitStart(kPatience),
              c.hangsBefore ? backend::StreamStart::Pending : backend::StreamStart::Running);
    system_.holdStreaming(false);
    stream.setAsleep(true);
    EXPECT_TRUE(waitForOpenCount(0));
    system_.script[node(0)].openResult = c.openResult;
    system_.holdStreaming(c.hangsAfter);
    stream.setAsleep(false);
    system_.holdStreaming(false);
    EXPECT_TRUE(runUntil([&] {
      if (system_.mappedCount() > 0) system_.deliver(100);
      return stream.pictureSize() == kSize || !client.failures.empty();
    }));
    EXPECT_EQ(client.failures, c.failures);
    EXPECT_EQ(client.started, c.started);
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
  unusable_ = 0;
  system_.deliver(5, 0, ScriptedV4l2::kFrameBytes / 2);
  EXPECT_TRUE(runUntil([&] { return unusable_ > 0; }));
  EXPECT_EQ(firstByte(), 4) << "the last good one, for whoever paints again";
  EXPECT_EQ(arrived_, 2);
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
  const std::pair<ScriptedNode, const char*> cases[] = {
      {{.grantsOtherSize = true}, "The camera refused the picture format."},
      {{.field = V4L2_FIELD_ALTERNATE}, "The camera sends every second line of a picture by itself."},
  };
  for (const auto& [becomes, text] : cases) {
    system_.script[node(0)] = becomes;
    makeProvider();
    failures_.clear();
    EXPECT_EQ(start(), backend::StreamStart::Failed);
    EXPECT_TRUE(failures_.empty());
    EXPECT_TRUE(runUntil([&] { return !failures_.empty(); }));
    EXPECT_EQ(failures_, std::vector<std::string>{text});
  }
}

TEST_F(V4l2Test, ReportsABrokenStreamOnce) {
  struct Case {
    int result, queueResult;
    const char* text;
  } const cases[] = {
      {-ENODEV, 0, "The camera is no longer connected."},
      {-EIO, 0, "The camera reported an error: Input/output error"},
      {0, -EIO, "The camera reported an error: Input/output error"},
  };
  for (const auto& [result, queueResult, text] : cases) {
    system_.script[node(0)] = {};
    system_.breakStream(0);
    arrived_ = 0;
    failures_.clear();
    ASSERT_EQ(start(), backend::StreamStart::Running);
    system_.deliver(1);
    EXPECT_TRUE(runUntil([&] { return arrived_ > 0; }));
    system_.breakQueue(queueResult);
    system_.breakStream(result);
    system_.deliver(2);
    EXPECT_TRUE(runUntil([&] { return !failures_.empty(); }));
    EXPECT_FALSE(device_->frame());
    bool isLater = false;
    reactor_.post([&] { isLater = true; });
    EXPECT_TRUE(runUntil([&] { return isLater; }));
    EXPECT_EQ(failures_, std::vector<std::string>{text});
    system_.breakQueue(0);
  }
}

}  // namespace
}  // namespace vistrel::camera
