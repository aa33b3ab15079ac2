// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/json_lines.h>

#include <qdxmodel/classes.h>
#include <qdxsystem/harmless_text.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <string_view>
#include <utility>

#include <qdxsnapshot/class_reader.h>
#include <qdxsnapshot/missing.h>

namespace NVORNQDX20 {
namespace {

using TClass = boost::shared_ptr<ICIMClass>;

std::string Text(const TJSON& value) {
  return EscapedJSON(value.dump(-1, ' ', false, TJSON::error_handler_t::replace));
}

TJSON TextOrNull(const std::string& text) { return text.empty() ? TJSON() : TJSON(text); }

/// Returns the time as in RFC 3339; empty for what is no point in time of a year with four digits.
std::string UTCText(const TCIMDateTime& time) {
  if (time.IsNull() || time.IsInterval()) return "";
  std::tm fields{};
  fields.tm_year = time.GetYear() - 1900;
  fields.tm_mon = time.GetMonth() - 1;
  fields.tm_mday = static_cast<int>(time.GetDay());
  fields.tm_hour = time.GetHour();
  fields.tm_min = time.GetMinute() - time.GetUTCOffset();
  fields.tm_sec = time.GetSecond();
  const std::time_t seconds = ::timegm(&fields);
  std::tm utc{};
  if (::gmtime_r(&seconds, &utc) == nullptr || utc.tm_year < -1900 || utc.tm_year > 8099) return "";
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
  return text;
}

/// Returns whether a double holds the integer without loss. REQUIRES: it is written as by
/// std::to_string().
bool IsExact(std::string_view number) {
  constexpr std::string_view kLargest = "9007199254740991";  // 2^53 - 1
  if (number.substr(0, 1) == "-") number.remove_prefix(1);
  return number.size() < kLargest.size() ||
         (number.size() == kLargest.size() && number <= kLargest);
}

/// Returns the text of a 64-bit integer, or of an array of them.
std::string WideText(const TJSON& value) {
  if (value.is_array()) {
    std::string text;
    for (const TJSON& element : value) text += (text.empty() ? "" : ",") + WideText(element);
    return "[" + text + "]";
  }
  if (!value.is_string()) return Text(value);
  const auto& number = value.get_ref<const std::string&>();
  return IsExact(number) ? number : Text(value);
}

bool IsWide(const std::string& type) {
  return type.compare(0, 6, "uint64") == 0 || type.compare(0, 6, "sint64") == 0;
}

/// Adds the member of an object; `name` ends in a colon.
void AddMember(const std::string& name, const std::string& value, std::string& object) {
  if (object.back() != '{') object += ',';
  object += name;
  object += value;
}

}  // namespace

TJSONLines::TJSONLines(const TCollectionRecord& record, const std::string& namespaceName,
                       const TClassSnapshot& cimClass, const NDescribe::TMissingReasons& reasons,
                       const std::vector<std::size_t>& properties)
    : fClass(cimClass), fReasons(reasons), fStart("{") {
  AddMember("\"host\":", Text(TextOrNull(record.fHostName)), fStart);
  AddMember("\"time\":", Text(TextOrNull(UTCText(record.fTime))), fStart);
  AddMember("\"namespace\":", Text(namespaceName), fStart);
  AddMember("\"class\":", Text(cimClass.fName), fStart);
  std::string types = "{";
  std::string units = "{";
  fColumns.reserve(properties.size());
  for (const std::size_t i : properties) {
    const TPropertySnapshot& property = cimClass.fProperties[i];
    fColumns.push_back({i, Text(property.fName) + ":", IsWide(property.fType)});
    AddMember(fColumns.back().fName, Text(property.fType), types);
    if (!property.fUnit.empty()) AddMember(fColumns.back().fName, Text(property.fUnit), units);
  }
  fMiddle = "},\"types\":" + types + "},\"units\":" + units + "},\"absent\":";
}

std::string TJSONLines::LineOf(const TInstanceSnapshot& instance) const {
  const TInstanceReasons reasons(fReasons, fClass, instance);
  std::string line = fStart;
  AddMember("\"path\":", Text(instance.fPath), line);
  line += ",\"properties\":{";
  std::string absent = "{";
  for (const auto& [property, name, isWide] : fColumns) {
    const TJSON& value = instance.fValues[property];
    AddMember(name, isWide ? WideText(value) : Text(value), line);
    const NDescribe::TReason* const reason = reasons.Find(property);
    if (reason != nullptr && !reason->empty()) AddMember(name, Text(std::string(*reason)), absent);
  }
  return line + fMiddle + absent + "}}\n";
}

void WriteJSONLines(const TCollectionRecord& record, const ICIMNamespace& ns,
                    const std::function<void(const std::string&)>& write) {
  const NDescribe::TMissingReasons reasons = NDescribe::ReadMissingReasons(ns);
  std::vector<std::pair<std::string, TClass>> classes;
  const auto addTree = [&classes](const TClass& root) {
    for (const TClass& each : NModel::WithSubclasses(root)) {
      classes.emplace_back(each->GetName({}), each);
    }
    return true;
  };
  ns.EnumerateClasses(addTree, {});
  std::sort(classes.begin(), classes.end(),
            [](const auto& left, const auto& right) { return left.first < right.first; });
  for (const auto& [name, cimClass] : classes) {
    TClassReader reader(ns, cimClass, kValues);
    if (reader.GetClass().fInstanceCount == 0) continue;
    std::vector<std::size_t> properties(reader.GetClass().fProperties.size());
    std::iota(properties.begin(), properties.end(), std::size_t{0});
    const TJSONLines lines(record, ns.GetName({}), reader.GetClass(), reasons, properties);
    for (auto some = reader.ReadNext(); !some.empty(); some = reader.ReadNext()) {
      for (const TInstanceSnapshot& instance : some) write(lines.LineOf(instance));
    }
  }
}

}  // namespace NVORNQDX20
