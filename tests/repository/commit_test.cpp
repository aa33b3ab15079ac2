// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/classes.h>
#include <qdxrepository/instance_adder.h>
#include <qdxrepository/repository.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/log_capture.h"

#include <functional>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;
using TClass = boost::shared_ptr<ICIMClass>;
constexpr auto kUint8 = TCIMType::kCIMTypeUint8;

/// T_Base has the key Id, T_Plain has none, T_Link is abstract; T_Sub is not committed. Qualifier
/// Fixed cannot be changed below, Local and Free can; what Local says stays where it is said.
struct TSample {
  TSample() {
    Qualifier("Fixed", kFlavorToSubclass);
    Qualifier("Local", 0);
    Qualifier("Free", kFlavorToSubclass | kFlavorOverridable);
    Qualify(fBase, "Fixed", "a");
    Qualify(fBase->CreateMethodDecl("Run", kUint8, {}), "Fixed", "a");
    Property(fBase, "Id", 0U, {{"Key", true}});
    Property(fBase, "Name", "", {{"Fixed", "a"}, {"Local", "a"}, {"Free", "a"}});
    fBase->Commit({});
    AddInstance(fNs, "T_Base", {{"Id", 1U}});
    AddClass(fNs, "T_Plain", {}, {{"Count", 0U}});
    for (const char* name : {"Association", "Abstract"}) Qualify(fAbstract, name, true);
    fAbstract->Commit({});
    fSub = Class("T_Sub", fBase);
    fRun = fSub->CreateMethodDecl("Run", kUint8, {});
  }

  TClass Class(const std::string& name, const TClass& superclass = nullptr) {
    return fNs->CreateClass(name, superclass, {});
  }
  void Qualifier(const std::string& name, std::uint32_t flavor, const TCIMValue& value = "") {
    fNs->CreateQualifierDecl(name, value, kScopeAny, flavor, {})->Commit();
  }
  template <typename TElement>
  void Qualify(const TElement& element, const std::string& name, const TCIMValue& value) {
    element->AddQualifier(fNs->GetQualifierDecl(name, {}), value)->Commit();
  }
  boost::shared_ptr<ICIMPropertyDecl> Property(const TClass& to, const std::string& name,
                                               const TCIMValue& value,
                                               const TProperties& qualifiers = {}) {
    const auto decl = to->CreatePropertyDecl(name, value, {});
    for (const auto& [qualifier, what] : qualifiers) Qualify(decl, qualifier, what);
    decl->Commit();
    return decl;
  }

  /// How much the namespace holds.
  int Contents() const {
    int count = 0;
    const auto visit = [&](const auto&) { return ++count > 0; };
    fNs->EnumerateClasses(visit, {});
    fNs->EnumerateQualifierDecls(visit, {});
    fBase->EnumerateSubclasses(visit, true, {});
    fBase->EnumerateInstances(visit, true, {});
    return count;
  }

  const TNamespace fNs = MakeNamespace();
  const TClass fBase = Class("T_Base");
  const TClass fAbstract = Class("T_Link");
  TClass fSub;
  boost::shared_ptr<ICIMMethodDecl> fRun;
};

TEST(RepositoryCommit, TakesEachCIMNameOnce) {
  using TAdd = void (*)(TSample & s, const std::string& name);
  const TAdd kElements[] = {
      [](auto& s, auto& name) { s.Class(name)->Commit({}); },
      [](auto& s, auto& name) { s.Qualifier(name, 0); },
      [](auto& s, auto& name) { s.Property(s.fSub, name, 1U); },
      [](auto& s, auto& name) { s.fSub->CreateMethodDecl(name, kUint8, {}); },
      [](auto& s, auto& name) { s.fRun->CreateParameterDecl(name, kUint8)->Commit(); },
  };
  for (const TAdd& add : kElements) {
    TSample s;
    for (const char* name : {"", "1A", "a.b", "a b", "a-b", " A"}) {
      EXPECT_QDX_STATUS(add(s, name), kQDXStatusInvalidCIMName) << &add - kElements << name;
    }
    add(s, "_n9\xC3\xA9");
    EXPECT_QDX_STATUS(add(s, "_N9\xC3\xA9"), kQDXStatusAlreadyExists) << &add - kElements;
  }
}

