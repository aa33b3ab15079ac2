// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/image.h>

#include <qdxcore/reference.h>
#include <qdxcore/reference_parameter.h>
#include <qdxcore/status.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/counted.h>
#include <qdxmodel/names.h>
#include <qdxmodel/property_reader.h>
#include <qdxmodel/type.h>
#include <qdxrepository/repository.h>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "image_format.h"
#include "image_output.h"

namespace NVORNQDX20::NPluginHost {
namespace {

using TType = TCIMValue::TCIMType;
using TClass = boost::shared_ptr<ICIMClass>;

class TImageWriter {
 public:
  TImageWriter(const ICIMNamespace& ns, const std::function<void(std::string_view)>& write)
      : fNamespace(ns), fName(ns.GetName({})), fWrite(write), fClasses(1), fKeyDecls(1) {}

  std::vector<std::string> Write() {
    fOut = kImageStart;
    fNamespace.EnumerateQualifierDecls(
        [this](const auto& decl) {
          (void)NumberOf(*decl);
          return true;
        },
        {});
    std::vector<TClass> roots;
    fNamespace.EnumerateClasses(TAddToVectorCallback(roots), {});
    for (const TClass& root : roots) {
      for (const TClass& each : NModel::WithSubclasses(root)) (void)NumberOf(each);
    }
    // A reference to a class that is not enumerated adds it.
    for (std::size_t i = 0; i < fOwnClasses.size(); ++i) {
      const TClass cimClass = fOwnClasses[i];
      WriteStaticValues(*cimClass);
      WriteInstances(cimClass);
    }
    fOut += static_cast<char>(kEnd);
    Flush();
    std::vector<std::string> warnings;
    for (const TLosses* losses : {&fUnnamed, &fMistyped, &fUnreachable}) {
      if (losses->fCount == 0) continue;
      warnings.push_back(NModel::Counted(losses->fCount, losses->fOne, losses->fMany) +
                         " left out, the first: " + losses->fFirst);
    }
    return warnings;
  }

 private:
  void Flush() {
    fWrite(fOut);
    fOut.clear();
  }
  void Append(const std::string& record) {
    constexpr std::size_t kAtOnce = std::size_t{1} << 18U;
    fOut += record;
    if (fOut.size() >= kAtOnce) Flush();
  }

  std::uint64_t NumberOf(const ICIMQualifierDecl& decl) {
    const auto [found, isNew] = fDecls.emplace(decl.GetName(), fDeclCount);
    if (isNew) AppendDecl(0, decl.GetName(), decl.GetDefaultValue(), decl);
    return found->second;
  }

