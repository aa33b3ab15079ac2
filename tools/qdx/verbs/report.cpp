// SPDX-License-Identifier: Apache-2.0
// The verb report.
#include <qdxreport/report.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/new_file.h"
#include "cli/whole_file.h"
#include "input/completeness.h"
#include "input/document.h"
#include "input/machine.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

/// Throws a TCommandFailure if an option is given that a document does not have.
void RefuseOptionsOfMachine(const TArguments& arguments) {
  for (const TOptionSpec& option : TMachine::Options()) {
    const std::string name = option.fName;
    if (name != "memory" && arguments.Has(name)) {
      FailOnUsage("option '--" + name + "' cannot be used with a file");
    }
  }
}

TNamespaces NamespacesOfMachine(const TArguments& arguments, bool& incomplete) {
  TMachine machine(arguments);
  TNamespaces namespaces;
  for (const TMachineNamespace& ns : machine.TakeAll()) namespaces.push_back(ns.fNamespace);
  incomplete = !machine.IsComplete();
  const bool lacksAll = std::all_of(namespaces.begin(), namespaces.end(),
                                    [](const auto& ns) { return LacksAllValues(*ns); });
  // The lines about failed providers are the reason.
  if (namespaces.empty() && incomplete) throw TCommandFailure(kExitNothingCollected);
  if (lacksAll) {
    throw TCommandFailure(kExitNothingCollected,
                          "reporting on the machine below " + machine.GetRoot(),
                          {kQDXStatusNotFound, kLacksAllValues});
  }
  return namespaces;
}

/// Prints a line for each class that lacks instances. Returns whether there is such a class.
bool HasLoss(const TNamespaces& namespaces) {
  bool any = false;
  for (const auto& ns : namespaces) {
    any = ReportLostInstances(ns->GetName({}), *ns) || any;
  }
  return any;
}

EExitCode RunReport(const TArguments& arguments) {
  if (!arguments.Has("output")) FailOnUsage("report needs option '--output'");
  const std::string file = arguments.GetOperand(0);
  const std::string output = arguments.Get("output", "");
  RefuseToReplace(output, {file});
  if (!file.empty()) RefuseOptionsOfMachine(arguments);
  bool incomplete = false;
  const TNamespaces namespaces = file.empty() ? NamespacesOfMachine(arguments, incomplete)
                                              : OpenDocument(file, arguments, incomplete);
  incomplete = HasLoss(namespaces) || incomplete;
  WriteWholeFile(MakeReport(namespaces), output);
  return incomplete ? kExitPartlyDone : kExitDone;
}

std::vector<TOptionSpec> ReportOptions() {
  std::vector<TOptionSpec> options = {
      {"output", "FILE", "Write this file; '-' is standard output. Required.", 'o'}};
  const auto machine = TMachine::Options();
  options.insert(options.end(), machine.begin(), machine.end());
  return options;
}

}  // namespace

TVerb ReportVerb() {
  return {"report",
          "Writes an HTML page about a document, or this machine, to be read in a browser.",
          "FILE is a CIM-XML document, '-' is standard input; without it this machine is\n"
          "described. The page is one file that needs nothing from elsewhere: an overview with\n"
          "pictures, every class as a table, and what is missing. It appears complete or not at\n"
          "all, readable by its owner only. Its name is printed.\n",
          ReportOptions(),
          RunReport,
          {{"FILE", TOperandSpec::kOptional}}};
}

}  // namespace NVORNQDX20
