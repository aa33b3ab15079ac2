// SPDX-License-Identifier: Apache-2.0
#include "machine.h"

#include <qdxcore/os_specific.h>
#include <qdxcore/schema_helper.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/nearest_name.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include <sys/stat.h>

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/split.hpp>

#include "worker_options.h"

namespace NVORNQDX20 {
namespace {

using namespace NPluginHost;

/// Asks in a worker, since a folder on a dead disk or network blocks whoever looks at it.
void CheckRootFolder(const std::string& root, const TWorkerLimits& limits) {
  if (root == "/") return;
  std::string reason;
  const auto check = [&root](TSender& sender) {
    struct stat status {};
    const int error = ::stat(root.c_str(), &status) == 0 ? 0 : errno;
    sender.Send(0, {}, error == 0 && !S_ISDIR(status.st_mode) ? ENOTDIR : error);
  };
  const auto receive = [&reason](TMessage&& message) {
    if (message.fNumber != 0) reason = ErrorText(static_cast<int>(message.fNumber));
    if (message.fNumber == ENOTDIR) reason = "not a folder";
  };
  const auto end = [&reason](const TWorkerEnd& how) {
    if (!how.fIsNormal) reason = how.fReason;
  };
  RunWorkers({{"root folder " + root, check, receive, end}}, limits, ShowWaiting());
  if (reason.empty()) return;
  throw TCommandFailure(kExitBadInput, "reading root folder " + root,
                        {kQDXStatusFileNotFound, reason});
}

std::string ActionOn(const TOrigin& origin, const std::string& operation) {
  const std::string& ns = origin.fNamespace;
  return operation + (ns.empty() ? "" : " " + ns + " of") + " provider " + origin.fProvider;
}

bool DescribesMachine(const ICIMNamespace& ns) {
  bool describes = false;
  (void)Try([&] {
    const auto system = ns.GetClass(TCIMSchemaHelper::kSystemCreationClassName, {});
    NModel::ForEachInstance(*system, [&describes](const ICIMInstance&) { describes = true; });
  });
  return describes;
}

/// One that describes a machine is not hidden by one that does not.
bool IsBetter(const TMachineNamespace& left, const TMachineNamespace& right) {
  return NModel::EqualIgnoringCase(left.fOrigin.fNamespace, kMachineNamespace) &&
         DescribesMachine(*left.fNamespace) && !DescribesMachine(*right.fNamespace);
}

constexpr TOptionSpec kPartOptions[] = {
    {NModel::kOnlyOption, "PARTS", "Describe only these parts, as in 'disks,network'."},
    {NModel::kWithoutOption, "PARTS", "Leave these parts out."},
    {NModel::kWithOption, "PARTS", "Describe also these parts, which are left out by default."}};

constexpr std::string_view kMemoryOption = "memory";

/// Splits the names of parts at commas.
std::vector<std::string> PartsOf(const TArguments& arguments, const char* option) {
  std::vector<std::string> parts;
  for (const std::string& names : arguments.GetAll(option)) {
    std::vector<std::string> split;
    boost::algorithm::split(split, names, [](char each) { return each == ','; });
    parts.insert(parts.end(), split.begin(), split.end());
  }
  if (std::find(parts.begin(), parts.end(), "") != parts.end()) {
    FailOnUsage(std::string("option '--") + option + "' has an empty name");
  }
  return parts;
}

TOptionsMap PartOptionsOf(const TArguments& arguments) {
  TOptionsMap options;
  for (const TOptionSpec& option : kPartOptions) {
    if (!arguments.Has(option.fName)) continue;
    const auto parts = PartsOf(arguments, option.fName);
    options[option.fName] = TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 0,
                                      std::vector<TCIMValue>(parts.begin(), parts.end()));
  }
  return options;
}

/// Keeps them until the process has ended: destroying them object by object would take longer.
void Keep(const std::vector<TMachineNamespace>& namespaces) {
  static auto& kept = *new std::vector<TMachineNamespace>;
  kept.insert(kept.end(), namespaces.begin(), namespaces.end());
}

void PrintLoadFailures(const std::vector<std::pair<std::string, TProviderFailure>>& failures) {
  for (const auto& [file, failure] : failures) {
    PrintFailure("loading provider " + file, failure.fFailure);
  }
}

}  // namespace