  template <typename TDecl>
  void AppendDecl(std::uint64_t ns, const std::string& name, const TCIMValue& value,
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

  /// The number of the qualifier Key in another namespace.
  std::uint64_t NumberOfKey(std::uint64_t ns) {
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

  std::uint64_t NumberOf(const std::string& otherNamespace) {
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

  std::uint64_t NumberOf(const TClass& cimClass) { return *Written(cimClass).fNumber; }

  /// Returns null if this namespace has no such class, or does not tell.
  TClass FindClass(const std::string& name) const {
    try {
      return fNamespace.GetClass(name, {});
    } catch (const TQDXException& failure) {
      if (failure.GetStatusCode() == kQDXStatusOutOfMemory) throw;
      return nullptr;
    }
  }

  /// A class can be its own superclass.
  static void RequireShallow(const TClass& cimClass) {
    TClass above = cimClass;
    for (std::size_t i = 0; i < kMaxImageDepth && above; ++i) above = NModel::SuperclassOf(*above);
    if (!above) return;
    throw TExplainedException(kQDXStatusInvalidClass,
                              "class " + cimClass->GetName({}) + " has more than " +
                                  std::to_string(kMaxImageDepth - 1) + " superclasses");
  }

  /// Returns the class after writing it if it is not written yet, with all that it needs before it.
  const TWrittenClass& Written(const TClass& named) {
    const std::string name = named->GetName({});
    const auto [found, isNew] = fClasses[0].emplace(name, nullptr);
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
    for (const auto& [decl, isKey] : NModel::PropertiesOf(*cimClass)) {
      written.Add({decl->GetName(), decl->GetType(), isKey});
    }
    // Twice: the first time writes what the class needs, which takes numbers before its own.
    (void)RecordOf(*cimClass, superclass, kRehearsal);
    const std::uint64_t number = fClassCount++;
    Append(RecordOf(*cimClass, superclass, number));
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

  std::string RecordOf(const ICIMClass& cimClass, const TClass& superclass,
                       std::uint64_t ownNumber) {
    fOwnNumber = ownNumber;
    const bool rehearsed = std::exchange(fRehearses, ownNumber == kRehearsal);
    std::string record(1, static_cast<char>(kClass));
    PutNumber(record, 0);
    PutText(record, cimClass.GetName({}));
    PutNumber(record, superclass ? NumberOf(superclass) + 1 : 0);
    PutQualifiers(record, cimClass);
    const auto decls = NModel::OwnPropertyDeclsOf(cimClass);
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
  void PutQualifiers(std::string& record, const TQualified& element) {
    std::vector<boost::shared_ptr<ICIMQualifier>> qualifiers;
    element.EnumerateQualifiers(TAddToVectorCallback(qualifiers));
    PutNumber(record, qualifiers.size());
    for (const auto& qualifier : qualifiers) {
      const auto decl = qualifier->GetDecl();
      PutNumber(record, NumberOf(*decl));
      PutContent(record, qualifier->GetValue(), decl->GetDefaultValue().GetType(), decl->GetName());
    }
  }

  void PutMethods(std::string& record, const ICIMClass& cimClass) {
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

  void WriteStaticValues(const ICIMClass& cimClass) {
    const TWrittenClass& written = *fClasses[0].at(cimClass.GetName({}));
    std::vector<boost::shared_ptr<ICIMProperty>> values;
    cimClass.EnumerateStaticProperties(TAddToVectorCallback(values), {});
    for (const auto& value : values) {
      const std::string& name = value->GetDecl()->GetName();
      const std::size_t position = written.fPositions.at(name);
      std::string record(1, static_cast<char>(kStaticValue));
      PutNumber(record, *written.fNumber);
      PutNumber(record, position);
      PutContent(record, value->GetValue(), written.fMembers[position].fType, name);
      Append(record);
    }
  }

  /// Returns null if another namespace has no such key, or needs the class for itself, or if so
  /// many are being written that the stack may end.
  const TWrittenClass* Written(std::uint64_t ns, const TCIMReferenceImpl& reference,
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

  /// The default of a property of a class in another namespace, which gets the next number. A
  /// reference has to name a class: that one if its own is not there.
  void PutOtherDefault(std::string& record, std::uint64_t ns, const TCIMValue& value) {
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

  void PutValue(std::string& out, const TCIMValue& value, const std::string& where) {
    PutNumber(out, value.GetType());
    PutContent(out, value, value.GetType(), where);
  }

  /// `where` is for the warning if it is left out.
  void PutContent(std::string& out, const TCIMValue& value, TType type, const std::string& where) {
    if (value.GetType() != type) {
      Lose(fMistyped, where);
      out += static_cast<char>(kNull);
    } else if (IsNull(value)) {
      PutNull(out, value);
    } else if (value.IsArray()) {
      const std::vector<TCIMValue>& elements = value;
      out += static_cast<char>(kPresent);
      PutNumber(out, value.GetMaxArraySize());
      PutNumber(out, elements.size());
      for (const TCIMValue& each : elements)
        PutContent(out, each, NModel::ElementType(type), where);
    } else if (const TCIMReference* const reference = value.FindReference()) {
      PutReference(out, *reference->GetBody(), where);
    } else if (const std::string* const text = value.FindString()) {
      out += static_cast<char>(kPresent);
      PutText(out, *text);
    } else {
      out += static_cast<char>(kPresent);
      PutScalar(out, value);
    }
  }

  void PutNull(std::string& out, const TCIMValue& value) {
    const TClass target = value.IsReference() ? value.GetReferencedClass() : nullptr;
    if (value.IsArray() && value.GetMaxArraySize() != 0) {
      out += static_cast<char>(kNullArray);
      PutNumber(out, value.GetMaxArraySize());
    } else if (target) {
      out += static_cast<char>(kNullReference);
      PutNumber(out, NumberOfReferenced(target) + 1);
    } else {
      out += static_cast<char>(kNull);
    }
  }

  /// A class does not tell its namespace: one that this namespace has not is of another one.
  std::uint64_t NumberOfReferenced(const TClass& target) {
    if (IsBeingDeclared(*target)) return fOwnNumber;
    const std::string& name = target->GetName({});
    if (fClasses[0].count(name) != 0 || FindClass(name)) return NumberOf(target);
    const TWrittenClass* const other =
        Written(NumberOf(std::string()), TCIMReferenceImpl(fNoReference, nullptr, {}), *target);
    return other != nullptr ? *other->fNumber : NumberOf(target);
  }

  /// Returns whether the class cannot be written now: it, or a superclass, is being written, and
  /// needs what is being written last; or so many are being written that the stack may end.
  bool IsWaitedFor(const ICIMClass& target) const {
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

  /// Until then such properties refer to their own class. To write one may write other classes, and
  /// add to the late defaults.
  void WriteLateDefaults() {
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

  void Lose(TLosses& losses, const std::string& where) const {
    if (!fRehearses) losses.Add(where);
  }

  /// A class may refer to itself before it is declared.
  bool IsBeingDeclared(const ICIMClass& cimClass) const {
    return !fDeclaring.empty() &&
           NModel::EqualIgnoringCase(fDeclaring.back(), cimClass.GetName({}));
  }

  void PutReference(std::string& out, const TCIMReferenceImpl& reference,
                    const std::string& where) {
    const auto ns = reference.GetNamespace();
    const TClass cimClass = reference.GetClass();
    const bool isOwn =
        !ns || ns.get() == &fNamespace || NModel::EqualIgnoringCase(ns->GetName({}), fName);
    if (isOwn && IsBeingDeclared(*cimClass) && reference.GetKeyBindings().empty()) {
      out += static_cast<char>(kPresent);
      PutNumber(out, fOwnNumber);
      return PutNumber(out, 0);
    }
    if (isOwn && !fDeclaring.empty() && (IsBeingDeclared(*cimClass) || IsWaitedFor(*cimClass))) {
      out += static_cast<char>(kNull);
      return Lose(fUnreachable, where);
    }
    const TWrittenClass* const target =
        isOwn ? &Written(cimClass) : Written(NumberOf(ns->GetName({})), reference, *cimClass);
    std::string keys;
    bool isReachable = target != nullptr && fReferenceDepth < kMaxImageDepth;
    ++fReferenceDepth;
    for (const auto& [name, key] : reference.GetKeyBindings()) {
      const auto found = isReachable ? target->fPositions.find(name) : target->fPositions.end();
      isReachable = isReachable && found != target->fPositions.end();
      if (!isReachable) break;
      PutNumber(keys, found->second);
      const std::size_t content = keys.size();
      PutContent(keys, key, target->fMembers[found->second].fType, where);
      isReachable = IsNull(key) || IsPresent(keys, content);
    }
    --fReferenceDepth;
    out += static_cast<char>(isReachable ? kPresent : kNull);
    if (!isReachable && fReferenceDepth == 0) Lose(fUnreachable, where);
    if (!isReachable) return;
    PutNumber(out, *target->fNumber);
    PutNumber(out, reference.GetKeyBindings().size());
    out += keys;
  }

  void WriteInstances(const TClass& cimClass) {
    const TWrittenClass& written = Written(cimClass);
    NModel::TPropertyReader reader(*cimClass);
    const auto& properties = reader.GetProperties();
    std::string record(1, static_cast<char>(kInstancesOf));
    PutNumber(record, *written.fNumber);
    PutNumber(record, properties.size());
    for (const auto& property : properties) {
      PutNumber(record, written.fPositions.at(property.fName));
    }
    bool isFirst = true;
    NModel::ForEachInstance(*cimClass, [&](const ICIMInstance& instance) {
      if (std::exchange(isFirst, false)) Append(record);
      record.assign(1, static_cast<char>(kInstance));
      reader.Begin(instance);
      bool isNamed = true;
      for (std::size_t i = 0; i < properties.size(); ++i) {
        const auto& property = properties[i];
        const std::size_t content = record.size();
        reader.Read(i, [&](const TCIMValue& value) {
          PutContent(record, value, property.fType, property.fName);
        });
        isNamed = isNamed && (!property.fIsKey || IsPresent(record, content));
      }
      if (isNamed) {
        Append(record);
      } else {
        Lose(fUnnamed, cimClass->GetName({}));
      }
    });
  }

  const ICIMNamespace& fNamespace;
  const std::string fName;
  const std::function<void(std::string_view)>& fWrite;
  std::string fOut;
  NModel::TNameMap<std::uint64_t> fDecls;
  std::uint64_t fDeclCount = 0;
  NModel::TNameMap<std::uint64_t> fOthers;
  std::vector<NModel::TNameMap<std::unique_ptr<TWrittenClass>>> fClasses;  // by namespace
  std::vector<std::optional<std::uint64_t>> fKeyDecls;                     // by namespace
  std::uint64_t fClassCount = 0;
  struct TLateDefault {
    std::uint64_t fClass;
    boost::shared_ptr<ICIMPropertyDecl> fDecl;
  };
  std::deque<TLateDefault> fLateDefaults;
  bool fWritesLateDefaults = false;
  std::map<std::uint64_t, std::string> fOwnNames;  // by number
  std::vector<TClass> fOwnClasses;                 // in the order of their numbers
  std::vector<std::string> fDeclaring;             // classes that are being written
  static constexpr std::uint64_t kRehearsal = static_cast<std::uint64_t>(-1);
  bool fRehearses = false;       // a record that is not appended
  std::uint64_t fOwnNumber = 0;  // of the last of them
  std::size_t fReferenceDepth = 0;
  std::size_t fOthersDepth = 0;  // of classes in other namespaces that need one another
  TCIMReference fNoReference{nullptr, {}};
  TLosses fUnnamed{"instance that lacks a key was", "instances that lack a key were"};
  TLosses fMistyped{"value of another type than declared was",
                    "values of another type than declared were"};
  TLosses fUnreachable{"reference that cannot be followed was",
                       "references that cannot be followed were"};
};

}  // namespace

std::vector<std::string> WriteImage(const ICIMNamespace& ns,
                                    const std::function<void(std::string_view)>& write) {
  return TImageWriter(ns, write).Write();
}

}  // namespace NVORNQDX20::NPluginHost
