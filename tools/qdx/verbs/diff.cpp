// SPDX-License-Identifier: Apache-2.0
// The verb diff.
#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxreport/diff_report.h>

#include <algorithm>
#include <optional>
#include <utility>

#include <qdxcompare/compare.h>

#include "cli/failure.h"
#include "cli/new_file.h"
#include "cli/output.h"
#include "cli/whole_file.h"
#include "format/diff_format.h"
#include "input/completeness.h"
#include "input/diff_parts.h"
#include "input/document.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

using TClass = boost::shared_ptr<ICIMClass>;

/// Returns the class, if the namespace has it, with the number of its instances only.
std::optional<TClassSnapshot> CountInstances(const ICIMNamespace& ns, const std::string& name) {
  TClass cimClass;
  (void)TryUnlessOutOfMemory([&] { cimClass = ns.GetClass(name, {}); });
  if (!cimClass) return std::nullopt;
  TClassSnapshot counted;
  counted.fName = cimClass->GetName({});
  NModel::ForEachInstance(*cimClass, [&](const ICIMInstance&) { ++counted.fInstanceCount; });
  return counted;
}

/// Prints a line for each class that lacks instances. Returns whether there is such a class.
bool ReportLosses(const TComparedNamespace& ns, const std::string& file) {
  const std::string place = ns.fNamespace->GetName({}) + " in " + file;
  bool any = false;
  for (const auto& [where, reason] : ns.fReasons) {
    const auto& [className, instance, property] = where;
    if (!instance.empty() || !property.empty()) continue;
    const auto counted = CountInstances(*ns.fNamespace, className);
    if (counted) any = ReportLostInstances(place, *counted, ns.fReasons) || any;
  }
  return any;
}

/// Sets `incomplete` if values were lost.
TComparedDocument Open(const std::string& file, const TArguments& arguments, bool& incomplete) {
  TComparedDocument document{file, {}};
  for (const auto& ns : OpenDocument(file, arguments, incomplete)) {
    document.fNamespaces.push_back({ns, NDescribe::ReadMissingReasons(*ns)});
    const bool lost = ReportLosses(document.fNamespaces.back(), file);
    incomplete = incomplete || lost;
  }
  return document;
}

/// Parses "CLASS" or "CLASS.PROPERTY".
TIgnored ParseIgnored(const std::string& text) {
  const std::size_t dot = text.find('.');
  const std::string name = text.substr(0, dot);
  const std::string property = dot == std::string::npos ? "" : text.substr(dot + 1);
  const bool lacksProperty = dot != std::string::npos && property.empty();
  if (name.empty() || lacksProperty || property.find('.') != std::string::npos) {
    FailOnUsage("option '--ignore' needs CLASS or CLASS.PROPERTY, not " + NModel::Quoted(text));
  }
  return {name, property};
}

enum class EIgnored { kNothing, kKeys, kValues };

/// Returns what a document has of the class, or of the property if one is named.
EIgnored FindIgnored(const TIgnored& ignored, const TComparedDocument& document) {
  EIgnored found = EIgnored::kNothing;
  const auto visit = [&](const TClass& root) {
    for (const TClass& each : NModel::WithSubclasses(root)) {
      if (!NamesClass(ignored, each->GetName({}))) continue;
      if (ignored.fProperty.empty()) found = EIgnored::kValues;
      for (const auto& property : NModel::PropertiesOf(*each)) {
        if (!NModel::EqualIgnoringCase(property.fDecl->GetName(), ignored.fProperty)) continue;
        found = std::max(found, property.fIsKey ? EIgnored::kKeys : EIgnored::kValues);
      }
    }
    return found != EIgnored::kValues;
  };
  for (const TComparedNamespace& ns : document.fNamespaces) {
    ns.fNamespace->EnumerateClasses(visit, {});
  }
  return found;
}

void WarnIfWithoutEffect(const TIgnored& ignored, const TComparedDocument& a,
                         const TComparedDocument& b) {
  const EIgnored found = std::max(FindIgnored(ignored, a), FindIgnored(ignored, b));
  if (found == EIgnored::kValues) return;
  const std::string property = ignored.fProperty.empty() ? "" : "." + ignored.fProperty;
  PrintError("ignoring " + ignored.fClass + property +
             (found == EIgnored::kKeys ? " has no effect: instances are matched by this key"
                                       : " has no effect: neither document has it"));
}

/// Sets the names of the machines, if they count as equal.
void SetMachines(const TComparedDocument& a, const TComparedDocument& b, bool areEqual,
                 TComparisonOptions& options) {
  const std::string ofA = FindMachineName(a.fNamespaces);
  const std::string ofB = FindMachineName(b.fNamespaces);
  if (areEqual) {
    if (ofA.empty()) PrintError("no name of a machine in " + a.fFile);
    if (ofB.empty()) PrintError("no name of a machine in " + b.fFile);
    options.fMachineOfA = ofA;
    options.fMachineOfB = ofB;
  } else if (!ofA.empty() && !ofB.empty() && !NModel::EqualIgnoringCase(ofA, ofB)) {
    PrintError("the machines are " + ofA + " and " + ofB +
               ": --across-hosts lets their names count as equal");
  }
}

