// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/repository.h>

#include <qdxcore/reference.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/provider_suite.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

TCIMValue Path(const TNamespace& ns, const std::string& path) {
  TCIMReference reference(ns, path, TOptionsMap());
  return TCIMValue(reference);
}

/// Subclasses, overriding, all kinds of keys, references, and classes without instances.
TNamespace MakeFilled() {
  const TNamespace ns = MakeNamespace();
  const TCIMDateTime noon("20200101120000.000000+060");
  AddClass(ns, "T_Disk", {{"Id", 0U}, {"Seen", noon}, {"Rate", 0.5}},
           {{"Names", TCIMValue(TCIMType::kCIMTypeString, 3)}});
  const auto fast = ns->CreateClass("T_FastDisk", ns->GetClass("T_Disk", {}), {});
  const auto rate = fast->CreatePropertyDecl("rate", 9.5, {});
  rate->AddQualifier(ns->GetQualifierDecl("override", {}), "Rate")->Commit();
  rate->AddQualifier(ns->GetQualifierDecl("key", {}), true)->Commit();
  rate->Commit();
  fast->Commit({});
  AddInstance(ns, "T_Disk", {{"Id", 1U}});
  AddInstance(ns, "T_Disk", {{"Id", 1U}, {"Rate", -0.0}});
  AddInstance(ns, "T_FastDisk", {{"Id", 1U}});
  AddClass(ns, "T_Link", {{"From", NullReference(ns, "T_Disk")}, {"Kind", "say \"hi\""}});
  const auto disk = Path(ns, "T_Disk.Id=\"1\",Rate=\"0\",Seen=\"20200101110000.000000+000\"");
  AddInstance(ns, "T_Link", {{"From", disk}});
  AddClass(ns, "T_Chain", {{"Link", NullReference(ns, "T_Link")}});
  TCIMReference link(ns, TOptionsMap());
  link.SetClassName("T_Link");
  link.AddKeyValue("Kind", "say \"hi\"");
  link.AddKeyValue("From", disk);
  AddInstance(ns, "T_Chain", {{"Link", TCIMValue(link)}});
  return ns;
}

INSTANTIATE_TEST_SUITE_P(Repository, ProvidedNamespace, ::testing::Values(&MakeFilled));

TEST(Repository, FindsAnInstanceByExactlyItsKeys) {
  const TNamespace ns = MakeFilled();
  AddClass(ns, "T_A", {{"Id", 0U}, {"Name", ""}}, {{"Note", ""}});
  AddInstance(ns, "T_A", {{"Id", 1U}, {"Name", "x"}});
  const std::pair<bool, const char*> rows[] = {
      {true, R"(T_A.Id="1",Name="x")"},
      {false, R"(T_A)"},
      {false, R"(T_A.Id="1")"},
      {false, R"(T_A.Id="1",Name="X")"},
      {false, R"(T_A.Id="2",Name="x")"},
      {false, R"(T_A.Id="1",Note="x")"},
      {false, R"(T_A.Id="1",Name="x",Note="")"},
      // Equal keys in another form: the case of names, an offset of a time, -0 for 0.
      {true, R"(T_Disk.ID="1",rate="0.5",SEEN="20200101120000.000000+060")"},
      {true, R"(T_Disk.Id="1",Rate="0",Seen="20200101110000.000000+000")"},
  };
  for (const auto& [isFound, path] : rows) {
    const TCIMReference reference(ns, path, {});
    EXPECT_EQ(reference.GetClass()->GetInstance(reference, {}) != nullptr, isFound) << path;
  }
}

TEST(Repository, GivesSubclassesAfterTheirSuperclassAtAnyDepth) {
  const TNamespace ns = MakeNamespace();
  boost::shared_ptr<ICIMClass> last;
  constexpr int kDepth = 20000;
  for (int i = 0; i < kDepth; ++i) {
    last = ns->CreateClass("T_" + std::to_string(i), last, {});
    last->Commit({});
  }
  int count = 0;
  const auto visit = [&](const auto& c) {
    return c->GetName({}) == "T_" + std::to_string(++count);
  };
  ns->GetClass("T_0", {})->EnumerateSubclasses(visit, true, {});
  EXPECT_EQ(count, kDepth - 1);
  count = 0;
  ns->GetClass("T_0", {})->EnumerateSubclasses(visit, false, {});
  EXPECT_EQ(count, 1);
  EXPECT_FALSE(last->IsAssociation({}));
}

