// SPDX-License-Identifier: Apache-2.0
// The verb summary.
#include <qdxmodel/names.h>
#include <qdxsummary/summary.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include <qdxsnapshot/record.h>
#include "cli/output.h"
#include "input/completeness.h"
#include "input/document.h"
#include "input/machine.h"
#include "input/worker_options.h"
#include "summary/summary_json.h"
#include "summary/summary_text.h"
#include "summary/words.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

using NSummary::TGap;
using NSummary::TSummary;

/// So that it also fits on a terminal of 43 lines with the prompt and the command.
constexpr std::size_t kMostLines = 40;

struct TFoundSummary {
  TSummary fSummary;
  TSummarySource fSource;
  bool fIsComplete = true;
};

/// Prints a line for each failure. Returns whether there was one.
bool ReportFailures(const std::vector<TGap>& gaps) {
  bool any = false;
  for (const TGap& gap : gaps) {
    if (gap.fKind != TGap::kFailed) continue;
    PrintError("describing " + Listed(gap.fSubjects) + ": " + FirstReason(gap.fReason));
    any = true;
  }
  return any;
}

[[noreturn]] void FailToSummarize(const std::string& what, const std::string& why) {
  throw TCommandFailure(kExitNothingCollected, "describing " + what, {kQDXStatusNotFound, why});
}

TFoundSummary SummarizeMachine(const TArguments& arguments) {
  TMachine machine(arguments);
  const auto ns = machine.TakeMachineNamespace(NSummary::ClassesOfSummary());
  const std::string what = "the machine below " + machine.GetRoot();
  if (!ns) {
    // The lines about failed providers are the reason.
    if (!machine.GetFailures().empty()) throw TCommandFailure(kExitNothingCollected);
    FailToSummarize(
        what, std::string("no provider has ") + kMachineNamespace + NPluginHost::kListPlugins);
  }
  TFoundSummary found{NSummary::Summarize(*ns),
                      {"", ::geteuid() != 0 || arguments.Has("user")},
                      machine.IsComplete()};
  if (!found.fSummary.DescribesMachine()) FailToSummarize(what, kLacksAllValues);
  return found;
}

/// Returns when the document was collected, if its record says so.
std::string CollectionTimeIn(const TNamespaces& namespaces) {
  const TCIMDateTime recorded = FindRecord(namespaces).fTime;
  return recorded.IsNull() ? "" : MinuteOf(recorded.ToString());
}

/// Of several namespaces, the one with the usual name is taken if it describes a machine.
TFoundSummary SummarizeDocument(const std::string& file, const TArguments& arguments) {
  bool incomplete = false;
  TNamespaces namespaces = OpenDocument(file, arguments, incomplete);
  const std::string time = CollectionTimeIn(namespaces);
  const std::vector<std::string> partsLeftOut = FindPartsExcluded(namespaces);
  std::stable_partition(namespaces.begin(), namespaces.end(), [](const auto& ns) {
    return NModel::EqualIgnoringCase(ns->GetName({}), kMachineNamespace);
  });
  for (const auto& ns : namespaces) {
    TFoundSummary found{NSummary::Summarize(*ns, partsLeftOut), {time, true}, !incomplete};
    if (found.fSummary.DescribesMachine()) return found;
  }
  FailToSummarize("the machine of " + file, "the document describes none");
}

EExitCode RunSummary(const TArguments& arguments) {
  const std::string file = arguments.GetOperand(0);
  if (!file.empty()) RefuseOptionsWithFile(arguments);
  const TFoundSummary found =
      file.empty() ? SummarizeMachine(arguments) : SummarizeDocument(file, arguments);
  if (arguments.Has("json")) {
    WriteJSON(SummaryAsJSON(found.fSummary));
  } else {
    const bool isTerminal = ::isatty(STDOUT_FILENO) != 0;
    WriteOutput(
        FormatScreen(SectionsOf(found.fSummary, found.fSource),
                     {kMostLines, isTerminal ? TerminalWidth(STDOUT_FILENO) : TScreenSize::kAny}));
  }
  const bool hasFailed = ReportFailures(found.fSummary.fGaps);
  return found.fIsComplete && !hasFailed ? kExitDone : kExitPartlyDone;
}

std::vector<TOptionSpec> SummaryOptions() {
  std::vector<TOptionSpec> options = BesideFile(WorkerOptions());
  options.insert(options.begin(), kRootFolderOption);
  options.push_back({"json", nullptr, "Print one JSON object."});
  return options;
}

}  // namespace

TVerb SummaryVerb() {
  return {
      "summary",
      "Shows this machine on one screen. The verb of 'qdx' alone.",
      "Says what it is, what needs attention, its parts with those that are alike in one line,\n"
      "their use, and what could not be read. FILE is a CIM-XML document, '-' is standard input;\n"
      "without it this machine is shown.\n",
      SummaryOptions(),
      RunSummary,
      {{"FILE", TOperandSpec::kOptional}}};
}

}  // namespace NVORNQDX20
