// SPDX-License-Identifier: Apache-2.0
// The verb diff.
#include <algorithm>
#include <utility>

#include <qdxsnapshot/compare.h>
#include "cli/failure.h"
#include "cli/output.h"
#include "cli/terminal.h"
#include "input/completeness.h"
#include "input/diff_parts.h"
#include "input/document.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

/// Sets `incomplete` if values were lost.
std::vector<TNamespaceSnapshot> ReadSnapshot(const std::string& file, const TArguments& arguments,
                                             bool& incomplete) {
  std::vector<TNamespaceSnapshot> snapshot;
  for (const auto& ns : OpenDocument(file, arguments, incomplete)) {
    snapshot.push_back({ns->GetName({}), {}, NDescribe::ReadMissingReasons(*ns)});
    TSnapshotReader(*ns, kValues, snapshot.back().fClasses).ReadAll();
    SortSnapshot(snapshot.back().fClasses);
    const bool lost = ReportLostInstances(snapshot.back().fName + " in " + file,
                                          snapshot.back().fClasses, snapshot.back().fReasons);
    incomplete = incomplete || lost;
  }
  return snapshot;
}

/// The names in JSON, in the order of the enumerators.
const char* const kElements[] = {"namespace",   "class",    "superclass",
                                 "declaration", "instance", "value"};
const char* const kChanges[] = {"removed", "added", "changed", "unknown"};

bool IsOfClass(const TDifference& difference) {
  return difference.fElement == TDifference::kClass ||
         difference.fElement == TDifference::kSuperclass ||
         difference.fElement == TDifference::kDeclaration;
}

/// Returns whether the difference is within an element that both sides have.
bool HasOldAndNew(const TDifference& difference) {
  return difference.fElement == TDifference::kSuperclass ||
         difference.fElement == TDifference::kDeclaration ||
         difference.fElement == TDifference::kValue;
}

TJSON AsJSON(const TDifference& difference) {
  TJSON json = {{"change", kChanges[difference.fChange]},
                {"element", kElements[difference.fElement]},
                {"namespace", difference.fNamespace}};
  if (difference.fElement == TDifference::kNamespace) return json;
  json[IsOfClass(difference) ? "class" : "path"] = difference.fOwner;
  if (difference.fChange == TDifference::kUnknown) json["reason"] = difference.fReason;
  if (!HasOldAndNew(difference)) return json;
  if (difference.fElement != TDifference::kSuperclass) json["property"] = difference.fProperty;
  json["old"] = difference.fOld;
  json["new"] = difference.fNew;
  return json;
}

/// Formats differences for people: a heading for each namespace; a line for each element that only
/// one side has; and for an element that differs, its line and a line for each property.
class TListing {
 public:
  void Add(const TDifference& difference) {
    if (difference.fNamespace != fNamespace) {
      fNamespace = difference.fNamespace;
      fOwner.clear();
      AddLine({{fNamespace}, TTableRow::kHeading});
    }
    if (!HasOldAndNew(difference)) {
      AddLine({{MarkOf(difference) + NameOf(difference) + WhyUnknown(difference)},
               StyleOf(difference)});
      return;
    }
    const std::string owner = NameOf(difference);
    if (owner != fOwner) AddLine({{"~ " + owner}});
    fOwner = owner;
    const bool isSuperclass = difference.fElement == TDifference::kSuperclass;
    const std::string changed = isSuperclass ? "(superclass)" : difference.fProperty;
    fRows.push_back(
        {{"    " + MarkOf(difference) + changed, ChangeOf(difference) + WhyUnknown(difference)}});
  }

  std::string Finish() {
    EndTable();
    return fText;
  }

 private:
  static std::string MarkOf(const TDifference& difference) {
    static const char* const kMarks[] = {"- ", "+ ", "~ ", "? "};
    return kMarks[difference.fChange];
  }
  static std::string WhyUnknown(const TDifference& difference) {
    const bool isUnknown = difference.fChange == TDifference::kUnknown;
    return isUnknown ? "  (not known: " + difference.fReason + ")" : "";
  }
  static TTableRow::EStyle StyleOf(const TDifference& difference) {
    if (difference.fChange == TDifference::kUnknown) return TTableRow::kDim;
    return difference.fChange == TDifference::kRemoved ? TTableRow::kRemoved : TTableRow::kAdded;
  }
  static std::string NameOf(const TDifference& difference) {
    if (difference.fElement == TDifference::kNamespace) return "namespace " + difference.fNamespace;
    return (IsOfClass(difference) ? "class " : "") + difference.fOwner;
  }
  static std::string ChangeOf(const TDifference& difference) {
    if (difference.fChange == TDifference::kRemoved) return PlainText(difference.fOld);
    if (difference.fChange == TDifference::kAdded) return PlainText(difference.fNew);
    return PlainText(difference.fOld) + " -> " + PlainText(difference.fNew);
  }

  void AddLine(const TTableRow& row) {
    EndTable();
    fText += FormatTable({row});
  }
  /// Aligns the properties of one element.
  void EndTable() {
    fText += FormatTable(fRows);
    fRows.clear();
  }

  std::string fText;
  std::string fNamespace;
  std::string fOwner;
  std::vector<TTableRow> fRows;
};

EExitCode RunDiff(const TArguments& arguments) {
  const std::string a = arguments.GetOperand(0);
  const std::string b = arguments.GetOperand(1);
  if (a == "-" && b == "-") {
    FailOnUsage("only one of the two can be standard input");
  }
  bool incomplete = false;
  TComparedDocument inA{a, ReadSnapshot(a, arguments, incomplete)};
  TComparedDocument inB{b, ReadSnapshot(b, arguments, incomplete)};
  for (const std::string& line : RemoveUnsharedParts(inA, inB)) PrintError(line);
  const auto differences =
      Compare(std::move(inA.fNamespaces), std::move(inB.fNamespaces), arguments.Has("all"));
  if (arguments.Has("json")) {
    TJSON list = TJSON::array();
    for (const TDifference& difference : differences) list.push_back(AsJSON(difference));
    WriteJSON({{"a", a}, {"b", b}, {"differences", list}});
  } else {
    TListing listing;
    for (const TDifference& difference : differences) listing.Add(difference);
    WriteOutput(listing.Finish());
  }
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
      "object paths, whatever their order. '-' marks what only A has, '+' what only B has, '~'\n"
      "what differs, with the old and the new value, and '?' what one of the two does not know\n"
      "because it could not be read.\n"
      "Properties that change while a machine runs, such as counters and free memory, are left\n"
      "out; the manual page lists them. So are the parts that one of the documents was collected\n"
      "without; a line on standard error names them.\n",
      {{"memory", "MIB", "Let a document use so much memory (half of all by default)."},
       {"json", nullptr, "Print one JSON object."},
       {"all", nullptr, "Also compare the properties that change while a machine runs."}},
      RunDiff,
      {{"A"}, {"B"}}};
}

}  // namespace NVORNQDX20
