// SPDX-License-Identifier: Apache-2.0
// The verb plugins.
#include <qdxplugin_host/consumer_host.h>

#include <algorithm>
#include <optional>
#include <utility>

#include <qdxsnapshot/value_json.h>

#include "cli/output.h"
#include "cli/terminal.h"
#include "input/machine.h"
#include "input/worker_options.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

using namespace NPluginHost;

void AddFailure(const TExplainedException& failure, TJSON& description) {
  description["failure"] = failure.GetReason();
  description["status"] = failure.what();
}

TJSON Describe(const TPluginFile& plugin, const std::optional<TExplainedException>& failure) {
  TJSON description = {{"service", plugin.fService},
                       {"file", plugin.fPath},
                       {"failure", nullptr},
                       {"status", nullptr}};
  if (failure) AddFailure(*failure, description);
  return description;
}

TJSON Describe(const TAskedLibrary& library) {
  TJSON description = Describe(library.fPlugin, library.fLoadFailure);
  TJSON providers = TJSON::array();
  for (const TAskedProvider& provider : library.fProviders) {
    TJSON namespaces;
    if (provider.fNamespaces) namespaces = *provider.fNamespaces;
    TJSON parts = TJSON::array();
    for (const auto& [part, isOnRequest] : provider.fParts) {
      parts.push_back({{"name", part}, {"onRequest", isOnRequest}});
    }
    providers.push_back({{"name", provider.fName}, {"namespaces", namespaces}, {"parts", parts}});
  }
  description["providers"] = providers;
  if (library.fLoadFailure) {
    PrintFailure("loading provider " + library.fPlugin.fPath, *library.fLoadFailure);
  }
  for (const TProviderFailure& failure : library.fFailures) {
    AddFailure(failure.fFailure, description);
    PrintFailure(failure.fOperation + " provider " + failure.fOrigin.fProvider, failure.fFailure);
  }
  return description;
}

/// The name is null if the consumer does not return one.
TJSON Describe(const TAskedConsumer& consumer) {
  const auto& plugin = consumer.fPlugin;
  const auto& loadFailure = consumer.fLoadFailure;
  const auto& failure = consumer.fFailure;
  TJSON description = Describe(plugin, loadFailure ? loadFailure : failure);
  description["name"] = consumer.fName ? TJSON(*consumer.fName) : TJSON();
  if (loadFailure) PrintFailure("loading consumer " + plugin.fPath, *loadFailure);
  if (failure) PrintFailure("asking for the name of consumer " + plugin.fService, *failure);
  return description;
}

template <typename TLibraries>
TJSON DescribeAll(const TLibraries& libraries, bool& failed) {
  TJSON all = TJSON::array();
  for (const auto& library : libraries) {
    all.push_back(Describe(library));
    failed = failed || !all.back()["failure"].is_null();
  }
  return all;
}

template <typename TLibraries>
bool AnyUsable(const TLibraries& libraries) {
  return std::any_of(libraries.begin(), libraries.end(),
                     [](const auto& library) { return !library.fLoadFailure; });
}

std::string JoinedNames(const TJSON& names) {
  std::string joined;
  for (const TJSON& name : names) joined += (joined.empty() ? "" : ", ") + PlainText(name);
  return joined.empty() ? "-" : joined;
}

std::string FileOf(const TJSON& library) {
  return PlainText(library["file"]) + (library["failure"].is_null() ? "" : "  (failed)");
}

void AddProviderRows(const TJSON& library, std::vector<TTableRow>& rows) {
  const std::string service = PlainText(library["service"]);
  const std::string file = FileOf(library);
  for (const TJSON& provider : library["providers"]) {
    rows.push_back({{"provider", service, PlainText(provider["name"]),
                     JoinedNames(provider["namespaces"]), file}});
  }
  if (library["providers"].empty()) {
    rows.push_back({{"provider", service, "-", "-", file}, TTableRow::kDim});
  }
}

/// Returns a line for the parts that are described by default, and one for the others.
std::string FormatParts(const TJSON& provider) {
  std::string parts[2];
  for (const TJSON& part : provider["parts"]) {
    std::string& names = parts[part["onRequest"].get<bool>() ? 1 : 0];
    names += (names.empty() ? "" : ", ") + PlainText(part["name"]);
  }
  const std::string start = "parts of " + PlainText(provider["name"]);
  std::vector<TTableRow> rows;
  if (!parts[0].empty()) rows.push_back({{start + ": " + parts[0]}});
  if (!parts[1].empty()) rows.push_back({{start + " on request: " + parts[1]}});
  return FormatTable(rows);
}

void WriteForPeople(const TJSON& plugins) {
  std::vector<TTableRow> rows = {
      {{"KIND", "SERVICE", "NAME", "NAMESPACES", "FILE"}, TTableRow::kHeading}};
  for (const TJSON& library : plugins["providers"]) AddProviderRows(library, rows);
  for (const TJSON& library : plugins["consumers"]) {
    rows.push_back({{"consumer", PlainText(library["service"]), PlainText(library["name"]), "-",
                     FileOf(library)},
                    library["failure"].is_null() ? TTableRow::kPlain : TTableRow::kDim});
  }
  std::string parts;
  for (const TJSON& library : plugins["providers"]) {
    for (const TJSON& provider : library["providers"]) parts += FormatParts(provider);
  }
  WriteOutput(FormatTable(rows) + parts);
}

EExitCode RunPlugins(const TArguments& arguments) {
  const TWorkerLimits limits = LimitsOf(arguments);
  TProviderRequest request;
  request.fReadsNamespaces = false;
  const auto files = FindPluginsOrFail(EPluginKind::kProvider);
  TConsumerNames names(FindPluginsOrFail(EPluginKind::kConsumer));
  const auto providers = AskProviders(files, request, limits, ShowWaiting(), names.GetJobs());
  const auto consumers = std::move(names).Take();
  bool failed = false;
  const TJSON plugins = {{"providers", DescribeAll(providers, failed)},
                         {"consumers", DescribeAll(consumers, failed)}};
  arguments.Has("json") ? WriteJSON(plugins) : WriteForPeople(plugins);
  if (providers.empty() && consumers.empty()) {
    PrintFailure("looking for plug-ins in " + PluginFolder(),
                 {kQDXStatusNotFound, "the folder has none"});
  }
  if (!AnyUsable(providers) && !AnyUsable(consumers)) return kExitNothingCollected;
  return failed ? kExitPartlyDone : kExitDone;
}

std::vector<TOptionSpec> PluginsOptions() {
  std::vector<TOptionSpec> options = WorkerOptions();
  options.push_back({"json", nullptr, "Print one JSON object."});
  return options;
}

}  // namespace

TVerb PluginsVerb() {
  return {
      "plugins", "Lists the installed plug-ins, and loads each one as a test.",
      "Plug-ins are in the folder of the core library: lib*.nsp.so are providers, which describe\n"
      "a machine; lib*.nsc.so are consumers, which process such a description.\n",
      PluginsOptions(), RunPlugins};
}

}  // namespace NVORNQDX20
