#include "appkit/CATransaction.h"

#include "appkit/NSApplication.h"
#include "host/Host.h"

namespace vistrel {

void CATransaction::flush() {
  NSApplication::shared().mapComingWindow();
  host::current().windows().flush();
}

}  // namespace vistrel
