// SPDX-License-Identifier: Apache-2.0
#include "property_details.h"

#include <qdxcore/values.h>
#include <qdxdescribe/declaration.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <map>
#include <string>

namespace NVORNQDX20 {
namespace {

using TTexts = std::vector<std::string>;

/// Returns the text, or an empty one if the value is something else.
std::string TextOf(const TCIMValue& value) {
  const bool isText = !value.IsNull() && value.GetType() == TCIMValue::TCIMType::kCIMTypeString;
  return isText ? static_cast<std::string>(value) : "";
}

/// Returns the texts, or none if the value is something else.
TTexts TextsOf(const TCIMValue& value) {
  TTexts texts;
  if (value.IsNull() || !value.IsArray()) return texts;
  const std::vector<TCIMValue> elements = value;
  for (const TCIMValue& element : elements) texts.push_back(TextOf(element));
  return texts;
}

EArrayType ArrayTypeOf(const std::string& name) {
  if (NModel::EqualIgnoringCase(name, "Ordered")) return EArrayType::kOrdered;
  if (NModel::EqualIgnoringCase(name, "Indexed")) return EArrayType::kIndexed;
  return EArrayType::kBag;
}

/// The qualifiers of one property, from its topmost declaration down.
class TQualifiersOfProperty {
 public:
  explicit TQualifiersOfProperty(TPropertySnapshot& property) : fProperty(property) {}

  void Add(const ICIMPropertyDecl& decl) {
    decl.EnumerateQualifiers([this](const boost::shared_ptr<ICIMQualifier>& qualifier) {
      Add(qualifier->GetDecl()->GetName(), qualifier->GetValue());
      return true;
    });
  }

  void Finish() {
    for (std::size_t i = 0; i < fValues.size(); ++i) {
      if (!fValueMap.empty() && i >= fValueMap.size()) break;
      fProperty.fValueNames.emplace_back(fValueMap.empty() ? std::to_string(i) : fValueMap[i],
                                         fValues[i]);
    }
  }

 private:
  void Add(const std::string& name, const TCIMValue& value) {
    const auto is = [&name](const char* other) { return NModel::EqualIgnoringCase(name, other); };
    if (is("Description")) fProperty.fDescription = TextOf(value);
    if (is("PUnit")) fProperty.fUnit = TextOf(value);
    if (is("ArrayType")) fProperty.fArrayType = ArrayTypeOf(TextOf(value));
    if (is(NDescribe::kSecretQualifier)) fProperty.fSecret = TextOf(value);
    if (is("ValueMap")) fValueMap = TextsOf(value);
    if (is("Values")) fValues = TextsOf(value);
  }

  TPropertySnapshot& fProperty;
  TTexts fValueMap;
  TTexts fValues;
};

}  // namespace

void ReadPropertyDetails(const boost::shared_ptr<ICIMClass>& cimClass, bool withQualifiers,
                         std::vector<TPropertySnapshot>& properties) {
  std::vector<boost::shared_ptr<ICIMClass>> chain;
  for (auto each = cimClass; each; each = NModel::SuperclassOf(*each)) chain.push_back(each);
  std::reverse(chain.begin(), chain.end());

  NModel::TNameMap<TQualifiersOfProperty> known;
  for (TPropertySnapshot& property : properties) known.emplace(property.fName, property);
  NModel::TNameMap<std::size_t> positions;
  // A class enumerates what it inherits, too, mostly as the same object. By address: pointers to
  // parts of one object compare equal. Kept, so that no other one gets the address.
  std::map<const ICIMPropertyDecl*, boost::shared_ptr<ICIMPropertyDecl>> seen;
  for (const auto& each : chain) {
    each->EnumeratePropertyDecls(
        [&](const boost::shared_ptr<ICIMPropertyDecl>& decl) {
          positions.emplace(decl->GetName(), positions.size());
          if (!withQualifiers || !seen.emplace(decl.get(), decl).second) return true;
          const auto found = known.find(decl->GetName());
          if (found != known.end()) found->second.Add(*decl);
          return true;
        },
        {});
  }
  for (TPropertySnapshot& property : properties) {
    property.fPosition = positions[property.fName];
    known.at(property.fName).Finish();
  }
}

}  // namespace NVORNQDX20
