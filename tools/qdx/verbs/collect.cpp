// SPDX-License-Identifier: Apache-2.0
// The verb collect.
#include <qdxcore/config.h>
#include <qdxcore/copy.h>
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/schema_helper.h>
#include <qdxdescribe/provider.h>
#include <qdxmodel/names.h>
#include <qdxrepository/repository.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "cli/new_file.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "completeness.h"
#include "plugin_host/document.h"
#include "plugin_host/libraries.h"
#include "plugin_host/provider_query.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;
using namespace NDescribe;

/// The namespace with the record of the collection. Namespaces of providers with this name are not
/// collected.
constexpr const char* kRecordNamespaceName = "root/qdx";

bool IsNamed(const ICIMNamespace& ns, const std::string& name) {
  return NModel::EqualIgnoringCase(ns.GetName({}), name);
}

bool IsEmpty(const ICIMNamespace& ns) {
  bool empty = true;
  const auto visit = [&empty](const boost::shared_ptr<ICIMClass>&) {
    empty = false;
    return false;
  };
  ns.EnumerateClasses(visit, {});
  return empty;
}

using TCopies = std::vector<TMachineNamespace>;

/// Keeps what was copied before a failure.
TCopies CopyNamespaces(TProviderQuery& machine) {
  TCopies copies;
  machine.VisitNamespaces("copying", [&copies](const TOrigin& origin, const auto& ns) {
    const auto copy = MakeRepositoryNamespace(origin.fNamespace);
    if (IsNamed(*copy, kRecordNamespaceName)) {
      throw TExplainedException(kQDXStatusAlreadyExists,
                                "the record of the collection has this name");
    }
    copies.push_back({origin, copy});
    const std::string label = "collecting " + origin.fProvider + " " + origin.fNamespace;
    TCIMCopy::CopyClasses(ns, WithProgress(copy, label));
  });
  const auto begin = copies.begin();
  const auto isEmpty = [](const TMachineNamespace& copy) { return IsEmpty(*copy.fNamespace); };
  copies.erase(std::remove_if(begin, copies.end(), isEmpty), copies.end());
  return copies;
}

/// Returns the host name of the collected machine. Empty if unknown: the name of the machine that
/// runs this command would be wrong below another root folder.
std::string HostName(const TCopies& copies, const std::string& root) {
  std::string name;
  for (const TMachineNamespace& copy : copies) {
    if (!IsNamed(*copy.fNamespace, kMachineNamespace)) continue;
    (void)TryUnlessOutOfMemory([&] { name = TCIMSchemaHelper::GetSystemName(copy.fNamespace); });
  }
  if (name.empty() && root == "/") {
    (void)TryUnlessOutOfMemory([&] { name = TOSSpecific::GetMachineName(); });
  }
  return name;
}

/// What the record of a collection is made from.
struct TRecordSource {
  const TProviderQuery& fMachine;
  std::string fHostName;  ///< Empty if unknown.
};

TReading<std::string> KnownHostName(const TRecordSource& from) {
  if (from.fHostName.empty()) return Missing("no namespace names the machine");
  return from.fHostName;
}

TReading<TCIMDateTime> Now(const TRecordSource&) {
  const TCIMDateTime now = TOSSpecific::GetLocalTime();
  if (now.IsNull()) return Missing("the time zone has no valid time at this moment");
  return now;
}

TTable<TOnly, TRecordSource> CollectionTable() {
  return {"VORNSG_Collection",
          "When and where the data of this document was collected.",
          kOnly,
          // The same key in every document, so that diff matches the instances.
          {{"InstanceID", "Identifies the only instance.", Constant("VORNSG:Collection"), kKey},
           {"HostName", "The name of the machine.", KnownHostName, ESecret::kHostName},
           {"RootFolder", "The folder below which the files of the machine were read.",
            [](const TRecordSource& from) { return from.fMachine.GetRoot(); }, kVolatile},
           {"CollectionTime", "When the data was read.", Now, kVolatile},
           {"ToolVersion", "The version of the tool.", Constant(QDXCORE_VERSION)}}};
}

