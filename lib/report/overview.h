// SPDX-License-Identifier: Apache-2.0
/// The first part of a report: the machine at a glance, with pictures. It needs no script.
#ifndef LIB_REPORT_OVERVIEW_H_
#define LIB_REPORT_OVERVIEW_H_

#include <qdxsummary/summary.h>

#include <string>
#include <vector>

#include "html.h"
#include "records.h"

namespace NVORNQDX20::NReport {

/// Everything below the heading of the page.
THTML Overview(const NSummary::TSummary& summary, const TRecords& records);

// The parts of the overview; each is empty if the machine does not have it.

THTML Processors(const NSummary::TSummary& summary, const TRecords& records);
THTML Memory(const NSummary::TSummary& summary, const TRecords& records);
THTML Storage(const NSummary::TSummary& summary, const TRecords& records);
THTML Network(const NSummary::TSummary& summary, const TRecords& records);

/// Returns the texts with the separator between them, without those that are empty.
std::string Joined(const std::vector<std::string>& texts, const char* separator = " ");

}  // namespace NVORNQDX20::NReport

#endif  // LIB_REPORT_OVERVIEW_H_
