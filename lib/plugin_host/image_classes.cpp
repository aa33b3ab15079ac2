// SPDX-License-Identifier: Apache-2.0
#include "image_writer.h"

#include <qdxcore/reference_parameter.h>
#include <qdxcore/status.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/type.h>
#include <qdxrepository/repository.h>

#include <utility>

#include "image_format.h"

namespace NVORNQDX20::NPluginHost {

using TType = TCIMValue::TCIMType;

std::uint64_t TImageWriter::NumberOf(const ICIMQualifierDecl& decl) {
  const auto [found, isNew] = fDecls.emplace(decl.GetName(), fDeclCount);
  if (isNew) AppendDecl(0, decl.GetName(), decl.GetDefaultValue(), decl);
  return found->second;
}

std::uint64_t TImageWriter::NumberOf(const std::string& otherNamespace) {
  const auto [found, isNew] = fOthers.emplace(otherNamespace, fClasses.size());
  if (isNew) {
    std::string record(1, static_cast<char>(kOtherNamespace));
    PutText(record, otherNamespace);
    Append(record);
    fClasses.emplace_back();
    fKeyDecls.emplace_back();
  }
  return found->second;
}

std::uint64_t TImageWriter::NumberOf(const TClass& cimClass) { return *Written(cimClass).fNumber; }

template <typename TDecl>
void TImageWriter::AppendDecl(std::uint64_t ns, const std::string& name, const TCIMValue& value,
                              const TDecl& decl) {
  std::string record(1, static_cast<char>(kQualifierDecl));
  PutNumber(record, ns);
  PutText(record, name);
  PutValue(record, value, name);
  PutNumber(record, decl.GetScope());
  PutNumber(record, decl.GetFlavor());
  Append(record);
  ++fDeclCount;
}

std::uint64_t TImageWriter::NumberOfKey(std::uint64_t ns) {
  struct TKey {
    static std::uint32_t GetScope() { return kScopeAny; }
    static std::uint32_t GetFlavor() { return kFlavorToSubclass; }
  };
  if (!fKeyDecls[ns]) {
    fKeyDecls[ns] = fDeclCount;
    AppendDecl(ns, "Key", TCIMValue(TType::kCIMTypeBoolean, 0), TKey());
  }
  return *fKeyDecls[ns];
}

TImageWriter::TClass TImageWriter::FindClass(const std::string& name) const {
  try {
    return fNamespace.GetClass(name, {});
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() == kQDXStatusOutOfMemory) throw;
    return nullptr;
  }
}

void TImageWriter::RequireShallow(const TClass& cimClass) {
  TClass above = cimClass;
  for (std::size_t i = 0; i < kMaxImageDepth && above; ++i) above = NModel::SuperclassOf(*above);
  if (!above) return;
  throw TExplainedException(kQDXStatusInvalidClass,
                            "class " + cimClass->GetName({}) + " has more than " +
                                std::to_string(kMaxImageDepth - 1) + " superclasses");
}

const TWrittenClass& TImageWriter::Written(const TClass& named) {
  const std::string name = named->GetName({});
  const auto [found, isNew] = fClasses[0].try_emplace(name);
  if (isNew) found->second = std::make_unique<TWrittenClass>();
  TWrittenClass& written = *found->second;
  if (written.fNumber) return written;
  // A class of another namespace can have the same name.
  const TClass own = isNew ? FindClass(name) : nullptr;
  const TClass cimClass = own ? own : named;
  if (!isNew) {
    throw TExplainedException(kQDXStatusInvalidReference,
                              "class " + name + " needs class " + fDeclaring.back() +
                                  ", which needs it, to be declared first");
  }
  RequireShallow(cimClass);
  fDeclaring.push_back(name);
  const TClass superclass = NModel::SuperclassOf(*cimClass);
  if (superclass) {
    const TWrittenClass& above = Written(superclass);
    written.fMembers = above.fMembers;
    written.fPositions = above.fPositions;
  }
  const TDecls decls = NModel::OwnPropertyDeclsOf(*cimClass);
  for (const auto& decl : decls) {
    written.Add({decl->GetName(), decl->GetType(), NModel::IsQualified(*decl, "Key")});
  }
  // The first time writes what the class needs, which takes numbers before its own.
  const bool wasFinal = std::exchange(fIsFinal, true);
  std::string record = RecordOf(*cimClass, superclass, decls, kRehearsal);
  const bool isFinal = std::exchange(fIsFinal, wasFinal);
  const std::uint64_t number = fClassCount++;
  if (!isFinal) record = RecordOf(*cimClass, superclass, decls, number);
  Append(record);
  if (fClassCount != number + 1) {
    throw TExplainedException(kQDXStatusInvalidClass,
                              "class " + name + " changes while it is read");
  }
  written.fNumber = number;
  fOwnNames.emplace(number, name);
  fOwnClasses.push_back(cimClass);
  fDeclaring.pop_back();
  if (fDeclaring.empty()) WriteLateDefaults();
  return written;
}

