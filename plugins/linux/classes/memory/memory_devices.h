// SPDX-License-Identifier: Apache-2.0
/// The sockets for modules of memory, and what is in them.
#ifndef PLUGINS_LINUX_CLASSES_MEMORY_MEMORY_DEVICES_H_
#define PLUGINS_LINUX_CLASSES_MEMORY_MEMORY_DEVICES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "classes/physical_element.h"

namespace NVORNQDX20 {

/// What the kernel's EDAC driver knows of a module, or of a row of chips on it.
struct TMemoryErrors {
  std::string fID;      ///< "mc0/dimm3"
  TText fLabel;         ///< The place, as the firmware or an administrator names it.
  TNumber fSize;        ///< In bytes; 0 if there is no module.
  TFiles fFolder;       ///< Of the module or row.
  TText fController;    ///< The name of the controller's driver.
  const char* fPrefix;  ///< Of the names of its files.
};

/// A socket, or a module that only EDAC knows.
struct TMemoryDevice : TPhysicalElement {
  TNumber fCapacity;                    ///< In bytes; missing if the firmware does not know.
  bool fIsInstalled = false;            ///< Whether a module is in it.
  bool fIsSystem = true;                ///< Not the memory of a video adapter or of the firmware.
  TText fMemoryType;                    ///< As EDAC names it, if the firmware has no structure.
  TInstanceName fArray = {};            ///< The array that it belongs to.
  TReading<TSMBIOSStructure> fMapping;  ///< The addresses that it has (type 20).
};

/// Everything that the classes of memory share.
class TMemoryDevices {
 public:
  explicit TMemoryDevices(const THost& host);

  /// In the order of the firmware's table. Tags are different.
  const std::vector<TMemoryDevice>& GetAll() const { return fAll; }
  const std::vector<TPhysicalElement>& GetArrays() const { return fArrays.fAll; }
  const std::vector<TMemoryErrors>& GetErrors() const { return fErrors; }
  /// Why there are none, or not all.
  const TReason& GetReason() const { return fReason; }
  const TReason& GetErrorsReason() const { return fErrorsReason; }
  const TReason& GetArraysReason() const { return fArrays.fReason; }

 private:
  void ReadErrors(const THost& host);
  void AddSockets(const THost& host);
  void AddModulesOfErrors();

  TInstances<TPhysicalElement> fArrays;
  std::vector<TMemoryDevice> fAll;
  TReason fReason;
  std::vector<TMemoryErrors> fErrors;
  TReason fErrorsReason;
};

/// Lists sockets for which the function returns true.
TInstances<TMemoryDevice> MemoryDevicesWhere(const THost& host,
                                             bool (*isWanted)(const TMemoryDevice&),
                                             const char* none);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_CLASSES_MEMORY_MEMORY_DEVICES_H_
