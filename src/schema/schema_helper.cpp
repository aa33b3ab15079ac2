// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/logger.h>
#include <qdxcore/schema_helper.h>
#include <qdxcore/status.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace NVORNQDX20 {

const std::string TCIMSchemaHelper::kSystemCreationClassName = "VORNSG_ComputerSystem";
const std::string TCIMSchemaHelper::kOperatingSystemCreationClassName = "VORNSG_OperatingSystem";

namespace {

using TInstances = std::vector<boost::shared_ptr<ICIMInstance>>;

const std::string kProductClassName = "VORNSG_QDXProduct";

constexpr std::size_t kTypeLength = 4;
constexpr std::size_t kMTMLength = 7;
constexpr std::string_view kUnknownModel = "xxx";

TInstances InstancesOf(const ICIMClass& cimClass, const TOptionsMap& options) {
  TInstances instances;
  cimClass.EnumerateInstances(TAddToVectorCallback<ICIMInstance>(instances), true, options);
  return instances;
}

/// Returns the property of the only instance of a class.
boost::shared_ptr<ICIMProperty> ReadProperty(const boost::shared_ptr<ICIMNamespace>& ns,
                                             const std::string& className, const std::string& name,
                                             const TOptionsMap& options) {
  const boost::shared_ptr<ICIMClass> cimClass = ns->GetClass(className, options);
  const TInstances instances = InstancesOf(*cimClass, {});
  if (instances.size() != 1) throw TQDXException(kQDXStatusNotFound);
  return instances.front()->GetProperty(name, options);
}

std::string ReadText(const boost::shared_ptr<ICIMNamespace>& ns, const std::string& className,
                     const std::string& name, const TOptionsMap& options = {}) {
  return ReadProperty(ns, className, name, options)->GetValue();
}

using TMessage = std::initializer_list<std::string_view>;

[[noreturn]] void Missing(TMessage message) {
  LogMessage(ILogger::kLogDebug, message);
  throw TQDXException(kQDXStatusNotFound);
}

/// Returns the result of `lookUp`. Logs a null result, and the exception that means the same.
template <typename TLookUp>
auto Find(TLookUp&& lookUp, TMessage message) {
  try {
    auto found = lookUp();
    if (found) return found;
  } catch (const TQDXException& e) {
    if (e.GetStatusCode() == kQDXStatusNotFound) LogMessage(ILogger::kLogDebug, message);
    throw;
  }
  Missing(message);
}

/// Returns a string property of the computer system; logs the reason if it has none.
std::string ReadSystemText(const boost::shared_ptr<ICIMNamespace>& ns, const std::string& name,
                           const TOptionsMap& options) {
  const boost::shared_ptr<ICIMClass> cimClass =
      Find([&] { return ns->GetClass(TCIMSchemaHelper::kSystemCreationClassName, options); },
           {"TCIMSchemaHelper: no computer system"});
  const TInstances instances = InstancesOf(*cimClass, options);
  if (instances.size() != 1) Missing({"TCIMSchemaHelper: computer system instances != 1"});

  const boost::shared_ptr<ICIMProperty> property =
      Find([&] { return instances.front()->GetProperty(name, options); },
           {"TCIMSchemaHelper: didn't find ", name, " property"});
  const TCIMValue& value = property->GetValue();
  if (value.IsNull()) Missing({"TCIMSchemaHelper: ", name, " is NULL"});
  if (value.GetType() != TCIMValue::TCIMType::kCIMTypeString) {
    Missing({"TCIMSchemaHelper: ", name, " wasn't a string"});
  }
  return value;
}

/// ASCII only, so that the result does not depend on the locale.
bool IsAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool IsAlphanumericOrBlank(char c) { return c == ' ' || IsAlphanumeric(c); }

void RemoveTrailingBlanks(std::string& text) { text.erase(text.find_last_not_of(' ') + 1); }

[[noreturn]] void InvalidFormat() { throw TQDXException(kQDXStatusInvalidFormat); }

/// Parses exactly the form "VORN Loftnode k318-[TTTTMMM]"; empty if the name has another form.
std::string FindMTMBehindFixedPrefix(const std::string& name) {
  constexpr std::string_view prefix = "VORN Loftnode k318-[";
  if (name.size() != prefix.size() + kMTMLength + 1 ||
      name.compare(0, prefix.size(), prefix) != 0 || name.back() != ']') {
    return "";
  }
  std::string mtm = name.substr(prefix.size(), kMTMLength);
  return TCIMSchemaHelper::IsValidMTM(mtm) ? mtm : "";
}

/// Returns whether "]-" is at the position.
bool IsClosedAt(const std::string& name, std::size_t position) {
  return name.compare(position, 2, "]-") == 0;
}

/// Parses "-[TTTTMMM]-" or "-[TTTT]-"; `mark` is the position of "-[".
std::string FindMTMBehindMark(const std::string& name, std::size_t mark) {
  const std::size_t start = mark + 2;
  std::string mtm = name.substr(start, kMTMLength);
  if (name.size() > start + kMTMLength && IsClosedAt(name, start + kMTMLength) &&
      TCIMSchemaHelper::IsValidMTM(mtm)) {
    return mtm;
  }
  const std::string type = mtm.substr(0, kTypeLength);
  if (name.size() > start + kTypeLength && IsClosedAt(name, start + kTypeLength) &&
      TCIMSchemaHelper::IsValidMachineType(type)) {
    return type + std::string(kUnknownModel);
  }
  InvalidFormat();
}

std::string FindMTM(const std::string& name) {
  std::string fixed = FindMTMBehindFixedPrefix(name);
  if (!fixed.empty()) return fixed;
  const std::size_t mark = name.find("-[");
  if (mark != std::string::npos) return FindMTMBehindMark(name, mark);
  if (name.size() == kMTMLength && TCIMSchemaHelper::IsValidMTM(name)) return name;
  InvalidFormat();
}

std::size_t FirstDot(const std::string& version) {
  const std::size_t dot = version.find('.');
  if (dot == std::string::npos) throw TQDXException(kQDXStatusNotFound);
  return dot;
}

}  // namespace

