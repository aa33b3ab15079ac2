// SPDX-License-Identifier: Apache-2.0
/// Writes to a descriptor.
#ifndef QDXSYSTEM_WRITE_H_
#define QDXSYSTEM_WRITE_H_

#include <string_view>

namespace NVORNQDX20 {

/// Writes all bytes, and continues after signals and short writes. Waits for room also if the
/// descriptor does not block, a mode that another process may have set for a shared pipe. Returns
/// false, with errno set, on failure; some of the bytes may have been written. Async-signal-safe.
bool WriteAll(int descriptor, std::string_view bytes);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_WRITE_H_