TComparisonOptions OptionsOf(const TArguments& arguments, std::vector<TIgnored> ignored,
                             const TComparedDocument& a, const TComparedDocument& b) {
  TComparisonOptions options;
  options.fAll = arguments.Has("all");
  options.fSchema = arguments.Has("schema");
  SetMachines(a, b, arguments.Has("across-hosts"), options);
  for (const TIgnored& each : ignored) WarnIfWithoutEffect(each, a, b);
  options.fIgnored = std::move(ignored);
  std::vector<std::string> lines;
  options.fLeftOut = FindUnsharedParts(a, b, lines);
  for (const std::string& line : lines) PrintError(line);
  return options;
}

void CheckHTML(const TArguments& arguments) {
  if (!arguments.Has("html")) return;
  for (const char* const option : {"json", "summary", "raw"}) {
    if (arguments.Has(option)) {
      FailOnUsage(std::string("option '--") + option + "' cannot be used with '--html'");
    }
  }
}

void Write(const std::vector<TDifference>& differences, const TArguments& arguments) {
  if (arguments.Has("html")) {
    const std::string summary = FormatSummary(SummaryOf(differences));
    WriteWholeFile(
        MakeDiffReport(arguments.GetOperand(0), arguments.GetOperand(1), summary, differences),
        arguments.Get("html", ""));
  } else if (arguments.Has("json")) {
    TJSON json = {{"a", arguments.GetOperand(0)}, {"b", arguments.GetOperand(1)}};
    const bool isSummary = arguments.Has("summary");
    json[isSummary ? "summary" : "differences"] =
        isSummary ? SummaryAsJSON(SummaryOf(differences)) : DifferencesAsJSON(differences);
    WriteJSON(json);
  } else if (arguments.Has("summary")) {
    WriteOutput(FormatSummary(SummaryOf(differences)) + "\n");
  } else {
    WriteOutput(FormatDifferences(differences, arguments.Has("raw")));
  }
}

EExitCode RunDiff(const TArguments& arguments) {
  const std::string a = arguments.GetOperand(0);
  const std::string b = arguments.GetOperand(1);
  if (a == "-" && b == "-") {
    FailOnUsage("only one of the two can be standard input");
  }
  CheckHTML(arguments);
  RefuseToReplace(arguments.Get("html", "-"), {a, b});
  std::vector<TIgnored> ignored;
  for (const std::string& text : arguments.GetAll("ignore")) ignored.push_back(ParseIgnored(text));
  bool incomplete = false;
  const TComparedDocument inA = Open(a, arguments, incomplete);
  const TComparedDocument inB = Open(b, arguments, incomplete);
  const auto differences =
      Compare(inA.fNamespaces, inB.fNamespaces, OptionsOf(arguments, std::move(ignored), inA, inB));
  Write(differences, arguments);
  const bool anyUnknown = std::any_of(differences.begin(), differences.end(), [](const auto& one) {
    return one.fChange == TDifference::kUnknown;
  });
  if (incomplete || anyUnknown) return kExitPartlyDone;
  return differences.empty() ? kExitDone : kExitDifferent;
}

}  // namespace

TVerb DiffVerb() {
  return {
      "diff",
      "Compares two documents; the exit status is 1 if they differ.",
      "A and B are CIM-XML documents, '-' is standard input. Instances are matched by their\n"
      "object paths, whatever their order, and listed by device. '-' marks what only A has, '+'\n"
      "what only B has, '~' what differs, with the old and the new value, and '?' what one of the\n"
      "two does not know because it could not be read.\n"
      "Properties that change while a machine runs, such as counters and free memory, are left\n"
      "out; the manual page lists them. So are the parts that one of the documents was collected\n"
      "without; a line on standard error names them.\n",
      {{"across-hosts", nullptr, "Let the name of one machine count as that of the other."},
       {"ignore", "NAME", "Leave out CLASS or CLASS.PROPERTY; can be given again."},
       {"summary", nullptr, "Only count the differences, in one line."},
       {"html", "FILE", "Write an HTML page; '-' is standard output."},
       {"raw", nullptr, "Show whole object paths and values without units."},
       {"schema", nullptr, "Also compare qualifiers and methods."},
       {"memory", "MIB", "Let a document use so much memory (half of all by default)."},
       {"json", nullptr, "Print one JSON object."},
       {"all", nullptr, "Also compare the properties that change while a machine runs."}},
      RunDiff,
      {{"A"}, {"B"}}};
}

}  // namespace NVORNQDX20
