#include "linux/camera/CameraError.h"

#include <gtest/gtest.h>

namespace vistrel::camera {
namespace {

TEST(CameraError, IsReadFromWhatADaemonSays) {
  const std::pair<const char*, const char*> cases[] = {
      {"error set format: Device or resource busy", "The camera is in use by another program."},
      {"error set output format: -16 (Das Gerät oder die Ressource ist belegt)",
       "The camera is in use by another program."},
      {"error set output format: -16x (?)",
       "The camera reported an error: error set output format: -16x (?)"},
      {"node busy", "The camera is in use by another program."},
      {"can't open: Operation not permitted", "Access to the camera is denied."},
      {"Permission denied", "Access to the camera is denied."},
      {"No such device", "The camera is no longer connected."},
      {"no target node available", "The camera is no longer connected."},
      {"", "The camera reported an error."},
      {"Broken pipe", "The camera reported an error: Broken pipe"},
  };
  for (const auto& [said, text] : cases) EXPECT_EQ(errorOfMessage(said).message, text) << said;
}

}  // namespace
}  // namespace vistrel::camera
