// SPDX-License-Identifier: Apache-2.0
/// The summary of a machine on one screen.
#ifndef TOOLS_QDX_SUMMARY_SUMMARY_TEXT_H_
#define TOOLS_QDX_SUMMARY_SUMMARY_TEXT_H_

#include <qdxsummary/summary.h>

#include <string>
#include <vector>

#include "screen.h"

namespace NVORNQDX20 {

/// Where the summary comes from.
struct TSummarySource {
  std::string fCollected;      ///< When the document was collected, if it is one and says so.
  bool fMayAskAsRoot = false;  ///< Whether root would see more: a document may be made again.
};

/// Returns the sections in their order: what needs attention follows the machine.
std::vector<TSection> SectionsOf(const NSummary::TSummary& summary, const TSummarySource& source);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_SUMMARY_SUMMARY_TEXT_H_
