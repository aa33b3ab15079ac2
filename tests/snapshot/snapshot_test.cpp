// SPDX-License-Identifier: Apache-2.0
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

/// What a reader reads of one class below another, each with two instances, the later one first.
template <typename TRead>
std::string ShownAfter(EDepth depth, TRead&& read) {
  const TNamespace ns = MakeNamespace();
  AddDerived(ns, "B", AddClass(ns, "C", {{"Id", 0}}), {{"Size", 3U}});
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
    EXPECT_EQ(ShownAfter(depth, [](auto& reader, const auto&) { reader.ReadAll(); }), texts[depth]);
  }
}

TEST(Snapshot, MayBeOfPartOfANamespace) {
  const auto readTree = [](auto& reader, const auto& ns) {
    reader.ReadTree(ns->GetClass("C", {}));
  };
  EXPECT_EQ(ShownAfter(kClasses, readTree), "B(C) 1: Id sint32* Size uint32\nC 1: Id sint32*\n");
  const auto readInstance = [](auto& reader, const auto& ns) {
    const TCIMReference path(ns, "B.Id=\"2\"", {});
    reader.ReadInstance(*path.GetClass()->GetInstance(path, {}));
  };
  EXPECT_EQ(ShownAfter(kValues, readInstance), "B(C) 1: Id sint32* Size uint32; B.Id=\"2\" 2 3\n");
}

}  // namespace
}  // namespace NVORNQDX20