TEST(Repository, AnswersTheClosestStaticValueOrTheDefault) {
  const TNamespace ns = MakeFilled();
  const auto disk = ns->GetClass("T_Disk", {});
  const auto fast = ns->GetClass("T_FastDisk", {});
  const auto made = fast->CreateInstance({});
  const auto value = [&](const char* name) { return made->GetProperty(name, {})->GetValue(); };
  const TCIMValue names(TCIMType::kCIMTypeString, 3, {TCIMValue("a"), TCIMValue("b")});
  EXPECT_TRUE(value("Names").IsNull());
  disk->SetStaticPropertyValue("names", names, {});
  EXPECT_EQ(value("Names"), names);
  made->SetPropertyValue("Names", TCIMValue(TCIMType::kCIMTypeString, 3), {});
  EXPECT_TRUE(value("Names").IsNull());

  disk->SetStaticPropertyValue("Rate", 7.0, {});
  EXPECT_EQ(value("Rate"), TCIMValue(9.5)) << "T_FastDisk declares its own";
  fast->SetStaticPropertyValue("Rate", 8.0, {});
  EXPECT_EQ(value("Rate"), TCIMValue(8.0));
  made->SetPropertyValue("Id", 5U, {});
  made->Commit({});
  fast->SetStaticPropertyValue("Rate", 1.0, {});
  EXPECT_EQ(value("Rate"), TCIMValue(8.0)) << "a key does not change";

  std::vector<boost::shared_ptr<ICIMProperty>> statics;
  fast->EnumerateStaticProperties(TAddToVectorCallback(statics), {});
  ASSERT_EQ(statics.size(), 1U);
  EXPECT_EQ(statics[0]->GetDecl()->GetName(), "rate");
  EXPECT_EQ(statics[0]->GetValue(), TCIMValue(1.0));
}

TEST(Repository, SetsEveryValueOverEveryOther) {
  // What TCIMValue's assignment would refuse, or take for no change.
  const TNamespace ns = MakeNamespace();
  AddClass(
      ns, "T_A", {},
      {{"When", TCIMDateTime(1, 2, 3, 4, 5)}, {"Many", TCIMValue(TCIMType::kCIMTypeUint8, 4)}});
  const auto a = AddInstance(ns, "T_A", {{"When", TCIMDateTime(1, 2, 3, 4, 5)}});
  a->SetPropertyValue("When", TCIMDateTime("20200101120000.000000+060"), {});
  a->SetPropertyValue("When", a->GetProperty("When", {})->GetValue(), {});
  EXPECT_EQ(a->GetProperty("When", {})->GetValue().ToString(10), "20200101120000.000000+060");
  for (const unsigned int size : {4U, 5U}) {
    a->SetPropertyValue("Many", TCIMValue(TCIMType::kCIMTypeUint8, size, {}), {});
    EXPECT_EQ(a->GetProperty("Many", {})->GetValue().GetMaxArraySize(), size);
  }
}

