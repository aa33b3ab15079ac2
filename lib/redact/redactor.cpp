// SPDX-License-Identifier: Apache-2.0
#include <qdxredact/redactor.h>

#include <qdxdescribe/missing_values.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/property_reader.h>
#include <qdxmodel/type.h>
#include <qdxrepository/instance_adder.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "common_values.h"
#include "guess.h"
#include "schema_copy.h"
#include "secrets.h"
#include "values.h"

namespace NVORNQDX20::NRedact {
namespace {

using TType = TCIMValue::TCIMType;
using TClass = boost::shared_ptr<ICIMClass>;
using TNamespace = boost::shared_ptr<ICIMNamespace>;

constexpr const char* kReason = "redacted";

/// Returns the value of the qualifier; null if the property has none.
boost::shared_ptr<ICIMQualifier> SecretQualifierOf(const ICIMPropertyDecl& decl) {
  try {
    return decl.GetQualifier(NDescribe::kSecretQualifier);
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() == kQDXStatusOutOfMemory) throw;
    return nullptr;
  }
}

/// A kind that this version does not know is treated like a serial number.
ESecret SecretOf(const ICIMPropertyDecl& decl) {
  const auto qualifier = SecretQualifierOf(decl);
  if (!qualifier) return ESecret::kNone;
  const std::string* const name = qualifier->GetValue().FindString();
  if (name == nullptr || name->empty()) return ESecret::kNone;
  return NRedact::SecretOf(*name).value_or(ESecret::kSerial);
}

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() &&
         NModel::EqualIgnoringCase(std::string_view(text).substr(text.size() - end.size()), end);
}

/// Returns whether the values are names of classes and properties.
bool NamesSchema(const std::string& property) {
  return EndsWith(property, "ClassName") || NModel::EqualIgnoringCase(property, "PropertyName");
}

/// The kind of secret that each property of a class is.
using TRules = NModel::TNameMap<ESecret>;

}  // namespace

std::vector<ESecret> AllSecrets() {
  return {ESecret::kSerial, ESecret::kHostName,    ESecret::kAddress,
          ESecret::kUser,   ESecret::kCommandLine, ESecret::kMountSource};
}

std::optional<ESecret> SecretOf(const std::string& name) {
  std::string spaced = name;
  std::replace(spaced.begin(), spaced.end(), '-', ' ');
  for (const ESecret each : AllSecrets()) {
    if (NModel::EqualIgnoringCase(spaced, NDescribe::SecretName(each))) return each;
  }
  return std::nullopt;
}

bool TellsSecrets(const ICIMNamespace& ns) {
  for (const TClass& each : ClassesOf(ns)) {
    for (const auto& decl : NModel::OwnPropertyDeclsOf(*each)) {
      if (SecretOf(*decl) != ESecret::kNone) return true;
    }
  }
  return false;
}

class TRedactor::TWork {
 public:
  explicit TWork(const TRedaction& redaction) : fSecrets(redaction), fGuesses(redaction.fGuesses) {}

  void Learn(const ICIMNamespace& ns) {
    const bool guesses = fGuesses && !TellsSecrets(ns);
    for (const TClass& each : ClassesOf(ns)) {
      AddRules(each, guesses);
      const NModel::TPropertyReader properties(*each);
      TInstanceReader reader(*this, each);
      NModel::ForEachInstance(*each, [&](const ICIMInstance& instance) {
        reader.Begin(instance);
        reader.ForEachValue(
            [&](std::size_t, const auto& property, ESecret secret, const TCIMValue& value) {
              LearnValue(property.fName, secret, value);
            });
      });
      const auto learn = [&](const boost::shared_ptr<ICIMProperty>& property) {
        const std::string& name = property->GetDecl()->GetName();
        LearnValue(name, RuleOf(*each, name), property->GetValue());
        return true;
      };
      each->EnumerateStaticProperties(learn, {});
    }
  }

  TNamespace Redact(const TNamespace& ns) {
    TNamespace target = TargetOf(ns);
    if (!fRedacted.insert(ns.get()).second) return target;
    fHidden.clear();
    for (const TCopiedClass& each : fCopied.at(ns.get())) RedactInstances(each);
    // After the reasons that are copied.
    for (const auto& [cimClass, property] : fHidden) {
      Explain(*target, {cimClass, "", property, kReason});
    }
    return target;
  }

