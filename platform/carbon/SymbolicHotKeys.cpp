#include "carbon/SymbolicHotKeys.h"

#include "backend/Backend.h"

namespace vistrel {

OSStatus CopySymbolicHotKeys(std::optional<SymbolicHotKeys>* result) {
  *result = backend::current().keyboard().symbolicHotKeys();
  return noErr;
}

}  // namespace vistrel
