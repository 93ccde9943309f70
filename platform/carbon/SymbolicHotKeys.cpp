#include "carbon/SymbolicHotKeys.h"

#include "host/Host.h"

namespace vistrel {

OSStatus CopySymbolicHotKeys(std::optional<SymbolicHotKeys>* result) {
  *result = host::current().keyboard().symbolicHotKeys();
  return noErr;
}

}  // namespace vistrel