  std::string Redact(const std::string& text) { return fSecrets.RedactText(text); }
  std::size_t GetLost() const { return fLost; }

 private:
  /// Reads the values of instances of a class, with the kind of secret that each is.
  class TInstanceReader {
   public:
    TInstanceReader(const TWork& work, const TClass& cimClass) : fReader(*cimClass) {
      for (const auto& property : fReader.GetProperties()) {
        fSecrets.push_back(work.RuleOf(*cimClass, property.fName));
      }
    }

    const std::vector<NModel::TPropertyReader::TProperty>& GetProperties() const {
      return fReader.GetProperties();
    }

    void Begin(const ICIMInstance& instance) {
      fReader.Begin(instance);
      fIsCommonUser = false;
      for (std::size_t i = 0; i < fSecrets.size(); ++i) {
        if (!GetProperties()[i].fIsKey || fSecrets[i] != ESecret::kUser) continue;
        fReader.Read(i, [this](const TCIMValue& value) {
          const std::string* const name = value.FindString();
          fIsCommonUser = name != nullptr && IsCommon(ESecret::kUser, *name);
        });
      }
    }

    /// Calls `visit(position, property, secret, value)`. What an account that many machines have
    /// says of itself is no secret.
    template <typename TVisit>
    void ForEachValue(const TVisit& visit) const {
      for (std::size_t i = 0; i < fSecrets.size(); ++i) {
        const bool isCommon = fIsCommonUser && fSecrets[i] == ESecret::kUser;
        fReader.Read(i, [&](const TCIMValue& value) {
          visit(i, GetProperties()[i], isCommon ? ESecret::kNone : fSecrets[i], value);
        });
      }
    }

   private:
    NModel::TPropertyReader fReader;
    std::vector<ESecret> fSecrets;
    bool fIsCommonUser = false;
  };

  void AddRules(const TClass& cimClass, bool guesses) {
    const auto [known, isNew] = fRules.try_emplace(cimClass.get());
    if (!isNew) return;
    fHeld.push_back(cimClass);
    for (const auto& [decl, isKey] : NModel::PropertiesOf(*cimClass)) {
      const std::string& name = decl->GetName();
      ESecret secret = SecretOf(*decl);
      if (secret == ESecret::kNone && guesses) secret = GuessByName(cimClass->GetName({}), name);
      known->second.emplace(name, secret);
    }
  }

  ESecret RuleOf(const ICIMClass& cimClass, const std::string& property) const {
    const auto rules = fRules.find(&cimClass);
    if (rules == fRules.end()) return ESecret::kNone;
    const auto rule = rules->second.find(property);
    return rule == rules->second.end() ? ESecret::kNone : rule->second;
  }

  ESecret KindOf(const std::string& property, ESecret secret, const std::string& text) const {
    return secret == ESecret::kNone && fGuesses ? GuessByForm(property, text) : secret;
  }

  void LearnValue(const std::string& property, ESecret secret, const TCIMValue& value) {
    if (NamesSchema(property) && secret == ESecret::kNone) return;
    ForEachText(value, [&](const std::string& text) {
      fSecrets.Learn(KindOf(property, secret, text), text);
      fSecrets.LearnFrom(text);
    });
    ForEachReference(value, [&](const TCIMReference& reference) {
      const TClass cimClass = reference.GetClass();
      for (const auto& [name, key] : reference.GetBody()->GetKeyBindings()) {
        LearnValue(name, RuleOf(*cimClass, name), key);
      }
    });
  }

  /// Returns the new namespace for this one, which has its classes.
  TNamespace TargetOf(const TNamespace& source) {
    const auto [found, isNew] = fTargets.try_emplace(source.get());
    if (!isNew) return found->second;
    fHeldNamespaces.push_back(source);
    TNamespace target = MakeRepositoryNamespace(source->GetName({}));
    found->second = target;
    const bool guesses = fGuesses && !TellsSecrets(*source);
    for (const TClass& each : ClassesOf(*source)) AddRules(each, guesses);
    fCopied[source.get()] = CopySchema(*source, target, [this](const ICIMPropertyDecl& decl) {
      return Mapped(decl.GetName(), SecretOf(decl), decl.GetDefaultValue());
    });
    // A copy, since classes of other namespaces can be added.
    const std::vector<TCopiedClass> copied = fCopied[source.get()];
    for (const auto& [from, to] : copied) fCopies[from.get()] = {target, to};
    for (const TCopiedClass& each : copied) CompleteClass(each);
    return target;
  }

