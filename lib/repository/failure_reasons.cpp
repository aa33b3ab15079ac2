// SPDX-License-Identifier: Apache-2.0
#include "failure_reasons.h"

#include <qdxmodel/names.h>

namespace NVORNQDX20::NRepository {

TExplainedException NotFound(const IDescribed& owner, const char* kind, const std::string& name) {
  return {kQDXStatusNotFound, owner.Description() + " has no " + kind + " " + NModel::Quoted(name)};
}

TExplainedException Taken(const std::string& description) {
  return {kQDXStatusAlreadyExists, description + " is there already"};
}

TExplainedException CommittedAlready(const std::string& description) {
  return {kQDXStatusInvalidOpSequence, description + " is committed already"};
}

}  // namespace NVORNQDX20::NRepository
