// SPDX-License-Identifier: Apache-2.0
#include "document.h"

#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>

#include <algorithm>
#include <iterator>

#include <boost/algorithm/string/replace.hpp>

#include "failure.h"
#include "output.h"

namespace NVORNQDX20 {
namespace {

const char* const kService = "cimxml";

void LoadProvider() {
  const auto failure = Try([] { TOSSpecific::LoadNSPLibrary(kService); });
  if (failure) {
    throw TCommandFailure(kExitNothingCollected,
                          FailureLine("loading provider", kService, *failure));
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

/// The warnings logged since the history had this length.
std::vector<std::string> WarningsSince(std::size_t length) {
  const auto& log = TRootObject::GetCoreLogger()->GetLog();
  std::vector<std::string> warnings;
  for (auto entry = std::next(log.begin(), static_cast<std::ptrdiff_t>(length)); entry != log.end();
       ++entry) {
    if (entry->fSeverity == ILogger::kLogWarning) warnings.push_back(entry->fMessage);
  }
  return warnings;
}

}  // namespace

TNamespaces ReadDocument(const std::string& file) {
  LoadProvider();
  TNamespaces namespaces;
  const auto failure = Try([&] { namespaces = NamespacesIn({{"file", TCIMValue(file)}}); });
  if (failure) {
    throw TCommandFailure(kExitBadInput, FailureLine("reading document", file, *failure));
  }
  return namespaces;
}

TDocumentWriter::TDocumentWriter() {
  const auto failure = Try([this] {
    fConsumer.reset(TOSSpecific::LoadNSCLibrary(kService));
    if (!fConsumer) throw TQDXException(kQDXStatusInvalidPlugin);
  });
  if (failure) {
    throw TCommandFailure(kExitNothingCollected,
                          FailureLine("loading consumer", kService, *failure));
  }
}

void TDocumentWriter::Write(const TNamespaces& namespaces, const std::string& file,
                            const std::string& shownAs) {
  const auto shown = [&](const std::string& message) {
    return file == "-" ? message : boost::algorithm::replace_all_copy(message, file, shownAs);
  };
  ILogger& logger = *TRootObject::GetCoreLogger();
  const std::size_t loggedBefore = logger.GetLog().size();
  // Whatever the log is to hold: the operator must learn that a text was changed.
  const auto threshold = logger.GetLogThreshold();
  logger.SetLogThreshold(std::max(threshold, ILogger::kLogWarning));
  const auto failure = Try([&] { Consume(namespaces, file); });
  logger.SetLogThreshold(threshold);
  for (const std::string& warning : WarningsSince(loggedBefore)) PrintError(shown(warning));
  if (!failure) return;
  if (file == "-" && !OutputHasReader()) throw TCommandFailure(kExitBadInput, "");
  throw TCommandFailure(kExitBadInput, FailureLine("writing document", shownAs,
                                                   {failure->fStatus, shown(failure->fWhy)}));
}

void TDocumentWriter::Consume(const TNamespaces& namespaces, const std::string& file) {
  for (const auto& ns : namespaces) {
    const bool more = ns != namespaces.back();
    fConsumer->Consume(ns, {{"file", TCIMValue(file)}, {"more", TCIMValue(more)}});
  }
}

}  // namespace NVORNQDX20