const TWrittenClass* TImageWriter::Written(std::uint64_t ns, const TCIMReferenceImpl& reference,
                                           const ICIMClass& cimClass) {
  const std::string& name = cimClass.GetName({});
  if (const auto found = fClasses[ns].find(name); found != fClasses[ns].end()) {
    return found->second->fNumber ? found->second.get() : nullptr;
  }
  if (fOthersDepth >= kMaxImageDepth) return nullptr;
  TWrittenClass& written =
      *fClasses[ns].emplace(name, std::make_unique<TWrittenClass>()).first->second;
  // Of the references of a class in another namespace only the keys, and what is used as one.
  std::vector<std::pair<TMember, TCIMValue>> properties;
  const auto& bindings = reference.GetKeyBindings();
  for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
    const bool isReference = NModel::ElementType(decl->GetType()) == TType::kCIMTypeReference;
    if (isReference && !isKey && bindings.count(decl->GetName()) == 0) continue;
    written.Add({decl->GetName(), decl->GetType(), isKey});
    properties.emplace_back(written.fMembers.back(), decl->GetDefaultValue());
  }
  // First what the class needs, which takes numbers before its own.
  ++fOthersDepth;
  for (const auto& [member, value] : properties) {
    const TClass target = value.GetReferencedClass();
    if (target) (void)Written(ns, TCIMReferenceImpl(fNoReference, nullptr, {}), *target);
    if (member.fIsKey) (void)NumberOfKey(ns);
  }
  --fOthersDepth;
  std::string record(1, static_cast<char>(kClass));
  PutNumber(record, ns);
  PutText(record, name);
  PutNumber(record, 0);
  PutNumber(record, 0);
  PutNumber(record, properties.size());
  for (const auto& [member, value] : properties) {
    PutText(record, member.fName);
    PutNumber(record, member.fType);
    PutOtherDefault(record, ns, value);
    PutNumber(record, member.fIsKey ? 1 : 0);
    if (!member.fIsKey) continue;
    PutNumber(record, NumberOfKey(ns));
    PutContent(record, TCIMValue(true), TType::kCIMTypeBoolean, name);
  }
  PutNumber(record, 0);
  Append(record);
  written.fNumber = fClassCount++;
  return &written;
}

std::string TImageWriter::RecordOf(const ICIMClass& cimClass, const TClass& superclass,
                                   const TDecls& decls, std::uint64_t ownNumber) {
  fOwnNumber = ownNumber;
  const bool rehearsed = std::exchange(fRehearses, ownNumber == kRehearsal);
  std::string record(1, static_cast<char>(kClass));
  PutNumber(record, 0);
  PutText(record, cimClass.GetName({}));
  PutNumber(record, superclass ? NumberOf(superclass) + 1 : 0);
  PutQualifiers(record, cimClass);
  PutNumber(record, decls.size());
  for (const auto& decl : decls) {
    const TCIMValue& value = decl->GetDefaultValue();
    PutText(record, decl->GetName());
    const TClass target = value.IsReference() ? value.GetReferencedClass() : nullptr;
    // What a default refers to can need the class.
    const bool isLate =
        value.IsReference() && (!value.IsNull() || (target && IsWaitedFor(*target)));
    if (isLate && !fRehearses) fLateDefaults.push_back({ownNumber, decl});
    if (isLate || (value.IsNull() && value.IsReference() && !target)) {
      fIsFinal = false;
      // It has to name a class, whichever.
      PutNumber(record, value.GetType());
      record += static_cast<char>(kNullReference);
      PutNumber(record, ownNumber + 1);
    } else {
      PutValue(record, value, decl->GetName());
    }
    PutQualifiers(record, *decl);
  }
  PutMethods(record, cimClass);
  fRehearses = rehearsed;
  return record;
}