std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace>) {
  return kSystemCreationClassName;
}

std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace> ns) {
  return ReadText(ns, kSystemCreationClassName, "Name");
}

std::string TCIMSchemaHelper::GetSystemProductName(boost::shared_ptr<ICIMNamespace> ns) {
  return ReadText(ns, kSystemCreationClassName, "ProductName");
}

std::string TCIMSchemaHelper::GetOperatingSystemCreationClassName(
    boost::shared_ptr<ICIMNamespace>) {
  return kOperatingSystemCreationClassName;
}

std::string TCIMSchemaHelper::GetOperatingSystemName(boost::shared_ptr<ICIMNamespace> ns) {
  return ReadText(ns, kOperatingSystemCreationClassName, "Name");
}

std::string TCIMSchemaHelper::GetOperatingSystemVersion(boost::shared_ptr<ICIMNamespace> ns) {
  return ReadText(ns, kOperatingSystemCreationClassName, "Version");
}

std::uint16_t TCIMSchemaHelper::GetOperatingSystemType(boost::shared_ptr<ICIMNamespace> ns) {
  return ReadProperty(ns, kOperatingSystemCreationClassName, "OSType", {})->GetValue();
}

bool TCIMSchemaHelper::IsValidMachineType(const std::string& text) {
  return text.size() >= kTypeLength &&
         std::all_of(text.begin(), text.begin() + kTypeLength, IsAlphanumeric);
}

bool TCIMSchemaHelper::IsValidMTM(const std::string& text) {
  return IsValidMachineType(text) && text.size() >= kMTMLength &&
         std::all_of(text.begin() + kTypeLength, text.begin() + kMTMLength, IsAlphanumericOrBlank);
}

std::string TCIMSchemaHelper::GetRawMTMString(boost::shared_ptr<ICIMNamespace> ns) {
  return ReadSystemText(ns, "ProductName", {});
}

std::string TCIMSchemaHelper::GetMTM(boost::shared_ptr<ICIMNamespace> ns) {
  std::string name = GetRawMTMString(ns);
  RemoveTrailingBlanks(name);
  std::string mtm = FindMTM(name);
  if (mtm.compare(kTypeLength, std::string::npos, "   ") == 0) {
    mtm.replace(kTypeLength, std::string::npos, kUnknownModel);
  }
  LogMessage(ILogger::kLogDebug, {"TCIMSchemaHelper- Detected MTM ", mtm});
  return mtm;
}

std::string TCIMSchemaHelper::GetMachineType(boost::shared_ptr<ICIMNamespace> ns) {
  return GetMTM(ns).substr(0, kTypeLength);
}

std::string TCIMSchemaHelper::GetModelNumber(boost::shared_ptr<ICIMNamespace> ns) {
  return GetMTM(ns).substr(kTypeLength);
}

std::string TCIMSchemaHelper::GetRawSerialNumberString(boost::shared_ptr<ICIMNamespace> ns,
                                                       TOptionsMap options) {
  // The only query that passes its options to the enumeration, too.
  return ReadSystemText(ns, "SerialNumber", options);
}

std::string TCIMSchemaHelper::GetSerialNumber(boost::shared_ptr<ICIMNamespace> ns,
                                              TOptionsMap options) {
  std::string serial = GetRawSerialNumberString(ns, options);
  RemoveTrailingBlanks(serial);
  if (serial.size() != 7 || !std::all_of(serial.begin(), serial.end(), IsAlphanumeric)) {
    InvalidFormat();
  }
  return serial;
}

std::string TCIMSchemaHelper::GetDataSourceVersion(boost::shared_ptr<ICIMNamespace> ns,
                                                   TOptionsMap options) {
  return ReadText(ns, kProductClassName, "Version", options);
}

std::string TCIMSchemaHelper::GetDataSourceMajorVersion(boost::shared_ptr<ICIMNamespace> ns,
                                                        TOptionsMap options) {
  const std::string version = GetDataSourceVersion(ns, options);
  return version.substr(0, FirstDot(version));
}

std::string TCIMSchemaHelper::GetDataSourceMinorVersion(boost::shared_ptr<ICIMNamespace> ns,
                                                        TOptionsMap options) {
  const std::string version = GetDataSourceVersion(ns, options);
  const std::size_t dot = FirstDot(version);
  // The length is that of the text up to and including the first ".", not up to the second, on
  // purpose. Pinned by SchemaHelperVersion.IsSplitAtItsDots.
  return version.substr(dot + 1, dot + 1);
}

std::string TCIMSchemaHelper::GetDataSourceBuildVersion(boost::shared_ptr<ICIMNamespace> ns) {
  const std::string version = GetDataSourceVersion(ns, {});
  FirstDot(version);
  return version.substr(version.rfind('.') + 1);
}

}  // namespace NVORNQDX20
