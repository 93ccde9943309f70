#include <gtest/gtest.h>

#include <stdexcept>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/MenuItemShortcut.h"
#include "KeyboardShortcuts/Name.h"
#include "base/KeyCodes.h"
#include "foundation/MainQueue.h"
#include "foundation/NotificationCenter.h"
#include "foundation/UserDefaults.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel::KeyboardShortcuts {
namespace {

using backend::HotKeyPhase;
using Strings = std::vector<std::string>;

const Name kFirst("first");
const Name kSecond("second");
const Shortcut kSpace(kVK_Space, cmdKey);
const Shortcut kF5(kVK_F5, optionKey);

class RegistryTest : public ::testing::Test {
 protected:
  Action say(const std::string& word) {
    return [this, word] { said.push_back(word); };
  }
  Strings take() { return std::exchange(said, {}); }
  void pressSpace() { desktop.simulatedHotKeys.press({kVK_Space, cmdKey}); }

  simulated::SimulatedDesktop desktop{""};
  Strings said;
  ObservationToken observation = NotificationCenter::defaultCenter().addObserver(
      "KeyboardShortcuts_shortcutByNameDidChange", nullptr, [this](const Notification& notification) {
        EXPECT_EQ(notification.object, nullptr);
        said.push_back("changed " + std::any_cast<Name>(notification.userInfo.at("name")).rawValue());
      });
};

TEST_F(RegistryTest, RunsActionsOnPressAndRelease) {
  onKeyUp(kFirst, say("up 1"));
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
  setShortcut(kSpace, kFirst);
  onKeyUp(kFirst, say("up 2"));
  onKeyDown(kFirst, say("down"));
  EXPECT_EQ(desktop.simulatedHotKeys.grabs.size(), 1U);
  desktop.simulatedHotKeys.send({kVK_Space, cmdKey}, HotKeyPhase::Pressed);
  EXPECT_EQ(take(), (Strings{"changed first", "down"}));
  desktop.simulatedHotKeys.send({kVK_Space, cmdKey}, HotKeyPhase::Released);
  EXPECT_EQ(take(), (Strings{"up 1", "up 2"}));

  setPaused(true);
  pressSpace();
  setPaused(false);
  EXPECT_EQ(take(), Strings{});
  pressSpace();
  EXPECT_EQ(take(), (Strings{"down", "up 1", "up 2"}));

  setShortcut(kF5, kFirst);
  pressSpace();
  desktop.simulatedHotKeys.press({kVK_F5, optionKey});
  EXPECT_EQ(take(), (Strings{"changed first", "down", "up 1", "up 2"}));
  removeAllHandlers();
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
  onKeyUp(kFirst, say("new"));
  desktop.simulatedHotKeys.press({kVK_F5, optionKey});
  EXPECT_EQ(take(), Strings{"new"});
}

TEST_F(RegistryTest, SharesAHotKeyBetweenNames) {
  setShortcut(kSpace, kFirst);
  setShortcut(kSpace, kSecond);
  onKeyUp(kFirst, say("first"));
  onKeyUp(kSecond, say("second"));
  EXPECT_EQ(desktop.simulatedHotKeys.grabs.size(), 1U);
  take();
  pressSpace();
  EXPECT_EQ(said.size(), 2U);
  take();

  setShortcut(std::nullopt, kFirst);
  EXPECT_EQ(take(), Strings{"changed first"});
  EXPECT_EQ(getShortcut(kSecond), kSpace);
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
  enable(kSecond);
  pressSpace();
  EXPECT_EQ(take(), Strings{"second"});
  disable(kSecond);
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
  EXPECT_EQ(getShortcut(kSecond), kSpace);

  setShortcut(kSpace, kFirst);
  setShortcut(kF5, kFirst);
  EXPECT_EQ(desktop.simulatedHotKeys.grabs.size(), 1U);
  take();
  pressSpace();
  EXPECT_EQ(take(), Strings{});
  enable(kSecond);
  pressSpace();
  EXPECT_EQ(take(), Strings{"second"});
}

TEST_F(RegistryTest, RemovesAndResets) {
  setShortcut(std::nullopt, kFirst);
  EXPECT_FALSE(hasStoredValue(kFirst));
  UserDefaults::standard().setString("nonsense", storageKey(kFirst));
  setShortcut(std::nullopt, kFirst);
  EXPECT_EQ(UserDefaults::standard().stringForKey(storageKey(kFirst)), "nonsense");
  EXPECT_EQ(take(), Strings{});

  setShortcut(kSpace, kFirst);
  reset({kFirst, Name("third", kF5)});
  EXPECT_EQ(take(), (Strings{"changed first", "changed third", "changed first", "changed third"}));
  EXPECT_EQ(getShortcut(kFirst), std::nullopt);
  EXPECT_EQ(UserDefaults::standard().objectForKey(storageKey(kFirst)), UserDefaults::Value(false));
  EXPECT_EQ(desktop.simulatedHotKeys.grabs.size(), 1U);

  const Name again("first", kF5);
  EXPECT_EQ(again, kFirst);
  EXPECT_EQ(std::hash<Name>{}(again), std::hash<Name>{}(kFirst));
  const Name composed("caf\u00e9");
  const Name decomposed("cafe\u0301");
  EXPECT_EQ(composed, decomposed);
  EXPECT_EQ(std::hash<Name>{}(composed), std::hash<Name>{}(decomposed));
  EXPECT_EQ(getShortcut(again), std::nullopt);
  EXPECT_EQ(take(), Strings{});
}

TEST_F(RegistryTest, JudgesByTheStoreAtEachEvent) {
  setShortcut(kSpace, kFirst);
  onKeyDown(kFirst, say("down"));
  onKeyUp(kFirst, say("up"));
  take();
  desktop.simulatedHotKeys.send({kVK_Space, cmdKey}, HotKeyPhase::Pressed);
  UserDefaults::standard().setString(kF5.encode(), storageKey(kFirst));
  desktop.simulatedHotKeys.send({kVK_Space, cmdKey}, HotKeyPhase::Released);
  EXPECT_EQ(take(), Strings{"down"});
}

TEST_F(RegistryTest, TakesAFreedShortcutWhenEnabledAgain) {
  desktop.simulatedHotKeys.taken = {{kVK_Space, cmdKey}};
  setShortcut(kSpace, kFirst);
  onKeyUp(kFirst, say("up"));
  take();
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
  desktop.simulatedHotKeys.taken.clear();
  enable(kFirst);
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
  disable(kFirst);
  enable(kFirst);
  pressSpace();
  EXPECT_EQ(take(), Strings{"up"});
}

TEST_F(RegistryTest, SurvivesActionsThatChangeShortcuts) {
  setShortcut(kSpace, kFirst);
  onKeyUp(kFirst, [] { removeAllHandlers(); });
  onKeyUp(kFirst, [] { setShortcut(kF5, kFirst); });
  onKeyUp(kFirst, [this] { onKeyUp(kFirst, say("added")); });
  onKeyUp(kFirst, say("last"));
  take();
  pressSpace();
  EXPECT_EQ(take(), (Strings{"changed first", "last"}));
  desktop.simulatedHotKeys.press({kVK_F5, optionKey});
  EXPECT_EQ(take(), Strings{"added"});
}

TEST_F(RegistryTest, ReportsWhatAnActionThrows) {
  setShortcut(kSpace, kFirst);
  setShortcut(kSpace, kSecond);
  take();
  onKeyDown(kFirst, [] { throw std::runtime_error("broken action"); });
  onKeyDown(kSecond, [] { throw 1; });
  onKeyDown(kFirst, say("after"));
  onKeyDown(kSecond, say("after"));
  ::testing::internal::CaptureStderr();
  pressSpace();
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("broken action"), std::string::npos);
  EXPECT_EQ(take(), (Strings{"after", "after"}));
}

