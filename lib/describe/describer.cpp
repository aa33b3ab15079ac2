// SPDX-License-Identifier: Apache-2.0
// Makes a namespace from tables: declares the classes, adds the instances, explains what is
// missing.
#include <qdxcore/logger.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxdescribe/missing_values.h>
#include <qdxdescribe/provider.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/options.h>
#include <qdxrepository/instance_adder.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <new>
#include <optional>
#include <unordered_map>

#include "instance_references.h"
#include "selection.h"
#include "shared_reasons.h"

namespace NVORNQDX20::NDescribe {
namespace {

using TNamespace = boost::shared_ptr<ICIMNamespace>;
using TStep = TDescriber::TStep;

constexpr std::size_t kLongestReason = 500;

/// The namespace that is being made.
class TDescription {
 public:
  TDescription(const std::string& provider, const std::string& name, const TPartSelection& parts)
      : fProvider(provider),
        fNamespace(MakeRepositoryNamespace(name)),
        fReferences(fNamespace),
        fParts(parts) {
    DeclareVolatileQualifier(*fNamespace);
  }

  const TNamespace& GetNamespace() const { return fNamespace; }
  bool IsComplete() const { return fMissing.empty(); }

  TInstanceReferences& GetReferences() { return fReferences; }

  /// Returns the part for the sake of which the target is missing, or null.
  const std::string* LeftOutPartOf(const TInstanceName& target) const {
    return fParts.LeftOutPartOf(target.fClass);
  }

  /// Sets a reference once all instances are there.
  void SetReferenceLater(const boost::shared_ptr<ICIMInstance>& instance, TMissingValue place,
                         const TInstanceName& target, const std::string& required) {
    fLater.push_back({instance, std::move(place), target, required});
  }

  void Miss(TMissingValue missing) {
    LogMessage(
        ILogger::kLogWarning,
        {fProvider, ": ", missing.fClass, missing.fInstance.empty() ? "" : " ", missing.fInstance,
         missing.fProperty.empty() ? "" : ".", missing.fProperty, ": ", missing.fReason});
    std::string place = missing.fClass + '\n' + missing.fInstance + '\n' + missing.fProperty;
    const auto [found, isNew] = fPlaces.emplace(std::move(place), fMissing.size());
    if (isNew) {
      fMissing.push_back(std::move(missing));
    } else {
      Append(fMissing[found->second], missing);
    }
  }

  /// Returns the errors by which instances of the class and of its subclasses are missing.
  TReason LossOf(const std::string& className) const {
    TReason why;
    for (const TMissingValue& each : fMissing) {
      const bool isKnown = why.size() > kLongestReason || why.find(each.fReason) != why.npos;
      if (!each.fProperty.empty() || isKnown || !each.fReason.IsError()) continue;
      const auto cimClass = fNamespace->GetClass(each.fClass, {});
      if (TInstanceReferences::IsA(cimClass, className)) why.Add(each.fClass + ": " + each.fReason);
    }
    return why;
  }

  /// The instance can be referred to from now on.
  void Add(const boost::shared_ptr<ICIMInstance>& instance) { fReferences.Add(instance); }

  void SetReferences() {
    for (auto& [instance, place, target, required] : fLater) {
      const auto found = fReferences.Find(target, required);
      if (found) {
        instance->SetPropertyValue(place.fProperty, fReferences.ReferenceTo(**found), {});
      } else {
        const std::string* const part = LeftOutPartOf(target);
        place.fReason = part ? TReason(ReasonOfPart(*part)) : found.GetReason();
        Miss(std::move(place));
      }
    }
  }

  /// The last call.
  TNamespace Finish() {
    fPlaces.clear();
    WriteMissingValues(*fNamespace, std::move(fMissing));
    return fNamespace;
  }

 private:
  struct TLaterReference {
    boost::shared_ptr<ICIMInstance> fInstance;
    TMissingValue fPlace;
    TInstanceName fTarget;
    std::string fRequiredClass;
  };

  /// A class that lacks several instances has one explanation, with the first reasons.
  static void Append(TMissingValue& first, const TMissingValue& next) {
    TReason& reason = first.fReason;
    if (reason.size() < kLongestReason && reason.find(next.fReason) == std::string::npos) {
      reason.Add(next.fReason);
    } else if (next.fReason.IsError()) {
      reason = TReason(std::move(reason), TReason::kError);
    }
  }

