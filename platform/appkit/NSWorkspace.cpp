#include "appkit/NSWorkspace.h"

#include "backend/Backend.h"
#include "base/URL.h"

namespace vistrel {

NSWorkspace& NSWorkspace::shared() {
  static NSWorkspace workspace;
  return workspace;
}

bool NSWorkspace::openURL(const URL& url) {
  return backend::current().session().openUrl(url.absoluteString());
}

bool NSWorkspace::isVoiceOverEnabled() const { return backend::current().session().isScreenReaderOn(); }

bool NSWorkspace::accessibilityDisplayShouldIncreaseContrast() const {
  return backend::current().session().increasesContrast();
}

}  // namespace vistrel
