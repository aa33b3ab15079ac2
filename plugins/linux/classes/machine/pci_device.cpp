// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_PCIDevice: functions on PCI buses.
#include <utility>

#include "classes/logical_device.h"
#include "sources/buses/id_names.h"
#include "sources/buses/pci.h"

namespace NVORNQDX20 {
namespace {

struct TFunction : TDevice, TPCIFunction {
  TReading<TPCIAddress> fAddress;
};

/// Names the function by vendor and device, as in "8086:1572".
TText PCINameOf(const TPCIFunction& function) {
  return function.fVendor.and_then([&](std::uint16_t vendor) {
    return function.fDevice.map(
        [vendor](std::uint16_t device) { return HexID(vendor) + ":" + HexID(device); });
  });
}

TInstances<TFunction> ListFunctions(const THost& host) {
  TInstances<TPCIFunction> known = ListPCIFunctions(host);
  TInstances<TFunction> functions;
  functions.fReason = std::move(known.fReason);
  functions.fAll.reserve(known.fAll.size());
  for (TPCIFunction& each : known.fAll) {
    TDevice device{each.fFileName, PCINameOf(each)};
    const TReading<TPCIAddress> address = ParsePCIAddress(each.fFileName);
    functions.fAll.push_back({std::move(device), std::move(each), address});
  }
  return functions;
}

template <typename T>
auto AddressPart(T TPCIAddress::*part) {
  return [part](const TFunction& function) {
    return function.fAddress.map([part](const TPCIAddress& address) { return address.*part; });
  };
}

/// Reads one byte of the class code; byte 0 is the programming interface.
auto ClassCodeByte(unsigned index) {
  return [index](const TPCIFunction& function) {
    return function.fClass.map([index](std::uint32_t classCode) {
      return static_cast<std::uint8_t>(classCode >> (8U * index));
    });
  };
}

TText ReadModule(const TFiles& function) {
  TText name = ReadLinkedName(function, "driver/module");
  if (name || !function.IsAbsent("driver/module")) return name;
  return ReadDriverOf(function).and_then(
      [](const std::string&) -> TText { return Missing("its driver is of no known module"); });
}

TReading<std::uint32_t> ReadInterrupt(const TFiles& function) {
  return function.ReadNumber<std::uint32_t>("irq").and_then(
      [](std::uint32_t number) -> TReading<std::uint32_t> {
        if (number == 0) return Missing("has none");
        return number;
      });
}

TReading<std::uint32_t> ReadIOMMUGroup(const TFiles& function) {
  const char* const link = "iommu_group";
  const TText group = ReadLinkedName(function, link);
  // What the link leads to is outside of many copies.
  if (!group && function.IsAbsent(link)) return Missing("is in none");
  return ToNumber<std::uint32_t>(group, function.PathOf(link));
}

/// Links of PCI Express signal one bit per lane and transfer, before it is encoded.
constexpr double kGigatransfers = 1e9;

auto LinkSpeed(const char* file) {
  return [file](const TFiles& function) { return ReadRate(function, file, kGigatransfers); };
}

auto LinkWidth(const char* file) {
  return [file](const TFiles& function) { return ReadLinkWidth(function, file); };
}

}  // namespace

TClass PCIDeviceClass() {
  return THostTable<TFunction>{
      "VORNSG_PCIDevice",
      "A function of a device on a PCI bus, by its address.",
      ListFunctions,
      {{"VendorID", "The maker of the chip.", &TFunction::fVendor},
       {"VendorName", "The name of that maker.", &TFunction::fVendorName},
       {"PCIDeviceID", "The chip, as its maker numbers them.", &TPCIFunction::fDevice},
       {"DeviceName", "The name of that chip.", &TFunction::fDeviceName},
       {"SubsystemVendorID", "The maker of the card.", &TFunction::fSubsystemVendor},
       {"SubsystemVendorName", "The name of that maker.", &TFunction::fSubsystemVendorName},
       {"SubsystemID", "The card, as its maker numbers them.", &TFunction::fSubsystem},
       {"SubsystemName", "The name of that card.", &TFunction::fSubsystemName},
       {"RevisionID", "The revision of the chip.", &TFunction::fRevision},
       {"ClassCode", "What it is for: 1 storage, 2 network.", ClassCodeByte(2),
        TEnumeration{{0, "Pre 2.0"},
                     {1, "Mass Storage"},
                     {2, "Network"},
                     {3, "Display"},
                     {4, "Multimedia"},
                     {5, "Memory"},
                     {6, "Bridge"},
                     {7, "Simple Communications"},
                     {8, "Base Peripheral"},
                     {9, "Input"},
                     {10, "Docking Station"},
                     {11, "Processor"},
                     {12, "Serial Bus"},
                     {13, "Wireless"},
                     {14, "Intelligent I/O"},
                     {15, "Satellite Communication"},
                     {16, "Encryption/Decryption"},
                     {17, "Data Acquisition and Signal Processing"},
                     {255, "Other"}}},
       {"SubclassCode", "The same, more closely.", ClassCodeByte(1)},
       {"ProgrammingInterface", "How drivers control it, as its subclass numbers that.",
        ClassCodeByte(0)},
       {"ClassDescription", "What it is for, in words.", &TFunction::fClassName},
       {"DomainNumber", "The domain that its bus is in.", AddressPart(&TPCIAddress::fDomain)},
       {"BusNumber", "Its bus.", AddressPart(&TPCIAddress::fBus)},
       {"DeviceNumber", "Its device on the bus.", AddressPart(&TPCIAddress::fDevice)},
       {"FunctionNumber", "Its number in the device.", AddressPart(&TPCIAddress::fFunction)},
       {"PhysicalSlot", "The slot that it is plugged in.", &TFunction::fSlot},
       {"Driver", "The driver that serves it.", ReadDriverOf},
       {"DriverModule", "The kernel module that the driver is in.", ReadModule},
       {"CurrentLinkSpeed", "The rate of each lane of its link just now, before encoding.",
        LinkSpeed("current_link_speed"), TUnit{"bit / second"}, kGauge, kVolatile},
       {"MaxLinkSpeed", "The highest rate that it can have.", LinkSpeed("max_link_speed"),
        TUnit{"bit / second"}},
       {"CurrentLinkWidth", "The lanes of its link; 0 if nothing is at the other end.",
        LinkWidth("current_link_width")},
       {"MaxLinkWidth", "The most lanes that it can have.", LinkWidth("max_link_width")},
       {"NUMANode", "The node of memory that it is close to; -1 for none.",
        FileNumber<std::int32_t>("numa_node")},
       {"Interrupt", "The line by which it interrupts the processor.", ReadInterrupt},
       {"IOMMUGroup", "The functions that a virtual machine gets together.", ReadIOMMUGroup}}}
      .DerivedFrom(LogicalDeviceTable());
}

}  // namespace NVORNQDX20
