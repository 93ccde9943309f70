#include "appkit/NSAccessibility.h"

#include "backend/Backend.h"

namespace vistrel {

void NSAccessibility::announce(const std::string& text) { backend::current().session().announce(text); }

}  // namespace vistrel
