// SPDX-License-Identifier: Apache-2.0
/// The frame of a page: its head with the policy, and what is embedded.
#ifndef LIB_REPORT_PAGE_H_
#define LIB_REPORT_PAGE_H_

#include <string>

namespace NVORNQDX20::NReport {

// The files of the folder "page", and the names by which a policy admits them.
extern const char* const kStyle;
extern const char* const kStyleHash;
extern const char* const kScript;
extern const char* const kScriptHash;

/// Returns the page up to its body. Its policy forbids whatever is not the page's own style sheet
/// and, if `hasScript`, the page's own script.
std::string PageHead(const std::string& title, bool hasScript);

}  // namespace NVORNQDX20::NReport

#endif  // LIB_REPORT_PAGE_H_
