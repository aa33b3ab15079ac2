// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/repository.h>

#include <qdxcore/reference.h>

#include "support/class_builder.h"

#include <gtest/gtest.h>
#include <boost/weak_ptr.hpp>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

/// Everything in it that refers to the namespace itself, in all ways a value can.
class RepositoryLifetime : public ::testing::Test {
 protected:
  RepositoryLifetime() {
    AddClass(fNamespace, "T_A", {{"Id", 0U}});
    AddInstance(fNamespace, "T_A", {{"Id", 7U}});
    const auto link = fNamespace->CreateClass("T_Link", nullptr, {});
    TCIMValue self(TCIMType::kCIMTypeReference, 0);
    self.SetReferencedClass(link);
    link->CreatePropertyDecl("Next", self, {})->Commit();
    link->CreatePropertyDecl("To", Target(), {})->Commit();
    link->CreatePropertyDecl("All", All(), {})->Commit();
    link->Commit({});
    link->SetStaticPropertyValue("To", Target(), {});
    fLink = AddInstance(fNamespace, "T_Link", {{"To", Target()}, {"All", All()}, {"Next", self}});
  }

  TCIMValue Target() const {
    TCIMReference reference(fNamespace, "T_A.id=\"7\"", TOptionsMap());
    reference.GetCIMElement();  // it keeps the instance now, and that the namespace
    return TCIMValue(reference);
  }
  TCIMValue All() const { return TCIMValue(TCIMType::kCIMTypeReference, 2, {Target(), Target()}); }

  ~RepositoryLifetime() override {
    fLink.reset();
    fNamespace.reset();
    EXPECT_TRUE(fWeak.expired()) << "a cycle of owners";
  }

  TNamespace fNamespace = MakeNamespace();
  const boost::weak_ptr<ICIMNamespace> fWeak = fNamespace;
  boost::shared_ptr<ICIMInstance> fLink;
};

TEST_F(RepositoryLifetime, EndsWithTheLastHolderThoughItRefersToItself) {
  fNamespace.reset();  // the instance holds it
  EXPECT_EQ(fLink->GetProperty("To", {})->GetValue().ToString(10), "T_A.Id=\"7\"");
}

TEST_F(RepositoryLifetime, BindsReferencesWhenTheyAreRead) {
  const auto a = fNamespace->GetClass("T_A", {});
  const auto link = fLink->GetClass({});
  const auto property = fLink->GetProperty("To", {});
  const TCIMValue& value = property->GetValue();
  for (const TCIMValue& read : {value, link->GetPropertyDecl("To", {})->GetDefaultValue()}) {
    const TCIMReference reference = read;
    EXPECT_EQ(reference.GetNamespace(), fNamespace);
    EXPECT_EQ(reference.GetClass(), a);
    EXPECT_GT(reference.GetClass().use_count(), 1) << "owned, not only pointed to";
    EXPECT_EQ(reference.GetPath(), "T_A.Id=\"7\"") << "in the declared spelling";
    EXPECT_NE(reference.GetCIMElement(), nullptr);
  }
  const auto array = fLink->GetProperty("All", {});
  const std::vector<TCIMValue>& all = array->GetValue();
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[1], value);
  const auto next = fLink->GetProperty("Next", {});
  EXPECT_TRUE(next->GetValue().IsNull());
  EXPECT_EQ(next->GetValue().GetReferencedClass(), link);

  // References order classes by their owners: each has one of its own.
  const TCIMReference toA(fNamespace, "T_A", {}), toLink(fNamespace, "T_Link", {});
  EXPECT_NE(toA < toLink, toLink < toA);
}

}  // namespace
}  // namespace NVORNQDX20
