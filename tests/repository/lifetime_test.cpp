// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/repository.h>

#include <qdxcore/reference.h>

#include "support/class_builder.h"
#include "support/expect_status.h"

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
  fNamespace.reset();
  EXPECT_EQ(fLink->GetClass({})->GetName({}), "T_Link") << "an instance holds it";
  EXPECT_EQ(fLink->GetProperty("To", {})->GetValue().ToString(10), "T_A.Id=\"7\"");
}

TEST_F(RepositoryLifetime, EndsWithWhatWasNeverCommitted) {
  auto made = fNamespace->CreateClass("T_Half", fNamespace->GetClass("T_A", {}), {});
  const boost::weak_ptr<ICIMClass> half = made;
  TCIMValue toHalf(TCIMType::kCIMTypeReference, 0);
  toHalf.SetReferencedClass(made);
  auto decl = made->CreatePropertyDecl("Self", toHalf, {});
  // A class that may still vanish must not be named by what may stay.
  const auto other = fNamespace->CreateClass("T_X", nullptr, {});
  EXPECT_QDX_STATUS(other->CreatePropertyDecl("Half", toHalf, {}), kQDXStatusInvalidReference);
  toHalf = TCIMValue(TCIMType::kCIMTypeReference, 0);
  made.reset();
  EXPECT_EQ(decl->GetDefaultValue().GetReferencedClass(), half.lock()) << "it holds its class";
  decl.reset();
  EXPECT_TRUE(half.expired());
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

  AddInstance(fNamespace, "T_A", {{"Id", 8U}});
  TCIMReference other(fNamespace, "T_A.Id=\"8\"", TOptionsMap());
  fLink->SetPropertyValue("To", TCIMValue(other), {});
  EXPECT_EQ(property->GetValue().ToString(10), "T_A.Id=\"8\"");

  // References order classes by their owners: each has one of its own.
  const TCIMReference toA(fNamespace, "T_A", {}), toLink(fNamespace, "T_Link", {});
  EXPECT_NE(toA < toLink, toLink < toA);
}

TEST_F(RepositoryLifetime, KeepsReferencesToAnotherNamespaceAsTheyAre) {
  const TNamespace other = MakeNamespace();
  AddClass(other, "T_A", {{"Id", 0U}});
  AddClass(other, "T_B", {}, {{"To", NullReference(other, "T_A")}});
  const auto b = AddInstance(other, "T_B", {{"To", Target()}});
  const TCIMReference reference = b->GetProperty("To", {})->GetValue();
  EXPECT_EQ(reference.GetNamespace(), fNamespace);
}

}  // namespace
}  // namespace NVORNQDX20
