// SPDX-License-Identifier: Apache-2.0
/// Numbers of things in messages.
#ifndef QDXMODEL_COUNTED_H_
#define QDXMODEL_COUNTED_H_

#include <cstddef>
#include <string>

namespace NVORNQDX20::NModel {

/// Returns the number and what follows it: for one thing, or for any other number of them.
inline std::string Counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_COUNTED_H_