/// The statement is about a sample `s` of its own, which it must not change.
#define EXPECT_REFUSED(status, statement) \
  do {                                    \
    TSample s;                            \
    const auto contents = s.Contents();   \
    EXPECT_QDX_STATUS(statement, status); \
    EXPECT_EQ(s.Contents(), contents);    \
  } while (false)

TEST(RepositoryCommit, LetsCommittedClassesReferToTheirSubclasses) {
  TSample s;
  const auto top = s.Class("T_Top");
  TCIMValue self(TCIMType::kCIMTypeReference, 0);
  self.SetReferencedClass(top);
  s.Property(top, "Part", self);
  top->Commit({});
  const auto below = s.Class("T_Below", top);
  TCIMValue toBelow(TCIMType::kCIMTypeReference, 0);
  toBelow.SetReferencedClass(below);
  EXPECT_QDX_STATUS(SetReferenceDefault(*top, "Part", toBelow), kQDXStatusInvalidReference);
  below->Commit({});
  SetReferenceDefault(*top, "Part", toBelow);
  for (const auto& each : {top, below}) {
    EXPECT_EQ(each->GetPropertyDecl("Part", {})->GetDefaultValue().GetReferencedClass(), below);
  }
}

TEST(RepositoryCommit, RefusesWhatBreaksARule) {
  const TCIMValue kChar(TCIMType::kCIMTypeChar, 0);
  const TCIMValue kToNothing(TCIMType::kCIMTypeReference, 0);
  const TCIMType kArrayType = kUint8 | TCIMType::kCIMTypeArray;
  EXPECT_REFUSED(kQDXStatusNotFound, s.fSub->SetStaticPropertyValue("Idd", 1U, {}));
  EXPECT_REFUSED(kQDXStatusInvalidProperty, s.Property(s.fSub, "New", TCIMValue()));
  EXPECT_REFUSED(kQDXStatusInvalidProperty, s.Property(s.fSub, "New", kChar));
  EXPECT_REFUSED(kQDXStatusInvalidProperty,
                 s.fSub->CreateMethodDecl("New", TCIMType::kCIMTypeArray << 1, {}));
  EXPECT_REFUSED(kQDXStatusInvalidProperty, s.Qualifier("New", 0, NullReference(s.fNs, "T_Base")));
  EXPECT_REFUSED(kQDXStatusInvalidProperty, s.fSub->CreateMethodDecl("New", kArrayType, {}));
  EXPECT_REFUSED(kQDXStatusInvalidReference, s.Property(s.fSub, "New", kToNothing));
  const TSample fresh;
  const TCIMValue kToBase = NullReference(fresh.fNs, "T_Base");
  EXPECT_REFUSED(kQDXStatusTypeMismatch, SetReferenceDefault(*s.fBase, "Id", kToBase));
  EXPECT_REFUSED(kQDXStatusNotFound, SetReferenceDefault(*s.fSub, "Id", 1U));
  EXPECT_REFUSED(kQDXStatusTypeMismatch, s.Qualify(s.fSub, "Abstract", "true"));
  EXPECT_REFUSED(kQDXStatusTypeMismatch, s.fSub->SetStaticPropertyValue("Id", 1, {}));
  EXPECT_REFUSED(kQDXStatusTypeMismatch, s.Property(s.fSub, "name", 1U));
  EXPECT_REFUSED(kQDXStatusTypeMismatch, AddInstance(s.fNs, "T_Base", {{"Id", 2}}));

  const TSample other;
  const TCIMValue kNull(TCIMType::kCIMTypeUint32, 0);
  const TCIMValue kArray(kUint8, 3);
  const TProperties kTwice = {{"Free", "a"}, {"FREE", "a"}};
  const auto kForeignKey = other.fNs->GetQualifierDecl("Key", {});
  EXPECT_REFUSED(kQDXStatusNotFound, s.fSub->AddQualifier(kForeignKey, true));
  EXPECT_REFUSED(kQDXStatusNotFound, s.fSub->AddQualifier(nullptr, true));
  EXPECT_REFUSED(kQDXStatusAlreadyExists, s.Property(s.fSub, "New", 1U, kTwice));
  EXPECT_REFUSED(kQDXStatusAlreadyExists, AddInstance(s.fNs, "T_Base", {{"Id", 1U}}));
  EXPECT_REFUSED(kQDXStatusInvalidClass, s.Class("T_New", other.fBase));
  EXPECT_REFUSED(kQDXStatusInvalidClass, s.Class("T_New", s.fSub));
  EXPECT_REFUSED(kQDXStatusInvalidClass,
                 (s.Property(s.fSub, "New", 1U, {{"Key", true}}), s.fSub->Commit({})));
  EXPECT_REFUSED(kQDXStatusInvalidClass, AddClass(s.fNs, "T_New", {{"New", kArray}}));
  EXPECT_REFUSED(kQDXStatusInvalidClass, s.fAbstract->CreateInstance({}));
  EXPECT_REFUSED(kQDXStatusInvalidInstance, AddInstance(s.fNs, "T_Base", {{"Id", kNull}}));
  EXPECT_REFUSED(kQDXStatusNotOverridable, s.Qualify(s.fSub, "Fixed", "b"));
  EXPECT_REFUSED(kQDXStatusNotOverridable, s.Qualify(s.fRun, "Fixed", "b"));
  EXPECT_REFUSED(kQDXStatusNotOverridable, s.Property(s.fSub, "Name", "", {{"Fixed", "b"}}));
  EXPECT_REFUSED(kQDXStatusInvalidOpSequence, s.fBase->Commit({}));
  EXPECT_REFUSED(kQDXStatusInvalidOpSequence, s.Property(s.fBase, "New", 1U));
  EXPECT_REFUSED(kQDXStatusInvalidOpSequence,
                 s.Qualify(s.Property(s.fSub, "New", 1U), "Key", true));
  EXPECT_REFUSED(kQDXStatusInvalidOpSequence, s.fNs->GetQualifierDecl("Key", {})->Commit());
  EXPECT_REFUSED(kQDXStatusInvalidOpSequence, s.fSub->CreateInstance({}));
}

