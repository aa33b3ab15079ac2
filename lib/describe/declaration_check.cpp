// SPDX-License-Identifier: Apache-2.0
// Finds what is wrong with the declarations of a provider.
#include <qdxcore/status.h>
#include <qdxdescribe/declaration.h>
#include <qdxdescribe/missing_values.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <string_view>

#include "structure.h"

namespace NVORNQDX20::NDescribe {
namespace {

using TType = TCIMValue::TCIMType;

[[noreturn]] void Refuse(const TClassDeclaration& declaration, const std::string& defect) {
  throw TExplainedException(kQDXStatusInvalidClass, "class " + declaration.fName + ": " + defect);
}

/// The grammar of a PUnit (DMTF DSP0004, annex C). The names of units are not checked: there are
/// those of vendors, too. By hand, since std::regex takes longer than all tables of a provider.
class TUnitParser {
 public:
  explicit TUnitParser(std::string_view text) : fRest(text) {}

  /// Returns whether the text is units, units that divide them, a number, and a power.
  bool Matches() {
    if (!TakeUnit()) return false;
    while (TakeFactor("*", &TUnitParser::TakeUnit)) {
    }
    while (TakeFactor("/", &TUnitParser::TakeUnit)) {
    }
    // A power begins like a number.
    if (!TakeFactor("*/", &TUnitParser::TakePower)) {
      TakeFactor("*/", &TUnitParser::TakeNumber);
      TakeFactor("*/", &TUnitParser::TakePower);
    }
    return fRest.empty();
  }

 private:
  using TTake = bool (TUnitParser::*)();

  /// Takes nothing if there is no factor with one of these operators.
  bool TakeFactor(std::string_view operators, TTake take) {
    const std::string_view before = fRest;
    TakeAll(" ");
    const bool hasOperator = TakeOne(operators);
    TakeAll(" ");
    if (hasOperator && (this->*take)()) return true;
    fRest = before;
    return false;
  }

  /// For example "revolution", "bit per second", or "degree (celsius)".
  bool TakeUnit() {
    if (!TakeWord()) return false;
    std::string_view end = fRest;
    while (TakeOne(" ") && TakeWord()) end = fRest;
    fRest = end;
    TakeOne(" ");
    if (TakeOne("(") && TakeWord() && TakeOne(")")) return true;
    fRest = end;
    return true;
  }

  bool TakeNumber() {
    TakeOne("+-");
    if (!TakeInteger()) return false;
    const std::string_view end = fRest;
    if (!TakeOne(".") || !TakeAll(kDigits)) fRest = end;
    return true;
  }

  /// For example "10^3".
  bool TakePower() {
    if (!TakeInteger()) return false;
    TakeAll(" ");
    if (!TakeOne("^")) return false;
    TakeAll(" ");
    TakeOne("+-");
    return TakeInteger();
  }

  bool TakeInteger() {
    if (!TakeOne("123456789")) return false;
    TakeAll(kDigits);
    return true;
  }

  bool TakeWord() {
    if (!TakeOne(kLetters)) return false;
    while (TakeAll(kLetters) || TakeAll(kDigits)) {
    }
    return true;
  }

  bool TakeOne(std::string_view characters) {
    if (fRest.empty() || characters.find(fRest.front()) == characters.npos) return false;
    fRest.remove_prefix(1);
    return true;
  }

  /// Returns whether there was at least one.
  bool TakeAll(std::string_view characters) {
    const std::size_t size = std::min(fRest.find_first_not_of(characters), fRest.size());
    fRest.remove_prefix(size);
    return size != 0;
  }

  static constexpr std::string_view kDigits = "0123456789";
  static constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";

  std::string_view fRest;
};

template <typename T>
bool IsWithin(long number) {
  using TLimits = std::numeric_limits<T>;
  return number >= static_cast<long>(TLimits::min()) &&
         (number < 0 || static_cast<unsigned long>(number) <= TLimits::max());
}

/// Returns whether an integer of this type, or an element of an array of it, can be the number.
bool Holds(unsigned int type, long number) {
  switch (type & ~static_cast<unsigned int>(TType::kCIMTypeArray)) {
    case TType::kCIMTypeUint8:
      return IsWithin<std::uint8_t>(number);
    case TType::kCIMTypeSint8:
      return IsWithin<std::int8_t>(number);
    case TType::kCIMTypeUint16:
      return IsWithin<std::uint16_t>(number);
    case TType::kCIMTypeSint16:
      return IsWithin<std::int16_t>(number);
    case TType::kCIMTypeUint32:
      return IsWithin<std::uint32_t>(number);
    case TType::kCIMTypeSint32:
      return IsWithin<std::int32_t>(number);
    case TType::kCIMTypeUint64:
      return IsWithin<std::uint64_t>(number);
    default:
      return true;
  }
}

/// Checks a class against those before it.
class TDeclarationCheck {
 public:
  void Check(const TClassDeclaration& declaration) {
    if (NModel::EqualIgnoringCase(declaration.fName, kMissingValueClass)) {
      Refuse(declaration, "has the name of the class of missing values");
    }
    Require(declaration, declaration.fSuperclass, "its superclass");
    CheckProperties(declaration);
    TClassFacts facts = FactsOf(declaration);
    CheckKeys(declaration, facts);
    if (!fClasses.emplace(declaration.fName, std::move(facts)).second) {
      Refuse(declaration, "is declared twice");
    }
  }

