// SPDX-License-Identifier: Apache-2.0
// The system's words for a failure.
#include <qdxsystem/error_text.h>

#include <cstring>

namespace NVORNQDX20 {

std::string ErrorText(int error) {
  // Not strerror(): it translates into the host program's language.
  const char* const text = ::strerrordesc_np(error);
  return text != nullptr ? text : "Unknown error " + std::to_string(error);
}

}  // namespace NVORNQDX20