TEST_F(RegistryTest, LeavesNumbersThatNoKeyHas) {
  for (const auto* stored : {R"({"carbonKeyCode":9223372036854775807,"carbonModifiers":0})",
                             R"({"carbonKeyCode":-9223372036854775808,"carbonModifiers":256})",
                             R"({"carbonKeyCode":49,"carbonModifiers":9223372036854775807})",
                             R"({"carbonKeyCode":49,"carbonModifiers":-1})"}) {
    UserDefaults::standard().setString(stored, storageKey(kFirst));
    onKeyUp(kFirst, say("up"));
    disable(kFirst);
    enable(kFirst);
    EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty()) << stored;
    const Name again("first", kF5);
    EXPECT_EQ(UserDefaults::standard().stringForKey(storageKey(kFirst)), stored);
    setShortcut(std::nullopt, kFirst);
    EXPECT_EQ(getShortcut(kFirst), std::nullopt);
  }
}

TEST_F(RegistryTest, NumbersHotKeysAndRefusesWhatIsNotIts) {
  const auto down = [this](const Shortcut&) { said.push_back("down"); };
  const auto up = [this](const Shortcut&) { said.push_back("up"); };
  CarbonKeyboardShortcuts::registerShortcut(Shortcut(int64_t{1} << 32), down, up);
  CarbonKeyboardShortcuts::registerShortcut(Shortcut(-1), down, up);
  desktop.simulatedHotKeys.taken = {{kVK_F5, optionKey}};
  CarbonKeyboardShortcuts::registerShortcut(kF5, down, up);
  CarbonKeyboardShortcuts::registerShortcut(kSpace, down, up);
  CarbonKeyboardShortcuts::registerShortcut(kSpace, down, up);
  EXPECT_EQ(desktop.simulatedHotKeys.grabs.size(), 2U);

  constexpr OSType kOurs = 0x5A554D4F;  // "ZUMO"
  struct {
    std::uint32_t kind;
    std::optional<EventHotKeyID> id;
    OSStatus status;
    Strings said;
  } const rows[] = {
      {5, EventHotKeyID{kOurs, 4}, 0, {"down"}},        {6, EventHotKeyID{kOurs, 5}, 0, {"up"}},
      {5, EventHotKeyID{kOurs, 1}, -9874, {}},          {5, EventHotKeyID{kOurs, 3}, -9874, {}},
      {5, EventHotKeyID{kOurs + 1, 4}, -9874, {}},      {7, EventHotKeyID{kOurs, 4}, -9874, {}},
      {5, std::nullopt, eventParameterNotFoundErr, {}},
  };
  for (const auto& row : rows) {
    const Event event{{kEventClassKeyboard, row.kind}, row.id};
    EXPECT_EQ(CarbonKeyboardShortcuts::handleHotKeyEvent(&event, nullptr), row.status);
    EXPECT_EQ(take(), row.said);
  }
  EXPECT_EQ(CarbonKeyboardShortcuts::handleHotKeyEvent(nullptr, nullptr), -9874);

  CarbonKeyboardShortcuts::unregister(kSpace);
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
  CarbonKeyboardShortcuts::registerShortcut(kSpace, down, up);
  pressSpace();
  EXPECT_EQ(take(), (Strings{"down", "up"})) << "once, by one handler";
  CarbonKeyboardShortcuts::unregisterAll();
  pressSpace();
  EXPECT_EQ(take(), Strings{});
  EventHotKeyRef hotKey = nullptr;
  EXPECT_EQ(RegisterEventHotKey(kVK_F5, optionKey, {}, GetEventDispatcherTarget(), 0, &hotKey), -9878);
}

