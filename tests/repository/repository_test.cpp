// SPDX-License-Identifier: Apache-2.0
#include <qdxrepository/repository.h>

#include <qdxcore/reference.h>
#include <qdxcore/values.h>
#include <qdxmodel/visit.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/provider_suite.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include <boost/weak_ptr.hpp>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

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
  const auto disk =
      ReferenceTo(ns, "T_Disk.Id=\"1\",Rate=\"0\",Seen=\"20200101110000.000000+000\"");
  AddInstance(ns, "T_Link", {{"From", disk}});
  AddClass(ns, "T_Chain", {{"Link", NullReference(ns, "T_Link")}});
  std::string link = static_cast<TCIMReference>(disk).GetPath();
  link = "T_Link.From=\"" + link + R"(",Kind="say \"hi\"")";
  AddInstance(ns, "T_Chain", {{"Link", ReferenceTo(ns, link)}});
  return ns;
}

INSTANTIATE_TEST_SUITE_P(Repository, ProvidedNamespace, ::testing::Values(&MakeFilled));

TEST(Repository, FindsAnInstanceByExactlyItsKeys) {
  const TNamespace ns = MakeFilled();
  AddClass(ns, "T_A", {{"Id", 0U}, {"Name", ""}}, {{"Note", ""}});
  AddInstance(ns, "T_A", {{"Id", 1U}, {"Name", "x"}});
  AddInstance(ns, "T_A", {{"Id", 1U}, {"Name", ""}});
  AddInstance(ns, "T_A", {{"Id", 1U}, {"Name", "a name of 20 letters"}});
  const std::pair<bool, const char*> rows[] = {
      {true, R"(T_A.Id="1",Name="x")"},
      {true, R"(T_A.Id="1",Name="")"},
      {true, R"(T_A.Id="1",Name="a name of 20 letters")"},
      {false, R"(T_A.Id="1",Name="a name of 20 letterS")"},
      {false, R"(T_A.Id="1",ID="1")"},
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
  for (int pass = 0; pass < 2; ++pass) {  // the second time with keys that were read
    for (const auto& [isFound, path] : rows) {
      const TCIMReference reference(ns, path, {});
      const auto found = reference.GetClass()->GetInstance(reference, {});
      EXPECT_EQ(found != nullptr, isFound) << path;
      if (!found) continue;
      EXPECT_EQ(found, reference.GetCIMElement());
      found->EnumerateProperties([](const auto&) { return true; }, {});
    }
  }
}

/// In Caracas, clocks have moved by half an hour between 2000 and 2010.
TEST(Repository, FindsATimeInWhateverZone) {
  ::setenv("TZ", "America/Caracas", 1);
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "T_A", {{"At", TCIMDateTime(1, 0, 0, 0, 0)}});
  // One whose reading mktime() refuses in UTC without the offset, and one that carries over.
  for (const char* at :
       {"20100701120000.000007-240", "19691231235959.000000+060", "20100229236000.000000+000",
        "00000001000000.000000:000", "20000101000000.000000+000"}) {
    AddInstance(ns, "T_A", {{"At", TCIMDateTime(at)}});
  }
  ::setenv("TZ", "UTC", 1);
  const std::pair<bool, const char*> rows[] = {
      {true, "20100701160000.000007+000"},  {false, "20100701160000.000008+000"},
      {false, "20100701163000.000007+000"}, {true, "19691231225859.000000-001"},
      {true, "20100302000000.000000+000"},  {true, "19991231230000.000000-060"},
      {false, "20000102000000.000000+000"}, {true, "00000001000000.000000:000"}};
  for (const auto& [isFound, at] : rows) {
    TCIMReference path(ns, {});
    path.SetClass(ns->GetClass("T_A", {}));
    path.AddKeyValue("At", TCIMDateTime(at));
    EXPECT_EQ(path.GetClass()->GetInstance(path, {}) != nullptr, isFound) << at;
  }
  ::unsetenv("TZ");
}

TEST(Repository, ComparesKeysWhereTheHashesAreTheSame) {
  const TNamespace ns = MakeFilled();
  const double nan = std::numeric_limits<double>::quiet_NaN();  // never equal to itself
  for (int i = 0; i < 2; ++i) EXPECT_NO_THROW(AddInstance(ns, "T_Disk", {{"Rate", nan}}));
}

TEST(Repository, KeepsTheAddressesOfValuesThatWereRead) {
  const TNamespace ns = MakeFilled();
  const TCIMReference path(ns, R"(T_Disk.Id="1",Rate="-0",Seen="20200101110000.000000+000")", {});
  const auto disk = path.GetClass()->GetInstance(path, {});
  std::vector<std::pair<const TCIMValue*, TCIMValue>> read;
  for (const char* name : {"Id", "Seen", "Rate", "Names", "Id"}) {
    const TCIMValue& value = disk->GetProperty(name, {})->GetValue();
    read.emplace_back(&value, value);
  }
  EXPECT_EQ(read.front().first, read.back().first);
  for (const auto& [address, value] : read) EXPECT_EQ(*address, value);
  // A key that was read is still the same key.
  EXPECT_EQ(path.GetClass()->GetInstance(path, {}), disk);
}

