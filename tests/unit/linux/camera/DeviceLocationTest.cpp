#include "linux/camera/CameraCenter.h"
#include "linux/camera/DeviceLocation.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <vector>

namespace vistrel::camera {
namespace {

namespace fs = std::filesystem;

// A folder that looks like the kernel's, with a node behind each kind of bus.
class DeviceLocationTest : public testing::Test {
 protected:
  ~DeviceLocationTest() override { fs::remove_all(root_); }

  // `device` is that of the node, on USB one interface of what is plugged in.
  void addNode(const std::string& node, const std::string& device, const std::string& index,
               const std::string& removable) {
    const fs::path port = (root_ / "devices" / device).parent_path();
    const fs::path place = root_ / "devices" / device / "video4linux" / node;
    fs::create_directories(place);
    fs::create_directories(root_ / "class/video4linux");
    fs::create_directory_symlink(place, root_ / "class/video4linux" / node);
    std::ofstream(place / "index") << index << '\n';
    if (removable.empty()) return;
    std::ofstream(port / "removable") << removable << '\n';
    std::ofstream(port / "idVendor") << "046d\n";
    std::ofstream(port / "idProduct") << "0825\n";
  }

  const fs::path root_ = fs::temp_directory_path() / ("sysfs-test-" + std::to_string(::getpid()));
};

TEST_F(DeviceLocationTest, FollowsTheKernelsWord) {
  struct Case {
    const char *node, *device, *index, *removable, *place;
    DeviceLocation attachment;
    bool seemsCamera;
  } const cases[] = {
      {"video9", "pci/usb1/1-7/1.0", "0", "fixed", "pci/usb1/1-7/1.0/0", DeviceLocation::BuiltIn, true},
      {"video6", "pci/usb1/1-7/1.0", "1", "fixed", "pci/usb1/1-7/1.0/1", DeviceLocation::BuiltIn, false},
      {"video7", "pci/usb1/1-7/1.2", "0", "fixed", "pci/usb1/1-7/1.2/0", DeviceLocation::BuiltIn, false},
      {"vbi0", "pci/usb1/1-8/1.0", "0", "removable", "pci/usb1/1-8/1.0/0", DeviceLocation::External, true},
      {"video1", "pci/usb1/1-8/1.1", "0", "removable", "pci/usb1/1-8/1.1/0", DeviceLocation::External, true},
      {"video2", "pci/usb1/1-9/1.0", "0", "unknown", "pci/usb1/1-9/1.0/0", DeviceLocation::External, true},
      {"video5", "pci/usb1/1-7/1-7.2/1.0", "0", "unknown", "pci/usb1/1-7/1-7.2/1.0/0",
       DeviceLocation::External, true},
      {"video3", "platform/csi", "0", "", "platform/csi/0", DeviceLocation::BuiltIn, false},
      {"video4", "virtual", "0", "", "virtual/video4linux/video4", DeviceLocation::External, true},
      {"video10", "virtual", "1", "", "virtual/video4linux/video10", DeviceLocation::External, false},
  };
  for (const Case& c : cases) addNode(c.node, c.device, c.index, c.removable);
  for (const Case& c : cases) {
    const auto path = std::string("/dev/") + c.node;
    EXPECT_EQ(deviceLocationOf(path, root_), c.attachment) << c.node;
    EXPECT_EQ(usbProductOf(path, root_), *c.removable ? "046d:0825" : "") << c.node;
    EXPECT_EQ(placeOf(path, root_), root_ / "devices" / c.place) << c.node;
    EXPECT_EQ(seemsCamera(path, root_), c.seemsCamera) << c.node;
  }
  EXPECT_EQ(deviceLocationOf("/dev/video99", root_), DeviceLocation::External);
  EXPECT_EQ(placeOf("/dev/video99", root_), "/dev/video99");
  EXPECT_FALSE(seemsCamera("/dev/video99", root_));
}

TEST_F(DeviceLocationTest, KnowsAnotherNameOfANodeByItsNumber) {
  fs::create_directories(root_ / "dev/char");
  fs::create_symlink("../../devices/mem/null", root_ / "dev/char/1:3");
  fs::create_symlink("/dev/null", root_ / "null");
  fs::create_symlink("null", root_ / "video-front");
  EXPECT_TRUE(isAlias(root_ / "video-front", root_));
  EXPECT_FALSE(isAlias(root_ / "null", root_)) << "the kernel's own name";
  fs::remove(root_ / "null");
  fs::create_symlink("/dev/null", root_ / "video-back");
  EXPECT_FALSE(isAlias(root_ / "video-back", root_)) << "the only name";
  EXPECT_FALSE(isAlias(root_ / "gone", root_));
}

TEST(Paths, AreOrderedAsPeopleDo) {
  const std::vector<std::string> ordered{
      "/dev/video2", "/dev/video10", "/dev/video010a", "a", "a1", "a1b", "b"};
  for (std::size_t i = 0; i < ordered.size(); ++i)
    for (std::size_t j = 0; j < ordered.size(); ++j)
      EXPECT_EQ(isPathBefore(ordered[i], ordered[j]), i < j) << ordered[i] << ' ' << ordered[j];
}

TEST(Cameras, AreListedByWhereTheyAreAttachedWhateverTheirNumbers) {
  const auto camera = [](const char* id, const char* place, bool isBuiltIn) {
    return CameraEntry{{.id = id, .localizedName = "", .isBuiltIn = isBuiltIn}, place};
  };
  const std::vector<CameraEntry> ordered{
      camera("v4l2:/dev/video9", "/sys/devices/usb1/1-9/0", true),
      camera("v4l2:/dev/video4", "/sys/devices/usb1/1-2/0", false),
      camera("v4l2:/dev/video2", "/sys/devices/usb1/1-10/0", false),
      camera("v4l2:/dev/video0", "/sys/devices/usb1/1-10/1", false),
      camera("40", "somewhere", false),
      camera("100", "somewhere", false),
  };
  for (std::size_t i = 0; i < ordered.size(); ++i)
    for (std::size_t j = 0; j < ordered.size(); ++j)
      EXPECT_EQ(isListedBefore(ordered[i], ordered[j]), i < j) << i << ' ' << j;
}

}  // namespace
}  // namespace vistrel::camera
