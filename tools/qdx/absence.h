// SPDX-License-Identifier: Apache-2.0
/// The reasons that a namespace itself gives for values it does not have.
#ifndef QDX_ABSENCE_H_
#define QDX_ABSENCE_H_

#include <qdxcore/interfaces.h>

#include <map>
#include <string>
#include <utility>

namespace NVORNQDX20 {

/// Reason by class and property.
using TAbsenceReasons = std::map<std::pair<std::string, std::string>, std::string>;

/// Reads the instances of VORNSG_UnavailableValue. Empty if the namespace has no such class: not
/// every provider keeps account of what is missing.
TAbsenceReasons ReadAbsenceReasons(const ICIMNamespace& ns);

}  // namespace NVORNQDX20

#endif  // QDX_ABSENCE_H_
