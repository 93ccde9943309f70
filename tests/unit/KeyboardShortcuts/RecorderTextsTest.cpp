#include <gtest/gtest.h>

#include <tuple>

#include "KeyboardShortcuts/RecorderCocoa.h"
#include "KeyboardShortcuts/resource_bundle_accessor.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel::KeyboardShortcuts {
namespace {

TEST(RecorderTexts, SpeakTheUsersLanguage) {
  simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
  desktop.resourceFolder.translations["record_shortcut"] = "Kürzel aufnehmen";
  const auto german = std::make_shared<RecorderCocoa>(Name("unitTest"));
  EXPECT_EQ(german->placeholderString(), "Kürzel aufnehmen");
  german->becomeFirstResponder();
  EXPECT_EQ(german->placeholderString(), "Press Shortcut") << "English where there is no translation";
  EXPECT_EQ(resourceBundle().localizedString("unknown_key"), "unknown_key");
}

TEST(RecorderTexts, AreFoundBesideTheProgramTooOrStopIt) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process that has not found them yet
  simulated::SimulatedDesktop bare("/nonexistent");
  EXPECT_FALSE(findResourceBundle());
  EXPECT_DEATH(std::ignore = resourceBundle(),
               "unable to find bundle named KeyboardShortcuts_KeyboardShortcuts");
  EXPECT_DEATH(RecorderCocoa::initWithCoder(), "Fatal error: .*has not been implemented");
  bare.resourceFolder.overrides["../KeyboardShortcuts_KeyboardShortcuts.bundle"] = "";
  EXPECT_TRUE(findResourceBundle());
}

}  // namespace
}  // namespace vistrel::KeyboardShortcuts