  const std::string fProvider;
  const TNamespace fNamespace;
  TInstanceReferences fReferences;
  const TPartSelection& fParts;
  std::vector<TLaterReference> fLater;
  std::vector<TMissingValue> fMissing;
  std::unordered_map<std::string, std::size_t> fPlaces;  // positions in fMissing
};

/// Adds the instances of one class.
class TInstanceWriter final : public IInstanceSink {
 public:
  TInstanceWriter(TDescription& description, const TStep& step, std::size_t maxInstances)
      : fDescription(description),
        fClass(description.GetNamespace()->GetClass(step.fDeclaration->fName, {})),
        fAdder(fClass),
        fMaxInstances(maxInstances) {
    const auto properties = NModel::PropertiesOf(*fClass);
    for (const std::string& name : *step.fColumns) {
      const auto property =
          std::find_if(properties.begin(), properties.end(),
                       [&](const auto& each) { return each.fDecl->GetName() == name; });
      const bool isText = property->fDecl->GetType() == TCIMValue::TCIMType::kCIMTypeString;
      const auto referenced = property->fDecl->GetDefaultValue().GetReferencedClass();
      if (property->fIsKey) fLastKey = fColumns.size();
      fColumns.push_back({name,
                          static_cast<std::size_t>(property - properties.begin()),
                          property->fIsKey,
                          isText,
                          referenced ? referenced->GetName({}) : "",
                          {}});
    }
  }

  /// An instance that lacks a key, or that has the keys of another, is left out and recorded.
  bool Add(const std::vector<TCell>& cells, bool isOnly) override {
    if (++fCount > fMaxInstances) {
      LeaveOut("more than " + std::to_string(fMaxInstances) + ": the others are left out");
      return false;
    }
    fAdder.Begin();
    const auto instance = fAdder.GetInstance();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (fColumns[i].fIsKey && !SetKey(*instance, fColumns[i], cells[i])) return true;
    }
    const std::string key = isOnly || !fLastKey ? std::string() : KeyText(cells[*fLastKey]);
    if (!fAdder.Commit()) {
      LeaveOut("there are several " + key + ": only the first is kept");
      return true;
    }
    fDescription.Add(instance);
    fHasEmptyKey = fHasEmptyKey || key.empty();
    for (std::size_t i = 0; i < cells.size(); ++i) SetValue(instance, fColumns[i], cells[i], key);
    return true;
  }

  /// Records why values are missing, once all instances are there.
  void Explain() {
    for (const TColumn& column : fColumns) {
      const bool mayShare = !fHasEmptyKey && !column.fIsKey;
      for (auto& [key, reason] : column.fReasons.Summarize(mayShare)) {
        fDescription.Miss({fClass->GetName({}), std::move(key), column.fName, std::move(reason)});
      }
    }
  }

  /// Returns whether there are no instances, and no reason for that.
  bool IsEmpty() const { return fCount == 0 && !fHasMissed; }

  /// An association also lacks what would refer to instances that could not be read.
  void MissWithTargets() {
    TReason why;
    for (const TColumn& column : fColumns) {
      if (column.fReferencedClass.empty()) continue;
      const TReason ofTarget = fDescription.LossOf(column.fReferencedClass);
      if (!ofTarget.empty() && why.find(ofTarget) == why.npos) why.Add(ofTarget);
    }
    if (!why.empty()) Miss(why);
  }

  void Miss(const TReason& reason) override {
    fHasMissed = true;
    fDescription.Miss({fClass->GetName({}), "", "", reason});
  }

 private:
  struct TColumn {
    std::string fName;
    std::size_t fPosition;
    bool fIsKey;
    bool fIsText;
    std::string fReferencedClass;
    TSharedReasons fReasons;
  };

  static std::string KeyText(const TCell& key) {
    return key.fValue.IsNull() ? key.fTarget.fKey : key.fValue.ToString(10);
  }

  bool SetKey(ICIMInstance& instance, const TColumn& column, const TCell& cell) {
    if (!cell.fTarget.fClass.empty()) {
      TInstanceReferences& references = fDescription.GetReferences();
      const auto found = references.Find(cell.fTarget, column.fReferencedClass);
      if (!found) {
        // An association with a part that is left out is left out with it.
        return !fDescription.LeftOutPartOf(cell.fTarget) &&
               LeaveOut(column.fName + ": " + found.GetReason());
      }
      const bool isSet = fAdder.SetReference(column.fPosition, **found);
      if (!isSet) Set(instance, column, references.ReferenceTo(**found));
    } else if (!cell.fValue.IsNull()) {
      Set(instance, column, cell.fValue);
    } else if (column.fIsText) {
      fAdder.SetText(column.fPosition, "");
    } else {
      return LeaveOut(column.fName + ": " + ReasonOf(cell));
    }
    return true;
  }