TEST_F(RegistryTest, LetsMenuItemsFollowAName) {
  desktop.keys.layout = {{kVK_ANSI_A, "a"}};
  const auto item = std::make_shared<NSMenuItem>("Toggle");
  const auto shows = [&](const std::string& key, std::uint64_t mask) {
    EXPECT_EQ(item->keyEquivalent(), key);
    EXPECT_EQ(item->keyEquivalentModifierMask().rawValue, mask);
  };
  setShortcut(kSpace, kFirst);
  setShortcutFor(item, kFirst);
  shows(" ", NSEventModifierFlags::kCommand);
  setShortcut(Shortcut(Key::a, {NSEventModifierFlags::kShift}), kFirst);
  shows("a", NSEventModifierFlags::kShift);
  setShortcut(kSpace, kSecond);
  shows("a", NSEventModifierFlags::kShift);
  setShortcutFor(item, kSecond);
  setShortcut(std::nullopt, kFirst);
  shows(" ", NSEventModifierFlags::kCommand);
  setShortcut(std::nullopt, kSecond);
  shows("", 0);
  setShortcutFor(item, std::nullopt);
  setShortcut(kSpace, kSecond);
  shows("", 0);

  DispatchQueue::performAs("com.apple.xpc.activity.x", [&] { setShortcutFor(item, kSecond); });
  shows("", 0);
  desktop.loop.settle();
  shows(" ", NSEventModifierFlags::kCommand);
}

}  // namespace
}  // namespace vistrel::KeyboardShortcuts
