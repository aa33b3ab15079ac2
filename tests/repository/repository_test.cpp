// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/repository.h>

#include <qdxcore/reference.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/faulty_provider.h"
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

TNamespace MakeWrapped() {
  const TNamespace real = MakeNamespace();
  AddClass(real, "T_A", {{"Id", 0U}}, {{"Name", ""}});
  AddInstance(real, "T_A", {{"Id", 7U}});
  real->CreateClass("T_B", real->GetClass("T_A", {}), {})->Commit({});
  return MakeFaultyNamespace(real, boost::make_shared<TFaults>());
}

INSTANTIATE_TEST_SUITE_P(Repository, ProvidedNamespace, ::testing::Values(&MakeFilled));
INSTANTIATE_TEST_SUITE_P(FaultyWithoutFaults, ProvidedNamespace, ::testing::Values(&MakeWrapped));

TEST(Repository, KeepsTheCaseOfNamesAndIgnoresIt) {
  const TNamespace ns = MakeFilled();
  EXPECT_EQ(ns->GetClass("t_DISK", {})->GetName({}), "T_Disk");
  EXPECT_EQ(ns->GetClass("t_disk", {})->GetPropertyDecl("NAMES", {})->GetName(), "Names");
  EXPECT_EQ(ns->GetQualifierDecl("kEY", {})->GetName(), "Key");
  const auto found = Path(ns, "T_DISK.ID=\"1\",rate=\"0.5\",SEEN=\"20200101120000.000000+060\"");
  EXPECT_NE(static_cast<TCIMReference>(found).GetCIMElement(), nullptr);
}

TEST(Repository, FindsAnInstanceByExactlyItsKeys) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "T_A", {{"Id", 0U}, {"Name", ""}}, {{"Note", ""}});
  AddInstance(ns, "T_A", {{"Id", 1U}, {"Name", "x"}});
  const auto find = [&](const std::string& keys) {
    return ns->GetClass("T_A", {})->GetInstance(TCIMReference(ns, "T_A" + keys, {}), {}) != nullptr;
  };
  EXPECT_TRUE(find(".Id=\"1\",Name=\"x\""));
  for (const char* keys : {"", ".Id=\"1\"", ".Id=\"1\",Name=\"X\"", ".Id=\"2\",Name=\"x\"",
                           ".Id=\"1\",Note=\"\"", ".Id=\"1\",Name=\"x\",Note=\"\""}) {
    EXPECT_FALSE(find(keys)) << keys;
  }
}

TEST(Repository, FindsKeysThatAreEqualInAnotherForm) {
  const TNamespace ns = MakeFilled();
  const auto disk = Path(ns, "T_Disk.Id=\"1\",Rate=\"0\",Seen=\"20200101110000.000000+000\"");
  const auto found = static_cast<TCIMReference>(disk).GetCIMElement();
  const auto instance = boost::dynamic_pointer_cast<ICIMInstance>(found);
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(instance->GetProperty("Rate", {})->GetValue().ToString(10), "-0");
}

TEST(Repository, GivesSubclassesAfterTheirSuperclassAtAnyDepth) {
  const TNamespace ns = MakeNamespace();
  boost::shared_ptr<ICIMClass> last;
  constexpr int kDepth = 20000;
  for (int i = 0; i < kDepth; ++i) {
    last = ns->CreateClass("T_" + std::to_string(i), last, {});
    last->Commit({});
  }
  const auto root = ns->GetClass("T_0", {});
  int count = 0;
  root->EnumerateSubclasses(
      [&](const auto& c) { return c->GetName({}) == "T_" + std::to_string(++count); }, true, {});
  EXPECT_EQ(count, kDepth - 1);
  root->EnumerateSubclasses([&](const auto&) { return ++count > 0; }, false, {});
  EXPECT_EQ(count, kDepth);
  EXPECT_FALSE(last->IsAssociation({}));
}

