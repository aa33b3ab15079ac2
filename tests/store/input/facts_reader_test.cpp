// SPDX-License-Identifier: Apache-2.0
#include "input/facts_reader.h"

#include <gtest/gtest.h>

#include "store/input/host.h"
#include "support/expect_status.h"

namespace NVORNQDX20::NStore {
namespace {

using NDescribe::TReason;

constexpr std::size_t kMany = 1000;

TDocumentFacts Read(const std::vector<TNamespace>& namespaces) {
  return ReadFacts({namespaces, {}, std::nullopt, kMany});
}

/// One line for each fact that is not a key.
std::string ListOf(const TDocumentFacts& facts) {
  std::string list;
  for (const auto& fact : facts.fFacts) {
    const auto& property = facts.fProperties[fact.fProperty];
    const auto& object = facts.fObjects[fact.fObject];
    if (property.fIsKey) continue;
    list += facts.fClasses[object.fClass].fName + " <" + object.fName + "> " + property.fName +
            (property.fIsVolatile ? " volatile" : "") + " = " + fact.fValue + "\n";
  }
  return list;
}

std::string ObjectsOf(const TDocumentFacts& facts) {
  std::string list;
  for (const auto& object : facts.fObjects) {
    list += facts.fClasses[object.fClass].fName + " <" + object.fName + ">" +
            (object.fParts.empty() ? "" : " of " + object.fParts) + "\n";
  }
  return list;
}

TEST(FactsReader, NamesObjectsTheSameOnEachHost) {
  std::string lists[2];
  for (const bool isOther : {false, true}) {
    const TTestHost host{isOther ? "db7.example" : "web1"};
    const TNamespace ns = MakeHost(host, {{"ProductName", "R1"}});
    DeclareDisks(ns);
    AddDisk(ns, host.fName, "sdb", {{"Model", "M"}, {"Hours", Number(7)}});
    AddDisk(ns, host.fName, "sda", {{"Model", ""}});
    lists[isOther ? 1 : 0] = ListOf(Read({ns, MakeRecord(host)}));
  }
  EXPECT_EQ(lists[0],
            "VORNSG_ComputerSystem <> ProductName = R1\n"
            "VORNSG_DiskDrive <sda> Model = \n"
            "VORNSG_DiskDrive <sdb> Hours volatile = 7\n"
            "VORNSG_DiskDrive <sdb> Model = M\n");
  EXPECT_EQ(lists[1], lists[0]);
}

TEST(FactsReader, FindsWhatNamesTheHostAndWhen) {
  const TTestHost host{"web1"};
  const TNamespace ns =
      MakeHost(host, {{"UUID", " ABCD-1 "}, {"SerialNumber", "S1"}, {"ProductName", "R1"}});
  AddClass(ns, "VORNSG_OperatingSystem", {{"Name", kNoText}}, {{"MachineID", kNoText}});
  AddInstance(ns, "VORNSG_OperatingSystem", {{"Name", "Debian"}, {"MachineID", "12ab"}});
  const TDocumentFacts facts = Read({ns, MakeRecord(host)});
  EXPECT_EQ(facts.fHost.fUUID, "abcd-1");
  EXPECT_EQ(facts.fHost.fMachineID, "12ab");
  EXPECT_EQ(facts.fHost.fSerialNumber, "S1");
  EXPECT_EQ(facts.fHost.fModel, "R1");
  EXPECT_EQ(facts.fHost.fName, "web1");
  EXPECT_EQ(facts.fTime, kNoonTime);
  EXPECT_TRUE(facts.fIsComplete);
  EXPECT_TRUE(facts.fHasAllPermissions);
  EXPECT_EQ(facts.fNamespaces, std::vector<std::string>{"root/cimv2"});
}

TEST(FactsReader, RefusesWhatNamesNoHostNoTimeOrTooMuch) {
  const TNamespace nobody = MakeHost({""});
  EXPECT_QDX_STATUS(Read({nobody, MakeRecord({""})}), kQDXStatusInvalidDataCollectionDocument);
  const TTestHost host{"web1", ""};
  const TNamespace ns = MakeHost(host);
  EXPECT_QDX_STATUS(Read({ns, MakeRecord(host)}), kQDXStatusInvalidDataCollectionDocument);
  EXPECT_EQ(ReadFacts({{ns}, {}, 5, kMany}).fTime, 5);
  EXPECT_QDX_STATUS(ReadFacts({{ns}, {}, 5, 2}), kQDXStatusInvalidDataCollectionDocument);
}

TEST(FactsReader, TellsApartObjectsThatHaveTheSameNameOrNone) {
  const TTestHost host{"web1"};
  const TNamespace ns = MakeHost(host);
  AddClass(ns, "Link", {{"A", kNoText}, {"B", kNoText}});
  AddInstance(ns, "Link", {{"B", "y"}, {"A", "x, x"}});
  AddClass(ns, "Note", {}, {{"Text", kNoText}});
  for (int i = 0; i < 2; ++i) AddInstance(ns, "Note", {{"Text", "t"}});
  AddClass(ns, "Other", {{"CreationClassName", kNoText}});
  for (const char* const name : {"P", "Q"}) AddInstance(ns, "Other", {{"CreationClassName", name}});
  AddClass(ns, "Firmware", {{"ID", kNoText}, {"Name", kNoText}, {"Version", kNoText}});
  for (const char* const version : {"1", "2"}) {
    AddInstance(ns, "Firmware", {{"ID", "BIOS"}, {"Name", "BIOS"}, {"Version", version}});
  }
  AddClass(ns, "Release", {{"Version", kNoText}});
  AddInstance(ns, "Release", {{"Version", "12"}});
  // An object of another machine keeps its name.
  AddClass(ns, "Port", {{"SystemName", kNoText}, {"DeviceID", kNoText}});
  for (const char* const name : {"WEB1", "vm", ""}) {
    AddInstance(ns, "Port", {{"SystemName", name}, {"DeviceID", "eth0"}});
  }
  EXPECT_EQ(ObjectsOf(Read({ns, MakeRecord(host)})),
            "VORNSG_ComputerSystem <>\n"
            "Link <\"x, x\", y>\n"
            "Note <#0b857b8207588187>\n"
            "Note <#0b857b8207588187 (2)>\n"
            "Other <>\n"
            "Other < (2)>\n"
            "Firmware <BIOS>\n"
            "Firmware <BIOS (2)>\n"
            "Release <12>\n"
            "Port <eth0>\n"
            "Port <eth0 (2)>\n"
            "Port <eth0, vm>\n");
}

TEST(FactsReader, KnowsThePartsOfWhatAnAssociationTies) {
  const TTestHost host{"web1"};
  const TNamespace ns = MakeHost(host);
  DeclareDisks(ns);
  AddDisk(ns, "web1", "sda", {});
  AddClass(ns, "Device",
           {{"Group", NullReference(ns, "VORNSG_ComputerSystem")},
            {"Part", NullReference(ns, "VORNSG_DiskDrive")}},
           {}, nullptr, true);
  AddInstance(ns, "Device",
              {{"Group", ReferenceTo(ns,
                                     "VORNSG_ComputerSystem.CreationClassName="
                                     "\"VORNSG_ComputerSystem\",Name=\"web1\"")},
               {"Part", ReferenceTo(ns, "VORNSG_DiskDrive.DeviceID=\"sda\",SystemName=\"web1\"")}});
  EXPECT_EQ(ObjectsOf(Read({ns, MakeRecord(host)})),
            "VORNSG_ComputerSystem <>\n"
            "VORNSG_DiskDrive <sda> of disks\n"
            "Device <VORNSG_ComputerSystem, VORNSG_DiskDrive sda> of disks\n");
}

/// A host with disks sda and sdb, for which these values are missing.
TDocumentFacts ReadWithout(const std::vector<NDescribe::TMissingValue>& missing,
                           const TTestHost& host = {}) {
  const TNamespace ns = MakeHost(host);
  DeclareDisks(ns);
  for (const char* const id : {"sda", "sdb"}) AddDisk(ns, host.fName, id, {});
  NDescribe::WriteMissingValues(*ns, missing);
  return Read({ns, MakeRecord(host)});
}

struct TSight {
  const char* fName;
  std::vector<NDescribe::TMissingValue> fMissing;
  TTestHost fHost;
  std::string fUnknown;  ///< Of the questions in kAsked.
};

/// What a store may have of the host.
constexpr struct {
  const char* fName;
  const char* fNamespace;
  const char* fClass;
  const char* fParts;
  const char* fObject;
  const char* fProperty;
} kAsked[] = {{"model of sda", "root/cimv2", "VORNSG_DiskDrive", "disks", "sda", "Model"},
              {"model of sdb", "root/cimv2", "VORNSG_DiskDrive", "disks", "sdb", "Model"},
              {"model of sdc", "root/cimv2", "VORNSG_DiskDrive", "disks", "sdc", "Model"},
              {"WWN of sda", "root/cimv2", "VORNSG_DiskDrive", "disks", "sda", "WWN"},
              {"name of a user", "root/cimv2", "VORNSG_Account", "users", "root", "Name"},
              {"a disk's user", "root/cimv2", "Uses", "disks users", "x", "From"},
              {"another namespace", "root/other", "C", "", "x", "P"}};

class FactsReaderSight : public ::testing::TestWithParam<TSight> {};

TEST_P(FactsReaderSight, KnowsWhatTheHostMayHave) {
  const TDocumentFacts facts = ReadWithout(GetParam().fMissing, GetParam().fHost);
  std::string unknown;
  for (const auto& asked : kAsked) {
    if (!facts.IsUnknown(asked.fNamespace, asked.fClass, asked.fParts, asked.fObject,
                         asked.fProperty)) {
      continue;
    }
    unknown += (unknown.empty() ? "" : ", ") + std::string(asked.fName);
  }
  EXPECT_EQ(unknown, GetParam().fUnknown);
}

const TReason kAbsent("it has none");
const TReason kError("Permission denied", TReason::kError);

INSTANTIATE_TEST_SUITE_P(
    Documents, FactsReaderSight,
    ::testing::Values(
        TSight{"Complete", {}, {}, "another namespace"},
        TSight{"Absent", {{"VORNSG_DiskDrive", "sda", "Model", kAbsent}}, {}, "another namespace"},
        TSight{"OneValue",
               {{"VORNSG_DiskDrive", "sda", "Model", kError}},
               {},
               "model of sda, another namespace"},
        TSight{"AllValues",
               {{"VORNSG_DiskDrive", "", "Model", kError}},
               {},
               "model of sda, model of sdb, model of sdc, another namespace"},
        TSight{"Instances",
               {{"VORNSG_DiskDrive", "", "", kAbsent}},
               {},
               "model of sda, model of sdb, model of sdc, WWN of sda, another namespace"},
        TSight{"NoInstances", {{"VORNSG_Account", "", "", kAbsent}}, {}, "another namespace"},
        TSight{"Part",
               {},
               {"web1", kNoon, {"users"}},
               "name of a user, a disk's user, another namespace"},
        TSight{"OfAPart",
               {{"VORNSG_DiskDrive", "sda", "WWN", TReason("part x is left out")}},
               {},
               "WWN of sda, another namespace"},
        TSight{"Provider",
               {},
               {"web1", kNoon, {}, {"root/cimv2"}},
               "model of sda, model of sdb, model of sdc, WWN of sda, name of a user, "
               "a disk's user, another namespace"}),
    [](const auto& test) { return std::string(test.param.fName); });

TEST(FactsReader, ReportsWhatIsMissing) {
  const TDocumentFacts facts = ReadWithout({{"VORNSG_ComputerSystem", "", "UUID", kError},
                                            {"VORNSG_DiskDrive", "", "Model", kAbsent},
                                            {"VORNSG_DiskDrive", "sdb", "WWN", kAbsent},
                                            {"VORNSG_DiskDrive", "sdx", "WWN", kAbsent}});
  std::string list;
  for (const auto& missing : facts.fMissing) {
    list += facts.fClasses[missing.fClass].fName + " <" + missing.fObject.value_or("any") + "> " +
            missing.fProperty + (missing.fIsError ? " error: " : ": ") + missing.fReason + "\n";
  }
  EXPECT_EQ(list,
            "VORNSG_ComputerSystem <> UUID error: Permission denied\n"
            "VORNSG_DiskDrive <any> Model: it has none\n"
            "VORNSG_DiskDrive <sdb> WWN: it has none\n"
            "VORNSG_DiskDrive <sdx> WWN: it has none\n");
  EXPECT_FALSE(facts.fHasAllPermissions);
}

}  // namespace
}  // namespace NVORNQDX20::NStore
