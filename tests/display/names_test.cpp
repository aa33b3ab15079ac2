// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/names.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

TEST(ClassNames, AreFoundAsPeopleTypeThem) {
  const std::vector<std::string> names = {"VORNSG_DiskDrive",
                                          "VORNSG_DiskPartition",
                                          "VORNSG_Processor",
                                          "VORNSG_ProcessorCore",
                                          "VORNSG_IPRoute",
                                          "CIM_EthernetPort",
                                          "VORNSG_EthernetPort",
                                          "VORNSG_PhysicalMemory",
                                          "VORNSG_SCSIDevice",
                                          "VORNSG_Battery",
                                          "Plain"};
  using TNames = std::vector<std::string>;
  const struct {
    const char* fTyped;
    TNames fNames;
    const char* fNearest;
  } rows[] = {{"vornsg_diskdrive", {"VORNSG_DiskDrive"}, ""},
              {"DISKDRIVE", {"VORNSG_DiskDrive"}, ""},
              {"processor", {"VORNSG_Processor"}, ""},
              {"disk", {"VORNSG_DiskDrive"}, ""},
              {"cpus", {"VORNSG_Processor"}, ""},
              {"batteries", {"VORNSG_Battery"}, ""},
              {"ethernetport", {"CIM_EthernetPort", "VORNSG_EthernetPort"}, ""},
              {"scsi", {"VORNSG_SCSIDevice"}, ""},
              {"route", {"VORNSG_IPRoute"}, ""},
              {"dis", {"VORNSG_DiskDrive", "VORNSG_DiskPartition"}, ""},
              {"plain", {"Plain"}, ""},
              {"DiskDirve", {}, "VORNSG_DiskDrive"},
              {"VORNSG_disk", {}, "VORNSG_DiskDrive"},
              {"netwrk", {}, "network"},
              {"Nothing", {}, ""},
              {"", {}, ""}};
  for (const auto& [typed, found, nearest] : rows) {
    const TClassMatch match = FindClassFor(typed, names);
    EXPECT_EQ(match.fNames, found) << typed;
    EXPECT_EQ(match.fNearest, nearest) << typed;
  }
}

TEST(InstanceLabels, HaveTheKeysThatSaySomething) {
  const char* const rows[][2] = {
      {R"(VORNSG_DiskDrive.CreationClassName="VORNSG_DiskDrive",DeviceID="sda",SystemName="host")",
       "DiskDrive sda"},
      {R"(VORNSG_ComputerSystem.CreationClassName="VORNSG_ComputerSystem",Name="host")",
       "ComputerSystem host"},
      {R"(X_Run.CSName="a",OSName="b")", "Run a b"},
      {R"(X_A.Name="say \"hi\", \\ you",Id="2")", R"(A say "hi", \ you 2)"},
      {R"(X_On.Antecedent="X_Disk.DeviceID=\"sda\"",Dependent="root/x:X_Part.DeviceID=\"sda1\"")",
       "On Disk sda, Part sda1"},
      {"X_Only", "X_Only"},
      {R"(X_A.Name="open)", R"(X_A.Name="open)"},
      {"", ""}};
  for (const auto& [path, label] : rows) EXPECT_EQ(InstanceLabel(path), label);
}

}  // namespace
}  // namespace NVORNQDX20
