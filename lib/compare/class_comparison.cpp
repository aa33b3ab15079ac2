// SPDX-License-Identifier: Apache-2.0
#include "class_comparison.h"

#include <qdxcompare/same_reason.h>
#include <qdxmodel/hash.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <utility>

#include <qdxsnapshot/missing.h>

#include "schema_comparison.h"

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

std::string Dump(const TJSON& value) {
  return value.dump(-1, ' ', false, TJSON::error_handler_t::replace);
}

/// Returns "TYPE", "TYPE key" or "TYPE = DEFAULT"; null for a null property.
TJSON DeclarationText(const TPropertySnapshot* property) {
  if (property == nullptr) return nullptr;
  std::string text = property->fType + (property->fIsKey ? " key" : "");
  if (!property->fDefault.is_null()) text += " = " + Dump(property->fDefault);
  return text;
}

/// The positions of a property on both sides; kNone where a side lacks it.
struct TColumn {
  std::size_t fInA;
  std::size_t fInB;
};

/// An instance that differs. Null where a side lacks it.
struct TChange {
  const TIdentified* fInA;
  const TIdentified* fInB;
  std::vector<TColumn> fColumns = {};  // if both sides have it
  TInstanceSnapshot fOld = {};
  TInstanceSnapshot fNew = {};

  bool IsOfBoth() const { return fInA != nullptr && fInB != nullptr; }
  const std::string& GetPath() const { return fInA != nullptr ? fOld.fPath : fNew.fPath; }
};

using TSharedDeclarations = std::shared_ptr<const TClassSnapshot>;

class TClassComparison {
 public:
  TClassComparison(TClassSide& a, TClassSide& b, TFindings& findings);

  void CompareDeclarations();
  void CompareInstances();

 private:
  bool IsOfBoth() const { return !fA.GetClass().fName.empty() && !fB.GetClass().fName.empty(); }
  void Add(TDifference::EElement element, TDifference::EChange change,
           const std::string& property = "", TJSON before = nullptr, TJSON after = nullptr);

  std::vector<TChange> FindChanges(const std::vector<TIdentified>& a,
                                   const std::vector<TIdentified>& b);
  template <typename TVisit>
  void MatchByBothMachines(const std::vector<const TIdentified*>& a,
                           const std::vector<const TIdentified*>& b, const TVisit& visit);
  bool HasMachines() const;
  std::vector<TColumn> FindValues(const TIdentified& a, const TIdentified& b);
  bool AreEqual(const TColumn& column);
  bool AreSameReasons(const TColumn& column);
  void ReadSnapshots(std::vector<TChange>& changes);
  bool IsGivenForClass(const TChange& change);
  void AddInstance(const TChange& change, std::size_t trace);
  void AddValues(const TChange& change, std::size_t trace);
  std::string NameOf(const TChange& change) const;
  TTrace TraceOf(const TChange& change);

  TClassSide& fA;
  TClassSide& fB;
  TFindings& fFindings;
  const std::string fNamespace;
  const std::string fName;
  std::vector<TColumn> fColumns;  // all properties, by name
};

TClassComparison::TClassComparison(TClassSide& a, TClassSide& b, TFindings& findings)
    : fA(a),
      fB(b),
      fFindings(findings),
      fNamespace((a.GetClass().fName.empty() ? b : a).GetSide().fNamespace.fNamespace->GetName({})),
      fName((a.GetClass().fName.empty() ? b : a).GetClass().fName) {
  Merge(
      a.GetOrder(), b.GetOrder(),
      [](const TNamedPosition& each) -> const std::string& { return each.fName; },
      [this](const TNamedPosition* inA, const TNamedPosition* inB) {
        fColumns.push_back(
            {inA != nullptr ? inA->fPosition : kNone, inB != nullptr ? inB->fPosition : kNone});
      });
}

void TClassComparison::Add(TDifference::EElement element, TDifference::EChange change,
                           const std::string& property, TJSON before, TJSON after) {
  fFindings.Add(
      {element, change, fNamespace, fName, property, std::move(before), std::move(after)});
}

