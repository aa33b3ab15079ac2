// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/zone_variable.h>

#include <cstdlib>
#include <cstring>

namespace NVORNQDX20 {

bool TZoneVariable::HasChanged() {
  const char* const text = std::getenv("TZ");
  if (text == nullptr) {
    const bool wasUnset = fState == kUnset;
    fState = kUnset;
    return !wasUnset;
  }
  if (fState == kSet && std::strcmp(text, fText) == 0) return false;
  const std::size_t size = std::strlen(text) + 1;
  fState = size <= sizeof fText ? kSet : kUnknown;
  if (fState == kSet) std::memcpy(fText, text, size);
  return true;
}

}  // namespace NVORNQDX20
