// SPDX-License-Identifier: Apache-2.0
/// The namespaces of the providers: of this machine, or of one below another root folder.
#ifndef TOOLS_QDX_PLUGIN_HOST_PROVIDER_QUERY_H_
#define TOOLS_QDX_PLUGIN_HOST_PROVIDER_QUERY_H_

#include <qdxcore/interfaces.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "cli/arguments.h"
#include "cli/failure.h"
#include "libraries.h"

namespace NVORNQDX20 {

/// A provider and one of its namespaces; the namespace is empty for the provider as a whole.
struct TOrigin {
  std::string fProvider;
  std::string fNamespace;
};

/// A namespace of a provider, or a copy of it.
struct TMachineNamespace {
  TOrigin fOrigin;
  boost::shared_ptr<ICIMNamespace> fNamespace;
};

/// A failure of a provider, or of writing its namespace.
struct TProviderFailure {
  TOrigin fOrigin;
  std::string fOperation;  ///< "loading", "listing", "opening", "writing" or a visitor's operation.
  TExplainedException fFailure;
};

inline constexpr TOptionSpec kRootFolderOption = {
    "root", "DIR", "Describe the machine whose files are below DIR, not this one."};

/// Returns the value of this option. Throws a TCommandFailure if it is not a folder.
std::string RootFolder(const TArguments& arguments);

/// Queries all namespaces of providers. Each failure is printed and recorded; other providers are
/// not affected.
class TProviderQuery {
 public:
  using TVisitor = std::function<void(const TOrigin&, const boost::shared_ptr<ICIMNamespace>&)>;

  /// The options of verbs that use this class: --root and --provider.
  static std::vector<TOptionSpec> Options();

  /// Loads all providers, and selects those that were named, or all. Throws a TCommandFailure for
  /// an unknown name, and what RootFolder throws.
  explicit TProviderQuery(const TArguments& arguments);

  /// Visits all namespaces, providers in ascending order of their names. An exception of the
  /// visitor is recorded as a failure of that provider in `operation`. A second namespace with the
  /// same name is a failure, since the two could not be distinguished.
  void VisitNamespaces(const std::string& operation, const TVisitor& visit);

  /// Prints and records a later failure.
  void AddFailure(const TProviderFailure& failure);

  const std::string& GetRoot() const { return fRoot; }
  const std::vector<TProviderFailure>& GetFailures() const { return fFailures; }

 private:
  std::vector<std::string> NamespacesOf(INamespaceProvider& provider);
  boost::shared_ptr<ICIMNamespace> Open(INamespaceProvider& provider, const TOrigin& origin);
  void Attempt(const TOrigin& origin, const std::string& operation,
               const std::function<void()>& work);

  std::string fRoot;
  TProviders fProviders;
  std::map<std::string, std::string> fOpened;  // provider by folded name of the namespace
  std::vector<TProviderFailure> fFailures;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_PROVIDER_QUERY_H_
