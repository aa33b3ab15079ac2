// SPDX-License-Identifier: Apache-2.0
/// Reads the reasons that a namespace gives for its missing values.
#ifndef TOOLS_QDX_VERBS_MISSING_VALUES_H_
#define TOOLS_QDX_VERBS_MISSING_VALUES_H_

#include <qdxcore/interfaces.h>

#include <map>
#include <string>
#include <tuple>

namespace NVORNQDX20 {

/// Reasons by class, instance and property. The instance is the key value that identifies it, as
/// text; empty if the class has only one instance.
using TMissingValueReasons =
    std::map<std::tuple<std::string, std::string, std::string>, std::string>;

/// Reads the instances of VORNSG_UnavailableValue. Empty if the namespace has no such class: not
/// every provider records missing values.
TMissingValueReasons ReadMissingValueReasons(const ICIMNamespace& ns);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_MISSING_VALUES_H_
