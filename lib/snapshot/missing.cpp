// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/missing.h>

namespace NVORNQDX20 {

using NDescribe::TMissingReasons;
using NDescribe::TReason;

const TReason* FindLoss(const TClassSnapshot& cimClass, const TMissingReasons& reasons) {
  const auto found = reasons.find({cimClass.fName, "", ""});
  const bool isLoss =
      found != reasons.end() && (cimClass.fInstanceCount > 0 || found->second.IsError());
  return isLoss ? &found->second : nullptr;
}

TInstanceReasons::TInstanceReasons(const TMissingReasons& reasons, const TClassSnapshot& cimClass,
                                   const TInstanceSnapshot& instance)
    : fReasons(reasons), fClass(cimClass), fInstance(instance) {
  const std::size_t count = reasons.empty() ? 0 : instance.fValues.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (!cimClass.fProperties[i].fIsKey) continue;
    const TJSON& key = instance.fValues[i];
    fKeys.push_back(key.is_string() ? key.get<std::string>() : PlainText(key));
  }
  // What all instances lack for the same reason is explained once, without a key.
  fKeys.emplace_back();
}

const TReason* TInstanceReasons::Find(std::size_t property) const {
  const TJSON& value = fInstance.fValues[property];
  const bool isMissing = value.is_null() || (fClass.fProperties[property].fIsKey && value == "");
  if (fReasons.empty() || !isMissing) return nullptr;
  const std::string& name = fClass.fProperties[property].fName;
  for (const std::string& key : fKeys) {
    const auto found = fReasons.find({fClass.fName, key, name});
    if (found != fReasons.end()) return &found->second;
  }
  return nullptr;
}

}  // namespace NVORNQDX20
