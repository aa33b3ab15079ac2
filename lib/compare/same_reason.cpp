// SPDX-License-Identifier: Apache-2.0
#include <qdxcompare/same_reason.h>

#include <algorithm>
#include <string_view>

namespace NVORNQDX20 {
namespace {

/// What is around the "*" of a reason; without one, the whole reason is before and after it.
struct TEnds {
  explicit TEnds(std::string_view reason) : fBefore(reason), fAfter(reason) {
    const std::size_t star = reason.front() == '/' ? reason.find('*') : reason.npos;
    fHasStar = star < reason.find(' ');
    if (!fHasStar) return;
    fBefore = reason.substr(0, star);
    fAfter = reason.substr(star + 1);
  }

  std::string_view fBefore;
  std::string_view fAfter;
  bool fHasStar;
};

}  // namespace

bool MayBeSameReason(const std::string& a, const std::string& b) {
  if (a == b) return true;
  if (a.empty() || b.empty()) return false;
  const TEnds ofA(a);
  const TEnds ofB(b);
  if (!ofA.fHasStar && !ofB.fHasStar) return false;
  const std::size_t before = std::min(ofA.fBefore.size(), ofB.fBefore.size());
  const std::size_t after = std::min(ofA.fAfter.size(), ofB.fAfter.size());
  return before + after <= std::min(a.size(), b.size()) &&
         ofA.fBefore.substr(0, before) == ofB.fBefore.substr(0, before) &&
         ofA.fAfter.substr(ofA.fAfter.size() - after) ==
             ofB.fAfter.substr(ofB.fAfter.size() - after);
}

}  // namespace NVORNQDX20
