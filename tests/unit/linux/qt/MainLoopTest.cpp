#include <gtest/gtest.h>

#include <QCoreApplication>
#include <stdexcept>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "base/KeyCodes.h"
#include "linux/qt/QtMainLoop.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel::qt {
namespace {

TEST(MainLoop, GoesOnWhateverAShortcutsActionThrows) {
  int argumentCount = 1;
  char program[] = "test";
  char* arguments[] = {program, nullptr};
  const QCoreApplication application(argumentCount, arguments);
  simulated::SimulatedDesktop desktop{""};
  QtMainLoop loop;
  const KeyboardShortcuts::Name name("test", KeyboardShortcuts::Shortcut(kVK_Space, cmdKey));
  int calls = 0;
  KeyboardShortcuts::onKeyDown(name, [&] {
    ++calls;
    throw std::runtime_error("broken action");
  });
  for (int i = 0; i < 2; ++i) loop.post([&] { desktop.simulatedHotKeys.press({kVK_Space, cmdKey}); });
  loop.post([&] { loop.quit(); });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace vistrel::qt
