#include "appkit/NSSound.h"

#include "backend/Backend.h"

namespace vistrel {

void NSSound::beep() { backend::current().keyboard().beep(); }

}  // namespace vistrel
