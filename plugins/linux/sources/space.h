// SPDX-License-Identifier: Apache-2.0
/// Asks for the space of mounted file systems.
#ifndef PLUGINS_LINUX_SOURCES_SPACE_H_
#define PLUGINS_LINUX_SOURCES_SPACE_H_

#include <cstdint>
#include <string>

#include "reading.h"

namespace NVORNQDX20 {

/// The space of a file system; sizes in bytes.
struct TSpace {
  std::uint64_t fSize;
  std::uint64_t fUsed;
  std::uint64_t fAvailable;  ///< To users other than root.
  std::uint64_t fInodes;
  std::uint64_t fFreeInodes;
};

/// Returns the space of the file system that is mounted there on this machine. This call can
/// block on a network file system: callers must check TMount::fCanBeAsked first.
TReading<TSpace> ReadSpace(const TFiles& files, const std::string& path);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SPACE_H_
