// SPDX-License-Identifier: Apache-2.0
#include "arm_parts.h"

#include <algorithm>
#include <iterator>

namespace NVORNQDX20 {
namespace {

struct TImplementer {
  unsigned fNumber;
  const char* fName;
};

constexpr TImplementer kImplementers[] = {{0x41, "ARM"},
                                          {0x42, "Broadcom"},
                                          {0x43, "Cavium"},
                                          {0x44, "DEC"},
                                          {0x46, "FUJITSU"},
                                          {0x48, "HiSilicon"},
                                          {0x49, "Infineon"},
                                          {0x4d, "Motorola/Freescale"},
                                          {0x4e, "NVIDIA"},
                                          {0x50, "APM"},
                                          {0x51, "Qualcomm"},
                                          {0x53, "Samsung"},
                                          {0x54, "Texas Instruments"},
                                          {0x56, "Marvell"},
                                          {0x61, "Apple"},
                                          {0x66, "Faraday"},
                                          {0x69, "Intel"},
                                          {0x6d, "Microsoft"},
                                          {0x70, "Phytium"},
                                          {0xc0, "Ampere"}};

struct TPart {
  unsigned fImplementer;
  unsigned fNumber;
  const char* fName;
};

constexpr TPart kParts[] = {
    // ARM
    {0x41, 0x810, "ARM810"},
    {0x41, 0x920, "ARM920"},
    {0x41, 0x922, "ARM922"},
    {0x41, 0x926, "ARM926"},
    {0x41, 0x940, "ARM940"},
    {0x41, 0x946, "ARM946"},
    {0x41, 0x966, "ARM966"},
    {0x41, 0xa20, "ARM1020"},
    {0x41, 0xa22, "ARM1022"},
    {0x41, 0xa26, "ARM1026"},
    {0x41, 0xb02, "ARM11 MPCore"},
    {0x41, 0xb36, "ARM1136"},
    {0x41, 0xb56, "ARM1156"},
    {0x41, 0xb76, "ARM1176"},
    {0x41, 0xc05, "Cortex-A5"},
    {0x41, 0xc07, "Cortex-A7"},
    {0x41, 0xc08, "Cortex-A8"},
    {0x41, 0xc09, "Cortex-A9"},
    {0x41, 0xc0d, "Cortex-A17"},  // began as Cortex-A12
    {0x41, 0xc0e, "Cortex-A17"},
    {0x41, 0xc0f, "Cortex-A15"},
    {0x41, 0xc14, "Cortex-R4"},
    {0x41, 0xc15, "Cortex-R5"},
    {0x41, 0xc17, "Cortex-R7"},
    {0x41, 0xc18, "Cortex-R8"},
    {0x41, 0xc20, "Cortex-M0"},
    {0x41, 0xc21, "Cortex-M1"},
    {0x41, 0xc23, "Cortex-M3"},
    {0x41, 0xc24, "Cortex-M4"},
    {0x41, 0xc27, "Cortex-M7"},
    {0x41, 0xc60, "Cortex-M0+"},
    {0x41, 0xd01, "Cortex-A32"},
    {0x41, 0xd02, "Cortex-A34"},
    {0x41, 0xd03, "Cortex-A53"},
    {0x41, 0xd04, "Cortex-A35"},
    {0x41, 0xd05, "Cortex-A55"},
    {0x41, 0xd06, "Cortex-A65"},
    {0x41, 0xd07, "Cortex-A57"},
    {0x41, 0xd08, "Cortex-A72"},
    {0x41, 0xd09, "Cortex-A73"},
    {0x41, 0xd0a, "Cortex-A75"},
    {0x41, 0xd0b, "Cortex-A76"},
    {0x41, 0xd0c, "Neoverse-N1"},
    {0x41, 0xd0d, "Cortex-A77"},
    {0x41, 0xd0e, "Cortex-A76AE"},
    {0x41, 0xd13, "Cortex-R52"},
    {0x41, 0xd15, "Cortex-R82"},
    {0x41, 0xd16, "Cortex-R52+"},
    {0x41, 0xd20, "Cortex-M23"},
    {0x41, 0xd21, "Cortex-M33"},
    {0x41, 0xd22, "Cortex-M55"},
    {0x41, 0xd23, "Cortex-M85"},
    {0x41, 0xd40, "Neoverse-V1"},
    {0x41, 0xd41, "Cortex-A78"},
    {0x41, 0xd42, "Cortex-A78AE"},
    {0x41, 0xd43, "Cortex-A65AE"},
    {0x41, 0xd44, "Cortex-X1"},
    {0x41, 0xd46, "Cortex-A510"},
    {0x41, 0xd47, "Cortex-A710"},
    {0x41, 0xd48, "Cortex-X2"},
    {0x41, 0xd49, "Neoverse-N2"},
    {0x41, 0xd4a, "Neoverse-E1"},
    {0x41, 0xd4b, "Cortex-A78C"},
    {0x41, 0xd4c, "Cortex-X1C"},
    {0x41, 0xd4d, "Cortex-A715"},
    {0x41, 0xd4e, "Cortex-X3"},
    {0x41, 0xd4f, "Neoverse-V2"},
    {0x41, 0xd80, "Cortex-A520"},
    {0x41, 0xd81, "Cortex-A720"},
    {0x41, 0xd82, "Cortex-X4"},
    {0x41, 0xd83, "Neoverse-V3AE"},
    {0x41, 0xd84, "Neoverse-V3"},
    {0x41, 0xd85, "Cortex-X925"},
    {0x41, 0xd87, "Cortex-A725"},
    {0x41, 0xd88, "Cortex-A520AE"},
    {0x41, 0xd89, "Cortex-A720AE"},
    {0x41, 0xd8a, "C1-Nano"},
    {0x41, 0xd8b, "C1-Pro"},
    {0x41, 0xd8c, "C1-Ultra"},
    {0x41, 0xd8e, "Neoverse-N3"},
    {0x41, 0xd8f, "Cortex-A320"},
    {0x41, 0xd90, "C1-Premium"},
    // Broadcom
    {0x42, 0x00f, "Brahma-B15"},
    {0x42, 0x100, "Brahma-B53"},
    {0x42, 0x516, "ThunderX2"},
    // Cavium
    {0x43, 0x0a0, "ThunderX"},
    {0x43, 0x0a1, "ThunderX-88XX"},
    {0x43, 0x0a2, "ThunderX-81XX"},
    {0x43, 0x0a3, "ThunderX-83XX"},
    {0x43, 0x0af, "ThunderX2-99xx"},
    {0x43, 0x0b0, "OcteonTX2"},
    {0x43, 0x0b1, "OcteonTX2-98XX"},
    {0x43, 0x0b2, "OcteonTX2-96XX"},
    {0x43, 0x0b3, "OcteonTX2-95XX"},
    {0x43, 0x0b4, "OcteonTX2-95XXN"},
    {0x43, 0x0b5, "OcteonTX2-95XXMM"},
    {0x43, 0x0b6, "OcteonTX2-95XXO"},
    {0x43, 0x0b8, "ThunderX3-T110"},
    // DEC
    {0x44, 0xa10, "SA110"},
    {0x44, 0xa11, "SA1100"},
    // Fujitsu
    {0x46, 0x001, "A64FX"},
    {0x46, 0x003, "MONAKA"},
    // HiSilicon
    {0x48, 0xd01, "TaiShan-v110"},
    {0x48, 0xd02, "TaiShan-v120"},
    {0x48, 0xd03, "TaiShan-v120"},
    {0x48, 0xd06, "TaiShan-v120"},
    {0x48, 0xd40, "Cortex-A76"},
    {0x48, 0xd41, "Cortex-A77"},
    // NVIDIA
    {0x4e, 0x000, "Denver"},
    {0x4e, 0x003, "Denver 2"},
    {0x4e, 0x004, "Carmel"},
    {0x4e, 0x010, "Olympus"},
    // Applied Micro
    {0x50, 0x000, "X-Gene"},
    // Qualcomm
    {0x51, 0x001, "Oryon"},
    {0x51, 0x00f, "Scorpion"},
    {0x51, 0x02d, "Scorpion"},
    {0x51, 0x04d, "Krait"},
    {0x51, 0x06f, "Krait"},
    {0x51, 0x201, "Kryo"},
    {0x51, 0x205, "Kryo"},
    {0x51, 0x211, "Kryo"},
    {0x51, 0x800, "Falkor-V1/Kryo"},
    {0x51, 0x801, "Kryo-V2"},
    {0x51, 0x802, "Kryo-3XX-Gold"},
    {0x51, 0x803, "Kryo-3XX-Silver"},
    {0x51, 0x804, "Kryo-4XX-Gold"},
    {0x51, 0x805, "Kryo-4XX-Silver"},
    {0x51, 0xc00, "Falkor"},
    {0x51, 0xc01, "Saphira"},
    // Samsung
    {0x53, 0x001, "exynos-m1"},
    {0x53, 0x002, "exynos-m3"},
    {0x53, 0x003, "exynos-m4"},
    {0x53, 0x004, "exynos-m5"},
    // Texas Instruments
    {0x54, 0x925, "TI925T"},
    // Marvell
    {0x56, 0x131, "Feroceon-88FR131"},
    {0x56, 0x581, "PJ4/PJ4b"},
    {0x56, 0x584, "PJ4B-MP"},
    // Apple
    {0x61, 0x000, "Swift"},
    {0x61, 0x001, "Cyclone"},
    {0x61, 0x002, "Typhoon"},
    {0x61, 0x003, "Typhoon/Capri"},
    {0x61, 0x004, "Twister"},
    {0x61, 0x005, "Twister/Elba/Malta"},
    {0x61, 0x006, "Hurricane"},
    {0x61, 0x007, "Hurricane/Myst"},
    {0x61, 0x008, "Monsoon"},
    {0x61, 0x009, "Mistral"},
    {0x61, 0x00b, "Vortex"},
    {0x61, 0x00c, "Tempest"},
    {0x61, 0x00f, "Tempest-M9"},
    {0x61, 0x010, "Vortex/Aruba"},
    {0x61, 0x011, "Tempest/Aruba"},
    {0x61, 0x012, "Lightning"},
    {0x61, 0x013, "Thunder"},
    {0x61, 0x020, "Icestorm-A14"},
    {0x61, 0x021, "Firestorm-A14"},
    {0x61, 0x022, "Icestorm-M1"},
    {0x61, 0x023, "Firestorm-M1"},
    {0x61, 0x024, "Icestorm-M1-Pro"},
    {0x61, 0x025, "Firestorm-M1-Pro"},
    {0x61, 0x026, "Thunder-M10"},
    {0x61, 0x028, "Icestorm-M1-Max"},
    {0x61, 0x029, "Firestorm-M1-Max"},
    {0x61, 0x030, "Blizzard-A15"},
    {0x61, 0x031, "Avalanche-A15"},
    {0x61, 0x032, "Blizzard-M2"},
    {0x61, 0x033, "Avalanche-M2"},
    {0x61, 0x034, "Blizzard-M2-Pro"},
    {0x61, 0x035, "Avalanche-M2-Pro"},
    {0x61, 0x036, "Sawtooth-A16"},
    {0x61, 0x037, "Everest-A16"},
    {0x61, 0x038, "Blizzard-M2-Max"},
    {0x61, 0x039, "Avalanche-M2-Max"},
    // Faraday
    {0x66, 0x526, "FA526"},
    {0x66, 0x626, "FA626"},
    // Intel
    {0x69, 0x200, "i80200"},
    {0x69, 0x210, "PXA250A"},
    {0x69, 0x212, "PXA210A"},
    {0x69, 0x242, "i80321-400"},
    {0x69, 0x243, "i80321-600"},
    {0x69, 0x290, "PXA250B/PXA26x"},
    {0x69, 0x292, "PXA210B"},
    {0x69, 0x2c2, "i80321-400-B0"},
    {0x69, 0x2c3, "i80321-600-B0"},
    {0x69, 0x2d0, "PXA250C/PXA255/PXA26x"},
    {0x69, 0x2d2, "PXA210C"},
    {0x69, 0x2e3, "i80219"},
    {0x69, 0x411, "PXA27x"},
    {0x69, 0x41c, "IPX425-533"},
    {0x69, 0x41d, "IPX425-400"},
    {0x69, 0x41f, "IPX425-266"},
    {0x69, 0x682, "PXA32x"},
    {0x69, 0x683, "PXA930/PXA935"},
    {0x69, 0x688, "PXA30x"},
    {0x69, 0x689, "PXA31x"},
    {0x69, 0xb11, "SA1110"},
    {0x69, 0xc12, "IPX1200"},
    // Microsoft
    {0x6d, 0xd49, "Azure-Cobalt-100"},
    // Phytium
    {0x70, 0x303, "FTC310"},
    {0x70, 0x660, "FTC660"},
    {0x70, 0x661, "FTC661"},
    {0x70, 0x662, "FTC662"},
    {0x70, 0x663, "FTC663"},
    {0x70, 0x664, "FTC664"},
    {0x70, 0x862, "FTC862"},
    // Ampere
    {0xc0, 0xac3, "Ampere-1"},
    {0xc0, 0xac4, "Ampere-1a"},
    {0xc0, 0xac5, "Ampere-1b"}};

}  // namespace

const char* ARMImplementerName(unsigned implementer) {
  const auto* const found =
      std::find_if(std::begin(kImplementers), std::end(kImplementers),
                   [=](const TImplementer& each) { return each.fNumber == implementer; });
  return found == std::end(kImplementers) ? nullptr : found->fName;
}

const char* ARMPartName(unsigned implementer, unsigned part) {
  const auto* const found = std::find_if(
      std::begin(kParts), std::end(kParts),
      [=](const TPart& each) { return each.fImplementer == implementer && each.fNumber == part; });
  return found == std::end(kParts) ? nullptr : found->fName;
}

}  // namespace NVORNQDX20
