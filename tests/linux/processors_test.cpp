// SPDX-License-Identifier: Apache-2.0
// Processors of made-up machines: sockets, cores, threads, caches, nodes.
#include "linux/machine.h"

namespace NVORNQDX20 {
namespace {

const std::vector<std::string> kClasses = {"Processor",   "ProcessorCore", "HardwareThread",
                                           "CacheMemory", "NUMANode",      "ProcessorVulnerability",
                                           "Hypervisor"};

/// A processor with two kinds of cores, of which a thread is offline, in a guest.
const char* const kHybrid = R"(
sys/devices/system/cpu: present=0-3; online=0-2; cpu3/online=0
sys/devices/system/cpu/cpu0/topology: physical_package_id=0; core_id=0; die_id=-1; cluster_id=1
sys/devices/system/cpu/cpu0/topology: core_cpus_list=0-1; package_cpus_list=0-2
sys/devices/system/cpu/cpu1/topology: physical_package_id=0; core_id=0; core_cpus_list=0-1
sys/devices/system/cpu/cpu2/topology: physical_package_id=0; core_id=8; thread_siblings=00000004
sys/devices/system/cpu/cpu2/topology: cluster_id=65535
sys/devices/system/cpu/cpu0/cpufreq: cpuinfo_max_freq=5000000; cpuinfo_min_freq=800000
sys/devices/system/cpu/cpu2/cpufreq: cpuinfo_max_freq=3900000; cpuinfo_min_freq=400000
sys/devices/system/cpu/cpu0/cache/index0: level=1; type=Data; size=48K; shared_cpu_list=0-1
sys/devices/system/cpu/cpu0/cache/index0: ways_of_associativity=12; number_of_sets=64
sys/devices/system/cpu/cpu0/cache/index0: coherency_line_size=64; write_policy=WriteBack
sys/devices/system/cpu/cpu1/cache/index0: level=1; type=Data; size=48K; shared_cpu_list=0-1
sys/devices/system/cpu/cpu2/cache/index0: level=1; type=Data; size=0K; shared_cpu_map=4
sys/devices/system/cpu/cpu0/cache/index3: level=3; type=Unified; size=24M; shared_cpu_list=0-2
sys/devices/system/cpu/cpu0/cache/index3: ways_of_associativity=0
sys/devices/cpu_core: cpus=0-1
sys/devices/cpu_atom: cpus=2-3
sys/devices/system/node/node0: cpulist=0-1; distance=10 21; meminfo=Node 0 MemTotal: 64 kB
sys/devices/system/node/node10: cpumap=0c; distance=21 x
sys/devices/system/cpu/vulnerabilities: meltdown=Not affected; mds=Vulnerable: no microcode
sys/devices/system/cpu/vulnerabilities: itlb_multihit=KVM: Mitigation: VMX disabled
sys/class/dmi/id: sys_vendor=QEMU; product_name=KVM
)";

const char* const kHybridValues = R"(
CPU0: Name=Core i7; NumberOfEnabledCores=2; NumberOfLogicalProcessors=3; LogicalProcessors=0-2
CPU0: MaxClockSpeed=5000; MinClockSpeed=400; DataWidth=64; VirtualizationTechnology=VT-x
CPU0: PhysicalAddressWidth=46; VirtualAddressWidth=48; ModelID=186; FamilyID=6
VORNSG:CPU0-0: LogicalProcessors=0-1; CoreType=Performance; CoreNumber=0; ClusterNumber=1
VORNSG:CPU0-8: LogicalProcessors=2; CoreType=Efficiency; MaxClockSpeed=3900
VORNSG:CPU0-0: DieNumber=/sys/devices/system/cpu/cpu0/topology/die_id: the kernel knows none
VORNSG:CPU0-8: ClusterNumber=/sys/devices/system/cpu/cpu2/topology/cluster_id: the kernel knows none
VORNSG:cpu2: EnabledState=2; NUMANode=10
VORNSG:cpu3: EnabledState=3; NUMANode=10
L1d-0: Name=L1d; Level=3; CacheType=4; NumberOfBlocks=49152; LineSize=64; Ways=12; Sets=64
L1d-0: WritePolicy=3; LogicalProcessors=0-1
L1d-2: NumberOfBlocks=/sys/devices/system/cpu/cpu2/cache/index0/size: not known
L1d-2: LogicalProcessors=2
L3-0: Level=5; CacheType=5; NumberOfBlocks=25165824; LogicalProcessors=0-2
VORNSG:node0: LogicalProcessors=0-1; MemorySize=64
VORNSG:node10: LogicalProcessors=2-3
VORNSG:node10: Distances=/sys/devices/system/node/node10/distance: no list of numbers
meltdown: State=Not affected; Vulnerable=false
mds: Vulnerable=true
itlb_multihit: Vulnerable=false
VORNSG:hypervisor: Name=KVM; VirtualizationType=full
)";

