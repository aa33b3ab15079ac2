// SPDX-License-Identifier: Apache-2.0
/// Looks up elements in the target namespace of a copy.
#ifndef SRC_COPY_TARGET_H_
#define SRC_COPY_TARGET_H_

#include <qdxcore/interfaces.h>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NCopy {

/// Returns the object. Dereferences a null reference on purpose, which fails the assertion "px !=
/// 0": a stored null would silently make a class a root class, or a reference one without a class.
template <typename T>
boost::shared_ptr<T> Required(boost::shared_ptr<T> object) {
  // Also reads through the pointer: an assertion handler that returns relies on the fault.
  static_cast<void>(*reinterpret_cast<const volatile char*>(object.operator->()));
  return object;
}

/// Returns the class of the same name in the target.
inline boost::shared_ptr<ICIMClass> TargetClass(const boost::shared_ptr<ICIMClass>& cimClass,
                                                const boost::shared_ptr<ICIMNamespace>& target) {
  return Required(target->GetClass(cimClass->GetName({}), {}));
}

}  // namespace NVORNQDX20::NCopy

#endif  // SRC_COPY_TARGET_H_
