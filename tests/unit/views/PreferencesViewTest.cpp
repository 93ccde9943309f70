#include "views/PreferencesView.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "app/AuxiliaryWindows.h"
#include "app/PreferenceKeys.h"
#include "appkit/NSApplication.h"
#include "appkit/NSWindow.h"
#include "foundation/NotificationCenter.h"
#include "simulated/SimulatedDesktop.h"
#include "swiftui/NSHostingView.h"

namespace vistrel {
namespace {

using swiftui::PickerContent;
using swiftui::ToggleContent;
using swiftui::View;

// A Preferences window on a simulated desktop, its controls found by their labels.
class PreferencesViewTest : public ::testing::Test {
 protected:
  PreferencesViewTest() {
    UserDefaults::standard().registerDefaults({{preference::kSelectedMirroring, true}});
    for (const char* name : {"dataChanged", "mirroringChanged"}) {
      observers_.push_back(
          NotificationCenter::defaultCenter().addObserver(name, nullptr, [this](const Notification& posted) {
            posts += posted.name + (preferences() == written_ ? " before the write;" : ";");
          }));
    }
  }
  [[nodiscard]] std::string preferences() const { return desktop.files.preferences.value_or(""); }
  static const View& content(NSWindow& shown) {
    return static_cast<NSHostingView&>(*shown.contentView()).content();
  }
  template <class Content>
  Content find(NSWindow& shown, const std::string& label) {
    std::optional<Content> found;
    content(shown).walk([&](const View& view) {
      const auto* candidate = std::get_if<Content>(&view.content);
      if (candidate && labelOf(*candidate) == label) found = *candidate;
    });
    EXPECT_TRUE(found) << label;
    return found.value_or(Content{});
  }
  static std::string labelOf(const PickerContent& picker) { return picker.label; }
  static std::string labelOf(const ToggleContent& toggle) { return toggle.label.front().text(); }
  std::int64_t selection(const char* label) { return find<PickerContent>(*window, label).selection.get(); }
  bool isOn(const char* label) { return find<ToggleContent>(*window, label).isOn.get(); }
  void choose(const char* label, std::int64_t index) {
    written_ = preferences();
    find<PickerContent>(*window, label).selection.choose(index);
  }
  void toggle(const char* label, bool isOn) {
    written_ = preferences();
    find<ToggleContent>(*window, label).isOn.set(isOn);
  }

  simulated::SimulatedDesktop desktop{VISTREL_RESOURCES};
  std::string posts;
  std::shared_ptr<NSWindow> window;