  void CompleteClass(const TCopiedClass& copied) {
    for (const auto& decl : NModel::OwnPropertyDeclsOf(*copied.fSource)) {
      const TCIMValue& value = decl->GetDefaultValue();
      const bool hasClass = fCopies.count(value.GetReferencedClass().get()) != 0;
      if (!value.IsReference() || (value.IsNull() && !hasClass)) continue;
      SetReferenceDefault(*copied.fTarget, decl->GetName(),
                          Mapped(decl->GetName(), ESecret::kNone, value));
    }
    const auto add = [&](const boost::shared_ptr<ICIMProperty>& property) {
      const std::string& name = property->GetDecl()->GetName();
      const ESecret secret = RuleOf(*copied.fSource, name);
      copied.fTarget->SetStaticPropertyValue(name, Mapped(name, secret, property->GetValue()), {});
      return true;
    };
    copied.fSource->EnumerateStaticProperties(add, {});
  }

  struct TCopy {
    TNamespace fNamespace;
    TClass fClass;
  };

  /// Returns the copy of a class; of one in a namespace that is not redacted, too.
  TCopy CopyOf(const TClass& cimClass, const TNamespace& ns) {
    if (fCopies.count(cimClass.get()) == 0 && ns) (void)TargetOf(ns);
    const auto found = fCopies.find(cimClass.get());
    if (found != fCopies.end()) return found->second;
    throw TExplainedException(
        kQDXStatusInvalidReference,
        "a reference leads to class " + cimClass->GetName({}) + ", which is in no namespace");
  }

  TCIMValue Mapped(const TCIMReference& reference) {
    const auto [target, cimClass] = CopyOf(reference.GetClass(), reference.GetNamespace());
    TCIMReference withoutKeys(target, {});
    withoutKeys.SetClass(cimClass);
    TCIMValue value(withoutKeys);
    TCIMReferenceImpl& body = *value.FindReference()->GetBody();
    const TClass source = reference.GetClass();
    for (const auto& [name, key] : reference.GetBody()->GetKeyBindings()) {
      body.BindKey(name, MappedKey(name, RuleOf(*source, name), key));
    }
    return value;
  }

  TCIMValue MappedKey(const std::string& property, ESecret secret, const TCIMValue& value) {
    if (IsHidden(secret, value)) {
      return OtherNumber(value, fSecrets.PseudonymOfNumber(value.ToString(10)));
    }
    return Mapped(property, secret, value);
  }

  /// Returns whether the value is a secret of a type that has no pseudonyms.
  bool IsHidden(ESecret secret, const TCIMValue& value) const {
    return secret != ESecret::kNone && !fSecrets.IsKept(secret) && !value.IsNull() &&
           !IsText(value.GetType()) &&
           NModel::ElementType(value.GetType()) != TType::kCIMTypeReference;
  }

  std::string Redacted(const std::string& property, ESecret secret, const std::string& text) {
    if (secret == ESecret::kNone && NamesSchema(property)) return text;
    const ESecret kind = KindOf(property, secret, text);
    if (kind == ESecret::kCommandLine && !fSecrets.IsKept(kind)) {
      return fSecrets.RedactKernelLine(text);
    }
    return fSecrets.Redact(kind, text);
  }

  TCIMValue MappedCommand(const TCIMValue& value) {
    std::vector<std::string> words;
    ForEachText(value, [&words](const std::string& word) { words.push_back(word); });
    const std::vector<std::string> redacted = fSecrets.RedactCommand(words);
    return TCIMValue(TType(TType::kCIMTypeString), value.GetMaxArraySize(),
                     std::vector<TCIMValue>(redacted.begin(), redacted.end()));
  }

  /// Returns the value with pseudonyms. Null is null, a number that is secret as well.
  TCIMValue Mapped(const std::string& property, ESecret secret, const TCIMValue& value) {
    if (value.IsNull()) return MappedNull(value);
    if (IsHidden(secret, value)) return TCIMValue(value.GetType(), value.GetMaxArraySize());
    if (const std::string* const text = value.FindString()) {
      return TCIMValue(Redacted(property, secret, *text));
    }
    if (const TCIMReference* const reference = value.FindReference()) return Mapped(*reference);
    const TType element = NModel::ElementType(value.GetType());
    if (element != TType::kCIMTypeString && element != TType::kCIMTypeReference) return value;
    if (secret == ESecret::kCommandLine && !fSecrets.IsKept(secret)) return MappedCommand(value);
    const std::vector<TCIMValue>& elements = value;
    std::vector<TCIMValue> mapped;
    mapped.reserve(elements.size());
    for (const TCIMValue& each : elements) mapped.push_back(Mapped(property, secret, each));
    return TCIMValue(element, value.GetMaxArraySize(), mapped);
  }

