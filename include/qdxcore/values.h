// SPDX-License-Identifier: Apache-2.0
/// Values of an instance without look-ups by name, for callers that read many instances.
///
/// An instance that makes its values when they are read also implements IValuesOfInstance, so that
/// what was read need not be kept; one that has texts and numbers in memory implements
/// IPlainValuesOfInstance, and one that has such keys of references IPlainReferencesOfInstance.
/// Callers find the interface by dynamic_cast, and otherwise use ICIMInstance::GetProperty.
#ifndef QDXCORE_VALUES_H_
#define QDXCORE_VALUES_H_

#include <qdxcore/value.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class ICIMClass;
class ICIMNamespace;

/// Visits a value, which is valid until the callback returns. It may set the property, but not give
/// up the last reference to the instance.
using TValueCallback = boost::function<void(const TCIMValue& value)>;

/// What an instance with quick access to its values also is.
class IValuesOfInstance {
 public:
  /// Calls the callback once with the value of a property. `index` is the position of its
  /// declaration, from 0, in ICIMClass::EnumeratePropertyDecls of the instance's class; any other
  /// has no defined result.
  virtual void ReadValue(std::size_t index, const TValueCallback& callback) const = 0;

 protected:
  ~IValuesOfInstance() = default;  // never deleted through this interface
};

/// A text, or the bytes of a number or boolean of its native type, or null.
struct TPlainValue {
  bool fIsNull = true;
  std::string_view fBytes = {};
};

/// What an instance that also has texts and numbers at hand without a TCIMValue is. An interface of
/// its own, so that plug-ins that were built before it existed still work.
class IPlainValuesOfInstance : public IValuesOfInstance {
 public:
  /// Sets `found` to the value of a property, which is valid until the instance is read by name or
  /// changed. Returns false if that is no scalar text, number or boolean, or not at hand: ReadValue
  /// reads it then.
  virtual bool FindPlainValue(std::size_t index, TPlainValue& found) const = 0;

 protected:
  ~IPlainValuesOfInstance() = default;  // never deleted through this interface
};

/// A key of a reference.
struct TPlainKey {
  const std::string* fName = nullptr;  ///< As the class declares it.
  TCIMValue::TCIMType fType = TCIMValue::TCIMType::kCIMTypeNone;
  TPlainValue fValue = {};
};

/// An instance, or a class if there are no keys.
struct TPlainReference {
  const ICIMNamespace* fNamespace = nullptr;
  boost::shared_ptr<ICIMClass> fClass = nullptr;
  std::vector<TPlainKey> fKeys = {};  ///< In ascending bytewise order of the names.
};

/// What an instance that also has references at hand without a TCIMValue is.
class IPlainReferencesOfInstance : public IPlainValuesOfInstance {
 public:
  /// Sets `found` to the value of a property, which is valid until the instance is read by name or
  /// changed. Returns false, with no defined `found`, if that is no reference, or one whose keys
  /// are not all texts, numbers, booleans or null of these, or not at hand: ReadValue reads it
  /// then.
  virtual bool FindPlainReference(std::size_t index, TPlainReference& found) const = 0;

 protected:
  ~IPlainReferencesOfInstance() = default;  // never deleted through this interface
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_VALUES_H_