TTable<TProviderFailure, TRecordSource> FailureTable() {
  return {"VORNSG_CollectionFailure",
          "An operation of a provider that failed.",
          [](const TRecordSource& from) { return from.fMachine.GetFailures(); },
          {{"Provider", "The provider.",
            [](const TProviderFailure& failure) { return failure.fOrigin.fProvider; }, kKey},
           {"Namespace", "The namespace; empty if the operation concerned none.",
            [](const TProviderFailure& failure) { return failure.fOrigin.fNamespace; }, kKey},
           {"Operation", "What the provider was asked for.", &TProviderFailure::fOperation, kKey},
           {"Status", "The name of the status code.",
            [](const TProviderFailure& failure) { return std::string(failure.fFailure.what()); }},
           {"Reason", "Why it failed.",
            [](const TProviderFailure& failure) { return failure.fFailure.GetReason(); }}}};
}

boost::shared_ptr<ICIMNamespace> MakeCollectionRecord(const TProviderQuery& machine,
                                                      const std::string& hostName) {
  return NDescribe::Describe<TRecordSource>(TDescriber("qdx", kRecordNamespaceName),
                                            {CollectionTable(), FailureTable()},
                                            {machine, hostName});
}

/// Replaces all characters of a host name that are not known to be harmless in a file name.
std::string DefaultName(const std::string& hostName) {
  std::string file = hostName.empty() ? "unknown" : hostName.substr(0, 64);
  for (char& c : file) {
    const bool harmless = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '_';
    if (!harmless) c = '-';
  }
  // Neither a hidden file nor an option.
  if (file[0] == '.' || file[0] == '-') file[0] = '_';
  char stamp[sizeof("-YYYYMMDDTHHMMSS")];
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  std::strftime(stamp, sizeof(stamp), "-%Y%m%dT%H%M%S", ::localtime_r(&now, &local));
  return file + stamp;
}

/// Returns whether the path is a device, a pipe or a folder, which a file cannot replace.
bool IsNotReplaceable(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::status_known(status)) {
    throw TCommandFailure(kExitBadInput, "writing " + path,
                          {kQDXStatusFileSystemError, ErrorText(error.value())});
  }
  return fs::exists(status) && !fs::is_regular_file(status);
}

[[noreturn]] void FailToCollect(const TProviderQuery& machine, const std::string& reason) {
  throw TCommandFailure(kExitNothingCollected, "collecting the machine below " + machine.GetRoot(),
                        {kQDXStatusNotFound, reason});
}

/// Collects namespaces and writes the document.
class TCollection {
 public:
  TCollection(TProviderQuery& machine, TPluginWriter& writer)
      : fMachine(machine),
        fWriter(writer),
        fCopies(CopyNamespaces(machine)),
        fHostName(HostName(fCopies, machine.GetRoot())) {
    if (fCopies.empty()) FailToCollect(machine, "no provider has data");
    const auto lacksAll = [](const auto& copy) { return LacksAllValues(*copy.fNamespace); };
    if (std::all_of(fCopies.begin(), fCopies.end(), lacksAll)) {
      FailToCollect(machine, "all values are missing; 'qdx show' gives the reasons");
    }
  }

  /// Publishes the document under a name that no file has yet.
  void WriteByDefaultName() {
    const std::string name = DefaultName(fHostName);
    std::string file = name + kDefaultSuffix;
    TNewFile newFile(".", kDefaultSuffix, file);
    Write(newFile, file);
    for (int number = 2; !newFile.PublishIfNew(file); ++number) {
      file = name + "-" + std::to_string(number) + kDefaultSuffix;
    }
    WriteFileName(file);
  }

