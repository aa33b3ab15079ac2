// SPDX-License-Identifier: Apache-2.0
/// The summary of a machine as JSON, for programs.
#ifndef TOOLS_QDX_SUMMARY_SUMMARY_JSON_H_
#define TOOLS_QDX_SUMMARY_SUMMARY_JSON_H_

#include <qdxsummary/summary.h>

#include <qdxsnapshot/value_json.h>

namespace NVORNQDX20 {

/// Returns all groups, however many there are. What is not known is null, and in "gaps".
TJSON SummaryAsJSON(const NSummary::TSummary& summary);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_SUMMARY_SUMMARY_JSON_H_
