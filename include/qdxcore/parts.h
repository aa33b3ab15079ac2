// SPDX-License-Identifier: Apache-2.0
/// Parts of what a provider describes, of which callers choose some.
///
/// A provider with parts also implements IPartsOfProvider, and honours the options "only",
/// "without" and "with" (arrays of strings: names of parts) of INamespaceProvider::GetNamespace.
/// Callers find the interface by dynamic_cast.
#ifndef QDXCORE_PARTS_H_
#define QDXCORE_PARTS_H_

#include <string>

#include <boost/function.hpp>

namespace NVORNQDX20 {

/// Visits the name of one part; `isOnRequest` if it is left out unless option "only" or "with"
/// names it. Returning false ends the enumeration.
using TPartCallback = boost::function<bool(const std::string& name, bool isOnRequest)>;

/// What a provider with parts also is.
class IPartsOfProvider {
 public:
  /// Enumerates the parts that can be chosen. Other plug-ins may have parts of the same names.
  virtual void EnumerateParts(const TPartCallback& callback) const = 0;

 protected:
  ~IPartsOfProvider() = default;  // never deleted through this interface
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_PARTS_H_
