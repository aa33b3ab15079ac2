// SPDX-License-Identifier: Apache-2.0
/// What the copier finds in the target.
#ifndef SRC_COPY_TARGET_H_
#define SRC_COPY_TARGET_H_

#include <qdxcore/interfaces.h>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NCopy {

/// The object itself. A null reference is dereferenced, which fails the assertion "px != 0": else
/// it would be stored, and a class would silently become a root, a reference one to no class.
template <typename T>
boost::shared_ptr<T> Required(boost::shared_ptr<T> object) {
  // It is read, too: an assertion handler that returns counts on the fault that follows.
  static_cast<void>(*reinterpret_cast<const volatile char*>(object.operator->()));
  return object;
}

/// The class of the same name.
inline boost::shared_ptr<ICIMClass> TargetClass(const boost::shared_ptr<ICIMClass>& cimClass,
                                                const boost::shared_ptr<ICIMNamespace>& target) {
  return Required(target->GetClass(cimClass->GetName({}), {}));
}

}  // namespace NVORNQDX20::NCopy

#endif  // SRC_COPY_TARGET_H_
