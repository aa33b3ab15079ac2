// SPDX-License-Identifier: Apache-2.0
/// Differences of two documents for people: one HTML page that needs nothing from elsewhere.
#ifndef QDXREPORT_DIFF_REPORT_H_
#define QDXREPORT_DIFF_REPORT_H_

#include <string>
#include <vector>

#include <qdxcompare/compare.h>

namespace NVORNQDX20 {

/// Returns a page about the differences between two documents with these names: the summary, a
/// table for each device, and below it what only follows. Every text is escaped; long ones are cut.
/// The page has no script.
std::string MakeDiffReport(const std::string& a, const std::string& b, const std::string& summary,
                           const std::vector<TDifference>& differences);

}  // namespace NVORNQDX20

#endif  // QDXREPORT_DIFF_REPORT_H_
