// SPDX-License-Identifier: Apache-2.0
/// All values of an instance at once, for callers that read most of them.
///
/// An instance that makes its values when they are read also implements IValuesOfInstance, so that
/// reading them neither looks up names nor keeps what was read. Callers find the interface by
/// dynamic_cast, and otherwise read property by property.
#ifndef QDXCORE_VALUES_H_
#define QDXCORE_VALUES_H_

#include <qdxcore/value.h>

#include <cstddef>

#include <boost/function.hpp>

namespace NVORNQDX20 {

/// Visits one value, which is valid until the callback returns. `index` is the position of its
/// declaration in ICIMClass::EnumeratePropertyDecls of the instance's class, from 0. Returning
/// false ends the enumeration.
using TInstanceValueCallback = boost::function<bool(std::size_t index, const TCIMValue& value)>;

/// What an instance with quick access to its values also is.
class IValuesOfInstance {
 public:
  /// Enumerates the values of all properties in the order of their declarations.
  virtual void EnumerateValues(const TInstanceValueCallback& callback) const = 0;

 protected:
  ~IValuesOfInstance() = default;  // never deleted through this interface
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_VALUES_H_
