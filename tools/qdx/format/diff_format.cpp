// SPDX-License-Identifier: Apache-2.0
#include "diff_format.h"

#include <qdxdescribe/missing_values.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include <qdxdisplay/instance_labels.h>
#include <qdxdisplay/value_text.h>

#include "cli/terminal.h"

namespace NVORNQDX20 {
namespace {

/// The names in JSON, in the order of the enumerators.
const char* const kElements[] = {"namespace", "class", "superclass", "declaration",
                                 "instance",  "value", "qualifier",  "method"};
const char* const kChanges[] = {"removed", "added", "changed", "unknown"};

bool IsOfInstance(const TDifference& difference) {
  return difference.fElement == TDifference::kInstance ||
         difference.fElement == TDifference::kValue;
}

/// Returns whether the difference is within an element that both sides have.
bool HasOldAndNew(const TDifference& difference) {
  return difference.fElement != TDifference::kNamespace &&
         difference.fElement != TDifference::kClass &&
         difference.fElement != TDifference::kInstance;
}

TJSON AsJSON(const TDifference& difference) {
  TJSON json = {{"change", kChanges[difference.fChange]},
                {"element", kElements[difference.fElement]},
                {"namespace", difference.fNamespace}};
  if (difference.fElement == TDifference::kNamespace) return json;
  json[IsOfInstance(difference) ? "path" : "class"] = difference.fOwner;
  if (difference.fDevice != difference.fOwner && IsOfInstance(difference)) {
    json["device"] = difference.fDevice;
  }
  if (!difference.fFollows.empty()) json["follows"] = difference.fFollows;
  if (difference.fChange == TDifference::kUnknown) json["reason"] = difference.fReason;
  if (!HasOldAndNew(difference)) return json;
  if (difference.fElement != TDifference::kSuperclass) json["property"] = difference.fProperty;
  json["old"] = difference.fOld;
  json["new"] = difference.fNew;
  return json;
}

std::string MarkOf(TDifference::EChange change) {
  static const char* const kMarks[] = {"- ", "+ ", "~ ", "? "};
  return kMarks[change];
}

std::string WhyUnknown(const TDifference& difference) {
  const bool isUnknown = difference.fChange == TDifference::kUnknown;
  return isUnknown ? "  (not known: " + difference.fReason + ")" : "";
}

TTableRow::EStyle StyleOf(TDifference::EChange change) {
  if (change == TDifference::kChanged) return TTableRow::kPlain;
  if (change == TDifference::kUnknown) return TTableRow::kDim;
  return change == TDifference::kRemoved ? TTableRow::kRemoved : TTableRow::kAdded;
}

std::string Counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/// Returns the elements that `from` has and `other` does not, each as often.
TJSON Without(const TJSON& from, TJSON other) {
  TJSON rest = TJSON::array();
  for (const TJSON& element : from) {
    const auto found = std::find(other.begin(), other.end(), element);
    found == other.end() ? rest.push_back(element) : void(other.erase(found));
  }
  return rest;
}

/// Longer lists are shown by what came and what went.
constexpr std::size_t kShortList = 4;
/// Finding that takes time in proportion to the square.
constexpr std::size_t kLongestList = 2000;

bool IsLongList(const TJSON& value) {
  return value.is_array() && value.size() > kShortList && value.size() <= kLongestList;
}

/// What belongs to one instance.
struct TMember {
  std::vector<const TDifference*> fDifferences;
  std::size_t fAssociations = 0;  // that follow from it
  std::size_t fReasons = 0;
};

/// Members by object path, and so by class.
using TDevice = std::map<std::string, TMember>;

class TListing {
 public:
  TListing(const std::vector<TDifference>& differences, bool raw) : fIsRaw(raw) {
    for (const TDifference& each : differences) Add(each);
  }

  std::string Format() {
    for (const auto& [name, ns] : fNamespaces) {
      AddLine(0, name, TTableRow::kHeading);
      for (const TDifference* const each : ns.fDeclarations) AddDeclaration(*each);
      EndTable();
      for (const auto& [head, device] : ns.fDevices) AddDevice(head, device);
    }
    return fText;
  }

