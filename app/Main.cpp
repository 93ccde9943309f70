#include "app/Main.h"

#include "app/AppDelegate.h"

namespace vistrel {

int runApplication() {
  AppDelegate delegate;
  NSApplication::shared().setDelegate(&delegate, &delegate);
  const int status = NSApplication::shared().run();
  NSApplication::shared().setDelegate(nullptr, nullptr);
  return status;
}

}  // namespace vistrel
