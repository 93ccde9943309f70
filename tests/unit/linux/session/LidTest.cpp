#include "linux/session/Lid.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace vistrel::session {
namespace {

TEST(Lid, WithoutLogindTheKernelTells) {
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere", 1);
  const auto buttons = std::filesystem::path(testing::TempDir()) / "lid";
  EXPECT_FALSE(Lid(buttons / "none").isClosed()) << "a machine without a lid";
  std::filesystem::create_directories(buttons / "LID0");
  EXPECT_FALSE(Lid(buttons).isClosed()) << "no word of it";
  for (const std::string state : {"open", "closed", "unsupported"}) {
    std::ofstream(buttons / "LID0" / "state") << "state:      " << state << "\n";
    EXPECT_EQ(Lid(buttons).isClosed(), state == "closed") << state;
  }
}

}  // namespace
}  // namespace vistrel::session
