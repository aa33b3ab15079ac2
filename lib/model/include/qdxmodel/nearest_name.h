// SPDX-License-Identifier: Apache-2.0
/// Finds what somebody who mistyped a name may have meant.
#ifndef QDXMODEL_NEAREST_NAME_H_
#define QDXMODEL_NEAREST_NAME_H_

#include <string>
#include <string_view>
#include <vector>

namespace NVORNQDX20::NModel {

/// Returns the name that is fewest slips of the hand away from `typed`, without regard to ASCII
/// case: a character left out, added or replaced, or two neighbours exchanged. Returns an empty
/// text if none is near, which is a slip for every three characters that were typed, and at least
/// one; for equal ones the first.
std::string NearestName(std::string_view typed, const std::vector<std::string>& names);

/// Returns "; did you mean 'NAME'?", or an empty text.
std::string SuggestedName(std::string_view typed, const std::vector<std::string>& names);

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_NEAREST_NAME_H_