std::string Counts(const ICIMNamespace& ns) {
  std::string counts;
  for (const char* name : {"Processor", "ProcessorCore", "HardwareThread", "CacheMemory"}) {
    counts += std::to_string(InstancesOf(ns, std::string("VORNSG_") + name).size()) + " ";
  }
  return counts;
}

TEST(LinuxProcessors, AreDescribed) {
  const TMachine machine;
  machine.WriteFiles(kHybrid);
  machine.Write("proc/cpuinfo",
                "processor: 0\nvendor_id: GenuineIntel\ncpu family: 6\nmodel: 186\n"
                "model name: Core i7\nflags: lm vmx\n\naddress sizes: 46 bits physical, "
                "48 bits virtual\n\nprocessor: 1\n\nprocessor: 2\n");
  const auto ns = machine.Namespace();
  ExpectValues(ValuesOf(*ns, kClasses), kHybridValues);
  EXPECT_EQ(Counts(*ns), "1 2 4 3 ");
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_ProcessorComponent").size(), 2U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_ProcessorCoreComponent").size(), 3U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_AssociatedCacheMemory").size(), 3U);
}

/// What one machine has, with sockets, cores, threads and caches in this order.
struct TOddMachine {
  const char* fName;
  const char* fFiles;
  const char* fCPUInfo;
  const char* fCounts;
  const char* fValues;
};

class LinuxOddProcessors : public ::testing::TestWithParam<TOddMachine> {};

TEST_P(LinuxOddProcessors, AreCounted) {
  const TMachine machine;
  machine.WriteFiles(GetParam().fFiles);
  machine.Write("proc/cpuinfo", GetParam().fCPUInfo);
  const auto ns = machine.Namespace();
  EXPECT_EQ(Counts(*ns), GetParam().fCounts);
  ExpectValues(ValuesOf(*ns, kClasses), GetParam().fValues);
}

INSTANTIATE_TEST_SUITE_P(
    Machines, LinuxOddProcessors,
    ::testing::Values(
        TOddMachine{
            "ClustersOfAChipAreNoSockets",
            R"(
sys/devices/system/cpu: present=0-1; online=0-1
sys/devices/system/cpu/cpu0/topology: physical_package_id=0; core_id=0; core_siblings_list=0
sys/devices/system/cpu/cpu1/topology: physical_package_id=1; core_id=0; core_siblings_list=1
)",
            "processor: 0\nCPU implementer: 0x41\nCPU part: 0xd46\nFeatures: fp\n\n"
            "processor: 1\nCPU implementer: 0x41\nCPU part: 0xd4e\n",
            "1 2 2 0 ",
            "CPU0: Name=Cortex-A510, Cortex-X3\nVORNSG:CPU0-0.1: Name=Cortex-X3\n"
            "CPU0: VirtualizationTechnology=no flag of the processor names any\n"
            "VORNSG:CPU0-0: CoreType=the kernel tells models, which differ, but no types\n"},
        TOddMachine{"SocketsOfOneKindAre",
                    R"(
sys/devices/system/cpu: present=0-1; online=0-1
sys/devices/system/cpu/cpu0/topology: physical_package_id=36; core_id=0; core_siblings_list=0
sys/devices/system/cpu/cpu1/topology: physical_package_id=40; core_id=0; core_siblings_list=1
)",
                    "processor: 0\nCPU implementer: 0x48\nCPU part: 0xd01\n\n"
                    "processor: 1\nCPU implementer: 0x48\nCPU part: 0xd01\n",
                    "2 2 2 0 ", "CPU36: Name=TaiShan-v110\nVORNSG:CPU40-0: CoreNumber=0\n"},
        TOddMachine{"SocketsWithoutNumbersAreCounted",
                    R"(
sys/devices/system/cpu: present=6,10; online=6,10; cpu6/l1_dcache_size=16384
sys/devices/system/cpu: cpu10/l1_dcache_size=16384; cpu6/clock_tick=248000000
sys/devices/system/cpu/cpu6/topology: physical_package_id=-1; core_siblings_list=6
sys/devices/system/cpu/cpu10/topology: physical_package_id=-1; core_siblings_list=10
)",
                    "cpu: TI UltraSparc II\ntype: sun4u\nState:\nCPU6: online\nCPU10: online\n",
                    "2 2 2 2 ",
                    "CPU1: Name=TI UltraSparc II; FamilyID=sun4u; DataWidth=64\n"
                    "CPU0: MaxClockSpeed=248\nL1d-10: NumberOfBlocks=16384\n"
                    "L1d-10: Ways=/sys/devices/system/cpu/cpu*/l1_dcache_size: of SPARC, which "
                    "tells no more\n"},
        TOddMachine{"OldKernelsHaveNoLists",
                    R"(
sys/devices/system/cpu/cpu0/topology: physical_package_id=0; core_siblings=00000000,00000003
sys/devices/system/cpu/cpu1/topology: physical_package_id=0; thread_siblings=00000000,00000002
sys/devices/system/cpu: cpu1/online=1; cpu2/online=0
)",
                    "processor: 0\nprocessor: 1\nprocessor: 2\n", "1 2 3 0 ",
                    "CPU0: LogicalProcessors=0-1\nVORNSG:cpu2: EnabledState=3\n"},
        TOddMachine{"OneOfTwoSiblingsNamesBoth",
                    R"(
sys/devices/system/cpu/cpu0/topology: physical_package_id=0; core_id=0
sys/devices/system/cpu/cpu1/topology: physical_package_id=0; core_id=0
sys/devices/system/cpu/cpu1/topology: package_cpus_list=0-1; core_cpus_list=0-1
)",
                    "processor: 0\nprocessor: 1\n", "1 1 2 0 ",
                    "VORNSG:CPU0-0: LogicalProcessors=0-1\n"},
        TOddMachine{"AnIncompleteFolderDoesNotCount",
                    R"(
sys/devices/system/cpu/cpu0/topology: physical_package_id=0; core_siblings_list=0-1
)",
                    "processor: 0\nphysical id: 0\ncore id: 0\n\n"
                    "processor: 1\nphysical id: 0\ncore id: 1\n",
                    "1 2 2 0 ", "CPU0: NumberOfEnabledCores=2\n"},
        TOddMachine{"CoresThatNobodyNamesAreNotInvented", "", "processor: 0\nprocessor: 1\n",
                    "1 0 2 0 ", "CPU0: NumberOfEnabledCores=/proc/cpuinfo: no 'cpu cores'\n"},
        TOddMachine{"LoongArchHasNamesOfItsOwn", "",
                    "system type: generic\n\nprocessor: 0\npackage: 0\ncore: 0\n"
                    "Address Sizes: 48 bits physical, 47 bits virtual\nFeatures: cpucfg lvz\n",
                    "1 1 1 0 ",
                    "CPU0: PhysicalAddressWidth=48; VirtualAddressWidth=47; "
                    "VirtualizationTechnology=LVZ\n"},
        TOddMachine{"CachesOfIBMZ", "",
                    "vendor_id: IBM/S390\ncache0: level=1 type=Data scope=Private size=96K "
                    "line_size=256 associativity=6\nprocessor 0: version = FF, machine = 2964\n",
                    "1 1 1 1 ",
                    "CPU0: Name=IBM z13 (type 2964)\nL1d: NumberOfBlocks=98304; Ways=6\n"
                    "L1d: Sets=/proc/cpuinfo: cache0: no number of sets\n"}),
    [](const auto& test) { return std::string(test.param.fName); });

