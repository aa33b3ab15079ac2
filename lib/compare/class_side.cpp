// SPDX-License-Identifier: Apache-2.0
#include "class_side.h"

#include <qdxcore/status.h>
#include <qdxdescribe/string_kind.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/type.h>

#include <algorithm>
#include <utility>

namespace NVORNQDX20 {
namespace {

const char* const kArrayType = "ArrayType";

bool DeclaresQualifier(const ICIMNamespace& ns, const char* name) {
  try {
    return ns.GetQualifierDecl(name, {}) != nullptr;
  } catch (const TQDXException&) {
    return false;  // means that there is none
  }
}

TPropertyKind KindOf(const ICIMPropertyDecl& decl, bool isBagByDefault) {
  TPropertyKind kind;
  kind.fIsBag = isBagByDefault && NModel::IsArray(decl.GetType());
  kind.fIsEmbedded = NDescribe::StringKindOf(decl) >= NDescribe::EStringKind::kEmbeddedObject;
  decl.EnumerateQualifiers([&kind](const boost::shared_ptr<ICIMQualifier>& each) {
    if (NModel::EqualIgnoringCase(each->GetDecl()->GetName(), kArrayType)) {
      const std::string* const text = each->GetValue().FindString();
      kind.fIsBag = text != nullptr && NModel::EqualIgnoringCase(*text, "Bag");
    }
    return true;
  });
  return kind;
}

/// Returns whether the name is that of a property in the options, of this class.
bool IsIgnoredIn(const TComparisonOptions& options, const std::string& className,
                 const std::string& property) {
  return std::any_of(options.fIgnored.begin(), options.fIgnored.end(), [&](const TIgnored& each) {
    return NModel::EqualIgnoringCase(each.fProperty, property) && NamesClass(each, className);
  });
}

}  // namespace

TSide MakeSide(const TComparedNamespace& ns, const std::string& machine,
               const std::string& otherMachine, const TLeftOut& leftOut) {
  const bool exists = ns.fNamespace != nullptr;
  const std::string name = exists ? ns.fNamespace->GetName({}) : "";
  const TCanonical canonical(name, machine, leftOut);
  return {ns, canonical, TCanonical(name, "", leftOut), canonical.WithOtherMachine(otherMachine),
          exists && DeclaresQualifier(*ns.fNamespace, kArrayType)};
}

TClassSide::TClassSide(const TSide& side, const TClass& cimClass, const TComparisonOptions& options)
    : fSide(side), fClass(cimClass), fLeftOut(options.fLeftOut) {
  if (!fClass) return;
  std::vector<TClassSnapshot> classes;
  TSnapshotReader(*side.fNamespace.fNamespace, kClasses, classes).ReadInstances(fClass, {});
  fDeclared = std::move(classes.front());
  fIsOfReasons = NModel::EqualIgnoringCase(fDeclared.fName, NDescribe::kMissingValueClass);
  ReadDeclarations(options);
  ReadKinds();
}

void TClassSide::ReadDeclarations(const TComparisonOptions& options) {
  for (const TPropertySnapshot& property : fDeclared.fProperties) {
    const bool isIgnored = IsIgnoredIn(options, fDeclared.fName, property.fName);
    fOrder.push_back({NModel::Folded(property.fName), fOrder.size()});
    fIsIgnored.push_back(isIgnored);
    fIsCompared.push_back(!isIgnored && (options.fAll || !property.fIsVolatile));
    fHasKeys = fHasKeys || property.fIsKey;
  }
  std::sort(fOrder.begin(), fOrder.end(),
            [](const auto& a, const auto& b) { return a.fName < b.fName; });
}

void TClassSide::ReadKinds() {
  fReader.emplace(*fClass);
  NModel::TNameMap<std::size_t> positions;
  for (const auto& each : fReader->GetProperties()) positions.emplace(each.fName, positions.size());
  NModel::TNameMap<TPropertyKind> kinds;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(*fClass)) {
    kinds.emplace(decl->GetName(), KindOf(*decl, fSide.fHasArrayTypes));
  }
  for (const TPropertySnapshot& property : fDeclared.fProperties) {
    fPositions.push_back(positions.at(property.fName));
    fKinds.push_back(kinds.at(property.fName));
  }
}

