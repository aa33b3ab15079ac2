// SPDX-License-Identifier: Apache-2.0
/// Notices a change of the environment variable TZ.
#ifndef QDXSYSTEM_ZONE_VARIABLE_H_
#define QDXSYSTEM_ZONE_VARIABLE_H_

namespace NVORNQDX20 {

/// Remembers the text of TZ, for caches of what depends on the time zone. Allocates nothing.
class TZoneVariable {
 public:
  /// Returns whether TZ differs from its text at the last call. Always true for the first call, and
  /// for a text that is too long to be remembered.
  bool HasChanged();

 private:
  enum { kUnknown, kUnset, kSet } fState = kUnknown;
  char fText[64] = {};
};

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_ZONE_VARIABLE_H_
