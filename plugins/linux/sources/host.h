// SPDX-License-Identifier: Apache-2.0
/// The described machine: its files and its names.
#ifndef PLUGINS_LINUX_SOURCES_HOST_H_
#define PLUGINS_LINUX_SOURCES_HOST_H_

#include <qdxdescribe/table.h>

#include <map>
#include <memory>
#include <string>
#include <typeindex>

#include "firmware/smbios.h"
#include "reading.h"

namespace NVORNQDX20 {

/// The files of the machine, and names that several classes need.
struct THost : TFiles {
  /// Throws what the constructor of TFiles throws.
  explicit THost(const TRequest& request);

  /// Returns the host name, or an empty text without a reason, for keys that refer to the instance
  /// of VORNSG_ComputerSystem, which explains a missing name.
  std::string GetNameAsKey() const { return fName.ValueOr(""); }

  /// Returns a string of the firmware's DMI table (DMTF DSP0134) by the name of its sysfs file, for
  /// example "product_name": of the table itself if that can be read. A placeholder such as "To be
  /// filled by O.E.M." counts as missing.
  TText ReadDMIString(const std::string& name) const;

  /// Returns what several classes need of the machine, for example Shared<TTopology>(). It is made
  /// by the constructor T(const THost&) when it is first asked for, so that its files are read
  /// once. What the constructor throws is passed on, and the next call tries again.
  template <typename T>
  const T& Shared() const {
    std::shared_ptr<const void>& shared = fShared[typeid(T)];
    if (!shared) shared = std::make_shared<const T>(*this);
    return *static_cast<const T*>(shared.get());
  }

  /// Returns the firmware's table, which is read when it is first asked for.
  const TReading<TSMBIOS>& GetSMBIOS() const;

  TText fKernelName;     ///< "Linux"
  TText fKernelRelease;  ///< "6.1.0-18-amd64"
  TText fKernelVersion;  ///< "#1 SMP PREEMPT_DYNAMIC Debian 6.1.76-1 (2024-02-01)"
  TText fName;           ///< The host name.

 private:
  mutable std::map<std::type_index, std::shared_ptr<const void>> fShared;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_HOST_H_