 private:
  struct TMember {
    bool fIsKey = false;
    bool fIsReference = false;
  };
  /// With what is inherited.
  struct TClassFacts {
    NModel::TNameMap<TMember> fMembers;
    bool fIsAssociation = false;
  };

  TClassFacts FactsOf(const TClassDeclaration& declaration) const {
    const auto superclass = fClasses.find(declaration.fSuperclass);
    TClassFacts facts = superclass == fClasses.end() ? TClassFacts() : superclass->second;
    facts.fIsAssociation |= declaration.fIsAssociation;
    for (const TPropertyDeclaration& property : declaration.fProperties) {
      TMember& member = facts.fMembers[property.fName];
      member.fIsKey |= property.fIsKey;
      member.fIsReference = !property.fReferencedClass.empty();
    }
    return facts;
  }

  static void CheckKeys(const TClassDeclaration& declaration, const TClassFacts& facts) {
    int keys = 0;
    int references = 0;
    int referenceKeys = 0;
    for (const auto& [name, member] : facts.fMembers) {
      keys += member.fIsKey ? 1 : 0;
      references += member.fIsReference ? 1 : 0;
      referenceKeys += member.fIsKey && member.fIsReference ? 1 : 0;
    }
    if (!declaration.fIsAbstract && keys == 0) Refuse(declaration, "has no key");
    if (facts.fIsAssociation && references < 2) {
      Refuse(declaration, "is an association with fewer than two references");
    }
    if (!facts.fIsAssociation && referenceKeys > 1) {
      Refuse(declaration, "has two references as keys, but is no association");
    }
  }

  static void CheckEnumeration(const TClassDeclaration& declaration,
                               const TPropertyDeclaration& property) {
    if (property.fEnumeration.empty()) return;
    const std::string defect = "the enumeration of " + property.fName + " has ";
    std::set<long> numbers;
    for (const auto& [number, text] : property.fEnumeration) {
      const std::string shown = std::to_string(number);
      if (text == nullptr) Refuse(declaration, defect + "no text for " + shown);
      if (!numbers.insert(number).second) Refuse(declaration, defect + shown + " twice");
      const TType type = property.fDefault.GetType();
      if (!Holds(type, number)) {
        Refuse(declaration, defect + shown + ", which a " + type.ToString() + " cannot be");
      }
    }
  }

  void Require(const TClassDeclaration& declaration, const std::string& name,
               const char* role) const {
    if (!name.empty() && fClasses.count(name) == 0) {
      Refuse(declaration, role + (" " + name) + " is not declared before it");
    }
  }

  void CheckProperties(const TClassDeclaration& declaration) const {
    NModel::TNameMap<bool> names;
    for (const TPropertyDeclaration& property : declaration.fProperties) {
      if (!names.emplace(property.fName, true).second) {
        Refuse(declaration, "has two properties " + property.fName);
      }
      if (!property.fUnit.empty() && !TUnitParser(property.fUnit).Matches()) {
        Refuse(declaration, "the unit of " + property.fName + ", \"" + property.fUnit +
                                "\", is no PUnit such as \"byte * 10^3\"");
      }
      const bool isOwn = NModel::EqualIgnoringCase(property.fReferencedClass, declaration.fName);
      if (!isOwn) Require(declaration, property.fReferencedClass, "the referenced class");
      CheckEnumeration(declaration, property);
    }
  }

  NModel::TNameMap<TClassFacts> fClasses;  // those checked so far
};

}  // namespace

void CheckRelations(const std::vector<const TClassDeclaration*>& declarations) {
  TDeclarationCheck check;
  for (const TClassDeclaration* const declaration : declarations) check.Check(*declaration);
}

void CheckDeclarations(const std::vector<const TClassDeclaration*>& declarations) {
  CheckRelations(declarations);
  // Names, overridden types and keys are checked by a namespace. It accepts every text.
  const auto trial = MakeRepositoryNamespace("trial");
  for (const TClassDeclaration* const declaration : declarations) {
    NDetail::DeclareStructure(*trial, *declaration);
  }
}

}  // namespace NVORNQDX20::NDescribe
