// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_NVMeController: controllers of NVMe disks.
#include "classes/logical_device.h"

namespace NVORNQDX20 {
namespace {

TReading<bool> AdaptController(TSysfsDevice& controller) {
  controller.fID = "/dev/" + controller.fID;
  return true;
}

}  // namespace

TClass NVMeControllerClass() {
  return THostTable<TSysfsDevice>{
      "VORNSG_NVMeController",
      "A controller of the NVMe kind, in the machine or on a network.",
      DevicesIn("/sys/class/nvme", AdaptController),
      {{"Model", "The model, as the controller names it.", FileLine("model")},
       {"SerialNumber", "The serial number of the controller.", FileLine("serial"),
        ESecret::kSerial},
       {"FirmwareRevision", "The revision of its firmware.", FileLine("firmware_rev")},
       {"State", "\"live\" if all is well.", FileLine("state")},
       {"Transport", "How it is attached, as in \"pcie\" or \"tcp\".", FileLine("transport")},
       {"Address", "Where it is: an address on the PCI bus, or on a network.", FileLine("address"),
        ESecret::kAddress},
       {"ControllerID", "Its number in its subsystem.", FileNumber<std::uint16_t>("cntlid")},
       {"SubsystemName", "The qualified name of its subsystem.", FileLine("subsysnqn"),
        ESecret::kSerial},
       {"NUMANode", "The node of memory that it is close to; -1 for none.",
        FileNumber<std::int32_t>("numa_node")},
       {"QueueCount", "The queues that it has, with that of the administrator.",
        FileNumber<std::uint32_t>("queue_count")}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
