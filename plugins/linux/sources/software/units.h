// SPDX-License-Identifier: Apache-2.0
/// The services that the machine starts: units of systemd, and scripts in the manner of System V.
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_UNITS_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_UNITS_H_

#include <map>
#include <string>
#include <vector>

#include "sources/host.h"
#include "unit_file.h"

namespace NVORNQDX20 {

struct TServiceUnit {
  bool HasSuffix(const std::string& suffix) const;

  std::string fName;     ///< "ssh.service"; of a script, the name of its file.
  std::string fPath;     ///< The file that counts, of several with the name.
  TText fState;          ///< As "systemctl list-unit-files" prints it, for example "enabled".
  std::string fAliasOf;  ///< The unit of which this is another name.
  TText fDescription;    ///< In a line.
  /// The units that have a link to start it.
  TReading<std::vector<std::string>> fStartedBy = std::vector<std::string>();
  TReading<TUnitSettings> fSettings = TUnitSettings();
  bool fIsScript = false;
};

/// All services, sockets and timers, for THost::Shared.
struct TServiceUnits {
  explicit TServiceUnits(const THost& host);

  /// Returns why there are none with the suffix, such as ".timer", or not all.
  TReason ReasonFor(const std::string& suffix) const;

  std::vector<TServiceUnit> fAll;
  TReason fReason;                          ///< Why there are none, or not all, of any suffix.
  std::map<std::string, TReason> fReasons;  ///< What else is wrong with units of a suffix.
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_UNITS_H_
