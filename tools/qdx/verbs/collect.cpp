// SPDX-License-Identifier: Apache-2.0
// The verb collect.
#include <qdxcore/config.h>
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxdescribe/provider.h>
#include <qdxmodel/options.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <qdxsnapshot/record.h>

#include "cli/new_file.h"
#include "cli/output.h"
#include "input/completeness.h"
#include "input/document.h"
#include "input/document_file.h"
#include "input/machine.h"
#include "input/redaction.h"
#include "input/worker_options.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;
using namespace NDescribe;

bool IsRecord(const TMachineNamespace& ns) { return IsRecordNamespace(*ns.fNamespace); }

bool IsEmpty(const ICIMNamespace& ns) {
  bool empty = true;
  const auto visit = [&empty](const boost::shared_ptr<ICIMClass>&) {
    empty = false;
    return false;
  };
  ns.EnumerateClasses(visit, {});
  return empty;
}

using TNamespaceList = std::vector<TMachineNamespace>;

TNamespaceList TakeNamespaces(TMachine& machine) {
  TNamespaceList all = machine.TakeAll();
  for (const TMachineNamespace& ns : all) {
    if (!IsRecord(ns)) continue;
    machine.AddFailure({ns.fOrigin,
                        "collecting",
                        {kQDXStatusAlreadyExists, "the record of the collection has this name"}});
  }
  const auto isLeftOut = [](const TMachineNamespace& ns) {
    return IsRecord(ns) || IsEmpty(*ns.fNamespace);
  };
  all.erase(std::remove_if(all.begin(), all.end(), isLeftOut), all.end());
  return all;
}

/// What the record of a collection is made from.
struct TRecordSource {
  const TMachine& fMachine;
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
  return {kRecordClass,
          "When and where the data of this document was collected.",
          kOnly,
          // The same key in every document, so that diff matches the instances.
          {{"InstanceID", "Identifies the only instance.", Constant("VORNSG:Collection"), kKey},
           {"HostName", "The name of the machine.", KnownHostName, ESecret::kHostName},
           {"RootFolder", "The folder below which the files of the machine were read.",
            [](const TRecordSource& from) { return from.fMachine.GetRoot(); }, kVolatile},
           {kCollectionTime, "When the data was read.", Now, kVolatile},
           {"Parts", "The parts of providers that were chosen.",
            [](const TRecordSource& from) { return from.fMachine.GetParts().fChosen; }, kVolatile},
           {kPartsLeftOut, "The parts that were left out: by an option, or since nobody asked.",
            [](const TRecordSource& from) { return from.fMachine.GetParts().fLeftOut; }, kVolatile},
           {"ToolVersion", "The version of the tool.", Constant(QDXCORE_VERSION)}}};
}