TEST(RepositoryFailure, NamesWhatItIsAboutAndLogsNothing) {
  TSample s;
  const auto sub = s.fSub;
  const auto force = s.fRun->CreateParameterDecl("Force", TCIMType::kCIMTypeBoolean);
  const auto instance = s.fNs->GetClass("T_Plain", {})->CreateInstance({});
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"namespace test has no class \"T_Sbu\"", [&] { s.fNs->GetClass("T_Sbu", {}); }},
      {"class T_Plain has no property \"Cuont\"",
       [&] { instance->SetPropertyValue("Cuont", 1U, {}); }},
      {"property Name of class T_Base has no qualifier \"Key\"",
       [&] { sub->GetPropertyDecl("name", {})->GetQualifier("Key"); }},
      {"property Count of class T_Plain is uint32, not uint8[]",
       [&] { instance->SetPropertyValue("Count", TCIMValue(kUint8, 3), {}); }},
      {"property name of class T_Sub is uint32, but overrides a string of class T_Base",
       [&] { s.Property(sub, "name", 1U); }},
      {"qualifier Key of parameter Force of method Run of class T_Sub is boolean, not string",
       [&] { s.Qualify(force, "Key", "yes"); }},
      {"a qualifier of class T_Sub, Key, is not one that is declared in namespace test",
       [&] { sub->AddQualifier(MakeNamespace()->GetQualifierDecl("Key", {}), true); }},
      {"property Any of class T_Sub cannot be untyped", [&] { s.Property(sub, "Any", {}); }},
      {"class T_Base is committed already", [&] { s.Property(s.fBase, "New", 1U); }},
      {"instance T_Base.Id=\"1\" is there already", [&] {
         AddInstance(s.fNs, "T_Base", {{"Id", 1U}});
       }}};
  const TLogCapture log;
  for (const auto& [reason, fail] : rows) {
    try {
      fail();
      ADD_FAILURE() << reason;
    } catch (const TExplainedException& e) {
      EXPECT_EQ(e.GetReason(), reason);
    }
  }
  EXPECT_TRUE(log.Messages().empty());
}

