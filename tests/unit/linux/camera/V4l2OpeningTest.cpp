#include <cerrno>

#include "linux/camera/V4l2Question.h"
#include "tests/unit/linux/NoThreads.h"
#include "tests/unit/linux/camera/V4l2Fixture.h"

namespace vistrel::camera {
namespace {

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

TEST_F(V4l2Test, OpensAnewAsSoonAsTheRunBeforeHasClosed) {
  for (const bool isSameDevice : {true, false}) {
    started_ = 0;
    system_.script[node(0)] = {};
    ASSERT_EQ(start(), backend::StreamStart::Running);
    system_.holdStreaming(true);
    device_->stop();
    if (isSameDevice) {
      device_->begin(chooseMode(device_->modes(), kSize).value(), *this);
      EXPECT_EQ(device_->awaitStart(kPatience), backend::StreamStart::Pending);
    } else {
      EXPECT_EQ(start(), backend::StreamStart::Pending);
    }
    system_.holdStreaming(false);
    EXPECT_TRUE(runUntil([&] { return started_ > 0 || !failures_.empty(); }));
    EXPECT_EQ(failures_, std::vector<std::string>{}) << isSameDevice;
    device_.reset();
  }
}

TEST_F(V4l2Test, TellsWhyACameraCannotBeOpened) {
  system_.script[node(0)] = {};
  system_.script[node(1)] = {.openResult = -EACCES};
  system_.script[node(2)] = {.openResult = -EBUSY};
  system_.script[node(3)] = {.buffersResult = -EBUSY};
  system_.script[node(4)] = {.group = "video", .openResult = -EPERM};
  const std::string texts[] = {"",
                               "Access to the camera is denied.",
                               "The camera is in use by another program.",
                               "The camera is in use by another program.",
                               "Access to the camera is denied; the group video has it.",
                               "The camera is no longer connected."};
  makeProvider();
  for (int i = 0; i < 6; ++i) EXPECT_EQ(openError(idOf(i)), texts[i]) << i;
  EXPECT_EQ(system_.openCount(), 0);
}

TEST_F(V4l2Test, AnswersForADeviceThatSomebodyElseIsToOpen) {
  struct Case {
    ScriptedNode node;
    V4l2Asked asked;
    std::optional<bool> isBusy;
    std::optional<PixelSize> source;
  } const cases[] = {
      {{.source = {1280, 720}}, V4l2Asked::All, false, PixelSize{1280, 720}},
      {{.buffersResult = -EBUSY}, V4l2Asked::All, true, {}},
      {{.buffersResult = -EBUSY, .source = {1280, 720}}, V4l2Asked::Source, false, PixelSize{1280, 720}},
      {{.openResult = -EBUSY}, V4l2Asked::All, true, {}},
      {{.openResult = -EACCES}, V4l2Asked::All, {}, {}},
  };
  for (const Case& c : cases) {
    system_.script[node(0)] = c.node;
    const auto answer = askV4l2(system_, node(0), c.asked, system_.now() + kPatience);
    EXPECT_EQ(answer ? std::optional(answer->isBusy) : std::nullopt, c.isBusy) << c.node.openResult;
    EXPECT_EQ(answer ? answer->sourceSize : std::nullopt, c.source);
  }
}

TEST_F(V4l2Test, ACameraWithoutAThreadFailsWithItsReason) {
  system_.script[node(0)] = {};
  {
    const test::NoThreads none;
    makeProvider();
    EXPECT_EQ(names().size(), 1U) << "choosing it tells why";
    EXPECT_EQ(openError(idOf(0)), "The system gives no thread: Resource temporarily unavailable");
  }
  EXPECT_EQ(openError(idOf(0)), "");
}

}  // namespace
}  // namespace vistrel::camera
