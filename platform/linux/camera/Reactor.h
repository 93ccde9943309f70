#pragma once

#include "linux/Reactor.h"

namespace vistrel::capture {

using desktop::Reactor;
using desktop::Registration;

}  // namespace vistrel::capture
