// SPDX-License-Identifier: Apache-2.0
#include "command_line.h"

#include <algorithm>
#include <array>

#include <string_view>
#include <unordered_set>

#include "spelling.h"

namespace NVORNQDX20::NRedact {
namespace {

/// Parameters whose values are about the hardware and the start of the system.
bool IsWellKnown(std::string_view parameter) {
  static const std::unordered_set<std::string_view> names = {"BOOT_IMAGE",
                                                             "acpi",
                                                             "acpi_enforce_resources",
                                                             "amd_iommu",
                                                             "amd_pstate",
                                                             "apic",
                                                             "apparmor",
                                                             "audit",
                                                             "biosdevname",
                                                             "cgroup_disable",
                                                             "cgroup_enable",
                                                             "cgroup_memory",
                                                             "clocksource",
                                                             "console",
                                                             "consoleblank",
                                                             "crashkernel",
                                                             "debug",
                                                             "default_hugepagesz",
                                                             "earlycon",
                                                             "earlyprintk",
                                                             "edd",
                                                             "elevator",
                                                             "emergency",
                                                             "fbcon",
                                                             "fsck.mode",
                                                             "fsck.repair",
                                                             "hpet",
                                                             "hugepages",
                                                             "hugepagesz",
                                                             "idle",
                                                             "init",
                                                             "initrd",
                                                             "intel_idle.max_cstate",
                                                             "intel_iommu",
                                                             "intel_pstate",
                                                             "iommu",
                                                             "ipv6.disable",
                                                             "irqaffinity",
                                                             "isolcpus",
                                                             "kvm.ignore_msrs",
                                                             "l1tf",
                                                             "libata.force",
                                                             "lockdown",
                                                             "loglevel",
                                                             "maxcpus",
                                                             "mds",
                                                             "mem",
                                                             "memmap",
                                                             "mitigations",
                                                             "module_blacklist",
                                                             "modprobe.blacklist",
                                                             "net.ifnames",
                                                             "nmi_watchdog",
                                                             "noapic",
                                                             "nohz",
                                                             "nohz_full",
                                                             "nolapic",
                                                             "nomodeset",
                                                             "noresume",
                                                             "nosmt",
                                                             "nowatchdog",
                                                             "nr_cpus",
                                                             "numa",
                                                             "numa_balancing",
                                                             "nvme_core.default_ps_max_latency_us",
                                                             "panic",
                                                             "pci",
                                                             "pcie_aspm",
                                                             "preempt",
                                                             "processor.max_cstate",
                                                             "pti",
                                                             "quiet",
                                                             "raid",
                                                             "random.trust_cpu",
                                                             "rcu_nocbs",
                                                             "rd.auto",
                                                             "rd.break",
                                                             "rd.driver.blacklist",
                                                             "rd.luks",
                                                             "rd.luks.uuid",
                                                             "rd.lvm",
                                                             "rd.lvm.lv",
                                                             "rd.lvm.vg",
                                                             "rd.md",
                                                             "rd.md.uuid",
                                                             "rd.shell",
                                                             "reboot",
                                                             "rescue",
                                                             "resume_offset",
                                                             "rhgb",
                                                             "ro",
                                                             "rootdelay",
                                                             "rootfstype",
                                                             "rootwait",
                                                             "rw",
                                                             "security",
                                                             "selinux",
                                                             "single",
                                                             "spec_store_bypass_disable",
                                                             "spectre_v2",
                                                             "splash",
                                                             "swapaccount",
                                                             "systemd.show_status",
                                                             "systemd.unified_cgroup_hierarchy",
                                                             "transparent_hugepage",
                                                             "tsc",
                                                             "tsx",
                                                             "vga",
                                                             "video",
                                                             "vt.handoff",
                                                             "zswap.enabled"};
  return names.count(parameter) != 0;
}

/// Returns whether a value such as "1", "off" or "auto" is too short to tell anything.
bool IsSetting(std::string_view value) {
  static const std::unordered_set<std::string_view> words = {
      "", "on", "off", "yes", "no", "true", "false", "y", "n", "auto", "force", "none"};
  return words.count(value) != 0 || (value.size() <= 3 && IsMadeOf(value, "0123456789"));
}

/// Returns whether the parameter names a device of the root or of swap space. In the place of a
/// device it can have a server with a password.
bool NamesDevice(std::string_view parameter) {
  return parameter == "root" || parameter == "resume" || parameter == "boot";
}

bool IsLocalDevice(std::string_view value) {
  if (value.substr(0, 1) == "\"") value.remove_prefix(1);
  static constexpr std::array<std::string_view, 6> kStarts = {
      "/dev/", "UUID=", "PARTUUID=", "LABEL=", "PARTLABEL=", "ZFS="};
  return std::any_of(kStarts.begin(), kStarts.end(), [value](std::string_view start) {
    return value.substr(0, start.size()) == start;
  });
}

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string RedactParameter(const std::string& word, const TMakeText& redact,
                            const TMakeText& hide) {
  const std::size_t equals = word.find('=');
  const std::string name = word.substr(0, equals);
  if (IsWellKnown(name)) return redact(word);
  if (equals == std::string::npos) return word == "--" ? word : hide(word);
  const std::string value = word.substr(equals + 1);
  if (NamesDevice(name) && IsLocalDevice(value)) return redact(word);
  const bool isTarget = value.size() > 7 && value.compare(value.size() - 7, 7, ".target") == 0;
  if (name == "systemd.unit" && isTarget) return redact(word);
  if (!IsMadeOf(name, kWord)) return hide(word);
  return redact(name) + "=" + (IsSetting(value) ? value : hide(value));
}

/// Returns the length of the name in "-x", "--name" or "--name=value"; 0 for other words. A short
/// option may have its value directly after its letter.
std::size_t LengthOfOption(const std::string& word) {
  if (word.size() == 2 && word[0] == '-') return 2;
  if (word.compare(0, 2, "--") != 0) return 0;
  const std::size_t end = std::min(word.find('='), word.size());
  const bool isName = IsMadeOf(std::string_view(word).substr(2, end - 2),
                               "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_-");
  return isName || end == 2 ? end : 0;
}

}  // namespace

std::string RedactKernelLine(const std::string& line, const TMakeText& redact,
                             const TMakeText& hide) {
  std::string result;
  std::string word;
  bool isQuoted = false;
  const auto add = [&] {
    if (!word.empty()) result += RedactParameter(word, redact, hide);
    word.clear();
  };
  for (const char c : line) {
    if (c == '"') isQuoted = !isQuoted;
    if (IsSpace(c) && !isQuoted) {
      add();
      result += c;
    } else {
      word += c;
    }
  }
  add();
  return result;
}

std::vector<std::string> RedactArguments(const std::vector<std::string>& words,
                                         const TMakeText& redact, const TMakeText& hide) {
  std::vector<std::string> result;
  result.reserve(words.size());
  for (const std::string& word : words) {
    const std::size_t option = LengthOfOption(word);
    // A process can write anything over its first word; a plain path or name it has as a program.
    const bool isProgram =
        result.empty() && IsMadeOf(word,
                                   "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                   "0123456789_.-+/");
    if (isProgram || option == word.size() || IsSetting(word)) {
      result.push_back(redact(word));
    } else if (option != 0) {
      result.push_back(redact(word.substr(0, option)) + "=" + hide(word.substr(option + 1)));
    } else {
      result.push_back(hide(word));
    }
  }
  return result;
}

}  // namespace NVORNQDX20::NRedact