std::shared_ptr<const TPropertySnapshot> TClassSide::GetDeclaration(std::size_t property) {
  if (!fShared) {
    std::vector<TClassSnapshot> classes;
    TSnapshotReader(*fSide.fNamespace.fNamespace, kValues, classes).ReadInstances(fClass, {});
    fShared = std::make_shared<const TClassSnapshot>(std::move(classes.front()));
  }
  return {fShared, &fShared->fProperties[property]};
}

std::vector<TIdentified> TClassSide::ReadInstances() {
  std::vector<TIdentified> identified;
  if (!fClass) return identified;
  for (TInstance& instance : NModel::InstancesOf(*fClass)) {
    fReader->Begin(*instance);
    ++fDeclared.fInstanceCount;
    if (IsLeftOut()) continue;
    identified.push_back({IdentityOfCurrent(fSide.fCanonical), std::move(instance)});
  }
  const auto less = [](const auto& a, const auto& b) { return a.fIdentity < b.fIdentity; };
  if (!std::is_sorted(identified.begin(), identified.end(), less)) {
    std::stable_sort(identified.begin(), identified.end(), less);
  }
  return identified;
}

std::string TClassSide::IdentityOfBothMachines(const ICIMInstance& instance) {
  fReader->Begin(instance);
  return IdentityOfCurrent(fSide.fOfBothMachines);
}

std::string TClassSide::IdentityOfCurrent(const TCanonical& canonical) const {
  TCanonicalKeys keys;
  for (const TNamedPosition& each : fOrder) {
    const std::size_t i = each.fPosition;
    if (fHasKeys ? !fDeclared.fProperties[i].fIsKey : !fIsCompared[i]) continue;
    Read(i, [&](const TCIMValue& value) {
      keys.emplace_back(each.fName,
                        fHasKeys ? canonical.TextOfKey(value) : canonical.TextOf(value, fKinds[i]));
    });
  }
  return canonical.IdentityOf(fDeclared.fName, keys);
}

bool TClassSide::IsLeftOut() const {
  if (fIsOfReasons) return ExplainsLeftOut();
  if (fLeftOut.fClasses.empty()) return false;
  bool isLeftOut = false;
  for (std::size_t i = 0; i < fPositions.size() && !isLeftOut; ++i) {
    if (!fDeclared.fProperties[i].fIsKey) continue;
    Read(i, [&](const TCIMValue& key) { isLeftOut = fSide.fCanonical.LeadsToLeftOut(key); });
  }
  return isLeftOut;
}

bool TClassSide::ExplainsLeftOut() const {
  if (fLeftOut.fParts.empty() && fLeftOut.fClasses.empty()) return false;
  const std::string owner = NModel::Folded(TextOfCurrent("classname"));
  const std::string reason = TextOfCurrent("reason");
  // The missing part can be the reason why there are none, or fewer.
  const bool isOfClass = TextOfCurrent("propertyname").empty();
  return fLeftOut.fClasses.count(owner) != 0 ||
         (isOfClass && fLeftOut.fReferring.count(owner) != 0) ||
         std::any_of(fLeftOut.fParts.begin(), fLeftOut.fParts.end(), [&](const std::string& part) {
           return reason == NDescribe::ReasonOfPart(part);
         });
}

std::string TClassSide::TextOfCurrent(const char* property) const {
  std::string text;
  const auto found =
      std::find_if(fOrder.begin(), fOrder.end(),
                   [property](const TNamedPosition& each) { return each.fName == property; });
  if (found == fOrder.end()) return text;
  Read(found->fPosition, [&text](const TCIMValue& value) {
    const std::string* const string = value.FindString();
    if (string != nullptr) text = *string;
  });
  return text;
}

std::vector<TInstanceSnapshot> TClassSide::ReadSnapshots(const std::vector<TInstance>& instances,
                                                         EDepth depth) const {
  std::vector<TClassSnapshot> classes;
  if (!fClass || instances.empty()) return {};
  TSnapshotReader(*fSide.fNamespace.fNamespace, depth, classes).ReadInstances(fClass, instances);
  return std::move(classes.front().fInstances);
}

}  // namespace NVORNQDX20
