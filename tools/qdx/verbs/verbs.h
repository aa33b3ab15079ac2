// SPDX-License-Identifier: Apache-2.0
/// The verbs of the command: one function for each, in a source file of the same name; upload and
/// download share transfer.cpp.
#ifndef TOOLS_QDX_VERBS_VERBS_H_
#define TOOLS_QDX_VERBS_VERBS_H_

#include <string>
#include <vector>

#include "cli/arguments.h"
#include "cli/exit_code.h"

namespace NVORNQDX20 {

struct TVerb {
  const char* fName;
  const char* fSummary;      ///< One line.
  const char* fDescription;  ///< Additional lines of its help.
  std::vector<TOptionSpec> fOptions;
  EExitCode (*fRun)(const TArguments& arguments);  ///< Gets the operands without the verb.
  std::vector<TOperandSpec> fOperands = {};        ///< Empty for most verbs.
};

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

/// Every verb, in the order of the help.
const std::vector<TVerb>& AllVerbs();
/// Throws a TCommandFailure if there is no such verb.
const TVerb& FindVerb(const std::string& name);
/// The options that all verbs have.
const std::vector<TOptionSpec>& CommonOptions();

/// Returns the verb's own options, then the common ones.
std::vector<TOptionSpec> OptionsOf(const TVerb& verb);

std::string GeneralHelp();
std::string HelpFor(const TVerb& verb);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_VERBS_H_
