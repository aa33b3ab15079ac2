// SPDX-License-Identifier: Apache-2.0
/// Writing to a descriptor.
#ifndef QDXSYSTEM_WRITE_H_
#define QDXSYSTEM_WRITE_H_

#include <string_view>

namespace NVORNQDX20 {

/// Writes every byte, however often a signal or a full pipe interrupts that. False if it fails;
/// errno has the reason, and some of the bytes may have been written. May be called by the handler
/// of a signal.
bool WriteAll(int descriptor, std::string_view bytes);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_WRITE_H_
