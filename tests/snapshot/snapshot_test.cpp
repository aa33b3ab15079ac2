// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/snapshot.h>

#include "support/class_builder.h"
#include "support/faulty_provider.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// "Class: name type[*] ...; path value ...; ", keys with a star.
std::string Shown(const ICIMNamespace& ns) {
  std::vector<TClassSnapshot> classes;
  TSnapshotReader(ns, kValues, classes).ReadAll();
  std::string text;
  for (const TClassSnapshot& cimClass : classes) {
    text += cimClass.fName + ":";
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

TEST(Snapshot, HasInheritedPropertiesAndKeysThatAnOverridingDeclarationDoesNotRepeat) {
  const TNamespace ns = MakeNamespace();
  const auto top = AddClass(ns, "T_Top", {{"Id", 0}}, {{"Name", ""}});
  AddDerived(ns, "T_Derived", top, {{"Id", 0}, {"Size", 2U}});
  AddInstance(ns, "T_Derived", {{"Id", 7}, {"Name", "n"}});
  const auto faults = boost::make_shared<TFaults>();
  const std::string expected =
      "T_Top: Id sint32* Name string\n"
      "T_Derived: Id sint32* Name string Size uint32; T_Derived.Id=\"7\" 7 n 2\n";
  EXPECT_EQ(Shown(*ns), expected);
  faults->fHidesInherited = true;
  EXPECT_EQ(Shown(*MakeFaultyNamespace(ns, faults)), expected);
}

}  // namespace
}  // namespace NVORNQDX20