TEST(Repository, ShowsWhatIsSetInPropertiesThatWereRead) {
  const TNamespace ns = MakeNamespace();
  const TCIMValue few(TCIMType::kCIMTypeString, 3, {TCIMValue("a"), kNoText});
  AddClass(ns, "T_A", {{"Id", ""}}, {{"Count", 0U}, {"Names", few}, {"Unset", "default"}});
  boost::shared_ptr<ICIMProperty> id, count, names, unset;
  {
    const auto a = ns->GetClass("T_A", {})->CreateInstance({});
    for (const unsigned number : {1U, 2U}) {
      a->SetPropertyValue("Count", number, {});
      a->SetPropertyValue("Names", few, {});
      if (!count) {
        a->SetPropertyValue("Id", "a text that is too long for sixteen bytes", {});
        count = a->GetProperty("Count", {}), names = a->GetProperty("Names", {});
        id = a->GetProperty("Id", {}), unset = a->GetProperty("Unset", {});
      }
      EXPECT_EQ(count->GetValue(), TCIMValue(number));
      EXPECT_EQ(names->GetValue(), few);
    }
    a->SetPropertyValue("Count", count->GetValue(), {});
    a->SetPropertyValue("Names", TCIMValue(TCIMType::kCIMTypeString, 5), {});
    a->SetPropertyValue("Unset", "set", {});
    a->Commit({});
    EXPECT_QDX_STATUS(AddInstance(ns, "T_A", {{"Id", id->GetValue()}}), kQDXStatusAlreadyExists);
  }
  // The instance lives with its namespace, of which each property is an owner.
  EXPECT_EQ(count->GetValue(), TCIMValue(2U));
  EXPECT_EQ(names->GetValue().GetMaxArraySize(), 5U);
  EXPECT_EQ(unset->GetValue(), TCIMValue("set"));
  EXPECT_EQ(unset->GetDecl()->GetName() + names->GetDecl()->GetName(), "UnsetNames");
}

TEST(Repository, KeepsAnInstanceThatIsNotCommittedForItsProperties) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "T_A", {{"Id", 0U}}, {{"Unset", "default"}});
  auto made = ns->GetClass("T_A", {})->CreateInstance({});
  made->SetPropertyValue("Id", 7U, {});
  const auto id = made->GetProperty("Id", {}), unset = made->GetProperty("Unset", {});
  made.reset();
  EXPECT_EQ(id->GetValue(), TCIMValue(7U));
  EXPECT_EQ(unset->GetValue(), TCIMValue("default"));
}

/// The value of the bytes, or null.
TCIMValue ValueOf(TCIMType type, const TPlainValue& plain) {
  if (plain.fIsNull) return TCIMValue(type, 0U);
  const std::string text(plain.fBytes);
  return NModel::VisitType(type, [&](auto native) {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_arithmetic_v<T>) {
      T number;
      EXPECT_EQ(text.size(), sizeof number);
      std::memcpy(&number, text.data(), sizeof number);
      return TCIMValue(number);
    } else if constexpr (std::is_same_v<T, std::string>) {
      return TCIMValue(text);
    } else {
      return TCIMValue();
    }
  });
}

std::string PathOf(const TPlainReference& reference) {
  TCIMReference path(nullptr, {});
  path.SetClass(reference.fClass);
  for (const auto& [name, type, value] : reference.fKeys) {
    path.AddKeyValue(*name, ValueOf(type, value));
  }
  return path.GetPath();
}

TEST(Repository, ReadsTheSameValuesByPosition) {
  const TNamespace ns = MakeFilled();
  AddClass(ns, "T_Plain", {{"Id", 0U}},
           {{"Text", ""}, {"Null", kNoText}, {"Real", 0.5F}, {"On", true}});
  AddInstance(ns, "T_Plain",
              {{"Id", 7U},
               {"Text", std::string(20, 'x')},
               {"Null", kNoText},
               {"Real", -2.5F},
               {"On", false}});
  AddClass(ns, "T_To", {{"Plain", NullReference(ns, "T_Plain")}});
  AddInstance(ns, "T_To", {{"Plain", ReferenceTo(ns, "T_Plain.Id=\"7\",Text=\"a\"")}});
  int plains = 0;
  int references = 0;  // without a date-time or a reference as key
  for (const char* name : {"T_Disk", "T_FastDisk", "T_Link", "T_Chain", "T_Plain", "T_To"}) {
    const auto cimClass = ns->GetClass(name, {});
    std::vector<boost::shared_ptr<ICIMInstance>> instances;
    cimClass->EnumerateInstances(TAddToVectorCallback(instances), false, {});
    ASSERT_FALSE(instances.empty());
    const auto& quick = dynamic_cast<const IValuesOfInstance&>(*instances.front());
    const auto& bare = dynamic_cast<const IPlainReferencesOfInstance&>(*instances.front());
    for (int pass = 0; pass < 2; ++pass) {  // the second time after they were read by name
      std::size_t position = 0;
      cimClass->EnumeratePropertyDecls(
          [&](const auto& decl) {
            int calls = 0;
            TCIMValue value;
            quick.ReadValue(position, [&](const TCIMValue& each) { value = each, ++calls; });
            TPlainValue plain;
            if (bare.FindPlainValue(position++, plain)) {
              EXPECT_EQ(value, ValueOf(decl->GetType(), plain)) << decl->GetName();
              ++plains;
            }
            TPlainReference found;
            if (bare.FindPlainReference(position - 1, found)) {
              EXPECT_EQ(static_cast<TCIMReference>(value).GetPath(), PathOf(found));
              EXPECT_EQ(found.fNamespace, ns.get());
              ++references;
            }
            EXPECT_EQ(value, instances.front()->GetProperty(decl->GetName(), {})->GetValue());
            EXPECT_EQ(calls, 1);
            return true;
          },
          {});
    }
  }
  EXPECT_GT(plains, 10);
  EXPECT_EQ(references, 2);
}

