// SPDX-License-Identifier: Apache-2.0
/// This machine, or one below another root folder, as the providers describe it.
#ifndef TOOLS_QDX_PLUGIN_HOST_LIVE_MACHINE_H_
#define TOOLS_QDX_PLUGIN_HOST_LIVE_MACHINE_H_

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

/// Who was asked for which namespace; that is empty where the provider as a whole is meant.
struct TOrigin {
  std::string fProvider;
  std::string fNamespace;
};

/// What a provider delivered, or a copy of it.
struct TMachineNamespace {
  TOrigin fOrigin;
  boost::shared_ptr<ICIMNamespace> fNamespace;
};

/// Something that a provider did not deliver, or that could not be written.
struct TProviderFailure {
  TOrigin fOrigin;
  std::string fOperation;  ///< "loading", "listing", "opening", "writing" or what a visitor does.
  TExplainedException fFailure;
};

/// The folder of option "root". Throws a TCommandFailure if it is none.
std::string RootFolder(const TArguments& arguments);

/// Asks providers for all that they have. Each failure is printed and kept, and the others go on.
class TLiveMachine {
 public:
  using TVisitor = std::function<void(const TOrigin&, const boost::shared_ptr<ICIMNamespace>&)>;

  /// The options of a verb that describes a live machine: --root and --provider.
  static std::vector<TOptionSpec> Options();

  /// Loads all providers, and takes those that were named, or all. Throws a TCommandFailure for a
  /// name that no provider has, and what RootFolder throws.
  explicit TLiveMachine(const TArguments& arguments);

  /// Visits every namespace, providers in ascending order of their names. Whatever the visitor
  /// throws is a failure of that provider in what `operation` says. Of two namespaces with one
  /// name the second is a failure too, since nobody could tell them apart.
  void VisitNamespaces(const std::string& operation, const TVisitor& visit);

  /// Prints and keeps a failure that showed later.
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
  std::map<std::string, std::string> fTaken;  // the provider of each namespace so far
  std::vector<TProviderFailure> fFailures;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_LIVE_MACHINE_H_
