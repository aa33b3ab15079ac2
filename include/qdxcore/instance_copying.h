// SPDX-License-Identifier: Apache-2.0
/// Copies of instances that a namespace makes itself, for the copier.
///
/// An interface of its own, so that plug-ins that were built before it existed still work: their
/// namespaces have no such function. TCIMCopy finds it by dynamic_cast.
#ifndef QDXCORE_INSTANCE_COPYING_H_
#define QDXCORE_INSTANCE_COPYING_H_

#include <qdxcore/interfaces.h>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// What a namespace that can copy instances of its own implementation also is.
class ICopiesInstances {
 public:
  /// Copies the instance, which may belong to another namespace, with the result and the failures
  /// of TCIMCopy::CopyInstance, and returns the copy. Returns null, and does nothing, if it cannot:
  /// for an instance of another implementation always, since that one can observe the operations of
  /// the copier.
  virtual boost::shared_ptr<ICIMInstance> CopyInstance(const ICIMInstance& instance) = 0;

 protected:
  ~ICopiesInstances() = default;  // never deleted through this interface
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_INSTANCE_COPYING_H_