void TClassComparison::CompareDeclarations() {
  const TClassSnapshot& a = fA.GetClass();
  const TClassSnapshot& b = fB.GetClass();
  if (!IsOfBoth()) {
    Add(TDifference::kClass, b.fName.empty() ? TDifference::kRemoved : TDifference::kAdded);
    return;
  }
  if (!NModel::EqualIgnoringCase(a.fSuperclass, b.fSuperclass)) {
    const auto name = [](const std::string& text) { return text.empty() ? TJSON() : TJSON(text); };
    Add(TDifference::kSuperclass, TDifference::kChanged, "", name(a.fSuperclass),
        name(b.fSuperclass));
  }
  for (const TColumn& column : fColumns) {
    const auto* const inA = column.fInA == kNone ? nullptr : &a.fProperties[column.fInA];
    const auto* const inB = column.fInB == kNone ? nullptr : &b.fProperties[column.fInB];
    if (inA != nullptr ? fA.IsIgnored(column.fInA) : fB.IsIgnored(column.fInB)) continue;
    TJSON before = DeclarationText(inA);
    TJSON after = DeclarationText(inB);
    if (before == after) continue;
    Add(TDifference::kDeclaration,
        inA == nullptr   ? TDifference::kAdded
        : inB == nullptr ? TDifference::kRemoved
                         : TDifference::kChanged,
        (inA != nullptr ? inA : inB)->fName, std::move(before), std::move(after));
  }
}

void TClassComparison::CompareInstances() {
  const std::vector<TIdentified> a = fA.ReadInstances();
  const std::vector<TIdentified> b = fB.ReadInstances();
  std::vector<TChange> changes = FindChanges(a, b);
  if (changes.empty()) return;
  ReadSnapshots(changes);
  std::stable_sort(changes.begin(), changes.end(), [](const TChange& one, const TChange& other) {
    return one.GetPath() < other.GetPath();
  });
  for (const TChange& change : changes) {
    if (IsGivenForClass(change)) continue;
    const std::size_t trace = fFindings.fTraces.size();
    fFindings.fTraces.push_back(TraceOf(change));
    change.IsOfBoth() ? AddValues(change, trace) : AddInstance(change, trace);
  }
}

std::vector<TChange> TClassComparison::FindChanges(const std::vector<TIdentified>& a,
                                                   const std::vector<TIdentified>& b) {
  std::vector<TChange> changes;
  const auto add = [&](const TIdentified* inA, const TIdentified* inB) {
    TChange change{inA, inB};
    if (change.IsOfBoth()) {
      change.fColumns = FindValues(*inA, *inB);
      if (change.fColumns.empty()) return;
    }
    changes.push_back(std::move(change));
  };
  std::vector<const TIdentified*> onlyInA;
  std::vector<const TIdentified*> onlyInB;
  Merge(
      a, b, [](const TIdentified& one) -> const std::string& { return one.fIdentity; },
      [&](const TIdentified* inA, const TIdentified* inB) {
        if ((inA != nullptr && inB != nullptr) || !HasMachines()) return add(inA, inB);
        inA != nullptr ? onlyInA.push_back(inA) : onlyInB.push_back(inB);
      });
  MatchByBothMachines(onlyInA, onlyInB, add);
  return changes;
}

bool TClassComparison::HasMachines() const {
  return fA.GetSide().fCanonical.HasMachine() && fB.GetSide().fCanonical.HasMachine();
}

/// A key can have a machine's name by chance: a folder "/backup" of the machine "backup" is the
/// same as one of the machine "web". Calls `visit` with each instance, and the one it matches.
template <typename TVisit>
void TClassComparison::MatchByBothMachines(const std::vector<const TIdentified*>& a,
                                           const std::vector<const TIdentified*>& b,
                                           const TVisit& visit) {
  struct TCandidate {
    std::string fSorted;
    std::string fText;
    const TIdentified* fIdentified;
  };
  const auto candidates = [](TClassSide& side, const std::vector<const TIdentified*>& all) {
    std::vector<TCandidate> made;
    made.reserve(all.size());
    for (const TIdentified* const each : all) {
      std::string text = side.IdentityOfBothMachines(*each->fInstance);
      made.push_back({WithoutPlaceholders(text), text, each});
    }
    std::stable_sort(made.begin(), made.end(), [](const auto& one, const auto& other) {
      return one.fSorted < other.fSorted;
    });
    return made;
  };
  Merge(
      candidates(fA, a), candidates(fB, b),
      [](const TCandidate& one) -> const std::string& { return one.fSorted; },
      [&visit](const TCandidate* inA, const TCandidate* inB) {
        if (inA != nullptr && inB != nullptr && MayBeEqual(inA->fText, inB->fText)) {
          return visit(inA->fIdentified, inB->fIdentified);
        }
        if (inA != nullptr) visit(inA->fIdentified, nullptr);
        if (inB != nullptr) visit(nullptr, inB->fIdentified);
      });
}

