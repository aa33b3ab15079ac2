// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/repository.h>

#include "support/class_builder.h"
#include "support/expect_status.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;
using TClass = boost::shared_ptr<ICIMClass>;

boost::shared_ptr<ICIMPropertyDecl> AddProperty(const TNamespace& ns, const TClass& to,
                                                const std::string& name, const TCIMValue& value,
                                                const TProperties& qualifiers = {}) {
  const auto decl = to->CreatePropertyDecl(name, value, {});
  for (const auto& [qualifier, what] : qualifiers) {
    decl->AddQualifier(ns->GetQualifierDecl(qualifier, {}), what)->Commit();
  }
  decl->Commit();
  return decl;
}

/// T_Base has the key Id, T_Plain has none; qualifier Fixed cannot be changed below, Local and Free
/// can; what Local says stays where it is said.
TNamespace MakeBase() {
  const TNamespace ns = MakeNamespace();
  ns->CreateQualifierDecl("Fixed", "", kScopeAny, kFlavorToSubclass, {})->Commit();
  ns->CreateQualifierDecl("Local", "", kScopeAny, 0, {})->Commit();
  ns->CreateQualifierDecl("Free", "", kScopeAny, kFlavorToSubclass | kFlavorOverridable, {})
      ->Commit();
  const TClass base = ns->CreateClass("T_Base", nullptr, {});
  base->AddQualifier(ns->GetQualifierDecl("Fixed", {}), "a")->Commit();
  AddProperty(ns, base, "Id", 0U, {{"Key", true}});
  AddProperty(ns, base, "Name", "", {{"Fixed", "a"}, {"Local", "a"}, {"Free", "a"}});
  base->Commit({});
  AddClass(ns, "T_Plain", {}, {{"Count", 0U}});
  return ns;
}

struct TRefusal {
  const char* fName;
  EQDXStatusCode fStatus;
  void (*fAct)(const TNamespace& ns, const TClass& sub);  // sub: new, below T_Base
};

class RepositoryRefuses : public ::testing::TestWithParam<TRefusal> {};

TEST_P(RepositoryRefuses, ItAndChangesNothing) {
  const TNamespace ns = MakeBase();
  const auto count = [&](bool deep) {
    std::vector<boost::shared_ptr<ICIMInstance>> instances;
    std::vector<TClass> classes;
    std::vector<boost::shared_ptr<ICIMQualifierDecl>> decls;
    ns->GetClass("T_Base", {})->EnumerateSubclasses(TAddToVectorCallback(classes), deep, {});
    ns->GetClass("T_Base", {})->EnumerateInstances(TAddToVectorCallback(instances), deep, {});
    ns->EnumerateClasses(TAddToVectorCallback(classes), {});
    ns->EnumerateQualifierDecls(TAddToVectorCallback(decls), {});
    return classes.size() + 100 * instances.size() + 10000 * decls.size();
  };
  AddInstance(ns, "T_Base", {{"Id", 1U}});
  const auto before = count(true);
  const TClass sub = ns->CreateClass("T_Sub", ns->GetClass("T_Base", {}), {});
  EXPECT_QDX_STATUS(GetParam().fAct(ns, sub), GetParam().fStatus);
  EXPECT_EQ(count(true), before);
}

