// SPDX-License-Identifier: Apache-2.0
#include <qdxcompare/same_reason.h>

#include <algorithm>
#include <string_view>

namespace NVORNQDX20 {
namespace {

/// What is around the "*" of a reason's path; without one, the whole path is before and after it.
struct TEnds {
  explicit TEnds(std::string_view path) : fBefore(path), fAfter(path) {
    const std::size_t star = path.front() == '/' ? path.find('*') : path.npos;
    fHasStar = star != path.npos;
    if (!fHasStar) return;
    fBefore = path.substr(0, star);
    fAfter = path.substr(star + 1);
  }

  std::string_view fBefore;
  std::string_view fAfter;
  bool fHasStar;
};

}  // namespace

bool MayBeSameReason(const std::string& a, const std::string& b) {
  if (a == b) return true;
  if (a.empty() || b.empty()) return false;
  // All that share a reason have the same text from its first blank on.
  const std::string_view pathOfA(a.data(), std::min(a.find(' '), a.size()));
  const std::string_view pathOfB(b.data(), std::min(b.find(' '), b.size()));
  if (pathOfA.empty() || pathOfB.empty()) return false;
  if (a.compare(pathOfA.size(), a.npos, b, pathOfB.size(), b.npos) != 0) return false;
  const TEnds ofA(pathOfA);
  const TEnds ofB(pathOfB);
  if (!ofA.fHasStar && !ofB.fHasStar) return false;
  const std::size_t before = std::min(ofA.fBefore.size(), ofB.fBefore.size());
  const std::size_t after = std::min(ofA.fAfter.size(), ofB.fAfter.size());
  return before + after <= std::min(pathOfA.size(), pathOfB.size()) &&
         ofA.fBefore.substr(0, before) == ofB.fBefore.substr(0, before) &&
         ofA.fAfter.substr(ofA.fAfter.size() - after) ==
             ofB.fAfter.substr(ofB.fAfter.size() - after);
}

}  // namespace NVORNQDX20
