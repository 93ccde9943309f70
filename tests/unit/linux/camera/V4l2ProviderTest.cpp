#include <cerrno>
#include <fstream>

#include "tests/unit/linux/camera/V4l2Fixture.h"

namespace vistrel::camera {
namespace {

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
  system_.script[folder_ / "video-front"] = {.card = "UVC", .isAlias = true};
  makeProvider();
  std::ofstream(folder_ / "video-front").close();
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

}  // namespace
}  // namespace vistrel::camera
