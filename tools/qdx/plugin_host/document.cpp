// SPDX-License-Identifier: Apache-2.0
#include "document.h"

#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxmodel/options.h>

#include <functional>
#include <optional>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

#include "cli/output.h"
#include "crash_note.h"
#include "libraries.h"

namespace NVORNQDX20 {
namespace {

const char* const kService = "cimxml";

/// Loads the reader unless it is loaded already.
void LoadReader() {
  for (const auto& provider : RegisteredProviders()) {
    if (NameOf(*provider) == kService) return;
  }
  const TProviderLibrary library = LoadProviderLibrary(kService);
  if (library.fFailure) {
    throw TCommandFailure(kExitNothingCollected, "loading provider " + library.fFile,
                          *library.fFailure);
  }
}

TNamespaces NamespacesIn(const TOptionsMap& options) {
  const auto provider = TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider(kService);
  TNamespaces namespaces;
  provider->EnumerateNamespaceNames(
      [&](const std::string& name) {
        namespaces.push_back(provider->GetNamespace(name, options));
        return true;
      },
      options);
  return namespaces;
}

/// Like Try(), and collects the plug-in's warnings, for example about a changed value, whatever the
/// log's threshold is.
std::optional<TExplainedException> TryAndListen(const std::function<void()>& call,
                                                std::vector<std::string>& warnings) {
  const TLogListener listener(ILogger::kLogWarning, [&](auto severity, const auto& message) {
    if (severity == ILogger::kLogWarning) warnings.push_back(message);
  });
  return Try(call);
}

}  // namespace

TNamespaces OpenDocument(const std::string& file, bool& incomplete) {
  LoadReader();
  const std::string shownAs = file == "-" ? "standard input" : file;
  const std::string action = "reading document " + shownAs;
  const TCrashNote note(action);
  TNamespaces namespaces;
  std::vector<std::string> warnings;
  const auto failure = TryAndListen(
      [&] {
        namespaces = NamespacesIn({{NModel::kFileOption, TCIMValue(file)}});
      },
      warnings);
  for (const std::string& warning : warnings) PrintError(warning);
  incomplete = incomplete || !warnings.empty();
  if (failure) {
    throw TCommandFailure(kExitBadInput, action,
                          WithoutName(WithoutName(*failure, kService), shownAs));
  }
  return namespaces;
}

const char* const TPluginWriter::kDefaultConsumer = kService;

TPluginWriter::TPluginWriter(const std::string& consumer) : fName(consumer) {
  const TConsumerLibrary library = LoadConsumerLibrary(consumer);
  fConsumer = library.fConsumer;
  if (!library.fFailure) return;
  // Any other consumer was named by the operator.
  throw TCommandFailure(consumer == kService ? kExitNothingCollected : kExitBadInput,
                        "loading consumer " + library.fFile, *library.fFailure);
}

std::optional<TProviderFailure> TPluginWriter::Write(
    const std::vector<TMachineNamespace>& namespaces, const std::string& file,
    const std::string& shownAs) {
  const auto shown = [&](const std::string& message) {
    return file == "-" ? message : boost::algorithm::replace_all_copy(message, file, shownAs);
  };
  const std::string action = "writing document " + shownAs;
  const TCrashNote note(action);
  std::size_t index = 0;
  std::vector<std::string> warnings;
  auto failure = TryAndListen(
      [&] {
        for (; index < namespaces.size(); ++index) {
          const bool more = index + 1 < namespaces.size();
          fConsumer->Consume(
              namespaces[index].fNamespace,
              {{NModel::kFileOption, TCIMValue(file)}, {NModel::kMoreOption, TCIMValue(more)}});
        }
      },
      warnings);
  if (failure) failure = Blame({failure->GetStatusCode(), shown(failure->GetReason())}, shownAs);
  for (const std::string& warning : warnings) {
    if (fWarnings.count(warning) == 0) PrintError(shown(warning));
  }
  fWarnings.insert(warnings.begin(), warnings.end());
  // A failure of the file system affects the other namespaces, too.
  if (failure && failure->GetStatusCode() != kQDXStatusFileSystemError) {
    return TProviderFailure{namespaces[index].fOrigin, "writing", *failure};
  }
  if (!failure) return std::nullopt;
  if (file == "-" && !OutputHasReader()) throw TCommandFailure(kExitBadInput);
  throw TCommandFailure(kExitBadInput, action, *failure);
}

/// Names the consumer, unless it is the default one. Many plug-ins name themselves and the file.
TExplainedException TPluginWriter::Blame(const TExplainedException& failure,
                                         const std::string& shownAs) const {
  const auto bare = WithoutName(WithoutName(failure, fName), shownAs);
  if (fName == kDefaultConsumer) return bare;
  return {bare.GetStatusCode(), "consumer " + fName + ": " + bare.GetReason()};
}

}  // namespace NVORNQDX20