std::vector<TOptionSpec> TMachine::Options() {
  std::vector<TOptionSpec> options = {
      kRootFolderOption,
      {"provider", "NAME", "Query only this provider; can be given more than once."}};
  options.insert(options.end(), std::begin(kPartOptions), std::end(kPartOptions));
  const auto ofWorkers = WorkerOptions();
  options.insert(options.end(), ofWorkers.begin(), ofWorkers.end());
  return options;
}

TMachine::TMachine(const TArguments& arguments)
    : fLimits(LimitsOf(arguments)),
      fRoot(arguments.Get(kRootFolderOption.fName, "/")),
      fNamed(arguments.GetAll("provider")),
      fPartOptions(PartOptionsOf(arguments)) {
  CheckRootFolder(fRoot, fLimits);
}

std::vector<TMachineNamespace> TMachine::TakeAll() { return Ask({}); }

boost::shared_ptr<ICIMNamespace> TMachine::TakeMachineNamespace(
    const std::vector<std::string>& classes) {
  TProviderRequest request;
  request.fNamespace = kMachineNamespace;
  if (!classes.empty()) {
    const std::vector<TCIMValue> names(classes.begin(), classes.end());
    request.fOptions[NModel::kClassesOption] =
        TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 0, names);
  }
  const auto found = Ask(std::move(request));
  return found.empty() ? nullptr : found.front().fNamespace;
}

void TMachine::AddFailure(const TProviderFailure& failure) {
  fFailures.push_back(failure);
  PrintFailure(ActionOn(failure.fOrigin, failure.fOperation), failure.fFailure);
}

/// Adds what a library delivered to that of the others.
void TMachine::Add(const TAskedLibrary& library, TAnswers& answers) {
  const auto& [plugin, loadFailure, providers, namespaces, failures, warnings] = library;
  if (loadFailure) {
    answers.fLoadFailures.emplace_back(
        plugin.fPath, TProviderFailure{{plugin.fService, ""}, kLoading, *loadFailure});
  }
  for (const TAskedProvider& provider : providers) {
    answers.fNames.insert(provider.fName);
    if (IsWanted(provider.fName)) fProviders.push_back(provider);
  }
  answers.fNamespaces.insert(answers.fNamespaces.end(), namespaces.begin(), namespaces.end());
  answers.fFailures.insert(answers.fFailures.end(), failures.begin(), failures.end());
  for (const std::string& warning : warnings) PrintError(warning);
  fHasWarned = fHasWarned || !warnings.empty();
}

bool TMachine::IsWanted(const std::string& provider) const {
  return fNamed.empty() || std::find(fNamed.begin(), fNamed.end(), provider) != fNamed.end();
}

/// Throws a TCommandFailure unless all named providers exist. Failures of other libraries do not
/// matter then.
void TMachine::CheckNames(const TAnswers& answers) const {
  for (const std::string& name : fNamed) {
    if (answers.fNames.count(name) != 0) continue;
    PrintLoadFailures(answers.fLoadFailures);
    throw TCommandFailure(
        kExitBadInput, "looking for provider " + name,
        {kQDXStatusNotFound, "no plug-in brings one of this name; 'qdx plugins' lists all"});
  }
}

TMachine::TParts TMachine::GetParts() const {
  const NModel::TPartChoice choice(fPartOptions);
  TParts parts;
  std::set<std::string> known;
  for (const TAskedProvider& provider : fProviders) {
    for (const auto& [part, isOnRequest] : provider.fParts) {
      if (!known.insert(part).second) continue;
      const auto verdict = choice.Of(part, isOnRequest);
      const bool isChosen = verdict == NModel::TPartChoice::kChosen;
      (isChosen ? parts.fChosen : parts.fLeftOut).push_back(part);
      if (verdict == NModel::TPartChoice::kLeftOut) parts.fExcluded.push_back(part);
    }
  }
  return parts;
}

/// Throws a TCommandFailure for a part that no provider has: it is misspelled, or its provider
/// failed.
void TMachine::CheckParts(const TAnswers& answers) const {
  const TParts parts = GetParts();
  std::vector<std::string> known = parts.fChosen;
  known.insert(known.end(), parts.fLeftOut.begin(), parts.fLeftOut.end());
  for (const auto& [option, value] : fPartOptions) {
    const std::vector<TCIMValue>& named = value;
    for (const std::string name : named) {
      if (std::find(known.begin(), known.end(), name) != known.end()) continue;
      PrintLoadFailures(answers.fLoadFailures);
      throw TCommandFailure(
          kExitBadInput, "looking for part " + name,
          {kQDXStatusNotFound, known.empty() ? "no provider has parts"
                                             : "no provider has it, only " +
                                                   boost::algorithm::join(known, ", ") +
                                                   NModel::SuggestedName(name, known)});
    }
  }
}

