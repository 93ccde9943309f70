#include "appkit/CATransaction.h"

#include "appkit/NSApplication.h"
#include "backend/Backend.h"

namespace vistrel {

void CATransaction::flush() {
  NSApplication::shared().mapComingWindow();
  backend::current().windows().flush();
}

}  // namespace vistrel