template <typename TQualified>
void TImageWriter::PutQualifiers(std::string& record, const TQualified& element) {
  std::vector<boost::shared_ptr<ICIMQualifier>> qualifiers;
  element.EnumerateQualifiers(TAddToVectorCallback(qualifiers));
  PutNumber(record, qualifiers.size());
  for (const auto& qualifier : qualifiers) {
    const auto decl = qualifier->GetDecl();
    PutNumber(record, NumberOf(*decl));
    PutContent(record, qualifier->GetValue(), decl->GetDefaultValue().GetType(), decl->GetName());
  }
}

void TImageWriter::PutMethods(std::string& record, const ICIMClass& cimClass) {
  std::vector<boost::shared_ptr<ICIMMethodDecl>> methods;
  cimClass.EnumerateMethodDecls(TAddToVectorCallback(methods), {});
  PutNumber(record, methods.size());
  for (const auto& method : methods) {
    PutText(record, method->GetName());
    PutNumber(record, method->GetReturnType());
    PutQualifiers(record, *method);
    std::vector<boost::shared_ptr<ICIMParameterDecl>> parameters;
    method->EnumerateParameterDecls(TAddToVectorCallback(parameters));
    PutNumber(record, parameters.size());
    for (const auto& parameter : parameters) {
      PutText(record, parameter->GetName());
      PutNumber(record, parameter->GetType());
      PutText(record, GetReferencedClassName(*parameter));
      PutQualifiers(record, *parameter);
    }
  }
}

void TImageWriter::PutOtherDefault(std::string& record, std::uint64_t ns, const TCIMValue& value) {
  if (!value.IsReference()) {
    record += static_cast<char>(kNull);
    return;
  }
  const TClass target = value.GetReferencedClass();
  const auto found = target ? fClasses[ns].find(target->GetName({})) : fClasses[ns].end();
  const bool isThere = found != fClasses[ns].end() && found->second->fNumber;
  record += static_cast<char>(kNullReference);
  PutNumber(record, (isThere ? *found->second->fNumber : fClassCount) + 1);
}

bool TImageWriter::IsWaitedFor(const ICIMClass& target) const {
  if (IsBeingDeclared(target)) return false;
  const auto found = fClasses[0].find(target.GetName({}));
  if (found != fClasses[0].end()) return !found->second->fNumber;
  if (fDeclaring.size() >= kMaxImageDepth) return true;
  TClass superclass = NModel::SuperclassOf(target);
  for (std::size_t i = 0; i < kMaxImageDepth && superclass; ++i) {
    if (IsBeingDeclared(*superclass)) return true;
    const auto above = fClasses[0].find(superclass->GetName({}));
    if (above != fClasses[0].end()) return !above->second->fNumber;
    superclass = NModel::SuperclassOf(*superclass);
  }
  return false;
}

void TImageWriter::WriteLateDefaults() {
  if (std::exchange(fWritesLateDefaults, true)) return;
  for (; !fLateDefaults.empty(); fLateDefaults.pop_front()) {
    const auto [number, decl] = fLateDefaults.front();
    const TWrittenClass& written = *fClasses[0].at(fOwnNames.at(number));
    std::string record(1, static_cast<char>(kLateDefault));
    PutNumber(record, number);
    PutNumber(record, written.fPositions.at(decl->GetName()));
    const std::size_t content = record.size();
    PutContent(record, decl->GetDefaultValue(), TType::kCIMTypeReference, decl->GetName());
    if (static_cast<std::uint8_t>(record[content]) != kNull) Append(record);
  }
  fWritesLateDefaults = false;
}

bool TImageWriter::IsBeingDeclared(const ICIMClass& cimClass) const {
  return !fDeclaring.empty() && NModel::EqualIgnoringCase(fDeclaring.back(), cimClass.GetName({}));
}

}  // namespace NVORNQDX20::NPluginHost
