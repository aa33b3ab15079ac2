// SPDX-License-Identifier: Apache-2.0
// The verb identity.
#include <qdxcore/schema_helper.h>
#include <qdxdescribe/missing_values.h>

#include <algorithm>

#include <qdxsnapshot/value_json.h>
#include "cli/output.h"
#include "cli/terminal.h"
#include "machine.h"
#include "verbs.h"
#include "worker_options.h"

namespace NVORNQDX20 {
namespace {

using THelper = TCIMSchemaHelper;
using TNamespace = boost::shared_ptr<ICIMNamespace>;
using TQuery = std::function<TJSON(TNamespace)>;

const char* const kProductClassName = "VORNSG_QDXProduct";

/// One line of the output. Class and property determine the reason for a missing value.
struct TItem {
  const char* fKey;
  const char* fLabel;
  std::string fClass;
  const char* fProperty;
  TQuery fQuery;
  const char* fFormatRemark = nullptr;  ///< The meaning of kQDXStatusInvalidFormat.
  TQuery fRawQuery = nullptr;           ///< Used instead in that case, with this remark.
};

struct TAnswer {
  TItem fItem;
  TJSON fValue;         ///< Null if it is missing.
  std::string fRemark;  ///< Why it is missing, or what is unusual about it.
};

/// Throws for "xxx", the placeholder for a model that the product name does not have.
std::string QueryModel(TNamespace ns) {
  std::string model = THelper::GetModelNumber(ns);
  if (model == "xxx") throw TQDXException(kQDXStatusInvalidFormat);
  return model;
}

std::string QuerySerialNumber(TNamespace ns) { return THelper::GetSerialNumber(ns, {}); }

std::string QueryRawSerialNumber(TNamespace ns) {
  return THelper::GetRawSerialNumberString(ns, {});
}

std::string QueryVersion(TNamespace ns) { return THelper::GetDataSourceVersion(ns, {}); }

std::vector<TItem> Items() {
  const std::string& system = THelper::kSystemCreationClassName;
  const std::string& os = THelper::kOperatingSystemCreationClassName;
  const char* const noMTM = "not in the product name";
  return {
      {"systemName", "System name", system, "Name", THelper::GetSystemName},
      {"productName", "Product name", system, "ProductName", THelper::GetSystemProductName},
      {"machineType", "Machine type", system, "ProductName", THelper::GetMachineType, noMTM},
      {"model", "Model", system, "ProductName", QueryModel, noMTM},
      {"serialNumber", "Serial number", system, "SerialNumber", QuerySerialNumber,
       "not seven letters or digits", QueryRawSerialNumber},
      {"operatingSystem", "Operating system", os, "Name", THelper::GetOperatingSystemName},
      {"version", "Version", os, "Version", THelper::GetOperatingSystemVersion},
      {"osType", "OS type", os, "OSType", THelper::GetOperatingSystemType},
      {"qdxVersion", "QDX version", kProductClassName, "Version", QueryVersion},
  };
}

/// Only these classes, since describing the whole machine takes much longer.
std::vector<std::string> ClassesOf(const std::vector<TItem>& items) {
  std::vector<std::string> classes;
  classes.reserve(items.size());
  for (const TItem& item : items) classes.push_back(item.fClass);
  return classes;
}

TAnswer Ask(const TItem& item, TNamespace ns, const NDescribe::TMissingReasons& reasons) {
  TJSON value;
  auto failure = TryUnlessOutOfMemory([&] { value = item.fQuery(ns); });
  if (failure && failure->GetStatusCode() == kQDXStatusInvalidFormat &&
      item.fFormatRemark != nullptr) {
    failure = {failure->GetStatusCode(), item.fFormatRemark};
    if (item.fRawQuery) return {item, item.fRawQuery(ns), item.fFormatRemark};
  }
  // A key cannot be null: an empty text means that the value is missing.
  if (!failure && value != "") return {item, value, ""};
  const auto reason = reasons.find({item.fClass, "", item.fProperty});
  if (reason != reasons.end()) return {item, nullptr, reason->second};
  return {item, nullptr, failure ? failure->GetReason() : "empty"};
}

/// Returns false for the version of this program, which is always known.
bool DescribesMachine(const TAnswer& answer) {
  return !answer.fValue.is_null() && answer.fItem.fClass != kProductClassName;
}

std::string TextOf(const TJSON& value) {
  return value == 36 ? "36 (LINUX)" : PlainText(value);  // the only number is the OS type
}

void WriteForPeople(const std::vector<TAnswer>& answers) {
  std::vector<TTableRow> rows;
  for (const auto& [item, value, remark] : answers) {
    const std::string text = TextOf(value) + (remark.empty() ? "" : "  (" + remark + ")");
    rows.push_back({{item.fLabel, text}, value.is_null() ? TTableRow::kDim : TTableRow::kPlain});
  }
  WriteOutput(FormatTable(rows));
}

void WriteAsJSON(const std::vector<TAnswer>& answers) {
  TJSON document = TJSON::object();  // an assignment that lacks memory would damage a null
  TJSON absent = TJSON::object();
  TJSON notes = TJSON::object();
  for (const auto& [item, value, remark] : answers) {
    document[item.fKey] = value;
    if (!remark.empty()) (value.is_null() ? absent : notes)[item.fKey] = remark;
  }
  document["absent"] = absent;
  document["notes"] = notes;
  WriteJSON(document);
}

EExitCode FailToDescribe(const std::string& root, const std::string& why) {
  PrintFailure("describing the machine below " + root, {kQDXStatusNotFound, why});
  return kExitNothingCollected;
}

EExitCode RunIdentity(const TArguments& arguments) {
  TMachine machine(arguments);
  const std::string& root = machine.GetRoot();
  const std::vector<TItem> items = Items();
  const TNamespace ns = machine.TakeMachineNamespace(ClassesOf(items));
  if (!ns) {
    // The lines about failed providers are the reason.
    if (!machine.GetFailures().empty()) return kExitNothingCollected;
    return FailToDescribe(
        root, std::string("no provider has ") + kMachineNamespace + NPluginHost::kListPlugins);
  }

  const NDescribe::TMissingReasons reasons = NDescribe::ReadMissingReasons(*ns);
  std::vector<TAnswer> answers;
  answers.reserve(items.size());
  for (const TItem& item : items) answers.push_back(Ask(item, ns, reasons));
  arguments.Has("json") ? WriteAsJSON(answers) : WriteForPeople(answers);
  if (std::none_of(answers.begin(), answers.end(), DescribesMachine)) {
    return FailToDescribe(root, "all values are missing");
  }
  return machine.IsComplete() ? kExitDone : kExitPartlyDone;
}

std::vector<TOptionSpec> IdentityOptions() {
  std::vector<TOptionSpec> options = WorkerOptions();
  options.insert(options.begin(), kRootFolderOption);
  options.push_back({"json", nullptr, "Print one JSON object; missing values are null."});
  return options;
}

}  // namespace

TVerb IdentityVerb() {
  return {"identity", "Shows the identity of this machine.",
          "The data comes from the first provider plug-in that has the namespace root/cimv2. A\n"
          "missing value is shown as '-', with the reason. A serial number that is not seven\n"
          "letters or digits is shown unchanged, with a note.\n",
          IdentityOptions(), RunIdentity};
}

}  // namespace NVORNQDX20
