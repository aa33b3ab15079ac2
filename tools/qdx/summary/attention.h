// SPDX-License-Identifier: Apache-2.0
/// The sections of the summary about what is wrong and what is not known.
#ifndef TOOLS_QDX_SUMMARY_ATTENTION_H_
#define TOOLS_QDX_SUMMARY_ATTENTION_H_

#include <qdxsummary/summary.h>

#include <vector>

#include "screen.h"

namespace NVORNQDX20 {

/// What somebody should look at: lost disks, errors of memory, sensors out of range, full file
/// systems.
TSection AttentionSection(const NSummary::TSummary& summary);

/// What is missing, with what to do about it; a section for each kind.
std::vector<TSection> GapSections(const std::vector<NSummary::TGap>& gaps, bool mayAskAsRoot);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_SUMMARY_ATTENTION_H_
