#include "appkit/NSSound.h"

#include "host/Host.h"

namespace vistrel {

void NSSound::beep() { host::current().keyboard().beep(); }

}  // namespace vistrel
