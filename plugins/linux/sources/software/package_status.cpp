// SPDX-License-Identifier: Apache-2.0
#include "package_status.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

/// Some ten thousand packages; the largest servers have five thousand.
constexpr std::size_t kMaxDatabase = 32U << 20U;

const char* const kDatabase = "/var/lib/dpkg/status";
/// Images without a package manager have a file for each package.
const char* const kFolder = "/var/lib/dpkg/status.d";

struct TField {
  std::string_view fName;
  std::string TPackage::*fPlace;
};

constexpr TField kFields[] = {{"Package", &TPackage::fName},
                              {"Version", &TPackage::fVersion},
                              {"Architecture", &TPackage::fArchitecture},
                              {"Status", &TPackage::fStatus},
                              {"Installed-Size", &TPackage::fInstalledSize},
                              {"Maintainer", &TPackage::fMaintainer},
                              {"Source", &TPackage::fSource},
                              {"Section", &TPackage::fSection},
                              {"Description", &TPackage::fSummary}};

struct TOtherManager {
  const char* fDatabase;
  const char* fName;
};

constexpr TOtherManager kOtherManagers[] = {{"/var/lib/rpm", "rpm"},
                                            {"/usr/lib/sysimage/rpm", "rpm"},
                                            {"/usr/share/rpm", "rpm"},
                                            {"/lib/apk/db/installed", "apk"},
                                            {"/usr/lib/apk/db/installed", "apk"},
                                            {"/var/lib/pacman/local", "pacman"},
                                            {"/var/db/pkg", "portage"},
                                            {"/nix/var/nix/db", "nix"},
                                            {"/var/lib/opkg/status", "opkg"}};

/// The first of two fields with the same name counts.
void TakeField(std::string_view line, TPackage& package) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return;
  for (const auto& [name, place] : kFields) {
    if (!NModel::EqualIgnoringCase(line.substr(0, colon), name)) continue;
    if ((package.*place).empty()) package.*place = PrintableText(line.substr(colon + 1));
    return;
  }
}

/// A package that is gone with all its files keeps an entry as long as something suggests it.
bool IsThere(const TPackage& package) {
  return !package.fName.empty() && !package.fVersion.empty() &&
         !boost::algorithm::ends_with(package.fStatus, " not-installed");
}

TReason WhyNone(const TFiles& files, const TReason& reason) {
  for (const auto& [database, name] : kOtherManagers) {
    const TReading<bool> exists = files.Exists(database);
    if (!exists) return exists.GetReason();
    if (*exists) {
      return "the packages are those of " + std::string(name) + ", whose database " + database +
             " is not read";
    }
  }
  return reason;
}

TPackages ReadFolder(const TFiles& files, const std::vector<std::string>& names) {
  TPackages packages;
  for (const std::string& name : names) {
    if (boost::algorithm::ends_with(name, ".md5sums")) continue;
    const TText file = files.Read(kFolder + ("/" + name));
    if (!file && packages.fReason.empty()) packages.fReason = file.GetReason();
    if (file) ParsePackages(*file, packages.fAll);
  }
  return packages;
}

}  // namespace

void ParsePackages(std::string_view text, std::vector<TPackage>& packages) {
  TPackage package;
  const auto finish = [&] {
    if (IsThere(package)) packages.push_back(std::move(package));
    package = {};
  };
  while (!text.empty() && packages.size() < kMaxEntries) {
    const std::string_view line = TakeLine(text);
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) {
      finish();
    } else if (line.front() != ' ' && line.front() != '\t') {  // a blank continues a field
      TakeField(line, package);
    }
  }
  finish();
}

TPackages ReadPackages(const TFiles& files) {
  const TText database = files.Read(kDatabase, kMaxDatabase);
  if (!database && files.IsAbsent(kDatabase)) {
    const auto names = files.List(kFolder);
    if (names) return ReadFolder(files, *names);
    if (names.GetReason().IsError()) return {{}, names.GetReason()};
    return {{}, WhyNone(files, database.GetReason())};
  }
  TPackages packages{{}, database.GetReason()};
  if (database) ParsePackages(*database, packages.fAll);
  return packages;
}

}  // namespace NVORNQDX20
