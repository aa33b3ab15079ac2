// SPDX-License-Identifier: Apache-2.0
#include "document.h"

#include <qdxcimxml/document_reader.h>
#include <qdxcore/logger.h>

#include <cerrno>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include <boost/algorithm/string/replace.hpp>

#include "worker_options.h"

namespace NVORNQDX20 {
namespace {

using namespace NPluginHost;

/// What messages of the reader and of the default consumer begin with.
const char* const kService = "cimxml";

NCIMXML::TReadingLimits ReadingLimitsOf(const TArguments& arguments) {
  NCIMXML::TReadingLimits limits;
  limits.fHowToRaise = "--memory sets another limit";
  if (arguments.Has("memory")) limits.fMemory = BytesOf(arguments, "memory");
  return limits;
}

std::string ShownAs(const std::string& file) { return file == "-" ? "standard input" : file; }

TNamespaces NamespacesOf(TRepositoryProvider& document) {
  TNamespaces namespaces;
  document.EnumerateNamespaceNames(
      [&](const std::string& name) {
        namespaces.push_back(document.GetNamespace(name, {}));
        return true;
      },
      {});
  return namespaces;
}

/// Returns what the operator can do about a file that cannot be read; empty if that is plain.
std::string RemedyFor(const std::string& file) {
  if (file == "-") return "";
  struct stat status {};
  if (::stat(file.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
    return "; 'qdx summary --root " + file + "' describes the machine whose files are in a folder";
  }
  const bool isForbidden = ::access(file.c_str(), R_OK) != 0 && errno == EACCES;
  return isForbidden ? "; read it as its owner or as root" : "";
}

[[noreturn]] void FailToRead(const std::string& file, const TExplainedException& failure) {
  const std::string shownAs = ShownAs(file);
  const auto why = WithoutName(WithoutName(failure, kService), shownAs);
  throw TCommandFailure(kExitBadInput, "reading document " + shownAs,
                        {why.GetStatusCode(), why.GetReason() + RemedyFor(file)});
}

}  // namespace

TNamespaces OpenDocument(const std::string& file, const TArguments& arguments, bool& incomplete,
                         const std::optional<std::vector<std::string>>& instancesOf) {
  NCIMXML::TReadingLimits limits = ReadingLimitsOf(arguments);
  limits.fInstancesOf = instancesOf;
  TNamespaces namespaces;
  std::vector<std::string> warnings;
  const auto failure = Try([&] {
    // Whatever the log's threshold is.
    const TLogListener listener(ILogger::kLogWarning, [&](auto severity, const auto& message) {
      if (severity == ILogger::kLogWarning) warnings.push_back(message);
    });
    NCIMXML::TDocumentCache documents(limits);
    namespaces = NamespacesOf(*documents.Read(file));
  });
  for (const std::string& warning : warnings) PrintError(warning);
  incomplete = incomplete || !warnings.empty();
  if (failure) FailToRead(file, *failure);
  return namespaces;
}

TCheckedDocument CheckDocument(const std::string& file, const TArguments& arguments) {
  const NCIMXML::TReadingLimits limits = ReadingLimitsOf(arguments);
  TCheckedDocument checked;
  const auto failure = Try([&] {
    const auto document = NCIMXML::ReadDocumentFile(
        file, limits,
        [&checked](const NCIMXML::TDefect& defect) { checked.fDefects.push_back(defect); });
    checked.fNamespaces = NamespacesOf(*document);
  });
  const bool isExplained = !checked.fDefects.empty() && checked.fDefects.back().fEndsReading;
  if (failure && !isExplained) FailToRead(file, *failure);
  return checked;
}

const char* const TPluginWriter::kDefaultConsumer = kService;

TPluginWriter::TPluginWriter(const std::string& consumer, const TWorkerLimits& limits,
                             TOptionsMap options)
    : fPlugin(PluginOf(EPluginKind::kConsumer, consumer)),
      fLimits(limits),
      fOptions(std::move(options)) {
  fLimits.fUser.reset();             // the file belongs to the user of the command
  if (consumer == kService) return;  // it is our own: Write() notices if it is missing
  const TAskedConsumer answer = std::move(AskConsumers({fPlugin}, limits, ShowWaiting()).front());
  if (answer.fLoadFailure) FailToLoad(*answer.fLoadFailure);
  if (!answer.fFailure) return;
  throw TCommandFailure(kExitNothingCollected, "asking for the name of consumer " + consumer,
                        *answer.fFailure);
}

void TPluginWriter::FailToLoad(const TExplainedException& failure) const {
  // Any consumer but the default one was named by the operator.
  const bool isNamed = fPlugin.fService != kService;
  throw TCommandFailure(isNamed ? kExitBadInput : kExitNothingCollected,
                        "loading consumer " + fPlugin.fPath, failure);
}

std::optional<TProviderFailure> TPluginWriter::Write(
    const std::vector<TMachineNamespace>& namespaces, const std::string& file,
    const std::string& shownAs) {
  const auto shown = [&](const std::string& message) {
    return file == "-" ? message : boost::algorithm::replace_all_copy(message, file, shownAs);
  };
  const std::string action = "writing document " + shownAs;
  TAskedConsumer answer = Consume(fPlugin, {namespaces, file, fOptions}, fLimits, ShowWaiting());
  for (const std::string& warning : answer.fWarnings) {
    if (fWarnings.insert(warning).second) PrintError(shown(warning));
  }
  fOutput = std::move(answer.fOutput);
  if (answer.fLoadFailure) FailToLoad(*answer.fLoadFailure);
  const auto& failure = answer.fFailure;
  if (!failure) return std::nullopt;
  const auto why = Blame({failure->GetStatusCode(), shown(failure->GetReason())}, shownAs);
  if (answer.fIsLost) throw TCommandFailure(kExitNothingCollected, action, why);
  // A failure of the file system affects the other namespaces, too.
  if (why.GetStatusCode() == kQDXStatusFileSystemError) {
    throw TCommandFailure(kExitBadInput, action, why);
  }
  return TProviderFailure{namespaces.at(answer.fConsumed).fOrigin, "writing", why};
}

void TPluginWriter::RequireContents(const std::string& file, const std::string& shownAs) const {
  struct stat status {};
  const bool isKnown =
      (file == "-" ? ::fstat(fOutput.Get(), &status) : ::stat(file.c_str(), &status)) == 0;
  if (!isKnown || status.st_size != 0) return;  // writing to the disk explains what is not there
  throw TCommandFailure(
      kExitNothingCollected, "writing document " + shownAs,
      {kQDXStatusInvalidPlugin, "consumer " + fPlugin.fService + " wrote nothing"});
}

/// Names the consumer, unless it is the default one. Many plug-ins name themselves and the file.
TExplainedException TPluginWriter::Blame(const TExplainedException& failure,
                                         const std::string& shownAs) const {
  const auto bare = WithoutName(WithoutName(failure, fPlugin.fService), shownAs);
  if (fPlugin.fService == kDefaultConsumer) return bare;
  return {bare.GetStatusCode(), "consumer " + fPlugin.fService + ": " + bare.GetReason()};
}

}  // namespace NVORNQDX20
