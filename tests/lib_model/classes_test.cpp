// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/classes.h>

#include "support/class_builder.h"
#include "support/faulty_provider.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// "Id* Name ", keys with a star.
std::string Listed(const std::vector<NModel::TClassProperty>& properties) {
  std::string text;
  for (const auto& [decl, isKey] : properties) text += decl->GetName() + (isKey ? "* " : " ");
  return text;
}

TEST(Properties, AreThoseOfAllSuperclassesAndKeysStayKeys) {
  const auto ns = MakeNamespace();  // its Key does not come down to overriding declarations
  const auto top = AddClass(ns, "T_Top", {{"Id", 1}}, {{"Name", "top"}});
  const auto middle = AddDerived(ns, "T_Middle", top, {{"ID", 2}, {"Size", 3}});
  const auto bottom = AddDerived(ns, "T_Bottom", middle, {{"name", "bottom"}});
  EXPECT_EQ(Listed(NModel::PropertiesOf(*top)), "Id* Name ");
  EXPECT_EQ(Listed(NModel::PropertiesOf(*middle)), "ID* Name Size ");
  const auto properties = NModel::PropertiesOf(*bottom);
  EXPECT_EQ(Listed(properties), "ID* name Size ");
  EXPECT_EQ(properties[0].fDecl->GetDefaultValue(), TCIMValue(2));

  const auto faults = boost::make_shared<TFaults>();
  faults->fHidesInherited = true;
  const auto sparse = MakeFaultyNamespace(ns, faults)->GetClass("T_Bottom", {});
  EXPECT_EQ(Listed(NModel::PropertiesOf(*sparse)), "name ID* Size ");
}

}  // namespace
}  // namespace NVORNQDX20
