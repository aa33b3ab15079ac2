// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/names.h>
#include <qdxmodel/nearest_name.h>

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace NVORNQDX20::NModel {
namespace {

/// Nobody types a longer name by hand.
constexpr std::size_t kLongest = 128;

/// The number of slips between two names: the optimal string alignment distance.
std::size_t CountSlips(std::string_view left, std::string_view right) {
  std::vector<std::size_t> beforeLast(right.size() + 1);
  std::vector<std::size_t> last(right.size() + 1);
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= left.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
      const bool isExchanged =
          i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (isExchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
    beforeLast.swap(last);
    last.swap(row);
  }
  return last.back();
}

}  // namespace

std::string NearestName(std::string_view typed, const std::vector<std::string>& names) {
  std::string nearest;
  if (typed.empty() || typed.size() > kLongest) return nearest;
  const std::string folded = Folded(typed);
  std::size_t fewest = std::max<std::size_t>(typed.size() / 3, 1) + 1;
  for (const std::string& name : names) {
    if (name.size() > 2 * kLongest) continue;
    const std::size_t slips = CountSlips(folded, Folded(name));
    if (slips >= fewest) continue;
    fewest = slips;
    nearest = name;
  }
  return nearest;
}

std::string SuggestedName(std::string_view typed, const std::vector<std::string>& names) {
  const std::string nearest = NearestName(typed, names);
  return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

}  // namespace NVORNQDX20::NModel