const TRefusal kNames[] = {
    {"EmptyName", kQDXStatusInvalidCIMName,
     [](auto& ns, auto&) { ns->CreateClass("", nullptr, {}); }},
    {"DigitFirst", kQDXStatusInvalidCIMName,
     [](auto& ns, auto&) { ns->CreateClass("1A", nullptr, {}); }},
    {"PropertyWithDot", kQDXStatusInvalidCIMName,
     [](auto&, auto& sub) { sub->CreatePropertyDecl("a.b", 1U, {}); }},
    {"MethodWithBlank", kQDXStatusInvalidCIMName,
     [](auto&, auto& sub) { sub->CreateMethodDecl("a b", TCIMType::kCIMTypeUint8, {}); }},
    {"ParameterWithHyphen", kQDXStatusInvalidCIMName,
     [](auto&, auto& sub) {
       sub->CreateMethodDecl("Run", TCIMType::kCIMTypeUint8, {})
           ->CreateParameterDecl("a-b", TCIMType::kCIMTypeUint8);
     }},
    {"QualifierWithBlank", kQDXStatusInvalidCIMName,
     [](auto& ns, auto&) { ns->CreateQualifierDecl(" A", true, 0, 0, {}); }},
    {"TakenClass", kQDXStatusAlreadyExists,
     [](auto& ns, auto&) { ns->CreateClass("t_BASE", nullptr, {})->Commit({}); }},
    {"TakenQualifierDecl", kQDXStatusAlreadyExists,
     [](auto& ns, auto&) { ns->CreateQualifierDecl("kEY", true, 0, 0, {})->Commit(); }},
    {"TakenProperty", kQDXStatusAlreadyExists,
     [](auto& ns, auto& sub) {
       AddProperty(ns, sub, "New", 1U);
       AddProperty(ns, sub, "NEW", 1U);
     }},
    {"TakenMethod", kQDXStatusAlreadyExists,
     [](auto&, auto& sub) {
       sub->CreateMethodDecl("Run", TCIMType::kCIMTypeUint8, {});
       sub->CreateMethodDecl("RUN", TCIMType::kCIMTypeUint8, {});
     }},
    {"TakenParameter", kQDXStatusAlreadyExists,
     [](auto&, auto& sub) {
       const auto method = sub->CreateMethodDecl("Run", TCIMType::kCIMTypeUint8, {});
       method->CreateParameterDecl("a", TCIMType::kCIMTypeUint8)->Commit();
       method->CreateParameterDecl("A", TCIMType::kCIMTypeUint8)->Commit();
     }},
    {"TakenQualifier", kQDXStatusAlreadyExists,
     [](auto& ns, auto& sub) {
       AddProperty(ns, sub, "New", 1U, {{"Free", "a"}, {"FREE", "a"}});
     }},
    {"UnknownProperty", kQDXStatusNotFound,
     [](auto&, auto& sub) { sub->SetStaticPropertyValue("Idd", 1U, {}); }},
};

const TRefusal kTypes[] = {
    {"UntypedProperty", kQDXStatusInvalidProperty,
     [](auto&, auto& sub) { sub->CreatePropertyDecl("New", TCIMValue(), {}); }},
    {"CharProperty", kQDXStatusInvalidProperty,
     [](auto&, auto& sub) {
       sub->CreatePropertyDecl("New", TCIMValue(TCIMType::kCIMTypeChar, 0), {});
     }},
    {"ReferenceQualifier", kQDXStatusInvalidProperty,
     [](auto& ns, auto&) {
       ns->CreateQualifierDecl("New", NullReference(ns, "T_Base"), 0, 0, {});
     }},
    {"ArrayReturned", kQDXStatusInvalidProperty,
     [](auto&, auto& sub) { sub->CreateMethodDecl("Run", TCIMType(18U), {}); }},
    {"ReferenceToNothing", kQDXStatusInvalidReference,
     [](auto&, auto& sub) {
       sub->CreatePropertyDecl("New", TCIMValue(TCIMType::kCIMTypeReference, 0), {});
     }},
    {"QualifierValue", kQDXStatusTypeMismatch,
     [](auto& ns, auto& sub) {
       AddProperty(ns, sub, "New", 1U, {{"Key", "true"}});
     }},
    {"StaticValue", kQDXStatusTypeMismatch,
     [](auto&, auto& sub) { sub->SetStaticPropertyValue("Id", 1, {}); }},
    {"OverrideOfAnotherType", kQDXStatusTypeMismatch,
     [](auto& ns, auto& sub) { AddProperty(ns, sub, "name", 1U); }},
    {"InstanceValue", kQDXStatusTypeMismatch,
     [](auto& ns, auto&) {
       AddInstance(ns, "T_Base", {{"Id", 2}});
     }},
};

