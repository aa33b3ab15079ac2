// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/error_text.h>

#include <cstring>

namespace NVORNQDX20 {

std::string ErrorText(int error) {
  // Not strerror(), which translates according to the program's locale.
  const char* const text = ::strerrordesc_np(error);
  return text != nullptr ? text : "Unknown error " + std::to_string(error);
}

}  // namespace NVORNQDX20