TTable<TProviderFailure, TRecordSource> FailureTable() {
  return {kFailureClass,
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

TTable<NPluginHost::TAskedProvider, TRecordSource> ProviderTable() {
  using NPluginHost::TAskedProvider;
  return {"VORNSG_CollectionProvider",
          "A provider that was asked.",
          [](const TRecordSource& from) { return from.fMachine.GetProviders(); },
          {{"Name", "The provider.", &TAskedProvider::fName, kKey},
           {"Duration", "How long it took to deliver.",
            [](const TAskedProvider& provider) {
              return static_cast<std::uint64_t>(provider.fTime.count());
            },
            TUnit{"second * 10^-6"}, kVolatile}}};
}

boost::shared_ptr<ICIMNamespace> MakeCollectionRecord(const TMachine& machine,
                                                      const std::string& hostName) {
  return NDescribe::Describe<TRecordSource>(TDescriber("qdx", kRecordNamespaceName),
                                            {CollectionTable(), ProviderTable(), FailureTable()},
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

[[noreturn]] void FailToCollect(const TMachine& machine, const std::string& reason) {
  throw TCommandFailure(kExitNothingCollected, "collecting the machine below " + machine.GetRoot(),
                        {kQDXStatusNotFound, reason});
}

/// Collects namespaces and writes the document.
class TCollection {
 public:
  /// `redaction` is null for a document with all values as they are.
  TCollection(TMachine& machine, TPluginWriter& writer, TDocumentRedaction* redaction)
      : fMachine(machine),
        fWriter(writer),
        fRedaction(redaction),
        fNamespaces(TakeNamespaces(machine)),
        fHostName(HostNameOf(fNamespaces, machine.GetRoot())) {
    if (fNamespaces.empty()) FailToCollect(machine, "no provider has data");
    const auto lacksAll = [](const auto& ns) { return LacksAllValues(*ns.fNamespace); };
    if (std::all_of(fNamespaces.begin(), fNamespaces.end(), lacksAll)) {
      FailToCollect(machine, kLacksAllValues);
    }
    if (fRedaction != nullptr) fRedaction->Learn(NamespacesAndRecord(), "the machine");
  }

  /// Returns whether the document lacks instances that the machine may have. Says which.
  bool HasLoss() const {
    bool any = false;
    for (const TMachineNamespace& ns : fNamespaces) {
      any = ReportLostInstances(ns.fOrigin.fNamespace, *ns.fNamespace) || any;
    }
    return any;
  }

  /// Publishes the document under a name that no file has yet.
  void WriteByDefaultName() {
    const std::string name =
        DefaultName(fRedaction == nullptr ? fHostName : fRedaction->Redact(fHostName));
    std::string file = name + kDefaultSuffix;
    TNewFile newFile(".", kDefaultSuffix, file);
    Write(newFile.GetPath(), file);
    for (int number = 2; !newFile.PublishIfNew(file); ++number) {
      file = name + "-" + std::to_string(number) + kDefaultSuffix;
    }
    WriteFileName(file);
  }

  void WriteTo(const std::string& file) {
    WriteDocument(file, fWriter, [this](const std::string& path, const std::string& shownAs) {
      Write(path, shownAs);
    });
  }

 private:
  static constexpr const char* kDefaultSuffix = ".xml.gz";

  /// The record has no provider as its origin.
  TNamespaceList NamespacesAndRecord() const {
    TNamespaceList all = fNamespaces;
    all.push_back({{}, MakeCollectionRecord(fMachine, fHostName)});
    return all;
  }

  TNamespaceList NamespacesToWrite() const {
    TNamespaceList all = NamespacesAndRecord();
    return fRedaction == nullptr ? all : fRedaction->Redact(all);
  }

  /// Leaves out a namespace that the consumer refuses, and starts the document again.
  void Write(const std::string& file, const std::string& shownAs) {
    while (const auto refusal = fWriter.Write(NamespacesToWrite(), file, shownAs)) {
      LeaveOut(*refusal, shownAs);
      if (fNamespaces.empty()) FailToCollect(fMachine, "the consumer refuses every namespace");
      if (file != "-") fs::resize_file(file, 0);
    }
  }

  void LeaveOut(const TProviderFailure& refusal, const std::string& shownAs) {
    const std::string& name = refusal.fOrigin.fNamespace;
    const auto refused = std::find_if(fNamespaces.begin(), fNamespaces.end(), [&](const auto& ns) {
      return ns.fOrigin.fNamespace == name;
    });
    if (refused == fNamespaces.end()) {  // the record
      throw TCommandFailure(kExitBadInput, "writing document " + shownAs, refusal.fFailure);
    }
    fMachine.AddFailure(refusal);
    fNamespaces.erase(refused);
  }

  TMachine& fMachine;
  TPluginWriter& fWriter;
  TDocumentRedaction* const fRedaction;
  TNamespaceList fNamespaces;
  const std::string fHostName;
};

EExitCode RunCollect(const TArguments& arguments) {
  const std::string consumer = arguments.Get("consumer", TPluginWriter::kDefaultConsumer);
  if (consumer != TPluginWriter::kDefaultConsumer && !arguments.Has("output")) {
    FailOnUsage("option '--consumer' needs option '--output'");
  }
  std::optional<TDocumentRedaction> redaction;
  if (arguments.Has("redact")) redaction.emplace(arguments);
  for (const TOptionSpec& option : RedactionOptions()) {
    if (redaction || !arguments.Has(option.fName)) continue;
    FailOnUsage(std::string("option '--") + option.fName + "' needs option '--redact'");
  }
  TMachine machine(arguments);
  TOptionsMap options;
  if (arguments.Has("old-readers")) options[NModel::kOldReadersOption] = TCIMValue(true);
  TPluginWriter writer(consumer, LimitsOf(arguments), options);
  TCollection collection(machine, writer, redaction ? &*redaction : nullptr);
  arguments.Has("output") ? collection.WriteTo(arguments.Get("output", ""))
                          : collection.WriteByDefaultName();
  const bool hasLost = redaction && redaction->ReportLoss();
  const bool isComplete = machine.IsComplete() && !writer.HasWarned() && !collection.HasLoss();
  return isComplete && !hasLost ? kExitDone : kExitPartlyDone;
}

std::vector<TOptionSpec> CollectOptions() {
  std::vector<TOptionSpec> options = {
      {"output", "FILE", "Write this file; '-' is standard output.", 'o'},
      {"consumer", "NAME", "Write with this consumer plug-in instead of a CIM-XML document."},
      {"old-readers", nullptr, "Write what also old CIM-XML readers understand."}};
  options.push_back(
      {"redact", nullptr, "Replace what is secret by pseudonyms, as 'qdx redact' does."});
  const auto ofRedaction = RedactionOptions();
  options.insert(options.end(), ofRedaction.begin(), ofRedaction.end());
  const auto machine = TMachine::Options();
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