TEST(RepositoryCommit, MakesElementsPartOfTheNamespaceOnlyThen) {
  TSample s;
  EXPECT_EQ(s.fSub->GetPropertyDecl("id", {})->GetName(), "Id") << "inherited, before the commit";
  const auto decl = s.fSub->CreatePropertyDecl("New", 1U, {});
  const auto qualifier = decl->AddQualifier(s.fNs->GetQualifierDecl("Free", {}), "b");
  EXPECT_QDX_STATUS(decl->GetQualifier("Free"), kQDXStatusNotFound);
  qualifier->Commit();
  EXPECT_EQ(decl->GetQualifier("FREE"), qualifier);
  EXPECT_QDX_STATUS(s.fSub->GetPropertyDecl("New", {}), kQDXStatusNotFound);
  decl->Commit();
  EXPECT_EQ(s.fSub->GetPropertyDecl("New", {}), decl);
  EXPECT_QDX_STATUS(s.fNs->GetClass("T_Sub", {}), kQDXStatusNotFound);
  s.fSub->Commit({});
  EXPECT_EQ(s.fNs->GetClass("T_Sub", {}), s.fSub);

  const auto instance = AddInstance(s.fNs, "T_Sub", {{"Id", 3U}});
  EXPECT_QDX_STATUS(instance->Commit({}), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(instance->SetPropertyValue("Id", 4U, {}), kQDXStatusInvalidOpSequence);
  instance->SetPropertyValue("New", 4U, {});
  EXPECT_EQ(instance->GetProperty("New", {})->GetValue(), TCIMValue(4U));
}

TEST(RepositoryCommit, LetsQualifiersComeDownAsTheirFlavorHasIt) {
  TSample s;
  const auto decl = s.Property(s.fSub, "Name", "", {{"Local", "b"}, {"Free", "b"}});
  EXPECT_EQ(decl->GetQualifier("Local")->GetValue(), TCIMValue("b"));
  EXPECT_EQ(decl->GetQualifier("Free")->GetValue(), TCIMValue("b"));
  EXPECT_EQ(decl->GetQualifier("Fixed")->GetValue(), TCIMValue("a")) << "inherited";
  const auto plain = s.fSub->CreatePropertyDecl("Name", "", {});
  EXPECT_QDX_STATUS(plain->GetQualifier("Local"), kQDXStatusNotFound);
  EXPECT_NO_THROW(s.Qualify(s.fSub, "Fixed", "a"));
  const TClass leaf = s.Class("T_Leaf", s.fNs->GetClass("T_Plain", {}));
  s.Property(leaf, "Count", 1U, {{"Key", true}});
  leaf->Commit({});
  AddInstance(s.fNs, "T_Leaf", {{"Count", 2U}});
  EXPECT_QDX_STATUS(AddInstance(s.fNs, "T_Leaf", {{"Count", 2U}}), kQDXStatusAlreadyExists);
}

TEST(InstanceAdder, GivesOutAnInstanceUntilItIsLost) {
  const TNamespace ns = MakeNamespace();
  const TCIMValue noId(TCIMType::kCIMTypeUint32, 0);
  TInstanceAdder adder(AddClass(ns, "T_Disk", {{"Id", noId}}, {{"Name", ""}}));
  EXPECT_EQ(adder.GetInstance(), nullptr);
  for (const bool isAsked : {false, true}) {
    adder.Begin();
    EXPECT_TRUE(adder.Set(0, TCIMValue(isAsked ? 2U : 1U)));
    const auto before = isAsked ? adder.GetInstance() : nullptr;
    EXPECT_TRUE(adder.Commit());
    const auto instance = adder.GetInstance();
    EXPECT_TRUE(before == nullptr || before == instance);
    EXPECT_TRUE(adder.SetText(1, "sda"));
    EXPECT_EQ(instance->GetProperty("Name", {})->GetValue(), TCIMValue("sda"));
    EXPECT_QDX_STATUS(instance->Commit({}), kQDXStatusInvalidOpSequence);

    adder.Begin();
    EXPECT_TRUE(adder.Set(0, TCIMValue(isAsked ? 2U : 1U)));
    const auto second = isAsked ? adder.GetInstance() : nullptr;
    EXPECT_FALSE(adder.Commit());
    EXPECT_EQ(adder.GetInstance(), nullptr);
    adder.Begin();
    EXPECT_QDX_STATUS(adder.Commit(), kQDXStatusInvalidInstance);
    EXPECT_EQ(adder.GetInstance(), nullptr);
    EXPECT_TRUE(!second || second->GetProperty("Id", {})->GetValue() == TCIMValue(2U));
  }
}

TEST(InstanceAdder, RefersToAnInstanceAsAReferenceWithItsKeysDoes) {
  const TNamespace ns = MakeNamespace();
  const TNamespace other = MakeNamespace();
  const TCIMDateTime seen("20200101120000.000000+060");
  const std::string longName(100, 'n');
  for (const TNamespace& each : {ns, other}) {
    AddClass(each, "T_Disk", {{"Name", ""}, {"Id", 0U}}, {{"Size", 0U}});
    AddInstance(each, "T_Disk", {{"Name", longName}, {"Id", 7U}});
  }
  AddClass(ns, "T_Use", {{"Rate", 0.5}, {"On", true}, {"Seen", seen}});
  AddClass(ns, "T_Link", {{"To", NullReference(ns, "T_Disk")}});
  const std::string path = "T_Disk.Name=\"" + longName + "\",Id=\"7\"";
  const auto disk = TCIMReference(ns, path, {}).GetCIMElement();
  const auto read = AddInstance(ns, "T_Disk", {{"Name", "read"}, {"Id", 1U}});
  const auto kept = read->GetProperty("Name", {});  // from now on it is stored as a TCIMValue

  TInstanceAdder adder(
      AddClass(ns, "T_Any", {{"To", NullReference(ns, "T_Disk")}}, {{"On", true}}));
  const std::vector<boost::shared_ptr<ICIMInstance>> targets = {
      boost::dynamic_pointer_cast<ICIMInstance>(disk), read,
      AddInstance(ns, "T_Use", {}),  // keys by default
      AddInstance(ns, "T_Link", {{"To", ReferenceTo(ns, path)}}),
      AddInstance(ns, "T_Link", {{"To", ReferenceTo(other, path)}})};
  for (const auto& target : targets) {
    const auto cimClass = target->GetClass({});
    TCIMReference reference(ns, {});
    reference.SetClass(cimClass);
    for (const auto& [decl, isKey] : NModel::PropertiesOf(*cimClass)) {
      const std::string& name = decl->GetName();
      if (isKey) reference.AddKeyValue(name, target->GetProperty(name, {})->GetValue());
    }
    SCOPED_TRACE(reference.GetPath());
    adder.Begin();
    EXPECT_TRUE(adder.Set(0, TCIMValue(reference)));
    EXPECT_TRUE(adder.Commit());
    adder.Begin();
    EXPECT_TRUE(adder.SetReference(0, *target));
    const TCIMReference found = adder.GetInstance()->GetProperty("To", {})->GetValue();
    EXPECT_EQ(found, reference);
    EXPECT_EQ(found.GetPath(), reference.GetPath());
    EXPECT_EQ(found.GetNamespace(), ns);
    EXPECT_FALSE(adder.Commit()) << "the same key";
  }

  adder.Begin();
  EXPECT_FALSE(adder.SetReference(1, *read)) << "no reference";
  EXPECT_FALSE(adder.SetReference(0, *AddInstance(other, "T_Disk", {{"Name", "x"}, {"Id", 1U}})));
  EXPECT_FALSE(adder.SetReference(0, *read->GetClass({})->CreateInstance({}))) << "has no keys yet";
  EXPECT_QDX_STATUS(adder.Commit(), kQDXStatusInvalidInstance);
}

}  // namespace
}  // namespace NVORNQDX20
