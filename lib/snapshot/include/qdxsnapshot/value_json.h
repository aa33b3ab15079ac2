// SPDX-License-Identifier: Apache-2.0
/// Converts CIM values to JSON, and JSON values to text for people.
#ifndef QDXSNAPSHOT_VALUE_JSON_H_
#define QDXSNAPSHOT_VALUE_JSON_H_

#include <qdxcore/value.h>
#include <qdxcore/values.h>

#include <string>

#include <nlohmann/json.hpp>

namespace NVORNQDX20 {

using TJSON = nlohmann::ordered_json;

/// Booleans and numbers keep their type; but 64-bit integers become strings, since many readers
/// store numbers as doubles, and so do reals that JSON cannot express ("NaN", "inf", "-inf").
/// Date-times and references (as object paths) become strings; null stays null. `ownNamespace` is
/// the namespace of the value. A reference to another namespace begins with its name:
/// "root/other:Class.Key=1".
TJSON ToJSON(const TCIMValue& value, const std::string& ownNamespace);
/// The same for a scalar text, number or boolean of this type.
TJSON ToJSON(const TPlainValue& value, TCIMValue::TCIMType type);

/// Returns one line: "-" for null, arrays as "{ a, b }", strings unchanged. In quotes, as in JSON,
/// is a string that could be mistaken for another value: an empty one, "-", one that begins with a
/// quote or "{ ", and in an array one that contains ", ".
std::string PlainText(const TJSON& value);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_VALUE_JSON_H_
