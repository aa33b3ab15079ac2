// SPDX-License-Identifier: Apache-2.0
/// Why a snapshot lacks values and instances.
#ifndef QDXSNAPSHOT_MISSING_H_
#define QDXSNAPSHOT_MISSING_H_

#include <qdxdescribe/missing_values.h>

#include <cstddef>
#include <string>
#include <vector>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

/// Returns why the class lacks instances that the machine may have; null if it lacks none. The
/// reason is that of an error, or that of a class with other instances.
const NDescribe::TReason* FindLoss(const TClassSnapshot& cimClass,
                                   const NDescribe::TMissingReasons& reasons);

/// The reasons why values of one instance are missing. Refers to what it is made from.
class TInstanceReasons {
 public:
  TInstanceReasons(const NDescribe::TMissingReasons& reasons, const TClassSnapshot& cimClass,
                   const TInstanceSnapshot& instance);

  /// Returns why a value, by the position of its property, is missing; null if it is not missing,
  /// or without a reason. A key cannot be null: an empty key means that the value is missing.
  const NDescribe::TReason* Find(std::size_t property) const;

 private:
  const NDescribe::TMissingReasons& fReasons;
  const TClassSnapshot& fClass;
  const TInstanceSnapshot& fInstance;
  std::vector<std::string> fKeys;  // its own first
};

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_MISSING_H_
