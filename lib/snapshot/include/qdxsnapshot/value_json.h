// SPDX-License-Identifier: Apache-2.0
/// CIM values as JSON, and what of that people read.
#ifndef QDXSNAPSHOT_VALUE_JSON_H_
#define QDXSNAPSHOT_VALUE_JSON_H_

#include <qdxcore/value.h>

#include <string>

#include <nlohmann/json.hpp>

namespace NVORNQDX20 {

using TJSON = nlohmann::ordered_json;

/// Booleans and numbers are what they are; but 64-bit integers are strings, since many readers keep
/// every number as a double, and so are the reals that JSON has no number for ("NaN", "inf",
/// "-inf"). Date-times, and references as object paths, are strings; null is null.
/// A reference out of `home`, the namespace that the value is in, has its own before the path:
/// "root/other:Class.Key=1".
TJSON ToJSON(const TCIMValue& value, const std::string& home);

/// In one line: null as "-", strings as they are but the empty one as "\"\"", arrays as "{ a, b }".
std::string PlainText(const TJSON& value);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_VALUE_JSON_H_
