#include "appkit/NSWorkspace.h"

#include "foundation/URL.h"
#include "host/Host.h"

namespace vistrel {

NSWorkspace& NSWorkspace::shared() {
  static NSWorkspace workspace;
  return workspace;
}

bool NSWorkspace::openURL(const URL& url) { return host::current().session().openUrl(url.absoluteString()); }

}  // namespace vistrel
