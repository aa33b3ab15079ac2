// SPDX-License-Identifier: Apache-2.0
/// The stored form of values, and the form that callers get.
///
/// A reference value owns its namespace and its class. Stored like that, a namespace that refers to
/// itself would own itself. So stored references to the own namespace are weak: without a
/// namespace, and with a non-owning pointer to the class. They never leave the repository: callers
/// get a bound copy.
#ifndef LIB_REPOSITORY_VALUES_H_
#define LIB_REPOSITORY_VALUES_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/value.h>
#include <qdxmodel/type.h>

#include <string>

#include "failure_reasons.h"

namespace NVORNQDX20::NRepository {

class TClass;
class TNamespace;

/// Returns whether the type is a reference or an array of references.
inline bool HoldsReferences(TCIMValue::TCIMType type) {
  return NModel::ElementType(type) == TCIMValue::TCIMType::kCIMTypeReference;
}

/// Returns whether properties, parameters and methods can have this type: it has a keyword, and
/// TCIMValue can hold it.
bool IsDeclarable(TCIMValue::TCIMType type);
/// kQDXStatusInvalidProperty
TExplainedException Undeclarable(const std::string& description, TCIMValue::TCIMType type);

/// kQDXStatusTypeMismatch
TExplainedException TypeMismatch(TCIMValue::TCIMType given, TCIMValue::TCIMType declared,
                                 const IDescribed& element);
/// Throws kQDXStatusTypeMismatch if the given type differs from the declared type of the element.
inline void RequireType(TCIMValue::TCIMType given, TCIMValue::TCIMType declared,
                        const IDescribed& element) {
  if (given != declared) throw TypeMismatch(given, declared, element);
}

/// Returns the stored form of a value for `user` or an instance of it. Throws
/// kQDXStatusInvalidReference for a class of the same namespace that is not committed, unless it is
/// `user` itself.
TCIMValue WeakCopy(const TCIMValue& value, const TClass& user);

/// Returns the class if it is one of `user`'s namespace, else null. Throws
/// kQDXStatusInvalidReference if it is not committed, unless it is `user` itself.
TClass* OwnClass(const boost::shared_ptr<ICIMClass>& cimClass, const TClass& user);

/// Returns a stored value in the form that callers get.
TCIMValue BoundCopy(const TCIMValue& value, TNamespace& ns);

/// Replaces a value. Assignment is no option: it compares first, keeps some parts of the target and
/// can throw.
void Replace(TCIMValue& target, TCIMValue&& source) noexcept;

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_VALUES_H_
