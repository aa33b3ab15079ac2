// SPDX-License-Identifier: Apache-2.0
/// Reads the values of many instances of one class, as quickly as each instance allows.
#ifndef QDXMODEL_PROPERTY_READER_H_
#define QDXMODEL_PROPERTY_READER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/values.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace NVORNQDX20::NModel {

class TPropertyReader {
 public:
  struct TProperty {
    std::string fName;
    TCIMValue::TCIMType fType;
    bool fIsKey;
  };

  /// The class must outlive the reader.
  explicit TPropertyReader(const ICIMClass& cimClass) : fClass(&cimClass) {
    TNameMap<std::size_t> indexes;
    cimClass.EnumeratePropertyDecls(
        [&indexes, index = std::size_t{0}](const auto& decl) mutable {
          indexes.emplace(decl->GetName(), index++);
          return true;
        },
        {});
    for (const auto& [decl, isKey] : PropertiesOf(cimClass)) {
      const auto found = indexes.find(decl->GetName());
      fIndexes.push_back(found == indexes.end() ? kNotEnumerated : found->second);
      fProperties.push_back({decl->GetName(), decl->GetType(), isKey});
    }
  }

  /// In the order of PropertiesOf().
  const std::vector<TProperty>& GetProperties() const { return fProperties; }

  /// Returns the position of a property in GetProperties(). REQUIRES: the class has it.
  std::size_t PositionOf(const std::string& name) const {
    const auto found = std::find_if(
        fProperties.begin(), fProperties.end(),
        [&name](const TProperty& each) { return EqualIgnoringCase(each.fName, name); });
    return static_cast<std::size_t>(found - fProperties.begin());
  }

  /// Chooses the instance, which must live as long as it is read.
  void Begin(const ICIMInstance& instance) {
    fInstance = &instance;
    fReferences = dynamic_cast<const IPlainReferencesOfInstance*>(&instance);
    fPlain = fReferences != nullptr ? fReferences
                                    : dynamic_cast<const IPlainValuesOfInstance*>(&instance);
    fQuick = fPlain != nullptr ? fPlain : dynamic_cast<const IValuesOfInstance*>(&instance);
    // A provider that passes on the instances of another one may declare its class in another
    // order.
    if (fQuick != nullptr && instance.GetClass({}).get() != fClass)
      fReferences = nullptr, fPlain = nullptr, fQuick = nullptr;
  }

  /// Sets `found` to the value of a property of GetProperties() if it is a scalar text, number or
  /// boolean that can be read without a TCIMValue. Otherwise returns false, and Read() reads it.
  bool FindPlain(std::size_t property, TPlainValue& found) const {
    if (fPlain == nullptr || fIndexes[property] == kNotEnumerated) return false;
    const TCIMValue::TCIMType type = fProperties[property].fType;
    const std::size_t size = SizeOfNumber(type);
    if (size == 0 && type != TCIMValue::TCIMType::kCIMTypeString) return false;
    // A plug-in may be wrong about the size.
    return fPlain->FindPlainValue(fIndexes[property], found) &&
           (found.fIsNull || size == 0 || found.fBytes.size() == size);
  }

  /// Sets `found` to the value of a property of GetProperties() if it is a reference that can be
  /// read without a TCIMValue. Otherwise returns false, and Read() reads it.
  bool FindPlainReference(std::size_t property, TPlainReference& found) const {
    return fReferences != nullptr && fIndexes[property] != kNotEnumerated &&
           fProperties[property].fType == TCIMValue::TCIMType::kCIMTypeReference &&
           fReferences->FindPlainReference(fIndexes[property], found);
  }

  /// Calls `visit(const TCIMValue&)` with the value of a property of GetProperties(), which is
  /// valid until `visit` returns. Passes on what the instance throws.
  template <typename TVisit>
  void Read(std::size_t property, const TVisit& visit) const {
    if (fQuick != nullptr && fIndexes[property] != kNotEnumerated) {
      fQuick->ReadValue(fIndexes[property], std::cref(visit));
    } else {
      visit(fInstance->GetProperty(fProperties[property].fName, {})->GetValue());
    }
  }

 private:
  static constexpr std::size_t kNotEnumerated = static_cast<std::size_t>(-1);

  const ICIMClass* fClass;
  std::vector<TProperty> fProperties;
  std::vector<std::size_t> fIndexes;
  const ICIMInstance* fInstance = nullptr;
  const IValuesOfInstance* fQuick = nullptr;
  const IPlainValuesOfInstance* fPlain = nullptr;           // the same
  const IPlainReferencesOfInstance* fReferences = nullptr;  // the same
};

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_PROPERTY_READER_H_