/// Returns the columns in which the instances differ.
std::vector<TColumn> TClassComparison::FindValues(const TIdentified& a, const TIdentified& b) {
  std::vector<TColumn> columns;
  const bool mayKeysDiffer =
      fA.GetSide().fCanonical.HidesAny() || fB.GetSide().fCanonical.HidesAny();
  fA.Begin(*a.fInstance);
  fB.Begin(*b.fInstance);
  for (const TColumn& column : fColumns) {
    if (column.fInA == kNone || column.fInB == kNone) continue;
    if (!fA.IsCompared(column.fInA) || !fB.IsCompared(column.fInB)) continue;
    const bool isKey = fA.GetClass().fProperties[column.fInA].fIsKey &&
                       fB.GetClass().fProperties[column.fInB].fIsKey;
    if (isKey && !mayKeysDiffer) continue;
    if (!AreEqual(column) && !AreSameReasons(column)) columns.push_back(column);
  }
  return columns;
}

/// Of the current instances. An array is a bag if both sides say so.
bool TClassComparison::AreEqual(const TColumn& column) {
  const TPropertyKind& ofA = fA.GetKind(column.fInA);
  const TPropertyKind& ofB = fB.GetKind(column.fInB);
  const TPropertyKind kind = {ofA.fIsBag && ofB.fIsBag, ofA.fIsEmbedded || ofB.fIsEmbedded};
  const TSide& sideOfA = fA.GetSide();
  const TSide& sideOfB = fB.GetSide();
  bool areEqual = false;
  fA.Read(column.fInA, [&](const TCIMValue& a) {
    fB.Read(column.fInB, [&](const TCIMValue& b) {
      const auto areEqualIn = [&](const TCanonical TSide::*canonical) {
        return (sideOfA.*canonical).TextOf(a, kind) == (sideOfB.*canonical).TextOf(b, kind);
      };
      areEqual = AreIdentical(a, b) || areEqualIn(&TSide::fCanonical) ||
                 (HasMachines() && (areEqualIn(&TSide::fOfNoMachine) ||
                                    MayBeEqual(sideOfA.fOfBothMachines.TextOf(a, kind),
                                               sideOfB.fOfBothMachines.TextOf(b, kind))));
    });
  });
  return areEqual;
}

/// Returns whether the current instances are reasons, and the column is that of their texts.
bool TClassComparison::AreSameReasons(const TColumn& column) {
  return fA.IsOfReasons() && fB.IsOfReasons() &&
         NModel::EqualIgnoringCase(fA.GetClass().fProperties[column.fInA].fName, "Reason") &&
         MayBeSameReason(fA.TextOfCurrent("reason"), fB.TextOfCurrent("reason"));
}

/// Sets the paths, and the values where they are needed, of each side at once.
void TClassComparison::ReadSnapshots(std::vector<TChange>& changes) {
  const auto read = [&changes](const TClassSide& side, auto identified, auto snapshot,
                               bool isOfBoth) {
    std::vector<TChange*> changed;
    std::vector<TInstance> instances;
    for (TChange& change : changes) {
      if (change.*identified == nullptr || change.IsOfBoth() != isOfBoth) continue;
      changed.push_back(&change);
      instances.push_back((change.*identified)->fInstance);
    }
    const EDepth depth = isOfBoth || !side.HasKeys() ? kValues : kInstances;
    std::vector<TInstanceSnapshot> snapshots = side.ReadSnapshots(instances, depth);
    for (std::size_t i = 0; i < changed.size(); ++i)
      changed[i]->*snapshot = std::move(snapshots[i]);
  };
  for (const bool isOfBoth : {false, true}) {
    read(fA, &TChange::fInA, &TChange::fOld, isOfBoth);
    read(fB, &TChange::fInB, &TChange::fNew, isOfBoth);
  }
}

/// Returns whether this is the reason of one instance, and the other side gives the same one for
/// all of the class. Which of the two forms it has depends on the other instances.
bool TClassComparison::IsGivenForClass(const TChange& change) {
  TClassSide& side = change.fInA != nullptr ? fA : fB;
  if (!side.IsOfReasons() || change.IsOfBoth()) return false;
  const TClassSide& other = change.fInA != nullptr ? fB : fA;
  side.Begin(*(change.fInA != nullptr ? change.fInA : change.fInB)->fInstance);
  const std::string property = side.TextOfCurrent("propertyname");
  if (property.empty() || side.TextOfCurrent("instance").empty()) return false;
  const auto& reasons = other.GetSide().fNamespace.fReasons;
  const auto found = reasons.find({side.TextOfCurrent("classname"), "", property});
  return found != reasons.end() && MayBeSameReason(found->second, side.TextOfCurrent("reason"));
}