  void WriteTo(const std::string& file) {
    if (file == "-") return WriteDirectly(file, "standard output");
    if (IsNotReplaceable(file)) return WriteDirectly(file, file);
    const fs::path path = fs::absolute(FileToReplace(file));
    // Consumers may select the format by the suffix.
    const std::size_t suffix = std::min(file.rfind('.'), file.size());
    TNewFile newFile(path.parent_path().string(),
                     file.find('/', suffix) == std::string::npos ? file.substr(suffix) : "", file);
    Write(newFile, file);
    newFile.Publish(path.string());
    WriteFileName(file);
  }

 private:
  static constexpr const char* kDefaultSuffix = ".xml.gz";

  /// The record has no provider as its origin.
  TCopies CopiesAndRecord() const {
    TCopies copies = fCopies;
    copies.push_back({{}, MakeCollectionRecord(fMachine, fHostName)});
    return copies;
  }

  /// Leaves out a namespace that the consumer refuses, and starts the document again.
  void Write(const TNewFile& newFile, const std::string& shownAs) {
    while (const auto refusal = fWriter.Write(CopiesAndRecord(), newFile.GetPath(), shownAs)) {
      LeaveOut(*refusal, shownAs);
      if (fCopies.empty()) FailToCollect(fMachine, "the consumer refuses every namespace");
      fs::resize_file(newFile.GetPath(), 0);
    }
  }

  /// For outputs that cannot be rewritten: a refused namespace ends the command.
  void WriteDirectly(const std::string& file, const std::string& shownAs) {
    const auto refusal = fWriter.Write(CopiesAndRecord(), file, shownAs);
    if (!refusal) return;
    LeaveOut(*refusal, shownAs);
    throw TCommandFailure(kExitBadInput);
  }

  void LeaveOut(const TProviderFailure& refusal, const std::string& shownAs) {
    const std::string& name = refusal.fOrigin.fNamespace;
    const auto refused = std::find_if(fCopies.begin(), fCopies.end(), [&](const auto& copy) {
      return copy.fOrigin.fNamespace == name;
    });
    if (refused == fCopies.end()) {  // the record
      throw TCommandFailure(kExitBadInput, "writing document " + shownAs, refusal.fFailure);
    }
    fMachine.AddFailure(refusal);
    fCopies.erase(refused);
  }

  TProviderQuery& fMachine;
  TPluginWriter& fWriter;
  TCopies fCopies;
  const std::string fHostName;
};

EExitCode RunCollect(const TArguments& arguments) {
  const std::string consumer = arguments.Get("consumer", TPluginWriter::kDefaultConsumer);
  if (consumer != TPluginWriter::kDefaultConsumer && !arguments.Has("output")) {
    FailOnUsage("option '--consumer' needs option '--output'");
  }
  TProviderQuery machine(arguments);
  TPluginWriter writer(consumer);
  TCollection collection(machine, writer);
  arguments.Has("output") ? collection.WriteTo(arguments.Get("output", ""))
                          : collection.WriteByDefaultName();
  return machine.GetFailures().empty() && !writer.HasWarned() ? kExitDone : kExitPartlyDone;
}

std::vector<TOptionSpec> CollectOptions() {
  std::vector<TOptionSpec> options = {
      {"output", "FILE", "Write this file; '-' is standard output.", 'o'},
      {"consumer", "NAME", "Write with this consumer plug-in instead of a CIM-XML document."}};
  const auto machine = TProviderQuery::Options();
  options.insert(options.end(), machine.begin(), machine.end());
  return options;
}

}  // namespace

TVerb CollectVerb() {
  return {
      "collect", "Writes a CIM-XML document with the data of all providers of this machine.",
      "The document appears complete or not at all, readable by its owner only. It is compressed\n"
      "if its name ends in .gz. Without --output it is HOSTNAME-YYYYMMDDTHHMMSS.xml.gz in the\n"
      "current folder. Its name is printed.\n"
      "A provider that fails, or a namespace that cannot be written, is reported to standard\n"
      "error and in the document.\n",
      CollectOptions(), RunCollect};
}

}  // namespace NVORNQDX20
