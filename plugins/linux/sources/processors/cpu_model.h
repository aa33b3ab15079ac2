// SPDX-License-Identifier: Apache-2.0
/// What a processor is: its names and numbers, as /proc/cpuinfo has them on each architecture.
#ifndef PLUGINS_LINUX_SOURCES_PROCESSORS_CPU_MODEL_H_
#define PLUGINS_LINUX_SOURCES_PROCESSORS_CPU_MODEL_H_

#include <string>
#include <vector>

#include "cpuinfo.h"

namespace NVORNQDX20 {

using TWords = TReading<std::vector<std::string>>;

struct TCPUModel {
  TText fName;         ///< "Cortex-A53"
  TText fDescription;  ///< What else the kernel calls it: "ARMv7 Processor rev 4 (v7l)".
  TText fVendor;       ///< "GenuineIntel", "ARM"
  TText fVendorID;     ///< As the processor has it: "0x41".
  TText fFamily;
  TText fModel;
  TText fStepping;  ///< "7", "r0p4", "2.1 (pvr 003f 0201)"
  TText fMicrocode;
  TReading<std::uint32_t> fCurrentClock;  ///< In MHz.
  TReading<std::uint32_t> fFixedClock;    ///< In MHz, of a processor whose clock does not change.
  unsigned fArchitectureBits = 0;         ///< 32 or 64; 0 if it is not known.
  TWords fFlags;
  TWords fBugs;
  TReading<std::uint16_t> fPhysicalAddressBits;
  TReading<std::uint16_t> fVirtualAddressBits;
};

TCPUModel IdentifyCPU(const TCPUFields& fields);

/// Returns whether the words contain the word.
bool HasFlag(const TWords& flags, const char* flag);

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_PROCESSORS_CPU_MODEL_H_
