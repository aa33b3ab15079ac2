// SPDX-License-Identifier: Apache-2.0
/// Shows differences: as text for people, as JSON, and in one line.
#ifndef TOOLS_QDX_FORMAT_DIFF_FORMAT_H_
#define TOOLS_QDX_FORMAT_DIFF_FORMAT_H_

#include <string>
#include <vector>

#include <qdxcompare/compare.h>

namespace NVORNQDX20 {

/// Returns a heading for each namespace; then its classes that differ; then its devices, each with
/// its instances below. An instance that only one side has is a line with the number of
/// consequences; one that differs has a line for each property.
///
/// `raw` gives whole object paths and bare values instead of short names and values with units.
std::string FormatDifferences(const std::vector<TDifference>& differences, bool raw);

/// Returns an array with an object for each difference.
TJSON DifferencesAsJSON(const std::vector<TDifference>& differences);

/// The numbers of instances that differ, without those that only follow from others.
struct TDiffSummary {
  std::size_t fChanged = 0;
  std::size_t fAdded = 0;
  std::size_t fRemoved = 0;
  std::size_t fUnknown = 0;
  std::size_t fDevices = 0;
  std::size_t fDeclarations = 0;  ///< Differences of namespaces and classes.
};
TDiffSummary SummaryOf(const std::vector<TDifference>& differences);

/// Returns "3 changed, 1 added, 2 removed in 4 devices".
std::string FormatSummary(const TDiffSummary& summary);

TJSON SummaryAsJSON(const TDiffSummary& summary);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_FORMAT_DIFF_FORMAT_H_
