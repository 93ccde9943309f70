#include "linux/camera/Attachment.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <vector>

namespace vistrel::capture {
namespace {

namespace fs = std::filesystem;

// A folder that looks like the kernel's, with a node behind each kind of bus.
class AttachmentTest : public testing::Test {
 protected:
  ~AttachmentTest() override { fs::remove_all(root_); }

  void addNode(const std::string& node, const std::string& device, const std::string& removable) {
    const fs::path port = root_ / "devices" / device;
    const fs::path place = port / "interface/video4linux" / node;
    fs::create_directories(place);
    fs::create_directories(root_ / "class/video4linux");
    fs::create_directory_symlink(place, root_ / "class/video4linux" / node);
    if (removable.empty()) return;
    std::ofstream(port / "removable") << removable << '\n';
    std::ofstream(port / "idVendor") << "046d\n";
    std::ofstream(port / "idProduct") << "0825\n";
  }

  const fs::path root_ = fs::temp_directory_path() / ("sysfs-test-" + std::to_string(::getpid()));
};

TEST_F(AttachmentTest, FollowsTheKernelsWord) {
  struct Case {
    const char *node, *device, *removable;
    Attachment attachment;
    const char* product;
  } const cases[] = {
      {"video0", "pci0000:00/usb1/1-7", "fixed", Attachment::BuiltIn, "046d:0825"},
      {"video1", "pci0000:00/usb1/1-8", "removable", Attachment::External, "046d:0825"},
      {"video2", "pci0000:00/usb1/1-9", "unknown", Attachment::External, "046d:0825"},
      {"video5", "pci0000:00/usb1/1-7/1-7.2", "unknown", Attachment::External, "046d:0825"},
      {"video3", "platform/csi", "", Attachment::BuiltIn, ""},
      {"video4", "virtual", "", Attachment::External, ""},
  };
  for (const Case& c : cases) {
    addNode(c.node, c.device, c.removable);
    EXPECT_EQ(attachmentOf(std::string("/dev/") + c.node, root_), c.attachment) << c.node;
    EXPECT_EQ(usbProductOf(std::string("/dev/") + c.node, root_), c.product) << c.node;
  }
  EXPECT_EQ(attachmentOf("/dev/video9", root_), Attachment::External);
}

TEST(Paths, AreOrderedAsPeopleDo) {
  const std::vector<std::string> ordered{
      "/dev/video2", "/dev/video10", "/dev/video010a", "a", "a1", "a1b", "b"};
  for (std::size_t i = 0; i < ordered.size(); ++i)
    for (std::size_t j = 0; j < ordered.size(); ++j)
      EXPECT_EQ(isPathBefore(ordered[i], ordered[j]), i < j) << ordered[i] << ' ' << ordered[j];
}

}  // namespace
}  // namespace vistrel::capture
