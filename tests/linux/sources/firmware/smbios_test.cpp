// SPDX-License-Identifier: Apache-2.0
#include <sources/firmware/smbios.h>

#include <sources/host.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "linux/smbios_builder.h"
#include "support/temp_dir.h"

namespace NVORNQDX20 {
namespace {

template <typename T>
std::string TextOf(const TReading<T>& reading) {
  if (!reading) return reading.GetReason();
  if constexpr (std::is_same_v<T, std::string>) {
    return *reading;
  } else {
    return std::to_string(*reading);
  }
}

const std::string kEnd = SMBIOSStructure(127, 0x7F, "");
const std::string kOne = SMBIOSStructure(1, 1, "01", {"a"});

TEST(SMBIOS, ReadsFieldsAndStrings) {
  const std::string fields = "01 02 03 04 05 FFEEDDCCBBAA9988";
  const TSMBIOS smbios(
      "",
      SMBIOSStructure(1, 0x1234, fields, {"Maker", " Box \x01", "  ", "Default String"}) + kEnd);
  EXPECT_EQ(smbios.GetFlaw(), "");
  const TSMBIOSStructure& one = *smbios.Find(0x1234);
  const std::string name = "SMBIOS structure of type 1: ";
  EXPECT_EQ(TextOf(one.ReadString(4)), "Maker");
  EXPECT_EQ(TextOf(one.ReadString(5)), "Box");
  EXPECT_EQ(TextOf(one.ReadString(6)), name + "not specified");
  EXPECT_EQ(TextOf(one.ReadString(7)), name + "placeholder text 'Default String'");
  EXPECT_EQ(TextOf(one.ReadString(8)), "SMBIOS structure 0x1234 (type 1): has no string 5");
  EXPECT_EQ(TextOf(one.ReadString(17)), name + "has 17 bytes, none at offset 17");
  EXPECT_EQ(TextOf(one.ReadNumber<std::uint16_t>(9)), "61183");
  EXPECT_EQ(TextOf(one.ReadNumber<std::uint64_t>(9)), "9843086184167632639");
  EXPECT_EQ(TextOf(one.ReadNumber<std::uint16_t>(16)), name + "has 17 bytes, none at offset 16");
  EXPECT_EQ(smbios.Find(1), nullptr);
}

TEST(SMBIOS, KeepsWhatIsBeforeDamage) {
  struct {
    const char* fName;
    std::string fEntryPoint;
    std::string fTable;
    std::size_t fCount;
    bool fIsFlawed;
  } const rows[] = {{"none", "", kOne + kEnd + kOne, 2, false},
                    {"empty", "", "", 0, false},
                    {"cut header", "", kOne + "\x01\x05", 1, true},
                    {"cut fields", "", kOne + kOne.substr(0, 4), 1, true},
                    {"cut strings", "", kOne + kOne.substr(0, 6), 2, true},
                    {"short length", "", kOne + "\x01\x03\x01" + kOne, 1, true},
                    {"counted", SMBIOS2EntryPoint(4, 1), kOne + kOne, 1, false},
                    {"counted past the end", SMBIOS2EntryPoint(4, 3), kEnd + kOne + kOne, 3, false},
                    {"too few", SMBIOS2EntryPoint(4, 3), kOne, 1, true},
                    {"miscounted but ended", SMBIOS2EntryPoint(4, 3), kOne + kEnd, 2, false}};
  for (const auto& row : rows) {
    const TSMBIOS smbios(row.fEntryPoint, row.fTable);
    EXPECT_EQ(smbios.GetStructures().size(), row.fCount) << row.fName;
    const std::string count = std::to_string(row.fCount);
    EXPECT_EQ(smbios.GetFlaw(),
              row.fIsFlawed ? "the SMBIOS table is damaged after " + count + " structures" : "")
        << row.fName;
  }
}

TEST(SMBIOS, HasTheVersionOfItsEntryPoint) {
  EXPECT_EQ(TSMBIOS("", kEnd).GetVersion(), 0);
  EXPECT_EQ(TSMBIOS(SMBIOS3EntryPoint(3, 1), kEnd).GetVersion(), 0x0301);
  EXPECT_EQ(TSMBIOS(SMBIOS2EntryPoint(8, 1), kEnd).GetVersion(), 0x0208);
  EXPECT_EQ(TSMBIOS(SMBIOS2EntryPoint(51, 1), kEnd).GetVersion(), 0x0206);
  EXPECT_EQ(TSMBIOS("_DMI_" + BytesOf("00 0000 00000000 0100 23"), kEnd).GetVersion(), 0x0203);
}

TEST(SMBIOS, IsReadFromTheTableElseFromItsEntries) {
  const TTempDir tree;
  const auto places = [&tree]() -> std::string {
    const THost host({tree.Path().string(), {}});
    const TReading<TSMBIOS>& smbios = host.GetSMBIOS();
    if (!smbios) return smbios.GetReason();
    std::string all;
    for (const TSMBIOSStructure& module : smbios->OfType(17)) all += TextOf(module.ReadString(4));
    return all;
  };
  const auto module = [](std::uint16_t handle, const std::string& place) {
    return SMBIOSStructure(17, handle, "01", {place});
  };
  const std::string folder = "sys/firmware/dmi/";
  EXPECT_EQ(places(), "no SMBIOS table: /sys/firmware/dmi does not exist");
  std::filesystem::create_directories(tree.Path() / folder / "entries");
  EXPECT_EQ(places(), "/sys/firmware/dmi/entries: empty");
  std::filesystem::create_directory(tree.Path() / folder / "entries/127-0");
  EXPECT_EQ(places(), "/sys/firmware/dmi/entries/127-0/raw: No such file or directory");
  tree.Write(folder + "entries/127-0/raw", kEnd);
  tree.Write(folder + "entries/17-10/raw", module(3, "C"));
  tree.Write(folder + "entries/17-2/raw", module(2, "B"));
  tree.Write(folder + "entries/17-0/raw", module(1, "A"));
  EXPECT_EQ(places(), "ABC");
  tree.Write(folder + "tables/DMI", module(4, "D") + kEnd);
  EXPECT_EQ(places(), "D");
}

}  // namespace
}  // namespace NVORNQDX20
