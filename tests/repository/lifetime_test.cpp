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

  void ExpectGone() {
    fLink.reset();
    fNamespace.reset();
    EXPECT_TRUE(fWeak.expired());
  }

  TNamespace fNamespace = MakeNamespace();
  const boost::weak_ptr<ICIMNamespace> fWeak = fNamespace;
  boost::shared_ptr<ICIMInstance> fLink;
};

TEST_F(RepositoryLifetime, EndsWithTheLastHolderThoughItRefersToItself) { ExpectGone(); }

TEST_F(RepositoryLifetime, EndsWithWhatWasNeverCommitted) {
  boost::shared_ptr<ICIMPropertyDecl> decl;
  boost::weak_ptr<ICIMClass> half;
  {
    const auto made = fNamespace->CreateClass("T_Half", fNamespace->GetClass("T_A", {}), {});
    TCIMValue self(TCIMType::kCIMTypeReference, 0);
    self.SetReferencedClass(made);
    decl = made->CreatePropertyDecl("Self", self, {});
    half = made;
    // A class that may still vanish must not be named by what may stay.
    const auto other = fNamespace->CreateClass("T_X", nullptr, {});
    EXPECT_QDX_STATUS(other->CreatePropertyDecl("A", self, {}), kQDXStatusInvalidReference);
    fNamespace->GetClass("T_A", {})->CreateInstance({});
  }
  EXPECT_EQ(decl->GetDefaultValue().GetReferencedClass(), half.lock()) << "it holds its class";
  decl.reset();
  EXPECT_TRUE(half.expired());
  ExpectGone();
}

TEST_F(RepositoryLifetime, LastsAsLongAsAnInstanceIsHeld) {
  fNamespace.reset();
  EXPECT_EQ(fLink->GetClass({})->GetName({}), "T_Link");
  EXPECT_EQ(fLink->GetProperty("To", {})->GetValue().ToString(10), "T_A.Id=\"7\"");
  ExpectGone();
}

TEST_F(RepositoryLifetime, LastsAsLongAsAValueIsHeldThatRefersToIt) {
  const auto link = fNamespace->GetClass("T_Link", {});
  for (const TCIMValue& value : {TCIMValue(link->GetPropertyDecl("To", {})->GetDefaultValue()),
                                 TCIMValue(fLink->GetProperty("To", {})->GetValue())}) {
    const TCIMReference reference = value;
    EXPECT_EQ(reference.GetNamespace(), fNamespace);
    const long holders = reference.GetClass().use_count();
    EXPECT_GT(holders, 1) << "owned, not only pointed to";
  }
}

TEST_F(RepositoryLifetime, BindsReferencesWhenTheyAreRead) {
  const auto property = fLink->GetProperty("To", {});
  const TCIMValue& value = property->GetValue();
  const TCIMReference reference = value;
  EXPECT_EQ(reference.GetNamespace(), fNamespace);
  EXPECT_EQ(reference.GetClass(), fNamespace->GetClass("T_A", {}));
  EXPECT_EQ(value.GetReferencedClass(), reference.GetClass());
  EXPECT_EQ(reference.GetPath(), "T_A.Id=\"7\"") << "in the declared spelling";
  EXPECT_NE(reference.GetCIMElement(), nullptr);

  const auto array = fLink->GetProperty("All", {});
  const std::vector<TCIMValue>& all = array->GetValue();
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[1], value);

  const auto next = fLink->GetProperty("Next", {});
  EXPECT_TRUE(next->GetValue().IsNull());
  EXPECT_EQ(next->GetValue().GetReferencedClass(), fNamespace->GetClass("T_Link", {}));

  AddInstance(fNamespace, "T_A", {{"Id", 8U}});
  TCIMReference other(fNamespace, "T_A.Id=\"8\"", TOptionsMap());
  fLink->SetPropertyValue("To", TCIMValue(other), {});
  EXPECT_EQ(property->GetValue().ToString(10), "T_A.Id=\"8\"");
}

TEST_F(RepositoryLifetime, KeepsReferencesToAnotherNamespaceAsTheyAre) {
  const TNamespace source = fNamespace;
  const TNamespace other = MakeNamespace();
  AddClass(other, "T_A", {{"Id", 0U}});
  AddClass(other, "T_B", {}, {{"To", NullReference(other, "T_A")}});
  const auto b = AddInstance(other, "T_B", {{"To", Target()}});
  const TCIMReference reference = b->GetProperty("To", {})->GetValue();
  EXPECT_EQ(reference.GetNamespace(), source);
}

TEST_F(RepositoryLifetime, GivesOneObjectForEachClassWithAnOwnerOfItsOwn) {
  const auto a = fNamespace->GetClass("T_A", {});
  const auto link = fNamespace->GetClass("T_Link", {});
  EXPECT_EQ(fLink->GetClass({}), link);
  TCIMReference toA(fNamespace, TOptionsMap());
  toA.SetClass(a);
  TCIMReference toLink(fNamespace, TOptionsMap());
  toLink.SetClassName("T_Link");
  EXPECT_NE(toA < toLink, toLink < toA) << "references order classes by their owners";
  const auto sub = fNamespace->CreateClass("T_Sub", a, {});
  EXPECT_EQ(sub->GetPropertyDecl("Id", {}), a->GetPropertyDecl("Id", {})) << "an inherited one";
}

}  // namespace
}  // namespace NVORNQDX20
