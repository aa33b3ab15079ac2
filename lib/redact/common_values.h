// SPDX-License-Identifier: Apache-2.0
/// Values that many machines have in common, which give nothing away.
#ifndef LIB_REDACT_COMMON_VALUES_H_
#define LIB_REDACT_COMMON_VALUES_H_

#include <qdxdescribe/declaration.h>

#include <string_view>

namespace NVORNQDX20::NRedact {

/// Returns whether the value of this kind stays: an account of a distribution such as "www-data",
/// a host name such as "localhost", a serial number that nobody filled in. Empty values do.
bool IsCommon(NDescribe::ESecret kind, std::string_view value);

/// Returns whether the folder is the home of no person, such as "/var/lib/misc".
bool IsSystemFolder(std::string_view path);

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_COMMON_VALUES_H_