  TCIMValue MappedNull(const TCIMValue& value) {
    const TClass cimClass = value.GetReferencedClass();
    if (!cimClass || fCopies.count(cimClass.get()) == 0) {
      return TCIMValue(value.GetType(), value.GetMaxArraySize());
    }
    TCIMValue null(value.GetType(), value.GetMaxArraySize());
    null.SetReferencedClass(fCopies.at(cimClass.get()).fClass);
    return null;
  }

  /// Returns the positions that TInstanceAdder takes, in the order of the reader.
  static std::vector<std::size_t> PositionsOf(const TInstanceReader& reader,
                                              const ICIMClass& target) {
    NModel::TNameMap<std::size_t> indexes;
    target.EnumeratePropertyDecls(
        [&indexes](const auto& decl) {
          indexes.emplace(decl->GetName(), indexes.size());
          return true;
        },
        {});
    std::vector<std::size_t> positions;
    for (const auto& property : reader.GetProperties()) {
      positions.push_back(indexes.at(property.fName));
    }
    return positions;
  }

  void RedactInstances(const TCopiedClass& copied) {
    if (copied.fTarget->IsAbstract({})) return;
    TInstanceReader reader(*this, copied.fSource);
    const std::vector<std::size_t> positions = PositionsOf(reader, *copied.fTarget);
    TInstanceAdder adder(copied.fTarget);
    const std::string& name = copied.fSource->GetName({});
    NModel::ForEachInstance(*copied.fSource, [&](const ICIMInstance& instance) {
      reader.Begin(instance);
      adder.Begin();
      reader.ForEachValue([&](std::size_t index, const auto& property, ESecret secret,
                              const TCIMValue& value) {
        if (value.IsNull()) return adder.SetNull(positions[index]);
        if (!property.fIsKey && IsHidden(secret, value)) fHidden.insert({name, property.fName});
        (void)adder.Set(positions[index], property.fIsKey ? MappedKey(property.fName, secret, value)
                                                          : Mapped(property.fName, secret, value));
      });
      if (!adder.Commit()) ++fLost;
    });
  }

  /// Says why the values are null, unless the namespace has a reason, or its own idea of reasons.
  static void Explain(ICIMNamespace& target, const NDescribe::TMissingValue& missing) {
    try {
      NDescribe::WriteMissingValues(target, {missing});
    } catch (const TQDXException& failure) {
      if (failure.GetStatusCode() == kQDXStatusOutOfMemory) throw;
    }
  }

  TSecrets fSecrets;
  const bool fGuesses;
  std::unordered_map<const ICIMClass*, TRules> fRules;
  std::unordered_map<const ICIMClass*, TCopy> fCopies;
  std::unordered_map<const ICIMNamespace*, TNamespace> fTargets;
  std::unordered_map<const ICIMNamespace*, std::vector<TCopiedClass>> fCopied;
  std::set<std::pair<std::string, std::string>> fHidden;  // class and property of the namespace
  std::set<const ICIMNamespace*> fRedacted;               // those that have their instances
  // Their addresses are keys above, and must not be used again.
  std::vector<TClass> fHeld;
  std::vector<TNamespace> fHeldNamespaces;
  std::size_t fLost = 0;
};

TRedactor::TRedactor(TRedaction redaction) : fWork(std::make_unique<TWork>(redaction)) {}
TRedactor::~TRedactor() = default;
void TRedactor::Learn(const ICIMNamespace& ns) { fWork->Learn(ns); }
boost::shared_ptr<ICIMNamespace> TRedactor::Redact(const boost::shared_ptr<ICIMNamespace>& ns) {
  return fWork->Redact(ns);
}
std::string TRedactor::Redact(const std::string& text) { return fWork->Redact(text); }
std::size_t TRedactor::GetLost() const { return fWork->GetLost(); }

}  // namespace NVORNQDX20::NRedact
