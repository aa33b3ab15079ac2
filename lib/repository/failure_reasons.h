// SPDX-License-Identifier: Apache-2.0
/// How the reasons of failures speak of elements.
///
/// None of them is logged: whether a missing class is a failure or an answer, only who asked knows.
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
  ~IDescribed() = default;  // nobody owns an element through this
};

/// A name that may be anything, as a reason shows it: in double quotes, and cut if it is long.
std::string Quoted(std::string_view name);

// What several operations throw. Made here and thrown there, so that no frame that is unwound has
// parts of the reason to destroy: look-ups that find nothing are many, and should cost little.

/// kQDXStatusNotFound: the owner has no `kind` of that name.
TExplainedException NotFound(const IDescribed& owner, const char* kind, const std::string& name);
/// kQDXStatusAlreadyExists
TExplainedException Taken(const std::string& description);
/// kQDXStatusInvalidOpSequence
TExplainedException CommittedAlready(const std::string& description);

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_FAILURE_REASONS_H_
