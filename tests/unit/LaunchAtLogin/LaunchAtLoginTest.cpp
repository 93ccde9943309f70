#include "LaunchAtLogin/LaunchAtLogin.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "LaunchAtLogin/Toggle.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel {
namespace {

constexpr const char* kLabel = "org.vistrel.Vistrel-LaunchAtLoginHelper";

class LaunchAtLoginTest : public ::testing::Test {
 protected:
  simulated::SimulatedDesktop desktop{VISTREL_RESOURCES};
};

TEST_F(LaunchAtLoginTest, IsWhatTheFirstJobOfItsLabelSays) {
  using Items = std::vector<backend::LoginItem>;
  struct Case {
    Items items;
    bool isEnabled;
  };
  const Case cases[] = {{Items{}, false},
                        {Items{{"other", true}}, false},
                        {Items{{"org.vistrel.vistrel-LaunchAtLoginHelper", true}}, false},
                        {Items{{kLabel, false}}, false},
                        {Items{{"other", false}, {kLabel, true}}, true},
                        {Items{{kLabel, false}, {kLabel, true}}, false}};
  for (const auto& c : cases) {
    desktop.login.entries = c.items;
    EXPECT_EQ(LaunchAtLogin::isEnabled(), c.isEnabled);
  }
  desktop.login.readError = "the folder is a file";
  EXPECT_FALSE(LaunchAtLogin::isEnabled());
}

TEST_F(LaunchAtLoginTest, TellsTheWantedValueEvenWhenTheDesktopRefuses) {
  LaunchAtLogin::setEnabled(false);
  std::string told;
  const auto observed = LaunchAtLogin::sharedObservable()->onWillChange([&] { told += "object;"; });
  const auto watched = LaunchAtLogin::sharedKVO()->observe("isEnabled", [&](KeyValueObservable::Phase phase) {
    const bool isBefore = phase == KeyValueObservable::Phase::WillChange;
    told += isBefore ? "will;" : desktop.login.entries.empty() ? "did;" : "did, set;";
  });
  auto subscribed = LaunchAtLogin::publisher().sink([&](bool value) { told += value ? "true;" : "false;"; });
  EXPECT_EQ(told, "false;");
  told.clear();
  LaunchAtLogin::setEnabled(true);
  EXPECT_EQ(told, "object;will;did, set;true;");

  desktop.login.entries.clear();
  desktop.login.writeError = "read-only";
  told.clear();
  LaunchAtLogin::setEnabled(true);
  EXPECT_EQ(told, "object;will;did;true;");
  EXPECT_FALSE(LaunchAtLogin::isEnabled());

  desktop.simulatedSession.version = {10, 14, 6};
  told.clear();
  LaunchAtLogin::setEnabled(true);
  EXPECT_EQ(told, "will;did;") << "an older system has neither";
  desktop.simulatedSession.version = {12, 0, 0};
  subscribed.cancel();
  told.clear();
  LaunchAtLogin::setEnabled(false);
  EXPECT_EQ(told, "object;will;did;");
}

TEST_F(LaunchAtLoginTest, HasASwitchOfItsOwn) {
  LaunchAtLogin::Toggle plain;
  int drawings = 0;
  plain.setRedrawHandler([&] { ++drawings; });
  const auto view = plain.body();
  const auto& toggle = std::get<swiftui::ToggleContent>(view.content);
  EXPECT_EQ(toggle.label.front().text(), "Launch at login");
  toggle.isOn.set(true);
  EXPECT_TRUE(LaunchAtLogin::isEnabled());
  desktop.loop.settle();
  EXPECT_EQ(drawings, 1);
  const auto titled = LaunchAtLogin::Toggle::withTitle("Start with me");
  EXPECT_EQ(std::get<swiftui::ToggleContent>(titled->body().content).label.front().text(), "Start with me");
}

TEST(CurrentValueSubjectTest, KeepsTheOrderWhenReceiversSendAndLeave) {
  CurrentValueSubject<int> subject(0);
  std::string first;
  std::string second;
  std::optional<AnyCancellable> late;
  std::string lateHeard;
  const auto a = subject.eraseToAnyPublisher().sink([&](int value) {
    first += std::to_string(value);
    if (value == 1) subject.send(2);
    if (value == 2) late = subject.eraseToAnyPublisher().sink([&](int v) { lateHeard += std::to_string(v); });
  });
  std::optional<AnyCancellable> b;
  b = subject.eraseToAnyPublisher().sink([&](int value) {
    second += std::to_string(value);
    if (value == 2) b->cancel();
  });
  subject.send(1);
  subject.send(3);
  EXPECT_EQ(first, "0123");
  EXPECT_EQ(second, "012") << "the same order for all, nothing after leaving";
  EXPECT_EQ(lateHeard, "23") << "the current value first, no value twice";
}

}  // namespace
}  // namespace vistrel
