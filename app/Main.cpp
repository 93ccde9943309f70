#include "app/Main.h"

#include "app/AppDelegate.h"
#include "app/Popover.h"

namespace vistrel {

int runApplication() {
  AppDelegate delegate;
  NSApplication::shared().setDelegate(&delegate, &delegate);
  const int status = NSApplication::shared().run();
  // While everything still stands: a camera that is left in the middle of a frame starves whoever opens it
  // next.
  if (delegate.popover()) delegate.popover()->performClose(nullptr);
  NSApplication::shared().setDelegate(nullptr, nullptr);
  return status;
}

}  // namespace vistrel
