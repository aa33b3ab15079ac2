// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/snapshot.h>

#include "support/class_builder.h"
#include "support/faulty_provider.h"

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

std::string Shown(const ICIMNamespace& ns) {
  std::vector<TClassSnapshot> classes;
  TSnapshotReader(ns, kValues, classes).ReadAll();
  return TextOf(classes);
}

TEST(Snapshot, HasInheritedPropertiesAndKeysThatAnOverridingDeclarationDoesNotRepeat) {
  const TNamespace ns = MakeNamespace();
  const auto top = AddClass(ns, "T_Top", {{"Id", 0}}, {{"Name", ""}});
  AddDerived(ns, "T_Derived", top, {{"Id", 0}, {"Size", 2U}});
  AddInstance(ns, "T_Derived", {{"Id", 7}, {"Name", "n"}});
  const auto faults = boost::make_shared<TFaults>();
  const std::string expected =
      "T_Top 0: Id sint32* Name string\n"
      "T_Derived(T_Top) 1: Id sint32* Name string Size uint32; T_Derived.Id=\"7\" 7 n 2\n";
  EXPECT_EQ(Shown(*ns), expected);
  faults->fHidesInherited = true;
  EXPECT_EQ(Shown(*MakeFaultyNamespace(ns, faults)), expected);
}

/// What a reader reads of one class below another, each with two instances, the later one first.
template <typename TRead>
std::string ShownAfter(EDepth depth, TRead&& read) {
  const TNamespace ns = MakeNamespace();
  AddDerived(ns, "B", AddClass(ns, "C", {{"Id", 0}}), {});
  AddClass(ns, "A", {}, {{"Text", ""}});
  for (const int id : {2, 1}) AddInstance(ns, id == 2 ? "B" : "C", {{"Id", id}});
  for (const char* text : {"b", "a"}) AddInstance(ns, "A", {{"Text", text}});
  std::vector<TClassSnapshot> classes;
  TSnapshotReader reader(*ns, depth, classes);
  read(reader, ns);
  SortSnapshot(classes);
  return TextOf(classes);
}

TEST(Snapshot, GoesAsDeepAsItIsAskedToAndIsSorted) {
  const auto readAll = [](TSnapshotReader& reader, const TNamespace&) { reader.ReadAll(); };
  EXPECT_EQ(ShownAfter(kNamespaces, readAll), "");
  EXPECT_EQ(ShownAfter(kClasses, readAll),
            "A 2: Text string\nB(C) 1: Id sint32*\nC 1: Id sint32*\n");
  EXPECT_EQ(
      ShownAfter(kInstances, readAll),
      "A 2: Text string; A; A\nB(C) 1: Id sint32*; B.Id=\"2\"\nC 1: Id sint32*; C.Id=\"1\"\n");
  EXPECT_EQ(ShownAfter(kValues, readAll),
            "A 2: Text string; A a; A b\nB(C) 1: Id sint32*; B.Id=\"2\" 2\nC 1: Id sint32*; "
            "C.Id=\"1\" 1\n");
}

TEST(Snapshot, MayBeOfPartOfANamespace) {
  EXPECT_EQ(ShownAfter(kInstances, [](auto& reader,
                                      const auto& ns) { reader.ReadTree(ns->GetClass("C", {})); }),
            "B(C) 1: Id sint32*; B.Id=\"2\"\nC 1: Id sint32*; C.Id=\"1\"\n");
  EXPECT_EQ(ShownAfter(kValues,
                       [](auto& reader, const auto& ns) {
                         reader.ReadInstance(*ns->GetClass("B", {})->GetInstance(
                             TCIMReference(ns, "B.Id=\"2\"", {}), {}));
                       }),
            "B(C) 1: Id sint32*; B.Id=\"2\" 2\n");
}

}  // namespace
}  // namespace NVORNQDX20
