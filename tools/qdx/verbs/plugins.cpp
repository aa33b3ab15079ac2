// SPDX-License-Identifier: Apache-2.0
// The verb plugins.
#include <qdxcore/os_specific.h>
#include <qdxsnapshot/value_json.h>

#include <filesystem>

#include "cli/output.h"
#include "cli/terminal.h"
#include "plugin_host/crash_note.h"
#include "plugin_host/libraries.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

void AddFailure(const TExplainedException& failure, TJSON& description) {
  description["failure"] = failure.GetReason();
  description["status"] = failure.what();
}

/// A library that fails here can still be useful, but its row shows the failure.
bool Ask(const std::string& action, TJSON& description, const std::function<void()>& call) {
  const TCrashNote note(action);
  const auto failure = Try(call);
  if (failure && failure->GetStatusCode() != kQDXStatusNotImplemented) {
    AddFailure(*failure, description);
    PrintFailure(action, *failure);
  }
  return !failure;
}

/// Returns an array of names; null if the provider does not list its namespaces.
TJSON NamespacesOf(INamespaceProvider& provider, TJSON& description) {
  TJSON names = TJSON::array();
  const bool isListed =
      Ask("listing the namespaces of provider " + NameOf(provider), description, [&] {
        provider.EnumerateNamespaceNames(
            [&names](const std::string& name) {
              names.push_back(name);
              return true;
            },
            {});
      });
  return isListed ? names : TJSON();
}

TJSON Describe(const TLibrary& library) {
  TJSON description = {{"service", library.fService},
                       {"file", library.fFile},
                       {"failure", nullptr},
                       {"status", nullptr}};
  if (library.fFailure) AddFailure(*library.fFailure, description);
  return description;
}

TJSON Describe(const TProviderLibrary& library) {
  TJSON description = Describe(static_cast<const TLibrary&>(library));
  TJSON providers = TJSON::array();
  for (const auto& provider : library.fProviders) {
    const TJSON namespaces = NamespacesOf(*provider, description);
    providers.push_back({{"name", NameOf(*provider)}, {"namespaces", namespaces}});
  }
  description["providers"] = providers;
  return description;
}

/// The name is null if the consumer does not return one.
TJSON Describe(const TConsumerLibrary& library) {
  TJSON description = Describe(static_cast<const TLibrary&>(library));
  TJSON name;
  if (library.fConsumer) {
    Ask("asking for the name of consumer " + library.fService, description,
        [&] { name = library.fConsumer->GetName({}); });
  }
  description["name"] = name;
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

void WriteForPeople(const TJSON& plugins) {
  std::vector<TTableRow> rows = {
      {{"KIND", "SERVICE", "NAME", "NAMESPACES", "FILE"}, TTableRow::kHeading}};
  for (const TJSON& library : plugins["providers"]) AddProviderRows(library, rows);
  for (const TJSON& library : plugins["consumers"]) {
    rows.push_back({{"consumer", PlainText(library["service"]), PlainText(library["name"]), "-",
                     FileOf(library)},
                    library["failure"].is_null() ? TTableRow::kPlain : TTableRow::kDim});
  }
  WriteOutput(FormatTable(rows));
}

EExitCode RunPlugins(const TArguments& arguments) {
  const auto providers = LoadProviderLibraries();
  const auto consumers = LoadConsumerLibraries();
  bool failed = false;
  const TJSON plugins = {{"providers", DescribeAll(providers, failed)},
                         {"consumers", DescribeAll(consumers, failed)}};
  arguments.Has("json") ? WriteJSON(plugins) : WriteForPeople(plugins);
  if (providers.empty() && consumers.empty()) {
    PrintFailure("looking for plug-ins in " +
                     std::filesystem::weakly_canonical(TOSSpecific::GetQDXRootPath()).string(),
                 {kQDXStatusNotFound, "the folder has none"});
  }
  if (!AnyUsable(providers) && !AnyUsable(consumers)) return kExitNothingCollected;
  return failed ? kExitPartlyDone : kExitDone;
}

}  // namespace

TVerb PluginsVerb() {
  return {
      "plugins",
      "Lists the installed plug-ins, and loads each one as a test.",
      "Plug-ins are in the folder of the core library: lib*.nsp.so are providers, which describe\n"
      "a machine; lib*.nsc.so are consumers, which process such a description.\n",
      {{"json", nullptr, "Print one JSON object."}},
      RunPlugins};
}

}  // namespace NVORNQDX20
