// SPDX-License-Identifier: Apache-2.0
#include "sources/processors/cpu_model.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

struct TCPUText {
  const char* fArchitecture;
  const char* fText;
  const char* fProcessors;
  const char* fModel;  ///< Name, maker, stepping, clock and flags of the last processor.
};

class CPUInfoOf : public ::testing::TestWithParam<TCPUText> {};

TEST_P(CPUInfoOf, NamesTheProcessor) {
  const TCPUInfo info{TText(GetParam().fText)};
  EXPECT_EQ(FormatCPUList(info.GetProcessors()), GetParam().fProcessors);
  const TCPUModel model = IdentifyCPU(info.FieldsOf(*info.GetProcessors().rbegin()));
  std::string told = model.fName.ValueOr("-") + "|" + model.fVendor.ValueOr("-") + "|" +
                     model.fStepping.ValueOr("-") + "|" +
                     std::to_string(model.fCurrentClock.ValueOr(0)) + "|";
  for (const std::string& flag : model.fFlags.ValueOr({})) told += flag + ".";
  EXPECT_EQ(told, GetParam().fModel);
}

INSTANTIATE_TEST_SUITE_P(
    Architectures, CPUInfoOf,
    ::testing::Values(
        TCPUText{"ARM32",
                 "Processor: ARMv7 Processor rev 4 (v7l)\nprocessor: 0\nBogoMIPS: 1\n\n"
                 "processor: 1\nBogoMIPS: 1\n\nFeatures: swp half\nCPU implementer: 0x41\n"
                 "CPU architecture: 7\nCPU variant: 0x2\nCPU part: 0xc0f\nCPU revision: 4\n",
                 "0-1", "Cortex-A15|ARM|r2p4|0|swp.half."},
        TCPUText{"UnknownARM", "processor: 0\nCPU implementer: 0x99\nCPU part: 0x1\n", "0",
                 "-|-|-|0|"},
        TCPUText{
            "IA64",
            "processor: 0\nvendor: GenuineIntel\narch: IA-64\nfamily: 32\nmodel: 1\n"
            "model name: Dual-Core Intel(R) Itanium(R) 2\nrevision: 7\ncpu MHz: 1594.670\n"
            "features: branchlong, 16-byte atomic ops\n",
            "0",
            "Dual-Core Intel(R) Itanium(R) 2|GenuineIntel|7|1594|branchlong.16-byte atomic ops."},
        TCPUText{"POWER",
                 "processor: 0\ncpu: POWER7 (architected), altivec supported\n"
                 "clock: 3864.000000MHz\nrevision: 2.1 (pvr 003f 0201)\n\nmodel: IBM,8231-E2B\n",
                 "0", "POWER7 (architected), altivec supported|IBM|2.1 (pvr 003f 0201)|3864|"},
        TCPUText{"IBMZ",
                 "vendor_id: IBM/S390\nfeatures: esan3 zarch\n"
                 "processor 0: version = 00, machine = 3906\nprocessor 1: machine = 3906\n\n"
                 "cpu number: 0\ncpu MHz dynamic: 5200\ncpu number: 1\nversion: 01\n"
                 "machine: 8561\ncpu MHz dynamic: 5200\n",
                 "0-1", "IBM z15 (type 8561)|IBM/S390|01|5200|esan3.zarch."},
        TCPUText{"RISCV",
                 "processor: 2\nhart: 1\nisa: rv64imafdc_zba\nuarch: sifive,u74-mc\n"
                 "mvendorid: 0x489\n",
                 "2", "sifive,u74-mc|SiFive|-|0|rv64imafdc.zba."},
        TCPUText{"LoongArch",
                 "system type: generic\n\nprocessor: 0\npackage: 0\nModel Name: Loongson-3A5000\n"
                 "CPU Revision: 0x11\nCPU MHz: 2500.00\nFeatures: cpucfg lam\n",
                 "0", "Loongson-3A5000|Loongson|0x11|2500|cpucfg.lam."},
        TCPUText{"PARISC",
                 "processor: 0\ncpu family: PA-RISC 2.0\ncpu: PA8800 (Mako)\ncpu MHz: 800.0\n"
                 "model name: Storm Peak\n",
                 "0", "PA8800 (Mako)|HP|-|800|"},
        TCPUText{"Alpha", "cpu: Alpha\ncpu model: EV67\ncpus active: 2\n", "0-1", "EV67|DEC|-|0|"},
        TCPUText{"MIPS", "system type: x\nprocessor: 0\ncpu model: ICT Loongson-2 V0.3\n", "0",
                 "ICT Loongson-2 V0.3|-|-|0|"},
        TCPUText{"TooHighANumber", "processor: 70000\nprocessor: 1\n", "1", "-|-|-|0|"}),
    [](const auto& test) { return std::string(test.param.fArchitecture); });

TEST(CPUMask, IsParsed) {
  EXPECT_EQ(FormatCPUList(*ParseCPUMask("00000001,8000000f")), "0-3,31-32");
  EXPECT_FALSE(ParseCPUMask(""));
  EXPECT_FALSE(ParseCPUMask("0x1"));
  EXPECT_FALSE(ParseCPUMask(std::string(20000, 'f')));
  EXPECT_FALSE(ParseCPUList("4,0-3"));
  EXPECT_FALSE(ParseCPUList("0-5,3"));
}

}  // namespace
}  // namespace NVORNQDX20
