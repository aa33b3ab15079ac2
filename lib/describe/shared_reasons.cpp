// SPDX-License-Identifier: Apache-2.0
#include "shared_reasons.h"

#include <algorithm>

namespace NVORNQDX20::NDescribe {
namespace {

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

/// Returns the reason with "*" in the place of what differs in the paths.
TReason CommonReason(const TSharedReasons::TByInstance& reasons) {
  const TReason& first = reasons.front().second;
  std::size_t begin = first.size();
  std::size_t end = first.size();
  for (const auto& [instance, each] : reasons) {
    const auto limit = static_cast<std::ptrdiff_t>(std::min(first.size(), each.size()));
    const auto same = std::mismatch(first.begin(), first.begin() + limit, each.begin()).first;
    if (same == first.end() && first.size() == each.size()) continue;
    begin = std::min(begin, static_cast<std::size_t>(same - first.begin()));
    const auto last = std::mismatch(first.rbegin(), first.rbegin() + limit, each.rbegin()).first;
    end = std::min(end, static_cast<std::size_t>(last - first.rbegin()));
  }
  if (begin == first.size()) return first;
  // A number differs as a whole.
  while (begin > 0 && IsDigit(first[begin - 1])) --begin;
  std::size_t rest = std::max(begin, first.size() - end);
  while (rest < first.size() && IsDigit(first[rest])) ++rest;
  return TReason(first.substr(0, begin) + "*" + first.substr(rest));
}

}  // namespace

void TSharedReasons::Add(const std::string& instance, const TReason& reason) {
  fReasons[CauseOf(reason)].emplace_back(instance, reason);
}

TSharedReasons::TCause TSharedReasons::CauseOf(const TReason& reason) {
  const std::size_t space = reason.find(' ');
  if (reason.IsError() || reason.empty() || reason[0] != '/' || space == reason.npos) {
    return {"", reason, reason.IsError()};
  }
  std::string file = reason.substr(0, space);
  file.erase(0, file.rfind('/'));
  file.erase(std::remove_if(file.begin(), file.end(), IsDigit), file.end());
  return {file, reason.substr(space), false};
}

TSharedReasons::TByInstance TSharedReasons::Summarize(bool mayShare) const {
  const auto hasFewer = [](const auto& one, const auto& other) {
    return one.second.size() < other.second.size();
  };
  const auto commonest = std::max_element(fReasons.begin(), fReasons.end(), hasFewer);
  TByInstance summary;
  for (auto each = fReasons.begin(); each != fReasons.end(); ++each) {
    const TByInstance& reasons = each->second;
    if (mayShare && each == commonest && reasons.size() > 1) {
      summary.emplace_back("", CommonReason(reasons));
    } else {
      summary.insert(summary.end(), reasons.begin(), reasons.end());
    }
  }
  return summary;
}

}  // namespace NVORNQDX20::NDescribe
