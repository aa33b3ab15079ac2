// SPDX-License-Identifier: Apache-2.0
/// Parses the database of Debian's package manager (dpkg(1)).
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_PACKAGE_STATUS_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_PACKAGE_STATUS_H_

#include <string>
#include <string_view>
#include <vector>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// The fields of one package; empty for those that it lacks.
struct TPackage {
  std::string fName;
  std::string fVersion;
  std::string fArchitecture;
  std::string fStatus;         ///< "install ok installed"
  std::string fInstalledSize;  ///< In KiB.
  std::string fMaintainer;
  std::string fSource;  ///< The source package, if it has another name or version.
  std::string fSection;
  std::string fSummary;  ///< The first line of the description.
};

/// Adds the packages of a text: paragraphs of lines such as "Package: bash", with empty lines
/// between them. Without those of which nothing is left on the machine.
void ParsePackages(std::string_view text, std::vector<TPackage>& packages);

/// The installed packages. If there are none, says why: another package manager has a reason that
/// names its database.
struct TPackages {
  std::vector<TPackage> fAll;
  TReason fReason;
};
TPackages ReadPackages(const TFiles& files);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_PACKAGE_STATUS_H_
