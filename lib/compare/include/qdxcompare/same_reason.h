// SPDX-License-Identifier: Apache-2.0
/// Compares reasons why values are missing.
#ifndef QDXCOMPARE_SAME_REASON_H_
#define QDXCOMPARE_SAME_REASON_H_

#include <string>

namespace NVORNQDX20 {

/// Returns whether the reasons are the same, or may be: one that several instances share has "*" in
/// the place of what differs in their paths, which depends on what other instances there are.
bool MayBeSameReason(const std::string& a, const std::string& b);

}  // namespace NVORNQDX20

#endif  // QDXCOMPARE_SAME_REASON_H_
