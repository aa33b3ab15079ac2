// SPDX-License-Identifier: Apache-2.0
/// Asks all providers about this machine, or about one below another root folder.
#ifndef TOOLS_QDX_INPUT_MACHINE_H_
#define TOOLS_QDX_INPUT_MACHINE_H_

#include <qdxmodel/options.h>
#include <qdxplugin_host/provider_host.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "cli/arguments.h"
#include "cli/failure.h"

namespace NVORNQDX20 {

using NPluginHost::TMachineNamespace;
using NPluginHost::TOrigin;
using NPluginHost::TProviderFailure;

/// The name of the namespace that describes a machine.
inline constexpr const char* kMachineNamespace = "root/cimv2";

inline constexpr TOptionSpec kRootFolderOption = {
    "root", "DIR", "Describe the machine whose files are below DIR, not this one."};

/// Each failure of a provider is printed and recorded; other providers are not affected. One object
/// asks once.
class TMachine {
 public:
  /// The options of verbs that ask for everything: --root, --provider, those of parts and those of
  /// workers.
  static std::vector<TOptionSpec> Options();

  /// Throws a TCommandFailure for a bad option, and if the root is not a folder.
  explicit TMachine(const TArguments& arguments);

  /// Returns all namespaces, providers in ascending order of their names. Of several namespaces
  /// with the same name the first one is taken, and the others are failures; but one that describes
  /// a machine comes before those that do not. Throws a TCommandFailure if a provider that was
  /// named does not exist, or a part that no provider has.
  std::vector<TMachineNamespace> TakeAll();

  /// Returns kMachineNamespace, with the instances of these classes at least; null if no provider
  /// has it.
  boost::shared_ptr<ICIMNamespace> TakeMachineNamespace(const std::vector<std::string>& classes);

  /// Prints and records a later failure.
  void AddFailure(const TProviderFailure& failure);

  const std::string& GetRoot() const { return fRoot; }
  const std::vector<TProviderFailure>& GetFailures() const { return fFailures; }
  const std::vector<NPluginHost::TAskedProvider>& GetProviders() const { return fProviders; }
  /// Parts of all providers.
  struct TParts {
    std::vector<std::string> fChosen;
    std::vector<std::string> fLeftOut;
    std::vector<std::string> fExcluded;  ///< Those of them whose classes are missing, too.
  };
  TParts GetParts() const;
  /// Returns whether everything that the providers have was delivered as they have it.
  bool IsComplete() const { return fFailures.empty() && !fHasWarned; }

 private:
  /// What the libraries delivered, in their order.
  struct TAnswers {
    std::set<std::string> fNames;                                         ///< Of all providers.
    std::vector<std::pair<std::string, TProviderFailure>> fLoadFailures;  ///< With the file.
    std::vector<TMachineNamespace> fNamespaces;
    std::vector<TProviderFailure> fFailures;
  };

  std::vector<TMachineNamespace> Ask(NPluginHost::TProviderRequest request);
  void Add(const NPluginHost::TAskedLibrary& library, TAnswers& answers);
  bool IsWanted(const std::string& provider) const;
  void CheckNames(const TAnswers& answers) const;
  void CheckParts(const TAnswers& answers) const;
  std::vector<TMachineNamespace> WithoutDoubles(std::vector<TMachineNamespace> all);

  const NPluginHost::TWorkerLimits fLimits;
  const std::string fRoot;
  const std::vector<std::string> fNamed;
  const TOptionsMap fPartOptions;  // to be passed to providers
  std::vector<NPluginHost::TAskedProvider> fProviders;
  std::vector<TProviderFailure> fFailures;
  bool fHasWarned = false;
};

/// Returns the name of the machine below a root folder, as its providers have it. Empty if unknown:
/// the name of the machine that runs this command would be wrong below another root folder.
std::string HostNameOf(const std::vector<TMachineNamespace>& namespaces, const std::string& root);

/// Returns options of the machine for a verb that reads a document instead if an operand FILE is
/// given: --memory limits that, too.
std::vector<TOptionSpec> BesideFile(std::vector<TOptionSpec> options);
/// Throws a TCommandFailure for the other options of the machine. REQUIRES: a FILE is given.
void RefuseOptionsWithFile(const TArguments& arguments);

/// Throws a TCommandFailure if the folder cannot be read.
std::vector<NPluginHost::TPluginFile> FindPluginsOrFail(NPluginHost::EPluginKind kind);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_MACHINE_H_