  /// By the position, which takes no look-up. Throws what SetPropertyValue throws.
  void Set(ICIMInstance& instance, const TColumn& column, const TCIMValue& value) {
    const bool isSet = fAdder.Set(column.fPosition, value);
    if (!isSet) instance.SetPropertyValue(column.fName, value, {});
  }

  bool LeaveOut(std::string reason) {
    Miss(TReason(std::move(reason), TReason::kError));
    return false;
  }

  /// Keys are set already. A property that is not set keeps the declared default: null of the
  /// declared type.
  void SetValue(const boost::shared_ptr<ICIMInstance>& instance, TColumn& column, const TCell& cell,
                const std::string& key) {
    const bool isReference = !cell.fTarget.fClass.empty();
    if (isReference && !column.fIsKey) {
      fDescription.SetReferenceLater(instance, {fClass->GetName({}), key, column.fName, ""},
                                     cell.fTarget, column.fReferencedClass);
    } else if (!column.fIsKey && !cell.fValue.IsNull()) {
      Set(*instance, column, cell.fValue);
    }
    const TReason reason = ReasonOf(cell);
    if (!reason.empty()) column.fReasons.Add(key, reason);
  }

  /// Each null has a reason.
  static TReason ReasonOf(const TCell& cell) {
    const bool isNull = cell.fValue.IsNull() && cell.fTarget.fClass.empty();
    return isNull && cell.fReason.empty() ? kNotRead : cell.fReason;
  }

  TDescription& fDescription;
  const boost::shared_ptr<ICIMClass> fClass;
  TInstanceAdder fAdder;
  const std::size_t fMaxInstances;
  std::vector<TColumn> fColumns;
  std::optional<std::size_t> fLastKey;
  std::size_t fCount = 0;
  bool fHasMissed = false;
  bool fHasEmptyKey = false;
};

bool IsAssociation(const TStep& step) { return step.fDeclaration->fIsAssociation; }

TCell FailedCell(std::string reason) {
  if (reason.empty()) reason = "failed without a reason";
  return {TCIMValue(), TReason(std::move(reason), TReason::kError), {}};
}

}  // namespace

TCell NDetail::CellOfException() {
  try {
    throw;
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() == kQDXStatusOutOfMemory) throw;
    const auto* const explained = dynamic_cast<const TExplainedException*>(&failure);
    return FailedCell(explained != nullptr ? explained->GetReason() : failure.what());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& failure) {
    return FailedCell(failure.what());
  } catch (...) {
    return FailedCell({});
  }
}

void TDescriber::CheckNames() const {
  const char* const nameless = fProvider.empty()        ? "provider"
                               : fNamespaceName.empty() ? "namespace"
                                                        : nullptr;
  if (nameless == nullptr) return;
  throw TExplainedException(kQDXStatusInvalidCIMName,
                            std::string("the ") + nameless + " has no name");
}

TRequest TDescriber::MakeRequest(const std::string& ns, TOptionsMap options) const {
  if (!NModel::EqualIgnoringCase(ns, fNamespaceName)) throw TQDXException(kQDXStatusNotFound);
  std::string root = NModel::RootOf(options);
  return {std::move(root), std::move(options)};
}

TNamespace TDescriber::Describe(const std::vector<TStep>& steps, const TOptionsMap& options,
                                EExplains explains) const {
  const TPartSelection parts(steps, options);
  std::vector<TStep> wanted = ChosenSteps(WantedSteps(steps, options), parts);
  TDescription description(fProvider, fNamespaceName, parts);
  const TNamespace& ns = description.GetNamespace();
  for (const TStep& step : wanted) DeclareClass(*ns, *step.fDeclaration);
  // What associations refer to exists by then.
  std::stable_partition(wanted.begin(), wanted.end(), std::not_fn(IsAssociation));
  for (const TStep& step : wanted) {
    if (!step.fDescribe) continue;
    TInstanceWriter writer(description, step, fMaxInstances);
    step.fDescribe(*ns, writer);
    writer.Explain();
    if (IsAssociation(step)) writer.MissWithTargets();
    const bool isExplained = !writer.IsEmpty() || RefersToLeftOut(*step.fDeclaration, parts);
    if (explains == EExplains::kAlways && !isExplained) writer.Miss("none was found");
  }
  description.SetReferences();
  return explains == EExplains::kIfMissing && description.IsComplete() ? ns : description.Finish();
}

}  // namespace NVORNQDX20::NDescribe