 private:
  std::string written_;
  std::vector<ObservationToken> observers_;
};

TEST_F(PreferencesViewTest, ReadsWithoutWritingAndWritesBeforeItTells) {
  window = openPreferencesWindow();
  EXPECT_EQ(desktop.files.preferences, std::nullopt) << "opening only reads";
  EXPECT_EQ(posts, "");
  EXPECT_EQ(selection("Menu bar icon:") + selection("Popover size:") + selection("Close popover when:"), 0);
  EXPECT_TRUE(isOn("Mirror video"));
  EXPECT_FALSE(isOn("Open Vistrel at login"));

  struct Case {
    const char* label;
    std::int64_t value;
    const char* key;
    const char* posted;
  };
  for (const auto& c : {Case{"Menu bar icon:", 1, "selectedUIIcon", "dataChanged;"},
                        Case{"Popover size:", 2, "selectedPopoverSize", "dataChanged;"},
                        Case{"Close popover when:", 1, "dismissPreference", "dataChanged;"}}) {
    posts.clear();
    choose(c.label, c.value);
    EXPECT_EQ(UserDefaults::standard().objectForKey(c.key), UserDefaults::Value(c.value));
    EXPECT_EQ(selection(c.label), c.value);
    choose(c.label, c.value);  // what is chosen already
    EXPECT_EQ(posts, c.posted) << c.label;
  }
  posts.clear();
  toggle("Mirror video", false);
  EXPECT_EQ(UserDefaults::standard().objectForKey("selectedMirroringPreference"), UserDefaults::Value(false));
  EXPECT_EQ(posts, "mirroringChanged;");
  posts.clear();
  const auto before = preferences();
  toggle("Open Vistrel at login", true);
  EXPECT_EQ(preferences(), before) << "the login item is no preference";
  EXPECT_EQ(posts, "");
  ASSERT_EQ(desktop.login.entries.size(), 1U);
  EXPECT_EQ(desktop.login.entries[0].label, "org.vistrel.Vistrel-LaunchAtLoginHelper");
}

TEST_F(PreferencesViewTest, ShowsWhatTheProgramMakesOfAStrangeIndex) {
  for (const std::int64_t strange : {-1, 3, 7, 1000000}) {
    for (const char* key : {"selectedUIIcon", "selectedPopoverSize", "dismissPreference"}) {
      UserDefaults::standard().setInteger(strange, key);
    }
    window = openPreferencesWindow();
    EXPECT_EQ(selection("Menu bar icon:"), 0) << strange;
    EXPECT_EQ(selection("Popover size:"), 0) << strange;
    EXPECT_EQ(selection("Close popover when:"), 1) << strange;
    EXPECT_EQ(UserDefaults::standard().integerForKey("selectedUIIcon"), strange) << "shown, not corrected";
  }
}

TEST_F(PreferencesViewTest, ReadsAgainWhenItAppears) {
  window = openPreferencesWindow();
  const auto second = openPreferencesWindow();
  find<PickerContent>(*second, "Popover size:").selection.set(2);
  desktop.login.writeError = "read-only";
  toggle("Open Vistrel at login", true);
  EXPECT_TRUE(isOn("Open Vistrel at login")) << "the control keeps what the user set";
  EXPECT_EQ(selection("Popover size:"), 0) << "the first window has not appeared since";
  window->close();
  window->makeKeyAndOrderFront(nullptr);
  EXPECT_EQ(selection("Popover size:"), 2);
  EXPECT_FALSE(isOn("Open Vistrel at login")) << "and the truth when it appears again";
}

TEST_F(PreferencesViewTest, RecordsWhileTheWindowIsDrawnAgain) {
  window = openPreferencesWindow();
  NSView* recorder = nullptr;
  content(*window).walk([&](const View& view) {
    if (const auto* hosted = std::get_if<swiftui::HostedContent>(&view.content))
      recorder = hosted->view.get();
  });
  ASSERT_TRUE(recorder);
  window->focusWanted(recorder);
  choose("Menu bar icon:", 2);
  desktop.loop.settle();
  EXPECT_EQ(window->firstResponder(), recorder) << "a change of another setting keeps the control";
  EXPECT_TRUE(KeyboardShortcuts::isPaused());
  window->focusWanted(window->contentView().get());
  EXPECT_FALSE(KeyboardShortcuts::isPaused()) << "the focus went to a control of the form";
}

TEST_F(PreferencesViewTest, OpensANewWindowEachTimeAndRemembersItsPlace) {
  openPreferencesWindow()->close();
  EXPECT_EQ(desktop.files.preferences, std::nullopt) << "it was not moved";
  window = openPreferencesWindow();
  const auto about = openAboutWindow();
  EXPECT_EQ(NSApplication::shared().keyWindow(), about.get());
  EXPECT_NE(openPreferencesWindow(), window);
  EXPECT_EQ(NSApplication::shared().windows().size(), 3U);
  EXPECT_EQ(window->title() + "/" + about->title(), "Preferences/About Vistrel");
  EXPECT_EQ(window->styleMask(), 3U) << "closable, but neither resizable nor miniaturizable";
  EXPECT_EQ(about->styleMask(), window->styleMask());
  for (const double x : {300, 200, 100}) window->didMove({x, 120, 480, 360});
  EXPECT_EQ(desktop.files.preferences, std::nullopt) << "nothing is written while it is on its way";
  desktop.loop.advance(std::chrono::seconds(1));
  EXPECT_EQ(UserDefaults::standard().stringForKey("NSWindow Frame Preferences Window"), "100 120 480 360");
  about->didMove({10, 20, 480, 420});
  window->close();
  const auto reopened = openPreferencesWindow();
  EXPECT_EQ(reopened->frame(), (Rect{100, 120, 480, 360}));
  reopened->didMove({5000, 5000, 480, 360});
  reopened->close();
  const Rect moved = openPreferencesWindow()->frame();
  const Rect screen{0, 0, 1280, 800};
  EXPECT_EQ(screen.intersection(moved), moved) << "back on a screen that is there";
  EXPECT_FALSE(desktop.loop.hasQuit());
  NSApplication::shared().terminate(nullptr);
  EXPECT_EQ(UserDefaults::standard().stringForKey("NSWindow Frame About Window"), "10 20 480 420");
  EXPECT_EQ(desktop.loop.timerCount(), 0U);
}

}  // namespace
}  // namespace vistrel
