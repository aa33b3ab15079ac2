// SPDX-License-Identifier: Apache-2.0
#include "redaction.h"

#include <qdxredact/mark.h>
#include <qdxrepository/repository.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/random.h>
#include <qdxsystem/read.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <set>
#include <utility>

#include <fcntl.h>

#include <boost/algorithm/string/join.hpp>

#include <qdxsnapshot/record.h>

#include "cli/new_file.h"

namespace NVORNQDX20 {
namespace {

using NRedact::ESecret;

constexpr const char* kKeyOption = "key";
constexpr const char* kKeepOption = "keep";
constexpr const char* kGuessOption = "guess";
constexpr std::size_t kShortestKey = 16;
constexpr std::size_t kLongestKey = 4096;
/// Random keys have more; zeros and repeated words have not.
constexpr std::size_t kFewestDifferent = 8;

[[noreturn]] void FailToReadKey(const std::string& file, const std::string& reason) {
  throw TCommandFailure(kExitBadInput, "reading key " + file, {kQDXStatusFileSystemError, reason});
}

std::string ReadKey(const std::string& file) {
  const TDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!opened.IsOpen()) FailToReadKey(file, ErrorText(opened.GetError()));
  std::string key;
  std::array<char, kLongestKey> buffer;
  while (key.size() <= kLongestKey) {
    const ssize_t count = ReadSome(opened.Get(), buffer.data(), buffer.size());
    if (count < 0) FailToReadKey(file, ErrorText(errno));
    if (count == 0) break;
    key.append(buffer.data(), static_cast<std::size_t>(count));
  }
  if (key.size() < kShortestKey) {
    FailToReadKey(file, "it has fewer than 16 bytes; 'head -c 32 /dev/urandom' makes a good key");
  }
  if (key.size() > kLongestKey) FailToReadKey(file, "it has more than 4096 bytes");
  if (std::set<char>(key.begin(), key.end()).size() < kFewestDifferent) {
    FailToReadKey(
        file, "it has fewer than 8 different bytes; 'head -c 32 /dev/urandom' makes a good key");
  }
  return key;
}

std::string RandomKey() {
  std::string key(32, '\0');
  if (FillRandomly(key.data(), key.size())) return key;
  throw TCommandFailure(kExitBadInput, "making a key",
                        {kQDXStatusFileSystemError, ErrorText(errno)});
}

/// With hyphens for the blanks, as they are typed.
std::string KindNames() {
  std::vector<std::string> names;
  for (const ESecret each : NRedact::AllSecrets()) {
    std::string name = NDescribe::SecretName(each);
    std::replace(name.begin(), name.end(), ' ', '-');
    names.push_back(std::move(name));
  }
  return boost::algorithm::join(names, ", ");
}

NRedact::TRedaction RedactionOf(const TArguments& arguments) {
  NRedact::TRedaction redaction;
  for (const std::string& name : arguments.GetAll(kKeepOption)) {
    const auto kind = NRedact::SecretOf(name);
    if (!kind) FailOnUsage("unknown kind of secret '" + name + "', none of " + KindNames());
    redaction.fKept.insert(*kind);
  }
  redaction.fGuesses = arguments.Has(kGuessOption);
  const std::string key = arguments.Get(kKeyOption, "");
  // No name of a key means standard input.
  const std::string keyFile = key.empty() ? key : std::filesystem::absolute(key).string();
  RefuseToReplace(arguments.Get("output", "-"), {keyFile});
  redaction.fKey = key.empty() ? RandomKey() : ReadKey(key);
  return redaction;
}

}  // namespace

std::vector<TOptionSpec> RedactionOptions() {
  return {{kKeyOption, "FILE", "Make the same pseudonyms in each document with this key."},
          {kKeepOption, "KIND", "Keep secrets of this kind; can be given more than once."},
          {kGuessOption, nullptr, "Guess secrets where the document does not tell what is one."}};
}

TDocumentRedaction::TDocumentRedaction(const TArguments& arguments)
    : fRedaction(RedactionOf(arguments)),
      fHasKey(arguments.Has(kKeyOption)),
      fRedactor(fRedaction) {}

void TDocumentRedaction::Learn(const std::vector<TMachineNamespace>& all, const std::string& what) {
  for (const TMachineNamespace& each : all) {
    const ICIMNamespace& ns = *each.fNamespace;
    if (!fRedaction.fGuesses && !IsRecordNamespace(ns) && !NRedact::TellsSecrets(ns)) {
      throw TCommandFailure(kExitBadInput, "redacting " + what,
                            {kQDXStatusNotSupported,
                             "namespace " + ns.GetName({}) +
                                 " does not tell which values are secret; --guess goes by their "
                                 "names and forms"});
    }
    fRedactor.Learn(ns);
  }
}

std::vector<TMachineNamespace> TDocumentRedaction::Redact(
    const std::vector<TMachineNamespace>& all) {
  std::vector<TMachineNamespace> redacted;
  bool isMarked = false;
  const auto mark = [&](ICIMNamespace& ns) {
    NRedact::Mark(ns, fRedaction, fHasKey);
    isMarked = true;
  };
  for (const auto& [origin, ns] : all) {
    redacted.push_back({origin, fRedactor.Redact(ns)});
    if (IsRecordNamespace(*ns)) mark(*redacted.back().fNamespace);
  }
  if (!isMarked) {
    redacted.push_back({{}, MakeRepositoryNamespace(kRecordNamespaceName)});
    mark(*redacted.back().fNamespace);
  }
  return redacted;
}

bool TDocumentRedaction::ReportLoss() const {
  const std::size_t lost = fRedactor.GetLost();
  if (lost == 0) return false;
  PrintError("redacting left out " + std::to_string(lost) +
             (lost == 1 ? " instance" : " instances") + " with the keys of another one");
  return true;
}

}  // namespace NVORNQDX20
