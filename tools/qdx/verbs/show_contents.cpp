// SPDX-License-Identifier: Apache-2.0
#include "show_contents.h"

#include <qdxdescribe/missing_values.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/nearest_name.h>

#include <algorithm>
#include <memory>
#include <utility>

#include <qdxsnapshot/class_reader.h>

#include "cli/failure.h"
#include "format/contents_format.h"
#include "input/completeness.h"

namespace NVORNQDX20 {
namespace {

/// The names of all properties of the classes, in their order, each once.
std::vector<std::string> PropertyNames(const std::vector<TNamespaceToShow>& namespaces) {
  std::vector<std::string> names;
  NModel::TNameMap<bool> known;
  for (const TNamespaceToShow& ns : namespaces) {
    for (const TClassToShow& each : ns.fClasses) {
      const TClassReader reader(*ns.fOrigin.fNamespace, each.fClass, kClasses, {});
      const TClassSnapshot& cimClass = reader.GetClass();
      for (const std::size_t i : InOrderOfDeclaration(cimClass)) {
        const std::string& name = cimClass.fProperties[i].fName;
        if (known.emplace(name, true).second) names.push_back(name);
      }
    }
  }
  return names;
}

void RequireProperty(const std::string& wanted, const std::vector<std::string>& names) {
  const bool isKnown = std::any_of(names.begin(), names.end(), [&wanted](const std::string& name) {
    return NModel::EqualIgnoringCase(name, wanted);
  });
  if (isKnown) return;
  const std::string suggestion = NModel::SuggestedName(wanted, names);
  throw TCommandFailure(
      kExitBadInput, "looking for property " + wanted,
      {kQDXStatusNotFound,
       "no class that is shown has it" + (suggestion.empty()
                                              ? "; 'qdx show CLASS --schema' lists those of a class"
                                              : suggestion)});
}

/// Shows the classes of one namespace.
class TNamespaceShow {
 public:
  TNamespaceShow(const TRequest& request, const TNamespaceToShow& ns, IContentsFormat& format,
                 TOmitted& omitted)
      : fRequest(request),
        fNamespace(*ns.fOrigin.fNamespace),
        fName(ns.fOrigin.fOrigin.fNamespace),
        fReasons(NDescribe::ReadMissingReasons(fNamespace)),
        fFormat(format),
        fOmitted(omitted) {}

  void Show(const TClassToShow& each) {
    const TInstances instances =
        each.fInstances ? *each.fInstances : NModel::InstancesOf(*each.fClass);
    TClassSnapshot counted;
    counted.fName = each.fClass->GetName({});
    counted.fInstanceCount = instances.size();
    // What stood in the way is reported even for a class that is left out.
    if (!each.fInstances && ReportLostInstances(fName, counted, fReasons)) fIsComplete = false;
    if (IsLeftOut(each, counted)) return;
    const bool isFiltered = !fRequest.fConditions.empty();
    TClassReader reader(fNamespace, each.fClass, isFiltered ? kValues : fRequest.fStyle.fDepth,
                        instances);
    // Its instances would have no values.
    const TContentsStyle& style = fRequest.fStyle;
    const bool isPicked = !style.fProperties.empty() && style.fDepth >= kValues;
    if (isPicked && !each.fIsAskedFor && PropertiesToShow(reader.GetClass(), style).empty()) return;
    std::vector<TInstanceSnapshot> matching;
    // Lines need no number of instances before the first of them.
    const bool isCounted = isFiltered && fRequest.fForm != EForm::kJSONLines;
    if (isCounted) {
      ForEachSome(reader, [&matching](const std::vector<TInstanceSnapshot>& some) {
        matching.insert(matching.end(), some.begin(), some.end());
      });
    }
    if (isCounted && matching.empty() && !each.fIsAskedFor) return;
    const TShownClass shown{reader.GetClass(), fReasons,
                            isCounted ? matching.size() : instances.size(), ReasonFor(counted)};
    fFormat.BeginClass(shown);
    if (isCounted) {
      if (fRequest.fStyle.fDepth >= kInstances) fFormat.AddInstances(matching);
    } else if (fRequest.fStyle.fDepth >= kInstances) {
      ForEachSome(reader, [this](const auto& some) { fFormat.AddInstances(some); });
    }
    fFormat.EndClass();
  }

  bool IsComplete() const { return fIsComplete; }

 private:
  /// Counts what is left out.
  bool IsLeftOut(const TClassToShow& each, const TClassSnapshot& counted) {
    if (fRequest.fForm == EForm::kJSONLines) return counted.fInstanceCount == 0;
    if (fRequest.fForm == EForm::kJSON || fRequest.fStyle.fShowsAll || each.fIsAskedFor ||
        fRequest.fStyle.fDepth < kInstances) {
      return false;
    }
    const std::size_t count = counted.fInstanceCount;
    const bool isWhole = fRequest.fElement.fText.empty();
    if (count == 0 && (isWhole || ReasonFor(counted).empty())) {
      ++fOmitted.fEmptyClasses;
      return true;
    }
    if (!isWhole) return false;
    const bool explains = NModel::EqualIgnoringCase(counted.fName, NDescribe::kMissingValueClass);
    const bool isAssociation = each.fClass->IsAssociation({});
    if (explains) fOmitted.fExplanations += count;
    if (isAssociation) fOmitted.fAssociations += count;
    return explains || isAssociation;
  }

