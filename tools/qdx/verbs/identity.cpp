// SPDX-License-Identifier: Apache-2.0
// The verb identity.
#include <qdxcore/schema_helper.h>
#include <qdxdescribe/missing_values.h>
#include <qdxdescribe/numbers.h>
#include <qdxmodel/classes.h>
#include <qdxsummary/summary.h>

#include <algorithm>
#include <map>

#include <qdxsnapshot/value_json.h>
#include "cli/output.h"
#include "cli/terminal.h"
#include "input/completeness.h"
#include "input/machine.h"
#include "input/worker_options.h"
#include "summary/words.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

using THelper = TCIMSchemaHelper;
using TNamespace = boost::shared_ptr<ICIMNamespace>;
using TQuery = std::function<TJSON(TNamespace)>;

const char* const kProductClassName = "VORNSG_QDXProduct";
const char* const kProcessorClassName = "VORNSG_Processor";
const char* const kMemoryClassName = "VORNSG_Memory";
const char* const kModuleClassName = "VORNSG_PhysicalMemory";
const char* const kDiskClassName = "VORNSG_DiskDrive";
const char* const kMachineTypeKey = "machineType";

/// What an item summarises: the properties of the instances of a class.
struct TSource {
  std::string fClass;
  std::vector<std::string> fProperties;
};

/// One line of the output. Class and property determine the reason for a missing value.
struct TItem {
  const char* fKey;
  const char* fLabel;
  std::string fClass;
  const char* fProperty;
  TQuery fQuery;
  const char* fFormatRemark = nullptr;  ///< The meaning of kQDXStatusInvalidFormat.
  TQuery fRawQuery = nullptr;           ///< Used instead in that case, with this remark.
  std::vector<TSource> fSources = {};   ///< What stood in the way there is a remark.
};

using TInstances = std::vector<boost::shared_ptr<ICIMInstance>>;

struct TAnswer {
  TItem fItem;
  TJSON fValue;             ///< Null if it is missing.
  std::string fRemark;      ///< Why it is missing, or what is unusual about it.
  bool fHasFailed = false;  ///< An error stood in the way, other than a lack of rights.
};

/// The instances of a class and its subclasses; none if the provider has no such class.
TInstances InstancesOf(const TNamespace& ns, const std::string& className) {
  TInstances all;
  TryUnlessOutOfMemory([&] {
    for (const auto& cimClass : NModel::WithSubclasses(ns->GetClass(className, {}))) {
      for (auto& instance : NModel::InstancesOf(*cimClass)) all.push_back(std::move(instance));
    }
  });
  return all;
}

/// Null if the class has no such property.
TCIMValue ValueOf(const ICIMInstance& instance, const std::string& property) {
  TCIMValue value;
  TryUnlessOutOfMemory([&] { value = instance.GetProperty(property, {})->GetValue(); });
  return value;
}

/// Returns 0 for null and for what is not a number.
std::uint64_t NumberOf(const ICIMInstance& instance, const std::string& property) {
  const TCIMValue value = ValueOf(instance, property);
  return value.IsNull() ? 0 : NDescribe::ParseNumber(value.ToString(10)).value_or(0);
}

/// Returns a query of a text of the machine.
TQuery SystemText(const char* property) {
  return [property](const TNamespace& ns) -> TJSON {
    for (const auto& system : InstancesOf(ns, THelper::kSystemCreationClassName)) {
      const TCIMValue value = ValueOf(*system, property);
      if (!value.IsNull()) return value.ToString(10);
    }
    throw TQDXException(kQDXStatusValueIsNULL);
  };
}

/// Throws unless the product name has machine type and model in brackets: other texts of seven
/// letters are products of other makers.
void CheckMTM(const TNamespace& ns) {
  if (THelper::GetRawMTMString(ns).find("-[") == std::string::npos) {
    throw TQDXException(kQDXStatusInvalidFormat);
  }
}

std::string QueryMachineType(TNamespace ns) {
  CheckMTM(ns);
  return THelper::GetMachineType(ns);
}

/// Throws for "xxx", the placeholder for a model that the product name does not have.
std::string QueryModel(TNamespace ns) {
  CheckMTM(ns);
  std::string model = THelper::GetModelNumber(ns);
  if (model == "xxx") throw TQDXException(kQDXStatusInvalidFormat);
  return model;
}

std::string QuerySerialNumber(TNamespace ns) { return THelper::GetSerialNumber(ns, {}); }

std::string QueryRawSerialNumber(TNamespace ns) {
  return THelper::GetRawSerialNumberString(ns, {});
}

std::string QueryVersion(TNamespace ns) { return THelper::GetDataSourceVersion(ns, {}); }

