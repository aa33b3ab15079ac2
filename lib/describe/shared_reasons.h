// SPDX-License-Identifier: Apache-2.0
/// One reason for the many instances of a class that lack a property.
#ifndef LIB_DESCRIBE_SHARED_REASONS_H_
#define LIB_DESCRIBE_SHARED_REASONS_H_

#include <qdxdescribe/reading.h>

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace NVORNQDX20::NDescribe {

/// The reasons why instances lack one property, by the keys of the instances.
class TSharedReasons {
 public:
  using TByInstance = std::vector<std::pair<std::string, TReason>>;

  void Add(const std::string& instance, const TReason& reason);

  /// Returns the commonest reason once, under an empty key, and the others by instance. What is not
  /// there is not there for the same reason if the names of the files differ in numbers or folders:
  /// "/sys/block/*/nsid: No such file or directory". Errors are only shared if they are equal, and
  /// nothing is unless `mayShare`.
  TByInstance Summarize(bool mayShare) const;

 private:
  /// What shared reasons have in common.
  using TCause = std::tuple<std::string, std::string, bool>;

  static TCause CauseOf(const TReason& reason);

  std::map<TCause, TByInstance> fReasons;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // LIB_DESCRIBE_SHARED_REASONS_H_
