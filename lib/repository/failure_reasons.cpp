// SPDX-License-Identifier: Apache-2.0
#include "failure_reasons.h"

namespace NVORNQDX20::NRepository {

std::string Quoted(std::string_view name) {
  constexpr std::size_t kLongest = 60;
  const char* const end = name.size() > kLongest ? "...\"" : "\"";
  return '"' + std::string(name.substr(0, kLongest)) + end;
}

TExplainedException NotFound(const IDescribed& owner, const char* kind, const std::string& name) {
  return {kQDXStatusNotFound, owner.Description() + " has no " + kind + " " + Quoted(name)};
}

TExplainedException Taken(const std::string& description) {
  return {kQDXStatusAlreadyExists, description + " is there already"};
}

TExplainedException CommittedAlready(const std::string& description) {
  return {kQDXStatusInvalidOpSequence, description + " is committed already"};
}

}  // namespace NVORNQDX20::NRepository