TEST(Repository, KeepsTheValueThatARefusedOneWouldReplace) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "T_A", {{"Id", 0U}});
  AddClass(ns, "T_Link", {{"Name", ""}}, {{"To", NullReference(ns, "T_A")}});
  const auto link = ns->GetClass("T_Link", {})->CreateInstance({});
  const TCIMValue good = ReferenceTo(ns, "T_A.Id=\"1\"");
  TCIMReference path(ns, "T_A.Id=\"1\"", TOptionsMap());
  path.GetBody()->BindKey("Undeclared", TCIMValue(2U));
  const TCIMValue refused(path);
  EXPECT_QDX_STATUS(link->SetPropertyValue("To", refused, {}), kQDXStatusNotFound);
  EXPECT_TRUE(link->GetProperty("To", {})->GetValue().IsNull());
  link->SetPropertyValue("To", good, {});
  EXPECT_QDX_STATUS(link->SetPropertyValue("To", refused, {}), kQDXStatusNotFound);
  EXPECT_EQ(link->GetProperty("To", {})->GetValue(), good);
}

TEST(Repository, LetsAReaderSetWhatItReads) {
  const TNamespace ns = MakeNamespace();
  const auto none = [](unsigned size) { return TCIMValue(TCIMType::kCIMTypeString, size); };
  AddClass(ns, "T_A", {{"Id", ""}}, {{"Names", none(5)}});
  const auto a = ns->GetClass("T_A", {})->CreateInstance({});
  unsigned size = 5;
  for (const bool isReadByName : {false, false, true}) {
    if (isReadByName) (void)a->GetProperty("Names", {});
    dynamic_cast<const IValuesOfInstance&>(*a).ReadValue(1, [&](const TCIMValue& value) {
      EXPECT_EQ(value.GetMaxArraySize(), size);
      a->SetPropertyValue("Names", none(++size), {});
      EXPECT_TRUE(value.IsNull());
      EXPECT_EQ(value.GetType(), TCIMType::kCIMTypeString | 16);
    });
  }
  EXPECT_EQ(a->GetProperty("Names", {})->GetValue().GetMaxArraySize(), 8U);
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
}

TEST(Repository, CanBeChangedFromWithinAnEnumeration) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "T_A", {{"Id", 0U}});
  AddInstance(ns, "T_A", {{"Id", 0U}});
  unsigned int made = 0;
  const auto addInstance = [&](const auto&) {
    for (int i = 0; i < 20; ++i) AddInstance(ns, "T_A", {{"Id", ++made}});
    return made < 1000;
  };
  const auto addClass = [&](const auto& root) {
    for (int i = 0; i < 20; ++i) AddClass(ns, "T_New" + std::to_string(++made), {});
    return root->EnumerateInstances(addInstance, true, {}), made < 1000;
  };
  ns->EnumerateClasses(addClass, {});
  EXPECT_EQ(made, 40U) << "one class, one instance: what is added is not seen";
}

TEST(RepositoryProvider, ServesItsNamespacesByName) {
  TRepositoryProvider provider("mine");
  const TNamespace first = MakeRepositoryNamespace("root/cimv2");
  provider.AddNamespace(first);
  EXPECT_QDX_STATUS(provider.AddNamespace(MakeRepositoryNamespace("ROOT/cimv2")),
                    kQDXStatusAlreadyExists);
  EXPECT_EQ(provider.GetName({}), "mine");
  EXPECT_EQ(provider.GetNamespace("Root/CIMv2", {}), first);
  EXPECT_QDX_STATUS(provider.GetNamespace("root", {}), kQDXStatusNotFound);
  provider.AddNamespace(MakeRepositoryNamespace("other"));
  std::string names;
  for (const bool goesOn : {true, false}) {
    provider.EnumerateNamespaceNames([&](auto& name) { return names += name + " ", goesOn; }, {});
  }
  EXPECT_EQ(names, "root/cimv2 other root/cimv2 ");
}

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
