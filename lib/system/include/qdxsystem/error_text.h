// SPDX-License-Identifier: Apache-2.0
/// Texts of errno values.
#ifndef QDXSYSTEM_ERROR_TEXT_H_
#define QDXSYSTEM_ERROR_TEXT_H_

#include <string>

namespace NVORNQDX20 {

/// Returns the English text of an errno value, for example "No such file or directory".
/// Thread-safe.
std::string ErrorText(int error);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_ERROR_TEXT_H_
