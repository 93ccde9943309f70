#pragma once

#include "linux/FileDescriptor.h"

namespace vistrel::capture {

using desktop::FileDescriptor;

}  // namespace vistrel::capture
