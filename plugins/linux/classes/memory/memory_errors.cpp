// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_MemoryErrorCount: errors of memory that the kernel has counted.
#include "memory_devices.h"

namespace NVORNQDX20 {
namespace {

TInstances<TMemoryErrors> ListErrors(const THost& host) {
  const auto& devices = host.Shared<TMemoryDevices>();
  TInstances<TMemoryErrors> errors(devices.GetErrors(), devices.GetErrorsReason());
  if (errors.fAll.empty() && errors.fReason.empty()) {
    errors.Miss("no driver of the kernel counts errors of memory");
  }
  return errors;
}

/// Reads a file of the module or row.
auto Line(const char* name) {
  return [name](const TMemoryErrors& errors) {
    return errors.fFolder.ReadLine(errors.fPrefix + std::string(name));
  };
}
auto Count(const char* name) {
  return [name](const TMemoryErrors& errors) {
    return errors.fFolder.ReadNumber(errors.fPrefix + std::string(name));
  };
}

}  // namespace

TClass MemoryErrorCountClass() {
  return THostTable<TMemoryErrors>{
      "VORNSG_MemoryErrorCount",
      "The errors of a module of memory that the kernel has counted.",
      ListErrors,
      {{"InstanceID", "The controller and the module, as the kernel numbers them.",
        &TMemoryErrors::fID, kKey},
       {"ElementName", "The place of the module, as the driver knows it.", &TMemoryErrors::fLabel},
       {"Controller", "The driver of the controller.", &TMemoryErrors::fController},
       {"Location", "The place of the module at its controller.", Line("location")},
       {"Capacity", "Its size.", &TMemoryErrors::fSize, TUnit{"byte"}},
       {"MemoryType", "The kind of chips.", Line("mem_type")},
       {"ErrorCorrection", "How errors are corrected.", Line("edac_mode")},
       {"CorrectableErrors", "Errors that were corrected, since the driver was loaded.",
        Count("ce_count"), kCounter, kVolatile},
       {"UncorrectableErrors", "Errors that were not.", Count("ue_count"), kCounter, kVolatile}}};
}

}  // namespace NVORNQDX20
