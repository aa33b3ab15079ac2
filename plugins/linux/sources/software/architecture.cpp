// SPDX-License-Identifier: Apache-2.0
#include "architecture.h"

#include <sys/utsname.h>

namespace NVORNQDX20 {
namespace {

/// The machines of the Executable and Linkable Format by number, with the order of their bytes.
struct TMachine {
  unsigned fNumber;
  bool fIs64Bit;
  bool fIsLittleEndian;
  const char* fName;
};

constexpr TMachine kMachines[] = {
    {3, false, true, "i686"},         {62, true, true, "x86_64"},
    {62, false, true, "x86_64"},      {40, false, true, "armv7l"},
    {183, true, true, "aarch64"},     {183, true, false, "aarch64_be"},
    {20, false, false, "ppc"},        {21, true, true, "ppc64le"},
    {21, true, false, "ppc64"},       {22, true, false, "s390x"},
    {243, true, true, "riscv64"},     {243, false, true, "riscv32"},
    {258, true, true, "loongarch64"}, {8, true, true, "mips64"},
    {8, true, false, "mips64"},       {8, false, true, "mips"},
    {8, false, false, "mips"},        {2, false, false, "sparc"},
    {43, true, false, "sparc64"},     {50, true, true, "ia64"}};

/// Reads it from the header of a program.
TText ArchitectureOf(const TFiles& files, const std::string& program) {
  constexpr std::size_t kHeaderSize = 20;
  return files.ReadStart(program, kHeaderSize).and_then([&](const std::string& header) -> TText {
    const auto byte = [&header](std::size_t position) -> unsigned {
      return static_cast<unsigned char>(header[position]);
    };
    if (header.size() < kHeaderSize || header.substr(0, 4) !=
                                           "\x7f"
                                           "ELF") {
      return files.MissingFrom(program, "no program");
    }
    const bool isLittleEndian = byte(5) == 1;
    const unsigned number = isLittleEndian ? byte(18) | byte(19) << 8U : byte(19) | byte(18) << 8U;
    for (const TMachine& machine : kMachines) {
      if (machine.fNumber == number && machine.fIs64Bit == (byte(4) == 2) &&
          machine.fIsLittleEndian == isLittleEndian) {
        return machine.fName;
      }
    }
    return files.MissingFrom(program, "of unknown architecture " + std::to_string(number));
  });
}

}  // namespace

TText ReadArchitecture(const THost& host) {
  utsname names{};
  if (host.IsThisMachine() && ::uname(&names) == 0) return PrintableText(names.machine);
  TText kernel = host.ReadLine("/proc/sys/kernel/arch");
  if (kernel) return kernel;
  return host.FirstOf({"/usr/lib/systemd/systemd", "/lib/systemd/systemd", "/sbin/init", "/bin/sh"})
      .and_then([&host](const std::string& program) { return ArchitectureOf(host, program); });
}

}  // namespace NVORNQDX20