/// Returns the namespaces of all libraries, as if one had delivered them.
std::vector<TMachineNamespace> TMachine::Ask(TProviderRequest request) {
  request.fProviders = fNamed;
  request.fOptions.insert(fPartOptions.begin(), fPartOptions.end());
  request.fOptions[NModel::kRootOption] = TCIMValue(fRoot);
  TAnswers answers;
  for (const TAskedLibrary& library :
       AskProviders(FindPluginsOrFail(EPluginKind::kProvider), request, fLimits, ShowWaiting())) {
    Add(library, answers);
  }
  CheckNames(answers);
  CheckParts(answers);
  if (fNamed.empty()) {
    for (const auto& [file, failure] : answers.fLoadFailures) {
      fFailures.push_back(failure);
      PrintFailure("loading provider " + file, failure.fFailure);
    }
  }
  const auto byProvider = [](const auto& left, const auto& right) {
    return left.fOrigin.fProvider < right.fOrigin.fProvider;
  };
  std::stable_sort(answers.fFailures.begin(), answers.fFailures.end(), byProvider);
  for (const TProviderFailure& failure : answers.fFailures) AddFailure(failure);
  std::sort(fProviders.begin(), fProviders.end(),
            [](const auto& left, const auto& right) { return left.fName < right.fName; });
  std::stable_sort(answers.fNamespaces.begin(), answers.fNamespaces.end(), byProvider);
  Keep(answers.fNamespaces);
  return WithoutDoubles(std::move(answers.fNamespaces));
}

std::vector<TMachineNamespace> TMachine::WithoutDoubles(std::vector<TMachineNamespace> all) {
  std::map<std::string, std::size_t> best;  // index by folded name
  for (std::size_t i = 0; i < all.size(); ++i) {
    const auto [other, isNew] = best.try_emplace(NModel::Folded(all[i].fOrigin.fNamespace), i);
    if (isNew) continue;
    std::size_t worse = i;
    if (IsBetter(all[i], all[other->second])) std::swap(worse, other->second);
    AddFailure({all[worse].fOrigin,
                "opening",
                {kQDXStatusAlreadyExists, "it was already collected from provider " +
                                              all[other->second].fOrigin.fProvider}});
    all[worse].fNamespace.reset();
  }
  const auto isLeftOut = [](const TMachineNamespace& ns) { return !ns.fNamespace; };
  all.erase(std::remove_if(all.begin(), all.end(), isLeftOut), all.end());
  return all;
}

std::string HostNameOf(const std::vector<TMachineNamespace>& namespaces, const std::string& root) {
  std::string name;
  for (const TMachineNamespace& ns : namespaces) {
    if (!NModel::EqualIgnoringCase(ns.fOrigin.fNamespace, kMachineNamespace)) continue;
    (void)TryUnlessOutOfMemory([&] { name = TCIMSchemaHelper::GetSystemName(ns.fNamespace); });
  }
  if (name.empty() && root == "/") {
    (void)TryUnlessOutOfMemory([&] { name = TOSSpecific::GetMachineName(); });
  }
  return name;
}

std::vector<TOptionSpec> BesideFile(std::vector<TOptionSpec> options) {
  for (TOptionSpec& option : options) {
    if (option.fName != kMemoryOption) continue;
    option.fHelp = "Let a plug-in (1024 by default) or FILE (half of all memory) use so much.";
  }
  return options;
}

void RefuseOptionsWithFile(const TArguments& arguments) {
  for (const TOptionSpec& option : TMachine::Options()) {
    if (option.fName == kMemoryOption || !arguments.Has(option.fName)) continue;
    FailOnUsage(std::string("option '--") + option.fName + "' cannot be used with a file");
  }
}

std::vector<TPluginFile> FindPluginsOrFail(EPluginKind kind) {
  std::vector<TPluginFile> plugins;
  const auto failure = Try([&] { plugins = FindPlugins(kind); });
  if (failure) throw TCommandFailure(kExitNothingCollected, "looking for plug-ins", *failure);
  return plugins;
}

}  // namespace NVORNQDX20
