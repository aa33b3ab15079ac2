// SPDX-License-Identifier: Apache-2.0
/// Parses what the kernel reports about its bonds, in /proc/net/bonding or sysfs.
#ifndef PLUGINS_LINUX_SOURCES_NETWORK_BONDS_H_
#define PLUGINS_LINUX_SOURCES_NETWORK_BONDS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ports.h"

namespace NVORNQDX20 {

struct TBondMember {
  std::string fPort;
  TText fMIIStatus;  ///< Such as "up".
  TNumber fLinkFailures;
  std::string fPermanentAddress;  ///< Hexadecimal digits; empty if not told.
};

struct TBond {
  std::string fName;
  TReading<std::uint16_t> fMode;  ///< The kernel's number, from 0.
  TText fActiveMember;
  TText fMIIStatus;
  TReading<std::uint32_t> fMIIPollingInterval;  ///< In milliseconds.
  TText fHashPolicy;
  TText fPartner;  ///< The address of the other end, as hexadecimal digits.
  TReading<std::vector<TBondMember>> fMembers;
};

/// The names of the modes, by their numbers.
inline constexpr const char* kBondModes[] = {"balance-rr", "active-backup", "balance-xor",
                                             "broadcast",  "802.3ad",       "balance-tlb",
                                             "balance-alb"};

/// Parses a file of /proc/net/bonding; `source` is its path, for reasons.
TBond ParseBond(const std::string& name, const std::string& source, std::string_view text);

/// The bonds of the machine, sorted by name.
struct TBonds {
  explicit TBonds(const THost& host);

  TInstances<TBond> fAll;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_NETWORK_BONDS_H_
