// SPDX-License-Identifier: Apache-2.0
/// Builds the reasons of failures, which name the element concerned.
///
/// They are not logged: only the caller knows whether a missing class is a failure.
#ifndef LIB_REPOSITORY_FAILURE_REASONS_H_
#define LIB_REPOSITORY_FAILURE_REASONS_H_

#include <qdxcore/status.h>

#include <string>
#include <string_view>

namespace NVORNQDX20::NRepository {

class IDescribed {
 public:
  /// For example "property Name of class CIM_Disk".
  virtual std::string Description() const = 0;

 protected:
  ~IDescribed() = default;  // never deleted through this interface
};

// Exceptions that several operations throw. Built here and thrown by the caller, so that unwinding
// has no strings to destroy: failed look-ups are frequent and must be cheap.

/// kQDXStatusNotFound: the owner has no `kind` with this name.
TExplainedException NotFound(const IDescribed& owner, const char* kind, const std::string& name);
/// kQDXStatusAlreadyExists
TExplainedException Taken(const std::string& description);
/// kQDXStatusInvalidOpSequence
TExplainedException CommittedAlready(const std::string& description);

/// Throws kQDXStatusInvalidCIMName unless the text is a CIM identifier: a letter, an underscore or
/// a non-ASCII character, then also digits (DMTF DSP0004, naming). Does not depend on the locale.
void RequireCIMName(std::string_view name);

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_FAILURE_REASONS_H_
