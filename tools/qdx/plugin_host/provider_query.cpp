// SPDX-License-Identifier: Apache-2.0
#include "provider_query.h"

#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxmodel/names.h>
#include <qdxmodel/options.h>
#include <qdxsystem/error_text.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "crash_note.h"

namespace NVORNQDX20 {
namespace {

/// The provider may be missing because its library failed.
boost::shared_ptr<INamespaceProvider> ProviderNamed(
    const std::string& name, const std::vector<TProviderLibrary>& libraries) {
  boost::shared_ptr<INamespaceProvider> provider;
  const auto failure = Try(
      [&] { provider = TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider(name); });
  if (failure) {
    ReportFailures(libraries);
    throw TCommandFailure(
        kExitBadInput, "looking for provider " + name,
        {failure->GetStatusCode(), "no plug-in brings one of this name; 'qdx plugins' lists all"});
  }
  return provider;
}

std::string ActionOn(const TOrigin& origin, const std::string& operation) {
  const std::string& ns = origin.fNamespace;
  return operation + (ns.empty() ? "" : " " + ns + " of") + " provider " + origin.fProvider;
}

}  // namespace

std::string RootFolder(const TArguments& arguments) {
  std::string root = arguments.Get(kRootFolderOption.fName, "/");
  std::error_code error;
  if (std::filesystem::is_directory(root, error)) return root;
  const std::string reason = error ? ErrorText(error.value()) : "not a folder";
  throw TCommandFailure(kExitBadInput, "reading root folder " + root,
                        {kQDXStatusFileNotFound, reason});
}

std::vector<TOptionSpec> TProviderQuery::Options() {
  return {kRootFolderOption,
          {"provider", "NAME", "Query only this provider; can be given more than once."}};
}

TProviderQuery::TProviderQuery(const TArguments& arguments) : fRoot(RootFolder(arguments)) {
  const auto named = arguments.GetAll("provider");
  // The failures of other libraries do not matter, then.
  const auto libraries = LoadProviderLibraries(!named.empty());
  for (const std::string& name : std::set<std::string>(named.begin(), named.end())) {
    fProviders.push_back(ProviderNamed(name, libraries));
  }
  if (!named.empty()) return;
  fProviders = RegisteredProviders();
  for (const TProviderLibrary& library : libraries) {
    if (library.fFailure) {
      fFailures.push_back({{library.fService, ""}, "loading", *library.fFailure});
    }
  }
}

void TProviderQuery::VisitNamespaces(const std::string& operation, const TVisitor& visit) {
  for (const auto& provider : fProviders) {
    for (const std::string& name : NamespacesOf(*provider)) {
      const TOrigin origin{NameOf(*provider), name};
      const auto ns = Open(*provider, origin);
      if (ns) Attempt(origin, operation, [&] { visit(origin, ns); });
    }
  }
}

void TProviderQuery::AddFailure(const TProviderFailure& failure) {
  fFailures.push_back(failure);
  PrintFailure(ActionOn(failure.fOrigin, failure.fOperation), failure.fFailure);
}

/// Returns an empty list if the provider does not implement the enumeration, which is optional.
std::vector<std::string> TProviderQuery::NamespacesOf(INamespaceProvider& provider) {
  std::vector<std::string> names;
  Attempt({NameOf(provider), ""}, "listing the namespaces of", [&] {
    try {
      provider.EnumerateNamespaceNames(
          [&names](const std::string& name) {
            const bool isNew = std::find(names.begin(), names.end(), name) == names.end();
            if (isNew) names.push_back(name);
            return true;
          },
          {{NModel::kRootOption, TCIMValue(fRoot)}});
    } catch (const TQDXException& exception) {
      if (exception.GetStatusCode() != kQDXStatusNotImplemented) throw;
    }
  });
  return names;
}

/// Returns null after a failure.
boost::shared_ptr<ICIMNamespace> TProviderQuery::Open(INamespaceProvider& provider,
                                                      const TOrigin& origin) {
  boost::shared_ptr<ICIMNamespace> ns;
  Attempt(origin, "opening", [&] {
    const std::string name = NModel::Folded(origin.fNamespace);
    const auto earlier = fOpened.find(name);
    if (earlier != fOpened.end()) {
      throw TExplainedException(kQDXStatusAlreadyExists,
                                "it was already collected from provider " + earlier->second);
    }
    ns = provider.GetNamespace(origin.fNamespace, {{NModel::kRootOption, TCIMValue(fRoot)}});
    if (!ns) throw TExplainedException(kQDXStatusFail, "it returns none");
    fOpened[name] = origin.fProvider;
  });
  return ns;
}

void TProviderQuery::Attempt(const TOrigin& origin, const std::string& operation,
                             const std::function<void()>& work) {
  const TCrashNote note(ActionOn(origin, operation));
  const auto failure = Try(work);
  if (failure) AddFailure({origin, operation, WithoutName(*failure, origin.fProvider)});
}

}  // namespace NVORNQDX20