std::string CountOf(std::uint64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

/// "2 x Xeon Gold 6130 (32 cores, 64 threads)"
TJSON QueryProcessors(const TNamespace& ns) {
  std::vector<std::pair<std::string, int>> models;
  std::uint64_t cores = 0;
  std::uint64_t threads = 0;
  for (const auto& processor : InstancesOf(ns, kProcessorClassName)) {
    const TCIMValue name = ValueOf(*processor, "Name");
    const std::string model = name.IsNull() ? "unknown processor" : name.ToString(10);
    const auto known = std::find_if(models.begin(), models.end(),
                                    [&model](const auto& each) { return each.first == model; });
    known == models.end() ? void(models.emplace_back(model, 1)) : void(++known->second);
    cores += NumberOf(*processor, "NumberOfEnabledCores");
    threads += NumberOf(*processor, "NumberOfLogicalProcessors");
  }
  if (models.empty()) return nullptr;
  std::string text;
  for (const auto& [model, count] : models) {
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " x " + model;
  }
  if (threads == 0) return text;
  const std::string inCores = cores == 0 ? "" : CountOf(cores, "core", "cores") + ", ";
  return text + " (" + inCores + CountOf(threads, "thread", "threads") + ")";
}

/// "64 GiB in 4 modules", or what the running system has of it.
TJSON QueryMemory(const TNamespace& ns) {
  std::uint64_t size = 0;
  for (const auto& memory : InstancesOf(ns, kMemoryClassName)) {
    size = std::max(NumberOf(*memory, "InstalledSize"), NumberOf(*memory, "OnlineSize"));
  }
  const std::size_t modules = InstancesOf(ns, kModuleClassName).size();
  if (size != 0) {
    const std::string inModules =
        modules == 0 ? "" : " in " + CountOf(modules, "module", "modules");
    return AsMemorySize(size) + inModules;
  }
  for (const auto& os : InstancesOf(ns, THelper::kOperatingSystemCreationClassName)) {
    size = NumberOf(*os, "TotalVisibleMemorySize") << 10U;  // in KiB
  }
  if (size == 0) return nullptr;
  return AsMemorySize(size) + " visible to the operating system";
}

/// "3 (2 x 960.2 GB, 3.84 TB)", the sizes in ascending order.
TJSON QueryDisks(const TNamespace& ns) {
  const TInstances disks = InstancesOf(ns, kDiskClassName);
  if (disks.empty()) return nullptr;
  std::map<std::uint64_t, int> sizes;
  for (const auto& disk : disks) {
    const std::uint64_t size = NumberOf(*disk, "Size");
    ++sizes[size != 0 ? size : 1000 * NumberOf(*disk, "MaxMediaSize")];
  }
  std::string text;
  for (const auto& [size, count] : sizes) {
    if (size == 0) continue;  // a drive without a medium
    text += text.empty() ? "" : ", ";
    text += (count == 1 ? "" : std::to_string(count) + " x ") + AsDiskSize(size);
  }
  return std::to_string(disks.size()) + (text.empty() ? "" : " (" + text + ")");
}

TItem Summary(const char* key, const char* label, TQuery query, std::vector<TSource> sources) {
  TItem item{key, label, sources.front().fClass, "", std::move(query)};
  item.fSources = std::move(sources);
  return item;
}

std::vector<TItem> Items() {
  const std::string& system = THelper::kSystemCreationClassName;
  const std::string& os = THelper::kOperatingSystemCreationClassName;
  const char* const noMTM = "not in the product name";
  return {
      {"systemName", "System name", system, "Name", THelper::GetSystemName},
      {"manufacturer", "Manufacturer", system, "Manufacturer", SystemText("Manufacturer")},
      {"productName", "Product name", system, "ProductName", THelper::GetSystemProductName},
      {kMachineTypeKey, "Machine type", system, "ProductName", QueryMachineType, noMTM},
      {"model", "Model", system, "ProductName", QueryModel, noMTM},
      {"family", "Family", system, "Family", SystemText("Family")},
      {"sku", "SKU", system, "SKUNumber", SystemText("SKUNumber")},
      {"serialNumber", "Serial number", system, "SerialNumber", QuerySerialNumber,
       "not seven letters or digits", QueryRawSerialNumber},
      {"operatingSystem", "Operating system", os, "Name", THelper::GetOperatingSystemName},
      {"version", "Version", os, "Version", THelper::GetOperatingSystemVersion},
      {"osType", "OS type", os, "OSType", THelper::GetOperatingSystemType},
      Summary(
          "processors", "Processors", QueryProcessors,
          {{kProcessorClassName, {"Name", "NumberOfEnabledCores", "NumberOfLogicalProcessors"}}}),
      Summary("memory", "Memory", QueryMemory,
              {{kMemoryClassName, {"InstalledSize", "OnlineSize"}},
               {kModuleClassName, {}},
               {os, {"TotalVisibleMemorySize"}}}),
      Summary("disks", "Disks", QueryDisks, {{kDiskClassName, {"MaxMediaSize"}}}),
      {"qdxVersion", "QDX version", kProductClassName, "Version", QueryVersion},
  };
}

/// Only these classes, since describing the whole machine takes much longer.
std::vector<std::string> ClassesOf(const std::vector<TItem>& items) {
  std::vector<std::string> classes;
  classes.reserve(items.size());
  for (const TItem& item : items) {
    classes.push_back(item.fClass);
    for (const TSource& source : item.fSources) classes.push_back(source.fClass);
  }
  return classes;
}

/// Returns the errors that stood in the way of the sources, each once.
std::vector<NDescribe::TReason> ErrorsIn(const std::vector<TSource>& sources,
                                         const NDescribe::TMissingReasons& reasons) {
  std::vector<NDescribe::TReason> errors;
  for (const auto& [className, properties] : sources) {
    for (const auto& [missing, reason] : reasons) {
      const auto& [missingClass, instance, property] = missing;
      const bool isUsed = property.empty() || std::find(properties.begin(), properties.end(),
                                                        property) != properties.end();
      if (missingClass == className && isUsed && reason.IsError()) errors.push_back(reason);
    }
  }
  std::sort(errors.begin(), errors.end());
  errors.erase(std::unique(errors.begin(), errors.end()), errors.end());
  return errors;
}

/// Returns whether it is an error, other than a lack of rights.
bool IsFailure(const NDescribe::TReason& reason) {
  return NSummary::KindOf(reason) == NSummary::TGap::kFailed;
}

/// Returns the first error, and the number of the others; empty if there is none.
std::string RemarkOn(const std::vector<NDescribe::TReason>& errors) {
  if (errors.empty()) return "";
  return errors.front() +
         (errors.size() == 1 ? "" : " and " + std::to_string(errors.size() - 1) + " more");
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
  const std::vector<NDescribe::TReason> errors = ErrorsIn(item.fSources, reasons);
  const bool hasFailed = std::any_of(errors.begin(), errors.end(), IsFailure);
  if (!failure && value != "" && !value.is_null()) {
    return {item, value, RemarkOn(errors), hasFailed};
  }
  if (!errors.empty()) return {item, nullptr, RemarkOn(errors), hasFailed};
  const auto reason = reasons.find({item.fClass, "", item.fProperty});
  if (reason != reasons.end()) return {item, nullptr, reason->second, IsFailure(reason->second)};
  return {item, nullptr, failure ? failure->GetReason() : "empty"};
}

/// Returns false for the version of this program, which is always known.
bool DescribesMachine(const TAnswer& answer) {
  return !answer.fValue.is_null() && answer.fItem.fClass != kProductClassName;
}

std::string TextOf(const TJSON& value) {
  return value == 36 ? "36 (LINUX)" : PlainText(value);  // the only number is the OS type
}

/// People see machine type and model, or else family and SKU, which other makers use instead.
bool IsForPeople(const TItem& item, bool hasMTM) {
  const std::string key = item.fKey;
  if (key == kMachineTypeKey || key == "model") return hasMTM;
  if (key == "family" || key == "sku") return !hasMTM;
  return true;
}

void WriteForPeople(const std::vector<TAnswer>& answers) {
  std::vector<TTableRow> rows;
  rows.reserve(answers.size());
  const bool hasMTM = std::any_of(answers.begin(), answers.end(), [](const TAnswer& answer) {
    return answer.fItem.fKey == std::string(kMachineTypeKey) && !answer.fValue.is_null();
  });
  for (const TAnswer& answer : answers) {
    if (!IsForPeople(answer.fItem, hasMTM)) continue;
    const std::string remark = FirstReason(answer.fRemark);
    const std::string text = TextOf(answer.fValue) + (remark.empty() ? "" : "  (" + remark + ")");
    rows.push_back({{answer.fItem.fLabel, text},
                    answer.fValue.is_null() ? TTableRow::kDim : TTableRow::kPlain});
  }
  WriteOutput(FormatTable(rows));
}

void WriteAsJSON(const std::vector<TAnswer>& answers) {
  TJSON document = TJSON::object();  // an assignment that lacks memory would damage a null
  TJSON absent = TJSON::object();
  TJSON notes = TJSON::object();
  for (const TAnswer& answer : answers) {
    const char* const key = answer.fItem.fKey;
    document[key] = answer.fValue;
    if (!answer.fRemark.empty()) (answer.fValue.is_null() ? absent : notes)[key] = answer.fRemark;
  }
  document["absent"] = absent;
  document["notes"] = notes;
  WriteJSON(document);
}

/// Prints a line for each failure. Returns whether there was one.
bool ReportFailed(const std::vector<TAnswer>& answers) {
  bool any = false;
  for (const TAnswer& answer : answers) {
    if (!answer.fHasFailed) continue;
    PrintError(answer.fItem.fLabel + (": " + FirstReason(answer.fRemark)));
    any = true;
  }
  return any;
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
    return FailToDescribe(root, kLacksAllValues);
  }
  const bool hasFailed = ReportFailed(answers);
  return machine.IsComplete() && !hasFailed ? kExitDone : kExitPartlyDone;
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
          "missing value is shown as '-', with the reason. Machine type and model come from a\n"
          "product name such as 'Name -[TTTTMMM]-'; family and SKU are shown without them. A\n"
          "serial number that is not seven letters or digits is shown unchanged, with a note.\n",
          IdentityOptions(), RunIdentity};
}

}  // namespace NVORNQDX20