 private:
  struct TNamespace {
    std::vector<const TDifference*> fDeclarations;
    std::map<std::string, TDevice> fDevices;  // by the path of the head
  };

  void Add(const TDifference& difference) {
    TNamespace& ns = fNamespaces[difference.fNamespace];
    if (!IsOfInstance(difference)) {
      ns.fDeclarations.push_back(&difference);
      return;
    }
    for (const auto* path : {&difference.fOwner, &difference.fDevice, &difference.fFollows}) {
      fLabels.Add(*path);
    }
    TDevice& device = ns.fDevices[difference.fDevice];
    if (difference.fFollows.empty()) {
      device[difference.fOwner].fDifferences.push_back(&difference);
      return;
    }
    TMember& cause = device[difference.fFollows];
    const bool isReason =
        NModel::EqualIgnoringCase(difference.fClass, NDescribe::kMissingValueClass);
    ++(isReason ? cause.fReasons : cause.fAssociations);
  }

  const std::string& LabelOf(const std::string& path) const {
    return fIsRaw ? path : fLabels.GetLabel(path);
  }

  void AddDeclaration(const TDifference& difference) {
    const bool isNamespace = difference.fElement == TDifference::kNamespace;
    const std::string owner = isNamespace                 ? "namespace " + difference.fNamespace
                              : difference.fOwner.empty() ? "qualifiers"
                                                          : "class " + difference.fOwner;
    if (!HasOldAndNew(difference)) {
      AddLine(0, MarkOf(difference.fChange) + owner, StyleOf(difference.fChange));
      return;
    }
    if (owner != fOwner) AddLine(0, "~ " + owner, TTableRow::kPlain);
    fOwner = owner;
    AddProperty(0, difference);
  }

  void AddDevice(const std::string& head, const TDevice& device) {
    const auto found = device.find(head);
    found != device.end() ? AddMember(0, head, found->second)
                          : AddLine(0, "  " + LabelOf(head), TTableRow::kPlain);
    for (const auto& [path, member] : device) {
      if (path != head) AddMember(4, path, member);
    }
  }

  void AddMember(std::size_t indent, const std::string& path, const TMember& member) {
    const std::string name = LabelOf(path);
    std::string consequences = Consequences(member);
    const auto isWhole = [](const TDifference* each) {
      return each->fElement == TDifference::kInstance;
    };
    const auto& differences = member.fDifferences;
    if (std::none_of(differences.begin(), differences.end(), isWhole)) {
      const std::string mark = differences.empty() ? "  " : "~ ";
      AddLine(indent, mark + name + consequences, TTableRow::kPlain);
    }
    for (const TDifference* const each : differences) {
      if (!isWhole(each)) {
        AddProperty(indent, *each);
        continue;
      }
      AddLine(indent, MarkOf(each->fChange) + name + WhyUnknown(*each) + consequences,
              StyleOf(each->fChange));
      consequences.clear();
    }
    EndTable();
  }

  static std::string Consequences(const TMember& member) {
    std::string text;
    if (member.fAssociations != 0) text = Counted(member.fAssociations, "association");
    if (member.fReasons != 0) {
      text += (text.empty() ? "" : ", ") + Counted(member.fReasons, "reason");
    }
    return text.empty() ? "" : "  (with " + text + ")";
  }

  void AddProperty(std::size_t indent, const TDifference& difference) {
    const bool isSuperclass = difference.fElement == TDifference::kSuperclass;
    const std::string changed = isSuperclass ? "(superclass)" : difference.fProperty;
    fRows.push_back({{std::string(indent + 4, ' ') + MarkOf(difference.fChange) + changed,
                      ChangeOf(difference) + WhyUnknown(difference)}});
  }

