// SPDX-License-Identifier: Apache-2.0
#include "hypervisor.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "topology.h"

namespace NVORNQDX20 {
namespace {

const char* const kFull = "full";

struct TKnown {
  const char* fText;
  const char* fName;
  const char* fVendor;
};

/// Begins of the strings that hypervisors have in place of the machine's maker and product.
constexpr TKnown kDMIStrings[] = {{"KVM", "KVM", "KVM"},
                                  {"OpenStack", "KVM", "KVM"},
                                  {"Amazon EC2", "Nitro", "Amazon"},
                                  {"Google", "KVM", "Google"},
                                  {"QEMU", "QEMU", "QEMU"},
                                  {"Standard PC (", "QEMU", "QEMU"},
                                  {"VMware", "ESXi or Workstation", "VMware"},
                                  {"VirtualBox", "VirtualBox", "Oracle"},
                                  {"innotek GmbH", "VirtualBox", "Oracle"},
                                  {"Virtual Machine", "Hyper-V", "Microsoft"},
                                  {"HVM domU", "Xen", "Xen"},
                                  {"Xen", "Xen", "Xen"},
                                  {"Bochs", "Bochs", "Bochs"},
                                  {"Parallels", "Parallels", "Parallels"},
                                  {"BHYVE", "bhyve", "FreeBSD"},
                                  {"Alibaba Cloud ECS", "KVM", "Alibaba"},
                                  {"Apple Virtualization", "Virtualization", "Apple"},
                                  {"DigitalOcean", "KVM", "KVM"},
                                  {"oVirt", "KVM", "KVM"},
                                  {"RHEV Hypervisor", "KVM", "KVM"},
                                  {"CloudStack KVM", "KVM", "KVM"}};

/// Vendor and device of PCI functions that only hypervisors have, as /proc/bus/pci/devices has
/// them.
constexpr TKnown kPCIFunctions[] = {{"80eecafe", "VirtualBox", "Oracle"},
                                    {"80eebeef", "VirtualBox", "Oracle"},
                                    {"15ad0710", "ESXi or Workstation", "VMware"},
                                    {"15ad0740", "ESXi or Workstation", "VMware"},
                                    {"58530001", "Xen", "Xen"},
                                    {"14145353", "Hyper-V", "Microsoft"}};

THypervisor Make(TText name, TText vendor, TText type, std::string evidence) {
  return {std::move(name), std::move(vendor), Missing("it does not tell its version"),
          std::move(type), std::move(evidence)};
}

bool StartsWith(const std::string& text, std::string_view prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

TReading<THypervisor> FindByXen(const THost& host) {
  const TFiles folder = host.In("/sys/hypervisor");
  const TText type = folder.ReadLine("type");
  if (!type) return Missing(type.GetReason());
  THypervisor found = Make(*type == "xen" ? TText("Xen") : type, *type == "xen" ? "Xen" : *type,
                           folder.ReadLine("guest_type").map([](const std::string& guest) {
                             return std::string(guest == "PV" ? "para" : kFull);
                           }),
                           folder.PathOf("type"));
  const TText major = folder.ReadLine("version/major");
  found.fVersion = major.and_then([&](const std::string& number) {
    return folder.ReadLine("version/minor").and_then([&](const std::string& minor) -> TText {
      const TText extra = folder.ReadLine("version/extra");  // can be empty
      if (extra.GetReason().IsError()) return Missing(extra.GetReason());
      return number + "." + minor + extra.ValueOr("");
    });
  });
  return found;
}

TReading<THypervisor> FindByFirmware(const THost& host) {
  // The product comes first: several hypervisors run as QEMU.
  for (const char* const file : {"product_name", "sys_vendor", "board_vendor", "bios_vendor"}) {
    const TText reading = host.ReadDMIString(file);
    if (reading.GetReason().IsError()) return Missing(reading.GetReason());
    const std::string text = reading.ValueOr("");
    // What Google and Amazon call so are also machines without a hypervisor.
    if (text.find(".metal") != std::string::npos) continue;
    for (const TKnown& each : kDMIStrings) {
      if (!StartsWith(text, each.fText)) continue;
      return Make(each.fName, each.fVendor, kFull, std::string("firmware: ") + file + " " + text);
    }
  }
  return Missing("firmware names no hypervisor");
}

/// IBM Z: "VM00 Control Program: KVM/Linux".
TReading<THypervisor> FindByZ(const THost& host) {
  const char* const path = "/proc/sysinfo";
  const TFields fields(path, host.Read(path), ':');
  if (const TText program = fields.Get("VM00 Control Program")) {
    const std::string name = program->substr(0, program->find("  "));
    THypervisor found =
        Make(name, StartsWith(name, "KVM") ? TText("KVM") : TText("IBM"), kFull, path);
    return found;
  }
  const TText partition = fields.Get("LPAR Number");
  if (partition) return Make("PR/SM", "IBM", kFull, path);
  return Missing(partition.GetReason());
}

/// POWER and ARM: the device tree.
TReading<THypervisor> FindByDeviceTree(const THost& host) {
  const char* const path = "/proc/device-tree/hypervisor/compatible";
  const TText compatible = host.ReadLine(path);
  if (compatible.GetReason().IsError()) return Missing(compatible.GetReason());
  if (compatible) {
    const bool isKVM = StartsWith(*compatible, "linux,kvm");
    const bool isXen = StartsWith(*compatible, "xen");
    return Make(isKVM   ? "KVM"
                : isXen ? "Xen"
                        : *compatible,
                isKVM   ? TText("KVM")
                : isXen ? TText("Xen")
                        : Missing(std::string(path) + ": names an unknown one"),
                isXen ? "para" : kFull, path);
  }
  const char* const partition = "/proc/device-tree/ibm,partition-name";
  if (host.Exists(partition).ValueOr(false) &&
      host.Exists("/proc/device-tree/hmc-managed?").ValueOr(false) &&
      host.IsAbsent("/proc/device-tree/chosen/qemu,graphic-width")) {
    return Make("PowerVM", "IBM", "para", partition);
  }
  return Missing("the device tree names none");
}

TReading<THypervisor> FindByPCI(const THost& host) {
  const char* const path = "/proc/bus/pci/devices";
  const TText table = host.Read(path, TFiles::kMaxTableSize);
  if (!table) return Missing(table.GetReason());
  for (std::string_view rest = *table; !rest.empty();) {
    const std::string_view line = TakeLine(rest);
    const std::size_t tab = line.find('\t');
    if (tab == std::string_view::npos) continue;
    for (const TKnown& each : kPCIFunctions) {
      if (line.substr(tab + 1, 8) != each.fText) continue;
      return Make(each.fName, each.fVendor, kFull, std::string(path) + ": " + each.fText);
    }
  }
  return Missing("no PCI function of a hypervisor");
}

/// `failure` is why one of a known name was not found; empty if nothing failed.
TReading<THypervisor> FindByProcessor(const THost& host, const TReason& failure) {
  for (const TSocket& socket : host.Shared<TTopology>().GetSockets()) {
    if (socket.fModel.fVendorID.ValueOr("") == "User Mode Linux") {
      return Make("User Mode Linux", "User Mode Linux", "para", TCPUInfo::kPath);
    }
    if (HasFlag(socket.fModel.fFlags, "hypervisor")) {
      const char* const none = "nothing but the processor's flag tells of it";
      const TMissing unknown = Missing(failure.empty() ? none : failure);
      return Make(unknown, unknown, kFull, std::string(TCPUInfo::kPath) + ": flag hypervisor");
    }
  }
  return Missing(failure.empty() ? "no sign of a hypervisor" : failure);
}

TReading<THypervisor> Find(const THost& host) {
  TReason failure;
  for (const auto find : {FindByXen, FindByFirmware, FindByZ, FindByDeviceTree, FindByPCI}) {
    TReading<THypervisor> found = find(host);
    if (found) return found;
    if (found.GetReason().IsError()) failure.Add(found.GetReason());
  }
  return FindByProcessor(host, failure);
}

}  // namespace

TFoundHypervisor::TFoundHypervisor(const THost& host) : fHypervisor(Find(host)) {}

}  // namespace NVORNQDX20