TEST(Repository, AnswersTheClosestStaticValueOrTheDefault) {
  const TNamespace ns = MakeFilled();
  const auto disk = ns->GetClass("T_Disk", {});
  const auto fast = ns->GetClass("T_FastDisk", {});
  const auto value = [&](const auto& instance, const char* name) {
    return instance->GetProperty(name, {})->GetValue();
  };
  const TCIMValue names(TCIMType::kCIMTypeString, 3, {TCIMValue("a"), TCIMValue("b")});
  const auto made = fast->CreateInstance({});
  EXPECT_EQ(value(made, "Rate"), TCIMValue(9.5));
  EXPECT_TRUE(value(made, "Names").IsNull());
  disk->SetStaticPropertyValue("names", names, {});
  disk->SetStaticPropertyValue("Rate", 7.0, {});  // T_FastDisk declares its own
  EXPECT_EQ(value(made, "Names"), names);
  EXPECT_EQ(value(made, "Rate"), TCIMValue(9.5));
  fast->SetStaticPropertyValue("Rate", 8.0, {});
  EXPECT_EQ(value(made, "Rate"), TCIMValue(8.0));
  made->SetPropertyValue("Names", TCIMValue(TCIMType::kCIMTypeString, 3), {});
  EXPECT_TRUE(value(made, "Names").IsNull());

  made->SetPropertyValue("Id", 5U, {});
  made->Commit({});
  fast->SetStaticPropertyValue("Rate", 1.0, {});
  EXPECT_EQ(value(made, "Rate"), TCIMValue(8.0)) << "a key does not change";

  std::vector<boost::shared_ptr<ICIMProperty>> statics;
  fast->EnumerateStaticProperties(TAddToVectorCallback<ICIMProperty>(statics), {});
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
  const auto method = a->CreateMethodDecl("Run", TCIMType::kCIMTypeUint32, {});
  const auto list = TCIMType(TCIMType::kCIMTypeString | TCIMType::kCIMTypeArray);
  const auto parameter = method->CreateParameterDecl("Names", list);
  parameter->AddQualifier(ns->GetQualifierDecl("Key", {}), true)->Commit();
  method->CreateParameterDecl("Dropped", list);
  method->AddQualifier(ns->GetQualifierDecl("Override", {}), "x")->Commit();

  std::string seen;
  const auto qualifier = [&](const boost::shared_ptr<ICIMQualifier>& q) {
    seen += " [" + q->GetDecl()->GetName() + "=" + q->GetValue().ToString(10) + "]";
    return true;
  };
  const auto show = [&] {
    seen.clear();
    a->EnumerateMethodDecls(
        [&](const auto& m) {
          seen += m->GetReturnType().ToString() + " " + m->GetName();
          m->EnumerateQualifiers(qualifier);
          m->EnumerateParameterDecls([&](const auto& p) {
            EXPECT_EQ(p->GetType(), list);
            seen += ", " + p->GetName();
            p->EnumerateQualifiers(qualifier);
            return true;
          });
          return true;
        },
        {});
    return seen;
  };
  EXPECT_EQ(show(), "uint32 Run [Override=x]") << "the method at once, parameters when committed";
  parameter->Commit();
  a->Commit({});
  EXPECT_EQ(show(), "uint32 Run [Override=x], Names [Key=true]");
}

TEST(Repository, CanBeChangedFromWithinAnEnumeration) {
  const TNamespace ns = MakeNamespace();
  for (const char* name : {"T_A", "T_B"}) AddClass(ns, name, {{"Id", 0U}});
  AddInstance(ns, "T_A", {{"Id", 0U}});
  unsigned int made = 0;
  const auto addInstances = [&](const auto& instance) {
    for (int i = 0; i < 20; ++i) AddInstance(ns, "T_A", {{"Id", ++made}});
    return instance->GetClass({})->GetName({}) == "T_A" && made < 1000;
  };
  ns->EnumerateClasses(
      [&](const auto& root) {
        for (int i = 0; i < 20; ++i) AddClass(ns, "T_New" + std::to_string(++made), {});
        ns->CreateClass("T_Sub" + std::to_string(made), root, {})->Commit({});
        root->EnumerateInstances(addInstances, true, {});
        return made < 1000;
      },
      {});
  EXPECT_EQ(made, 60U) << "two classes, one instance: what is added is not seen";
}

TEST(Repository, FindsEachOfManyInstances) {
  const TNamespace ns = MakeNamespace();
  const auto a = AddClass(ns, "T_A", {{"Id", 0U}, {"Name", ""}});
  constexpr unsigned int kCount = 100000;
  for (unsigned int i = 0; i < kCount; ++i) {
    AddInstance(ns, "T_A", {{"Id", i}, {"Name", std::to_string(i % 7)}});
  }
  for (unsigned int i = 0; i < kCount; ++i) {
    TCIMReference path(ns, TOptionsMap());
    path.SetClass(a);
    path.AddKeyValue("name", std::to_string(i % 7));
    path.AddKeyValue("id", i);
    const auto found = a->GetInstance(path, {});
    ASSERT_NE(found, nullptr) << i;
    ASSERT_EQ(found->GetProperty("Id", {})->GetValue(), TCIMValue(i));
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
