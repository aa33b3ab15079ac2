// SPDX-License-Identifier: Apache-2.0
/// Values as the repository stores them and as it hands them out.
///
/// A reference value owns its namespace and its class. Were it stored so, a namespace that refers
/// to itself would own itself; so stored references to the own namespace are weak: no namespace,
/// and a pointer to the class that owns nothing. They never leave the repository: what is read is a
/// bound copy.
#ifndef LIB_REPOSITORY_VALUES_H_
#define LIB_REPOSITORY_VALUES_H_

#include <qdxcore/value.h>

#include <string>

#include "failure_reasons.h"

namespace NVORNQDX20::NRepository {

class TClass;
class TNamespace;

/// A reference or an array of references.
bool HoldsReferences(TCIMValue::TCIMType type);

/// Whether properties, parameters and methods can be of that type: it must have a keyword, and a
/// value must be able to hold it.
bool IsDeclarable(TCIMValue::TCIMType type);
/// kQDXStatusInvalidProperty
TExplainedException Undeclarable(const std::string& description, TCIMValue::TCIMType type);

/// Throws kQDXStatusTypeMismatch if the element, declared as one type, is given another.
void RequireType(TCIMValue::TCIMType given, TCIMValue::TCIMType declared,
                 const IDescribed& element);

/// The value as `user` or an instance of it stores it. Throws kQDXStatusInvalidReference for a
/// class of the same namespace that is not committed, unless it is `user` itself.
TCIMValue WeakCopy(const TCIMValue& value, const TClass& user);

/// A stored value as it is handed out.
TCIMValue BoundCopy(const TCIMValue& value, TNamespace& ns);

/// Replaces a value by another. Assignment would not do: it compares first, so it leaves some parts
/// alone and can throw.
void Replace(TCIMValue& target, TCIMValue&& source) noexcept;

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_VALUES_H_
