// SPDX-License-Identifier: Apache-2.0
/// The reasons that a namespace itself gives for values it does not have.
#ifndef TOOLS_QDX_VERBS_ABSENCE_H_
#define TOOLS_QDX_VERBS_ABSENCE_H_

#include <qdxcore/interfaces.h>

#include <map>
#include <string>
#include <tuple>

namespace NVORNQDX20 {

/// Reason by class, instance and property. The instance is one of its key values as text, the one
/// that tells it from its like; it is empty where the class has only one.
using TAbsenceReasons = std::map<std::tuple<std::string, std::string, std::string>, std::string>;

/// Reads the instances of VORNSG_UnavailableValue. Empty if the namespace has no such class: not
/// every provider keeps account of what is missing.
TAbsenceReasons ReadAbsenceReasons(const ICIMNamespace& ns);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_VERBS_ABSENCE_H_