TEST(LinuxProcessors, AreThoseOfFirmwareWithoutAKernel) {
  const TMachine machine;
  const auto structure = [](std::string fixed, const std::string& strings) {
    fixed[1] = static_cast<char>(fixed.size());
    return fixed + strings + std::string(strings.empty() ? 2 : 1, '\0');
  };
  std::string socket(0x28, '\0');
  socket[0] = 4;
  socket[4] = 1;
  socket[5] = 3;
  socket[0x10] = 2;
  socket[0x14] = 100;  // MHz
  socket[0x18] = 0x41;
  socket[0x1a] = 7;
  socket[0x24] = 4;
  std::string empty = socket;
  empty[2] = 1;
  empty[0x18] = 0;
  std::string cache(0x13, '\0');
  cache[0] = 7;
  cache[2] = 7;
  cache[6] = 2;
  cache[9] = 64;
  cache[0x11] = 1;
  cache[0x12] = 7;
  const std::string strings("SOCKET 0\0A processor\0", 21);
  machine.Write("sys/firmware/dmi/tables/DMI",
                structure(socket, strings) + structure(empty, strings) + structure(cache, "") +
                    structure(std::string("\x7f\0\1\1", 4), ""));
  machine.Write("sys/firmware/dmi/tables/smbios_entry_point", "");
  const auto ns = machine.Namespace();
  EXPECT_EQ(Counts(*ns), "1 0 0 1 ");
  ExpectValues(ValuesOf(*ns, kClasses), R"(
CPU0: Name=A processor; SocketDesignation=SOCKET 0; NumberOfEnabledCores=4; MaxClockSpeed=100
CPU0: CPUStatus=1; NumberOfLogicalProcessors=firmware does not say what is online
CPU0-L1: NumberOfBlocks=65536; Level=3; CacheType=1; WritePolicy=5; Ways=8
)");
  EXPECT_EQ(ReasonsOf(*ns)["VORNSG_ProcessorCore"],
            "CPU0: only the kernel lists cores, and its files are missing");
}

}  // namespace
}  // namespace NVORNQDX20
