// SPDX-License-Identifier: Apache-2.0
/// The contents of namespaces as plain data, in an order that does not depend on the provider.
#ifndef QDX_SNAPSHOT_H_
#define QDX_SNAPSHOT_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "value_json.h"

namespace NVORNQDX20 {

struct TPropertySnapshot {
  std::string fName;
  std::string fType;  ///< As in "uint8" or "string[]".
  bool fIsKey = false;
};

struct TInstanceSnapshot {
  std::string fPath;           ///< The object path. Without keys it is the name of the class.
  std::vector<TJSON> fValues;  ///< One for each property of its class, in their order.
};

struct TClassSnapshot {
  std::string fName;
  std::vector<TPropertySnapshot> fProperties;  ///< Inherited ones too, by name.
  std::size_t fInstanceCount = 0;
  std::vector<TInstanceSnapshot> fInstances;  ///< Those of no other class, by path and values.
};

/// How far down to read, and to show.
enum EDepth { kNamespaces, kClasses, kInstances, kValues };

// Classes come by name. All throw what the namespace throws.

/// Every class of a namespace.
std::vector<TClassSnapshot> ReadClasses(const ICIMNamespace& ns, EDepth depth);
/// A class and all that are derived from it.
std::vector<TClassSnapshot> ReadClassTree(const boost::shared_ptr<ICIMClass>& root, EDepth depth);
/// The class of the instance, with this one only.
TClassSnapshot ReadInstance(const boost::shared_ptr<ICIMInstance>& instance, EDepth depth);

}  // namespace NVORNQDX20

#endif  // QDX_SNAPSHOT_H_