/// Adds an instance that only one side has. An error of the other side says why it may lack it.
void TClassComparison::AddInstance(const TChange& change, std::size_t trace) {
  const bool isRemoved = change.fInA != nullptr;
  const TClassSide& other = isRemoved ? fB : fA;
  const auto* const loss = FindLoss(other.GetClass(), other.GetSide().fNamespace.fReasons);
  TDifference difference{TDifference::kInstance,
                         loss != nullptr ? TDifference::kUnknown
                         : isRemoved     ? TDifference::kRemoved
                                         : TDifference::kAdded,
                         fNamespace,
                         NameOf(change),
                         "",
                         nullptr,
                         nullptr,
                         loss != nullptr ? std::string(*loss) : ""};
  difference.fClass = fName;
  fFindings.Add(std::move(difference), trace);
}

/// Returns the object path; without keys, with the values that are compared.
std::string TClassComparison::NameOf(const TChange& change) const {
  const TClassSide& side = change.fInA != nullptr ? fA : fB;
  std::string name = change.GetPath();
  if (side.HasKeys() || change.IsOfBoth()) return name;
  const TInstanceSnapshot& snapshot = change.fInA != nullptr ? change.fOld : change.fNew;
  for (std::size_t i = 0; i < snapshot.fValues.size(); ++i) {
    if (!side.IsCompared(i)) continue;
    name += " " + side.GetClass().fProperties[i].fName + "=" + Dump(snapshot.fValues[i]);
  }
  return name;
}

/// Adds the differences of values; one that a side lacks by an error is unknown.
void TClassComparison::AddValues(const TChange& change, std::size_t trace) {
  const TInstanceReasons reasonsOfA(fA.GetSide().fNamespace.fReasons, fA.GetClass(), change.fOld);
  const TInstanceReasons reasonsOfB(fB.GetSide().fNamespace.fReasons, fB.GetClass(), change.fNew);
  for (const TColumn& column : change.fColumns) {
    const TPropertySnapshot& property = fA.GetClass().fProperties[column.fInA];
    const auto* reason = reasonsOfA.Find(column.fInA);
    if (reason == nullptr) reason = reasonsOfB.Find(column.fInB);
    const bool isUnknown = reason != nullptr && reason->IsError();
    // Another class explains why the name of the machine is missing.
    if (property.fIsKey && !isUnknown) continue;
    TDifference difference{TDifference::kValue,
                           isUnknown ? TDifference::kUnknown : TDifference::kChanged,
                           fNamespace,
                           change.GetPath(),
                           property.fName,
                           change.fOld.fValues[column.fInA],
                           change.fNew.fValues[column.fInB],
                           isUnknown ? std::string(*reason) : ""};
    difference.fClass = fName;
    difference.fOldDeclaration = fA.GetDeclaration(column.fInA);
    difference.fNewDeclaration = fB.GetDeclaration(column.fInB);
    fFindings.Add(std::move(difference), trace);
  }
}

TTrace TClassComparison::TraceOf(const TChange& change) {
  TClassSide& side = change.fInA != nullptr ? fA : fB;
  const TIdentified& identified = *(change.fInA != nullptr ? change.fInA : change.fInB);
  TTrace trace;
  trace.fInstance = IdentityOf(identified.fIdentity);
  trace.fNames.push_back(IdentityOf(fName, ""));
  side.Begin(*identified.fInstance);
  for (std::size_t i = 0; i < side.GetClass().fProperties.size(); ++i) {
    if (!side.GetClass().fProperties[i].fIsKey) continue;
    side.Read(i, [&](const TCIMValue& key) {
      const TCIMReference* const path = key.FindReference();
      if (path != nullptr) {
        trace.fEnds.push_back(IdentityOf(side.GetSide().fCanonical.TextOfPath(*path)));
      } else if (!key.IsNull()) {
        trace.fNames.push_back(IdentityOf(fName, key.ToString(10)));
      }
    });
  }
  if (side.IsOfReasons()) {
    trace.fExplained = IdentityOf(side.TextOfCurrent("classname"), side.TextOfCurrent("instance"));
    trace.fExplainedProperty = NModel::Folded(side.TextOfCurrent("propertyname"));
  }
  return trace;
}

}  // namespace

TIdentity IdentityOf(const std::string& text) {
  NModel::THasher hasher(NModel::ProcessHashKey());
  hasher.Add(text, [](std::uint64_t word) { return word; });
  return hasher.Get();
}

TIdentity IdentityOf(const std::string& className, const std::string& key) {
  return IdentityOf(NModel::Folded(className) + '\0' + key);
}

void CompareClass(TClassSide& a, TClassSide& b, const TComparisonOptions& options,
                  TFindings& findings) {
  TClassComparison comparison(a, b, findings);
  comparison.CompareDeclarations();
  if (options.fSchema) CompareSchema(a, b, findings);
  comparison.CompareInstances();
}

}  // namespace NVORNQDX20