const TRefusal kRules[] = {
    {"ForeignSuperclass", kQDXStatusInvalidClass,
     [](auto& ns, auto&) { ns->CreateClass("T_New", MakeBase()->GetClass("T_Base", {}), {}); }},
    {"UncommittedSuperclass", kQDXStatusInvalidClass,
     [](auto& ns, auto& sub) { ns->CreateClass("T_New", sub, {}); }},
    {"MoreKeys", kQDXStatusInvalidClass,
     [](auto& ns, auto& sub) {
       AddProperty(ns, sub, "New", 1U, {{"Key", true}});
       sub->Commit({});
     }},
    {"ArrayAsKey", kQDXStatusInvalidClass,
     [](auto& ns, auto&) {
       AddClass(ns, "T_New", {{"New", TCIMValue(TCIMType(2U), 3)}});
     }},
    {"InstanceOfAnAbstractClass", kQDXStatusInvalidClass,
     [](auto& ns, auto&) {
       const TNamespace other = MakeBase();  // the class would count as a change of `ns`
       const TClass none = other->CreateClass("T_None", nullptr, {});
       none->AddQualifier(other->GetQualifierDecl("Abstract", {}), true)->Commit();
       none->Commit({});
       static_cast<void>(ns), none->CreateInstance({});
     }},
    {"ForeignQualifier", kQDXStatusNotFound,
     [](auto&, auto& sub) { sub->AddQualifier(MakeBase()->GetQualifierDecl("Key", {}), true); }},
    {"NullQualifier", kQDXStatusNotFound,
     [](auto&, auto& sub) { sub->AddQualifier(nullptr, true); }},
    {"ChangedFixedQualifierOfClass", kQDXStatusNotOverridable,
     [](auto& ns, auto& sub) {
       sub->AddQualifier(ns->GetQualifierDecl("Fixed", {}), "b")->Commit();
     }},
    {"ChangedFixedQualifierOfProperty", kQDXStatusNotOverridable,
     [](auto& ns, auto& sub) {
       AddProperty(ns, sub, "Name", "", {{"Fixed", "b"}});
     }},
    {"NullKey", kQDXStatusInvalidInstance,
     [](auto& ns, auto&) {
       const TCIMValue none(TCIMType::kCIMTypeUint32, 0);
       AddInstance(ns, "T_Base", {{"Id", none}});
     }},
    {"TakenKeys", kQDXStatusAlreadyExists,
     [](auto& ns, auto&) {
       AddInstance(ns, "T_Base", {{"Id", 1U}});
     }},
    {"ClassTwice", kQDXStatusInvalidOpSequence,
     [](auto& ns, auto&) { ns->GetClass("T_Base", {})->Commit({}); }},
    {"PropertyOfACommittedClass", kQDXStatusInvalidOpSequence,
     [](auto& ns, auto&) { AddProperty(ns, ns->GetClass("T_Base", {}), "New", 1U); }},
    {"QualifierOfACommittedProperty", kQDXStatusInvalidOpSequence,
     [](auto& ns, auto& sub) {
       AddProperty(ns, sub, "New", 1U)->AddQualifier(ns->GetQualifierDecl("Key", {}), true);
     }},
    {"QualifierDeclTwice", kQDXStatusInvalidOpSequence,
     [](auto& ns, auto&) { ns->GetQualifierDecl("Key", {})->Commit(); }},
    {"InstanceOfAnUncommittedClass", kQDXStatusInvalidOpSequence,
     [](auto&, auto& sub) { sub->CreateInstance({}); }},
};

const auto kNameOf = [](const auto& info) { return std::string(info.param.fName); };
INSTANTIATE_TEST_SUITE_P(Name, RepositoryRefuses, ::testing::ValuesIn(kNames), kNameOf);
INSTANTIATE_TEST_SUITE_P(Type, RepositoryRefuses, ::testing::ValuesIn(kTypes), kNameOf);
INSTANTIATE_TEST_SUITE_P(Rule, RepositoryRefuses, ::testing::ValuesIn(kRules), kNameOf);

