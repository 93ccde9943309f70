#include <gtest/gtest.h>

#include <QCoreApplication>
#include <stdexcept>

#include "linux/qt/QtMainLoop.h"
#include "tests/unit/KeyboardShortcuts/FakeDesktop.h"

namespace vistrel::qt {
namespace {

TEST(MainLoop, GoesOnWhateverAShortcutsActionThrows) {
  int argumentCount = 1;
  char program[] = "test";
  char* arguments[] = {program, nullptr};
  const QCoreApplication application(argumentCount, arguments);
  vistrel::testing::FakeDesktop desktop;
  QtMainLoop loop;
  const KeyboardShortcuts::Name name("test", KeyboardShortcuts::Shortcut(kVK_Space, 256));
  int calls = 0;
  KeyboardShortcuts::onKeyDown(name, [&] {
    ++calls;
    throw std::runtime_error("broken action");
  });
  for (int i = 0; i < 2; ++i) loop.post([&] { desktop.press(kVK_Space, 256); });
  loop.post([&] { loop.quit(); });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace vistrel::qt
