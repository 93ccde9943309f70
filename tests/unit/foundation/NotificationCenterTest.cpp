#include "foundation/NotificationCenter.h"

#include <gtest/gtest.h>

#include "simulated/SimulatedDesktop.h"

namespace vistrel {
namespace {

TEST(NotificationCenter, PostsOverASnapshot) {
  NotificationCenter center;
  std::string calls;
  ObservationToken late;
  ObservationToken second;
  const auto first = center.addObserver("n", nullptr, [&](const Notification&) {
    calls += "1";
    second.remove();
    second.remove();
    if (!late.isActive()) late = center.addObserver("n", nullptr, [&](const Notification&) { calls += "L"; });
  });
  second = center.addObserver("n", nullptr, [&](const Notification&) { calls += "2"; });
  const int sender = 0;
  const auto picky = center.addObserver("n", &sender, [&](const Notification&) { calls += "s"; });
  center.post("n");
  center.post("n", &sender);
  center.post("m");
  EXPECT_EQ(calls, "11sL");
}

TEST(NotificationCenter, MainQueueDeliversLaterAndNotToTheRemoved) {
  simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
  auto& center = NotificationCenter::defaultCenter();
  int calls = 0;
  auto token = center.addObserver(
      "n", nullptr, [&](const Notification&) { ++calls; }, NotificationCenter::Queue::Main);
  center.post("n");
  EXPECT_EQ(calls, 0);
  desktop.loop.settle();
  EXPECT_EQ(calls, 1);
  center.post("n");
  token.remove();
  desktop.loop.settle();
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace vistrel