TEST(RepositoryCommit, MakesElementsPartOfTheNamespaceOnlyThen) {
  const TNamespace ns = MakeBase();
  const TClass sub = ns->CreateClass("T_Sub", ns->GetClass("T_Base", {}), {});
  EXPECT_EQ(sub->GetPropertyDecl("id", {})->GetName(), "Id") << "inherited, before the commit";
  const auto decl = sub->CreatePropertyDecl("New", 1U, {});
  const auto qualifier = decl->AddQualifier(ns->GetQualifierDecl("Free", {}), "b");
  EXPECT_QDX_STATUS(decl->GetQualifier("Free"), kQDXStatusNotFound);
  qualifier->Commit();
  EXPECT_EQ(decl->GetQualifier("FREE"), qualifier);
  EXPECT_QDX_STATUS(sub->GetPropertyDecl("New", {}), kQDXStatusNotFound);
  decl->Commit();
  EXPECT_EQ(sub->GetPropertyDecl("New", {}), decl);
  EXPECT_QDX_STATUS(ns->GetClass("T_Sub", {}), kQDXStatusNotFound);
  sub->Commit({});
  EXPECT_EQ(ns->GetClass("T_Sub", {}), sub);

  const auto instance = sub->CreateInstance({});
  instance->SetPropertyValue("Id", 3U, {});
  const auto count = [&] {
    std::vector<boost::shared_ptr<ICIMInstance>> instances;
    sub->EnumerateInstances(TAddToVectorCallback(instances), false, {});
    return instances.size();
  };
  EXPECT_EQ(count(), 0U);
  instance->Commit({});
  EXPECT_EQ(count(), 1U);
  EXPECT_QDX_STATUS(instance->Commit({}), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(instance->SetPropertyValue("Id", 4U, {}), kQDXStatusInvalidOpSequence);
  instance->SetPropertyValue("New", 4U, {});
  EXPECT_EQ(instance->GetProperty("New", {})->GetValue(), TCIMValue(4U));
}

TEST(RepositoryCommit, LetsQualifiersComeDownAsTheirFlavorHasIt) {
  const TNamespace ns = MakeBase();
  const TClass sub = ns->CreateClass("T_Sub", ns->GetClass("T_Base", {}), {});
  const auto decl = AddProperty(ns, sub, "Name", "", {{"Local", "b"}, {"Free", "b"}});
  EXPECT_EQ(decl->GetQualifier("Local")->GetValue(), TCIMValue("b"));
  EXPECT_EQ(decl->GetQualifier("Free")->GetValue(), TCIMValue("b"));
  EXPECT_EQ(decl->GetQualifier("Fixed")->GetValue(), TCIMValue("a")) << "inherited";
  EXPECT_NO_THROW(sub->AddQualifier(ns->GetQualifierDecl("Fixed", {}), "a")->Commit());
  const TClass leaf = ns->CreateClass("T_Leaf", ns->GetClass("T_Plain", {}), {});
  AddProperty(ns, leaf, "Count", 1U, {{"Key", true}});
  leaf->Commit({});
  EXPECT_NO_THROW(AddInstance(ns, "T_Leaf", {{"Count", 2U}}));
  EXPECT_QDX_STATUS(AddInstance(ns, "T_Leaf", {{"Count", 2U}}), kQDXStatusAlreadyExists);
}

TEST(RepositoryCommit, KnowsAbstractClassesAndAssociations) {
  const TNamespace ns = MakeBase();
  const TClass link = ns->CreateClass("T_Link", nullptr, {});
  link->AddQualifier(ns->GetQualifierDecl("Association", {}), true)->Commit();
  link->AddQualifier(ns->GetQualifierDecl("Abstract", {}), true)->Commit();
  link->Commit({});
  const TClass sub = ns->CreateClass("T_SubLink", link, {});
  EXPECT_TRUE(link->IsAssociation({}) && link->IsAbstract({}) && link->IsRootClass({}));
  EXPECT_TRUE(sub->IsAssociation({}));
  EXPECT_FALSE(sub->IsAbstract({}) || sub->IsRootClass({}));
  EXPECT_EQ(sub->GetSuperclass({}), link);
  EXPECT_FALSE(ns->GetClass("T_Base", {})->IsAssociation({}));
}

}  // namespace
}  // namespace NVORNQDX20
