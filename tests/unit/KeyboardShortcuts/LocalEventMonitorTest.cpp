#include "KeyboardShortcuts/LocalEventMonitor.h"

#include <gtest/gtest.h>

#include <memory>

namespace vistrel::KeyboardShortcuts {
namespace {

TEST(LocalEventMonitor, WatchesEventsForItsLife) {
  int seen = 0;
  const auto keyDown = NSEvent::keyEvent({NSEventType::KeyDown, {}, 0});
  auto monitor = std::make_shared<LocalEventMonitor>(maskOf(NSEventType::KeyDown), [&](const auto& event) {
                   ++seen;
                   return event->keyCode() == 0 ? nullptr : event;
                 })->start();
  EXPECT_EQ(NSEvent::filter(keyDown), nullptr);
  const auto other = NSEvent::keyEvent({NSEventType::KeyDown, {}, 1});
  EXPECT_EQ(NSEvent::filter(other), other);
  EXPECT_NE(NSEvent::filter(NSEvent::keyEvent({NSEventType::KeyUp, {}, 0})), nullptr);
  EXPECT_EQ(seen, 2);
  monitor.reset();
  {
    const LocalEventMonitor neverStarted(maskOf(NSEventType::KeyDown), [](const auto&) { return nullptr; });
  }
  EXPECT_EQ(NSEvent::filter(keyDown), keyDown);
  EXPECT_EQ(seen, 2);

  monitor = std::make_shared<LocalEventMonitor>(maskOf(NSEventType::KeyDown), [&](const auto& event) {
              monitor.reset();
              return event;
            })->start();
  EXPECT_EQ(NSEvent::filter(keyDown), keyDown);
  EXPECT_EQ(monitor, nullptr);
}

}  // namespace
}  // namespace vistrel::KeyboardShortcuts
