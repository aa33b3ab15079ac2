// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/copy.h>
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/schema_helper.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <filesystem>
#include <locale>
#include <system_error>

#include <boost/algorithm/string/predicate.hpp>

#include "collection_record.h"
#include "document.h"
#include "libraries.h"
#include "live_machine.h"
#include "new_file.h"
#include "output.h"
#include "progress.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

bool IsNamed(const ICIMNamespace& ns, const std::string& name) {
  return boost::algorithm::iequals(ns.GetName(TOptionsMap()), name, std::locale::classic());
}

bool IsEmpty(const ICIMNamespace& ns) {
  bool empty = true;
  const auto visit = [&empty](const boost::shared_ptr<ICIMClass>&) {
    empty = false;
    return false;
  };
  ns.EnumerateClasses(visit, TOptionsMap());
  return empty;
}

/// What was copied before a failure stays.
TNamespaces CopyNamespaces(TLiveMachine& machine) {
  TNamespaces copies;
  machine.VisitNamespaces("copying", [&copies](const TOrigin& origin, const auto& ns) {
    const auto copy = MakeRepositoryNamespace(origin.fNamespace);
    if (IsNamed(*copy, kRecordNamespaceName)) {
      LogErrorAndThrow(kQDXStatusAlreadyExists, {"the record of the collection has this name"});
    }
    copies.push_back(copy);
    const std::string label = "collecting " + origin.fProvider + " " + origin.fNamespace;
    TCIMCopy::CopyClasses(ns, WithProgress(copy, label));
  });
  const auto begin = copies.begin();
  copies.erase(std::remove_if(begin, copies.end(), [](const auto& ns) { return IsEmpty(*ns); }),
               copies.end());
  return copies;
}

/// The name that the collected machine gives itself. Empty if it is not known: that of the machine
/// which this command runs on would be wrong for one below another root folder.
std::string HostName(const TNamespaces& namespaces, const std::string& root) {
  std::string name;
  for (const auto& ns : namespaces) {
    if (!IsNamed(*ns, kMachineNamespace)) continue;
    (void)Try([&] { name = TCIMSchemaHelper::GetSystemName(ns); });
  }
  if (name.empty() && root == "/") (void)Try([&] { name = TOSSpecific::GetMachineName(); });
  return name;
}

/// A host name comes from anywhere: what is not known to be harmless in a file name is replaced.
std::string DefaultFile(const std::string& hostName) {
  std::string file = hostName.empty() ? "unknown" : hostName.substr(0, 64);
  for (char& c : file) {
    const bool harmless = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '_';
    if (!harmless) c = '-';
  }
  // Neither hidden nor taken for an option.
  if (file[0] == '.' || file[0] == '-') file[0] = '_';
  char stamp[sizeof("-YYYYMMDDTHHMMSS")];
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  std::strftime(stamp, sizeof(stamp), "-%Y%m%dT%H%M%S", ::localtime_r(&now, &local));
  return file + stamp + ".xml.gz";
}

/// A device, a pipe, a folder: nothing that a file could be put in the place of.
bool IsNoFile(const std::string& path) {
  std::error_code error;
  return fs::exists(path, error) && !fs::is_regular_file(path, error);
}

/// A link stays, and what it leads to is replaced.
void WriteNewFile(TDocumentWriter& writer, const TNamespaces& namespaces, const std::string& file) {
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(fs::absolute(file), error);
  const fs::path path = error ? fs::path(file) : resolved;
  const bool compressed = boost::algorithm::ends_with(file, ".gz");
  TNewFile newFile(path.parent_path().string(), compressed ? ".gz" : "", file);
  writer.Write(namespaces, newFile.GetPath(), file);
  newFile.Publish(path.string());
  WriteOutput(file + "\n");
}

void WriteDocument(TDocumentWriter& writer, const TNamespaces& namespaces,
                   const std::string& file) {
  if (file == "-") return writer.Write(namespaces, file, "standard output");
  if (IsNoFile(file)) return writer.Write(namespaces, file, file);
  WriteNewFile(writer, namespaces, file);
}

EExitCode RunCollect(const TArguments& arguments) {
  TLiveMachine machine(arguments);
  TDocumentWriter writer;
  TNamespaces namespaces = CopyNamespaces(machine);
  if (namespaces.empty()) {
    const TFailure failure(kQDXStatusNotFound, "no provider delivered anything");
    throw TCommandFailure(kExitNothingCollected,
                          FailureLine("collecting", machine.GetRoot(), failure));
  }
  const std::string hostName = HostName(namespaces, machine.GetRoot());
  namespaces.push_back(MakeCollectionRecord(machine, hostName));
  WriteDocument(writer, namespaces, arguments.Get("output", DefaultFile(hostName)));
  return machine.GetFailures().empty() ? kExitDone : kExitPartlyDone;
}

std::vector<TOptionSpec> CollectOptions() {
  std::vector<TOptionSpec> options = {
      {"output", "FILE", "Write this file; '-' is standard output.", 'o'}};
  const auto machine = TLiveMachine::Options();
  options.insert(options.end(), machine.begin(), machine.end());
  return options;
}

}  // namespace

TVerb CollectVerb() {
  return {
      "collect", "Writes all that the providers know of this machine into a CIM-XML document.",
      "The document appears whole or not at all, readable by its owner alone; a name that ends\n"
      "in .gz makes it a compressed one. Without --output it is\n"
      "HOSTNAME-YYYYMMDDTHHMMSS.xml.gz in the current folder. Its name is printed.\n"
      "A provider that fails is named, on standard error and in the document.\n",
      CollectOptions(), RunCollect};
}

}  // namespace NVORNQDX20
