// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "crash_note.h"
#include "libraries.h"
#include "output.h"
#include "terminal.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

using TJSON = nlohmann::ordered_json;

/// An array of names; null if the provider does not list its namespaces.
TJSON NamespacesOf(INamespaceProvider& provider, bool& failed) {
  const std::string tried = "listing the namespaces of provider";
  const std::string name = NameOf(provider);
  const TCrashNote note(tried, name);
  TJSON names = TJSON::array();
  const auto failure = Try([&] {
    provider.EnumerateNamespaceNames(
        [&names](const std::string& ns) {
          names.push_back(ns);
          return true;
        },
        TOptionsMap());
  });
  if (!failure) return names;
  if (failure->fStatus != kQDXStatusNotImplemented) {
    failed = true;
    PrintError(FailureLine(tried, name, *failure));
  }
  return nullptr;
}

/// Null if the consumer does not name itself.
TJSON NameOf(const TConsumerLibrary& library, bool& failed) {
  TJSON name;
  if (!library.fConsumer) return name;
  const std::string tried = "asking for the name of consumer";
  const TCrashNote note(tried, library.fService);
  const auto failure = Try([&] { name = library.fConsumer->GetName(TOptionsMap()); });
  if (failure && failure->fStatus != kQDXStatusNotImplemented) {
    failed = true;
    PrintError(FailureLine(tried, library.fService, *failure));
  }
  return name;
}

TJSON Describe(const TLibrary& library) {
  const TJSON failure = library.fFailure ? TJSON(library.fFailure->Text()) : TJSON();
  return {{"service", library.fService}, {"file", library.fFile}, {"failure", failure}};
}

TJSON Describe(const TProviderLibrary& library, bool& failed) {
  TJSON description = Describe(library);
  description["providers"] = TJSON::array();
  for (const auto& provider : library.fProviders) {
    description["providers"].push_back(
        {{"name", NameOf(*provider)}, {"namespaces", NamespacesOf(*provider, failed)}});
  }
  return description;
}

TJSON Describe(const TConsumerLibrary& library, bool& failed) {
  TJSON description = Describe(library);
  description["name"] = NameOf(library, failed);
  return description;
}

template <typename TLibraries>
TJSON DescribeAll(const TLibraries& libraries, bool& failed) {
  TJSON all = TJSON::array();
  for (const auto& library : libraries) all.push_back(Describe(library, failed));
  return all;
}

std::string TextOf(const TJSON& value) { return value.is_null() ? "-" : value.get<std::string>(); }

std::string JoinedNames(const TJSON& names) {
  std::string joined;
  for (const TJSON& name : names) joined += (joined.empty() ? "" : ", ") + TextOf(name);
  return joined.empty() ? "-" : joined;
}

void AddProviderRows(const TJSON& library, std::vector<TTableRow>& rows) {
  const std::string service = TextOf(library["service"]);
  const std::string file = TextOf(library["file"]);
  for (const TJSON& provider : library["providers"]) {
    rows.push_back({{"provider", service, TextOf(provider["name"]),
                     JoinedNames(provider["namespaces"]), file}});
  }
  if (library["providers"].empty()) {
    rows.push_back({{"provider", service, "-", "-", file + "  (failed)"}, TTableRow::kDim});
  }
}

void WriteForPeople(const TJSON& plugins) {
  std::vector<TTableRow> rows = {
      {{"KIND", "SERVICE", "NAME", "NAMESPACES", "FILE"}, TTableRow::kHeading}};
  for (const TJSON& library : plugins["providers"]) AddProviderRows(library, rows);
  for (const TJSON& library : plugins["consumers"]) {
    const bool failed = !library["failure"].is_null();
    rows.push_back({{"consumer", TextOf(library["service"]), TextOf(library["name"]), "-",
                     TextOf(library["file"]) + (failed ? "  (failed)" : "")},
                    failed ? TTableRow::kDim : TTableRow::kPlain});
  }
  WriteOutput(FormatTable(rows));
}

EExitCode RunPlugins(const TArguments& arguments) {
  const auto providers = LoadProviderLibraries();
  const auto consumers = LoadConsumerLibraries();
  bool failed = AnyFailed(providers) || AnyFailed(consumers);
  const TJSON plugins = {{"providers", DescribeAll(providers, failed)},
                         {"consumers", DescribeAll(consumers, failed)}};
  arguments.Has("json") ? WriteJSON(plugins) : WriteForPeople(plugins);
  if (!AnyUsable(providers) && !AnyUsable(consumers)) return kExitNothingCollected;
  return failed ? kExitPartlyDone : kExitDone;
}

}  // namespace

TVerb PluginsVerb() {
  return {"plugins",
          "Lists the plug-ins that are installed, and loads each one to see that it works.",
          "Plug-ins stand beside the core library: lib*.nsp.so are providers, which describe a\n"
          "machine, lib*.nsc.so are consumers, which take such a description.\n",
          {{"json", nullptr, "Print one JSON object."}},
          RunPlugins};
}

}  // namespace NVORNQDX20