TEST(Repository, KeepsMethodsWithTheirParametersAndQualifiers) {
  const TNamespace ns = MakeNamespace();
  const auto a = ns->CreateClass("T_A", nullptr, {});
  const auto list = TCIMType(TCIMType::kCIMTypeString | TCIMType::kCIMTypeArray);
  const auto method = a->CreateMethodDecl("Run", TCIMType::kCIMTypeUint32, {});
  const auto parameter = method->CreateParameterDecl("Names", list);
  parameter->AddQualifier(ns->GetQualifierDecl("Key", {}), true)->Commit();
  method->CreateParameterDecl("Dropped", list);
  method->AddQualifier(ns->GetQualifierDecl("Override", {}), "x")->Commit();

  const auto describe = [&] {
    std::string seen;
    const auto addQualifier = [&](const auto& q) {
      return !(seen += " " + q->GetDecl()->GetName() + "=" + q->GetValue().ToString(10)).empty();
    };
    const auto addParameter = [&](const auto& p) {
      EXPECT_EQ(p->GetType(), list);
      seen += ", " + p->GetName();
      p->EnumerateQualifiers(addQualifier);
      return true;
    };
    const auto addMethod = [&](const auto& m) {
      seen += m->GetReturnType().ToString() + " " + m->GetName();
      m->EnumerateQualifiers(addQualifier);
      m->EnumerateParameterDecls(addParameter);
      return true;
    };
    a->EnumerateMethodDecls(addMethod, {});
    return seen;
  };
  EXPECT_EQ(describe(), "uint32 Run Override=x") << "the method at once, parameters when committed";
  parameter->Commit();
  a->Commit({});
  EXPECT_EQ(describe(), "uint32 Run Override=x, Names Key=true");
}

TEST(Repository, CanBeChangedFromWithinAnEnumeration) {
  const TNamespace ns = MakeNamespace();
  for (const char* name : {"T_A", "T_B"}) AddClass(ns, name, {{"Id", 0U}});
  AddInstance(ns, "T_A", {{"Id", 0U}});
  unsigned int made = 0;
  const auto addInstances = [&](const auto&) {
    for (int i = 0; i < 20; ++i) AddInstance(ns, "T_A", {{"Id", ++made}});
    return made < 1000;
  };
  const auto addClasses = [&](const auto& root) {
    for (int i = 0; i < 20; ++i) AddClass(ns, "T_New" + std::to_string(++made), {});
    ns->CreateClass("T_Sub" + std::to_string(made), root, {})->Commit({});
    root->EnumerateInstances(addInstances, true, {});
    return made < 1000;
  };
  ns->EnumerateClasses(addClasses, {});
  EXPECT_EQ(made, 60U) << "two classes, one instance: what is added is not seen";
}

TEST(Repository, FindsEachOfManyInstances) {
  const TNamespace ns = MakeNamespace();
  const auto a = AddClass(ns, "T_A", {{"Id", 0U}, {"Name", ""}});
  const auto nameOf = [](unsigned int i) { return std::to_string(i % 7); };
  constexpr unsigned int kCount = 100000;
  for (unsigned int i = 0; i < kCount; ++i) {
    AddInstance(ns, "T_A", {{"Id", i}, {"Name", nameOf(i)}});
  }
  for (unsigned int i = 0; i < kCount; ++i) {
    TCIMReference path(ns, TOptionsMap());
    path.SetClass(a);
    path.AddKeyValue("Id", i);
    path.AddKeyValue("Name", nameOf(i));
    const auto found = a->GetInstance(path, {});
    ASSERT_TRUE(found && found->GetProperty("Id", {})->GetValue() == TCIMValue(i)) << i;
  }
}

TEST(RepositoryProvider, ServesItsNamespacesByName) {
  TRepositoryProvider provider("mine");
  const TNamespace first = MakeRepositoryNamespace("root/cimv2");
  provider.AddNamespace(first);
  provider.AddNamespace(MakeRepositoryNamespace("root/other"));
  EXPECT_QDX_STATUS(provider.AddNamespace(MakeRepositoryNamespace("ROOT/other")),
                    kQDXStatusAlreadyExists);
  EXPECT_EQ(provider.GetName({}), "mine");
  EXPECT_EQ(provider.GetNamespace("Root/CIMv2", {}), first);
  EXPECT_QDX_STATUS(provider.GetNamespace("root", {}), kQDXStatusNotFound);
  std::string names;
  provider.EnumerateNamespaceNames([&](const auto& name) { return (names += name + ";").empty(); },
                                   {});
  EXPECT_EQ(names, "root/cimv2;");
}

}  // namespace
}  // namespace NVORNQDX20