  /// Returns why instances of the class are missing; empty if none is, or without a reason.
  std::string ReasonFor(const TClassSnapshot& cimClass) const {
    const auto reason = fReasons.find({cimClass.fName, "", ""});
    return reason == fReasons.end() ? "" : std::string(reason->second);
  }

  bool Matches(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance) const {
    return std::all_of(
        fRequest.fConditions.begin(), fRequest.fConditions.end(),
        [&](const TCondition& condition) { return condition.Matches(cimClass, instance); });
  }

  /// Calls `use` with the instances that match, a few at a time.
  template <typename TUse>
  void ForEachSome(TClassReader& reader, const TUse& use) const {
    for (auto some = reader.ReadNext(); !some.empty(); some = reader.ReadNext()) {
      const auto differs = [&](const auto& each) { return !Matches(reader.GetClass(), each); };
      some.erase(std::remove_if(some.begin(), some.end(), differs), some.end());
      use(some);
    }
  }

  const TRequest& fRequest;
  const ICIMNamespace& fNamespace;
  const std::string fName;
  const NDescribe::TMissingReasons fReasons;
  IContentsFormat& fFormat;
  TOmitted& fOmitted;
  bool fIsComplete = true;
};

std::unique_ptr<IContentsFormat> MakeFormat(const TRequest& request,
                                            const std::vector<TNamespaceToShow>& namespaces,
                                            const TCollectionRecord& record, TOmitted& omitted) {
  TContentsStyle style = request.fStyle;
  style.fShowsMissing =
      style.fShowsAll || !style.fProperties.empty() || !request.fElement.fText.empty();
  switch (request.fForm) {
    case EForm::kJSON:
      return MakeJSONFormat(style);
    case EForm::kJSONLines:
      return MakeJSONLinesFormat(style, record);
    case EForm::kTable:
      return MakeTableFormat(style, omitted);
    case EForm::kCSV:
      return MakeCSVFormat(style, style.fProperties.empty() ? PropertyNames(namespaces)
                                                            : std::vector<std::string>());
    case EForm::kText:
      break;
  }
  return MakeTextFormat(style, omitted);
}

void CheckProperties(const TRequest& request, const std::vector<TNamespaceToShow>& namespaces) {
  if (request.fStyle.fProperties.empty() && request.fConditions.empty()) return;
  const std::vector<std::string> names = PropertyNames(namespaces);
  for (const std::string& wanted : request.fStyle.fProperties) RequireProperty(wanted, names);
  for (const TCondition& each : request.fConditions) RequireProperty(each.GetProperty(), names);
}

void SortByName(std::vector<TClassToShow>& classes) {
  std::stable_sort(classes.begin(), classes.end(),
                   [](const TClassToShow& one, const TClassToShow& other) {
                     return one.fClass->GetName({}) < other.fClass->GetName({});
                   });
}

}  // namespace

std::vector<TNamespaceToShow> ContentsOf(const std::vector<TFoundElement>& found) {
  std::vector<TNamespaceToShow> all;
  for (const TFoundElement& each : found) {
    std::vector<TClassToShow>& classes =
        all.emplace_back(TNamespaceToShow{each.fOrigin, {}}).fClasses;
    const auto addTree = [&classes](const boost::shared_ptr<ICIMClass>& root) {
      for (const auto& cimClass : NModel::WithSubclasses(root)) classes.push_back({cimClass});
      return true;
    };
    if (const auto instance = each.GetInstance()) {
      classes.push_back({instance->GetClass({}), TInstances{instance}, true});
    } else if (const auto cimClass = each.GetClass()) {
      addTree(cimClass);
      classes.front().fIsAskedFor = true;
    } else {
      each.fOrigin.fNamespace->EnumerateClasses(addTree, {});
    }
  }
  return all;
}

bool ShowContents(const TRequest& request, std::vector<TNamespaceToShow> namespaces,
                  const TCollectionRecord& record) {
  for (TNamespaceToShow& ns : namespaces) SortByName(ns.fClasses);
  CheckProperties(request, namespaces);
  TOmitted omitted;
  const auto format = MakeFormat(request, namespaces, record, omitted);
  bool isComplete = true;
  for (const TNamespaceToShow& ns : namespaces) {
    const TOrigin& origin = ns.fOrigin.fOrigin;
    format->BeginNamespace(origin.fNamespace, origin.fProvider);
    if (request.fStyle.fDepth >= kClasses) {
      TNamespaceShow show(request, ns, *format, omitted);
      for (const TClassToShow& each : ns.fClasses) show.Show(each);
      isComplete = isComplete && show.IsComplete();
    }
    format->EndNamespace();
  }
  format->End(omitted);
  return isComplete;
}

}  // namespace NVORNQDX20
