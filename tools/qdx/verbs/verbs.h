// SPDX-License-Identifier: Apache-2.0
/// The verbs of the command: one function for each, in a source file of the same name; upload and
/// download share transfer.cpp.
#ifndef TOOLS_QDX_VERBS_VERBS_H_
#define TOOLS_QDX_VERBS_VERBS_H_

#include "cli/verb.h"

namespace NVORNQDX20 {

TVerb CollectVerb();
TVerb DiffVerb();
TVerb DownloadVerb();
TVerb IdentityVerb();
TVerb MediaVerb();
TVerb PluginsVerb();
TVerb RedactVerb();
TVerb ReportVerb();
TVerb ShowVerb();
TVerb SummaryVerb();
TVerb UploadVerb();
TVerb ValidateVerb();

/// The command with every verb, in the order of the help.
const TProgram& TheProgram();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_VERBS_H_
