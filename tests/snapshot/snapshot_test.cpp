// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/missing.h>
#include <qdxsnapshot/snapshot.h>

#include "support/class_builder.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// "Class(Superclass) count: name type[*] ...; path value ...", keys with a star.
std::string TextOf(const std::vector<TClassSnapshot>& classes) {
  std::string text;
  for (const TClassSnapshot& cimClass : classes) {
    text += cimClass.fName;
    if (!cimClass.fSuperclass.empty()) text += "(" + cimClass.fSuperclass + ")";
    text += " " + std::to_string(cimClass.fInstanceCount) + ":";
    for (const TPropertySnapshot& property : cimClass.fProperties) {
      text += " " + property.fName + " " + property.fType + (property.fIsKey ? "*" : "");
    }
    for (const TInstanceSnapshot& instance : cimClass.fInstances) {
      text += "; " + instance.fPath;
      for (const TJSON& value : instance.fValues) text += " " + PlainText(value);
    }
    text += "\n";
  }
  return text;
}

TEST(InstanceReasons, AreItsOwnOrThoseOfAllThatLackTheValue) {
  TClassSnapshot disk;
  disk.fName = "Disk";
  for (const char* name : {"Id", "Size", "Maker"}) {
    disk.fProperties.push_back({name, "string", disk.fProperties.empty(), false, nullptr});
  }
  const NDescribe::TMissingReasons reasons = {{{"Disk", "a", "Size"}, "own"},
                                              {{"Disk", "", "Size"}, "shared"},
                                              {{"Disk", "", "Maker"}, "shared"},
                                              {{"Disk", "", "Id"}, "key"}};
  const std::pair<TInstanceSnapshot, std::vector<std::string>> rows[] = {
      {{"", {"a", nullptr, nullptr}}, {"", "own", "shared"}},
      {{"", {"b", nullptr, ""}}, {"", "shared", ""}},
      {{"", {"", 1, "x"}}, {"key", "", ""}}};
  for (const auto& [instance, expected] : rows) {
    const TInstanceReasons found(reasons, disk, instance);
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const NDescribe::TReason* const reason = found.Find(i);
      EXPECT_EQ(reason == nullptr ? "" : *reason, expected[i]) << instance.fValues;
    }
  }
}

TEST(Snapshot, GoesAsDeepAsItIsAskedToAndIsSorted) {
  const TNamespace ns = MakeNamespace();
  AddDerived(ns, "B", AddClass(ns, "C", {{"Id", 0}}), {{"Size", 3U}});
  AddClass(ns, "A", {}, {{"Text", ""}});
  for (const int id : {2, 1}) AddInstance(ns, id == 2 ? "B" : "C", {{"Id", id}});
  for (const char* text : {"b", "a"}) AddInstance(ns, "A", {{"Text", text}});
  const std::string texts[] = {"",
                               "A 2: Text string\n"
                               "B(C) 1: Id sint32* Size uint32\n"
                               "C 1: Id sint32*\n",
                               "A 2: Text string; A; A\n"
                               "B(C) 1: Id sint32* Size uint32; B.Id=\"2\"\n"
                               "C 1: Id sint32*; C.Id=\"1\"\n",
                               "A 2: Text string; A a; A b\n"
                               "B(C) 1: Id sint32* Size uint32; B.Id=\"2\" 2 3\n"
                               "C 1: Id sint32*; C.Id=\"1\" 1\n"};
  for (const EDepth depth : {kNamespaces, kClasses, kInstances, kValues}) {
    std::vector<TClassSnapshot> classes;
    TSnapshotReader(*ns, depth, classes).ReadAll();
    SortSnapshot(classes);
    EXPECT_EQ(TextOf(classes), texts[depth]);
  }
}

TEST(Snapshot, HasWhatTheDeclarationsSay) {
  const TNamespace ns = MakeNamespace();
  NDescribe::TClassDeclaration base{"Base", {}, {{"Size", 0U}, {"Id", 0}}};
  base.fProperties[0].fDescription = "How large it is.";
  base.fProperties[0].fUnit = "byte";
  base.fProperties[0].fEnumeration = {{0, "Empty"}};
  base.fProperties[1].fIsKey = true;
  base.fProperties[1].fSecret = NDescribe::ESecret::kSerial;
  NDescribe::DeclareClass(*ns, base);
  NDescribe::TClassDeclaration derived{"Derived", {}, {{"Able", true}, {"Size", 0U}}, "Base"};
  derived.fProperties[1].fUnit = "bit";
  NDescribe::DeclareClass(*ns, derived);

  std::vector<TClassSnapshot> classes;
  TSnapshotReader(*ns, kValues, classes).ReadAll();
  ASSERT_EQ(classes.size(), 2U);
  const auto& properties = classes[1].fProperties;
  EXPECT_EQ(InOrderOfDeclaration(classes[1]), (std::vector<std::size_t>{2, 1, 0}));
  EXPECT_EQ(properties[1].fSecret, "serial");
  EXPECT_EQ(properties[2].fUnit, "bit");
  EXPECT_EQ(properties[2].fDescription, "How large it is.");
  ASSERT_EQ(properties[2].fValueNames.size(), 1U);
  EXPECT_EQ(properties[2].fValueNames[0].second, "Empty");
}

}  // namespace
}  // namespace NVORNQDX20
