// SPDX-License-Identifier: Apache-2.0
#include "failure_reasons.h"

#include <qdxmodel/names.h>

#include <algorithm>

namespace NVORNQDX20::NRepository {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsNameStart(char c) {
  const char lower = NModel::Lower(c);
  return (lower >= 'a' && lower <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool IsCIMName(std::string_view name) {
  return !name.empty() && IsNameStart(name.front()) &&
         std::all_of(name.begin(), name.end(), [](char c) { return IsNameStart(c) || IsDigit(c); });
}

}  // namespace

TExplainedException NotFound(const IDescribed& owner, const char* kind, const std::string& name) {
  return {kQDXStatusNotFound, owner.Description() + " has no " + kind + " " + NModel::Quoted(name)};
}

TExplainedException Taken(const std::string& description) {
  return {kQDXStatusAlreadyExists, description + " is there already"};
}

TExplainedException CommittedAlready(const std::string& description) {
  return {kQDXStatusInvalidOpSequence, description + " is committed already"};
}

void RequireCIMName(std::string_view name) {
  if (!IsCIMName(name)) {
    throw TExplainedException(kQDXStatusInvalidCIMName, NModel::Quoted(name) + " is no CIM name");
  }
}

}  // namespace NVORNQDX20::NRepository