  std::string ChangeOf(const TDifference& difference) const {
    const auto [before, after] = TextsOf(difference);
    if (difference.fChange == TDifference::kRemoved) return before;
    if (difference.fChange == TDifference::kAdded) return after;
    if (fIsRaw || !IsLongList(difference.fOld) || !IsLongList(difference.fNew)) {
      return before + " -> " + after;
    }
    return ChangeOfList(difference, before + " -> " + after);
  }

  /// What came and what went, unless only the order differs.
  static std::string ChangeOfList(const TDifference& difference, const std::string& whole) {
    const TJSON gone = Without(difference.fOld, difference.fNew);
    const TJSON come = Without(difference.fNew, difference.fOld);
    std::string text;
    if (!gone.empty()) text += "without " + PlainText(gone);
    if (!come.empty()) text += (text.empty() ? "with " : ", with ") + PlainText(come);
    return text.empty() ? whole : text;
  }

  std::pair<std::string, std::string> TextsOf(const TDifference& difference) const {
    if (fIsRaw || !difference.fOldDeclaration || !difference.fNewDeclaration) {
      return {PlainText(difference.fOld), PlainText(difference.fNew)};
    }
    return {DistinctTexts(difference.fOld, difference.fNew, *difference.fOldDeclaration).first,
            DistinctTexts(difference.fOld, difference.fNew, *difference.fNewDeclaration).second};
  }

  void AddLine(std::size_t indent, const std::string& line, TTableRow::EStyle style) {
    EndTable();
    fText += FormatLine(std::string(indent, ' ') + line, style);
  }
  /// Aligns the properties of one element.
  void EndTable() {
    fText += FormatTable(fRows);
    fRows.clear();
  }

  const bool fIsRaw;
  std::map<std::string, TNamespace> fNamespaces;
  TInstanceLabels fLabels;
  std::string fText;
  std::string fOwner;
  std::vector<TTableRow> fRows;
};

}  // namespace

std::string FormatDifferences(const std::vector<TDifference>& differences, bool raw) {
  return TListing(differences, raw).Format();
}

TJSON DifferencesAsJSON(const std::vector<TDifference>& differences) {
  TJSON list = TJSON::array();
  for (const TDifference& difference : differences) list.push_back(AsJSON(difference));
  return list;
}

TDiffSummary SummaryOf(const std::vector<TDifference>& differences) {
  TDiffSummary summary;
  std::set<std::pair<std::string, std::string>> instances;
  std::set<std::pair<std::string, std::string>> devices;
  for (const TDifference& each : differences) {
    if (!IsOfInstance(each)) ++summary.fDeclarations;
    if (!IsOfInstance(each) || !each.fFollows.empty()) continue;
    devices.emplace(each.fNamespace, each.fDevice);
    const bool isWhole = each.fElement == TDifference::kInstance;
    // Without keys several instances have one name.
    const bool isNew = instances.emplace(each.fNamespace, each.fOwner).second;
    if (!isNew && !isWhole) continue;
    std::size_t* const counts[] = {&summary.fRemoved, &summary.fAdded, &summary.fChanged,
                                   &summary.fUnknown};
    ++*counts[each.fChange];
  }
  summary.fDevices = devices.size();
  return summary;
}

std::string FormatSummary(const TDiffSummary& summary) {
  std::string text;
  const auto add = [&text](std::size_t count, const std::string& what) {
    if (count != 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what;
  };
  add(summary.fChanged, "changed");
  add(summary.fAdded, "added");
  add(summary.fRemoved, "removed");
  add(summary.fUnknown, "not known");
  if (!text.empty()) text += " in " + Counted(summary.fDevices, "device");
  if (summary.fDeclarations != 0) {
    text += (text.empty() ? "" : "; ") + Counted(summary.fDeclarations, "difference") +
            " of declarations";
  }
  return text.empty() ? "no differences" : text;
}

TJSON SummaryAsJSON(const TDiffSummary& summary) {
  return {{"changed", summary.fChanged}, {"added", summary.fAdded},
          {"removed", summary.fRemoved}, {"unknown", summary.fUnknown},
          {"devices", summary.fDevices}, {"declarations", summary.fDeclarations}};
}

}  // namespace NVORNQDX20
