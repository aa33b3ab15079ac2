// SPDX-License-Identifier: Apache-2.0
/// The system's words for a failure.
#ifndef QDXSYSTEM_ERROR_TEXT_H_
#define QDXSYSTEM_ERROR_TEXT_H_

#include <string>

namespace NVORNQDX20 {

/// The English text of an errno value, for example "No such file or directory". Any thread.
std::string ErrorText(int error);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_ERROR_TEXT_H_
