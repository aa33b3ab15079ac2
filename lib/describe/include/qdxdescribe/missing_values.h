// SPDX-License-Identifier: Apache-2.0
/// How a namespace explains its missing values: one instance of VORNSG_UnavailableValue for each.
///
/// A provider that uses tables need not call these.
#ifndef QDXDESCRIBE_MISSING_VALUES_H_
#define QDXDESCRIBE_MISSING_VALUES_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/reading.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace NVORNQDX20::NDescribe {

inline constexpr const char* kMissingValueClass = "VORNSG_UnavailableValue";

struct TMissingValue {
  std::string fClass;
  /// The value of its last key. Empty for the only instance of a class, and for all instances that
  /// lack the property without a reason of their own.
  std::string fInstance;
  std::string fProperty;  ///< Empty if the class lacks instances.
  TReason fReason;
};

/// Declares the class, unless the namespace has it, and adds an instance for each missing value.
void WriteMissingValues(ICIMNamespace& ns, std::vector<TMissingValue> values);

/// Reasons by class, instance and property, as in TMissingValue.
using TMissingReasons = std::map<std::tuple<std::string, std::string, std::string>, TReason>;

/// Returns the reasons that the namespace gives: none if it lacks the class, since not every
/// provider explains its missing values. A reason that cannot be read is left out. None is an error
/// if the class does not say so, as in documents of earlier versions.
TMissingReasons ReadMissingReasons(const ICIMNamespace& ns);

/// Returns the reason why a reference to a part that is left out is null.
std::string ReasonOfPart(const std::string& part);

/// Returns the reason of the classes of a part that is left out as long as nobody asks for it.
std::string ReasonUntilAskedFor(const std::string& part);

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_MISSING_VALUES_H_
