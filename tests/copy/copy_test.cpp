// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/copy.h>
#include <qdxcore/reference_parameter.h>

#include "support/class_builder.h"
#include "support/faulty_provider.h"
#include "support/log_capture.h"
#include "support/provider_suite.h"

#include <sstream>
#include <tuple>

using namespace NVORNQDX20;

using TCIMType = TCIMValue::TCIMType;

template <typename TElement>
TElement Mark(const TNamespace& ns, TElement element, const TCIMValue& value) {
  return Qualify(ns, Qualify(ns, element, "Mark", value), "Note", value);
}

/// A class with two of all that a class can have, each element of it marked, and a subclass.
TNamespace MakeSmallSource() {
  TNamespace ns = MakeRepositoryNamespace("source");
  for (const char* name : {"Mark", "Note"}) {
    ns->CreateQualifierDecl(name, kNoText, kScopeMethod, kFlavorTranslatable, {})->Commit();
  }
  const auto a = Mark(ns, ns->CreateClass("T_A", nullptr, {}), "class");
  for (const auto& [name, value] : TProperties{{"Level", 2U}, {"Above", 3U}}) {
    Mark(ns, a->CreatePropertyDecl(name, 1U, {}), "property")->Commit();
    a->SetStaticPropertyValue(name, value, {});
  }
  const auto method = a->CreateMethodDecl("Reset", TCIMType::kCIMTypeSint8, {});
  for (const char* name : {"Force", "After"}) {
    const auto parameter = method->CreateParameterDecl(name, TCIMType::kCIMTypeBoolean);
    Mark(ns, parameter, "parameter")->Commit();
  }
  Mark(ns, method, "method");
  a->CreateMethodDecl("Apply", TCIMType::kCIMTypeUint8, {});
  a->Commit({});
  ns->CreateClass("T_B", a, {})->Commit({});
  for (const unsigned level : {5U, 4U}) AddInstance(ns, "T_A", {{"Level", level}, {"Above", 6U}});
  return ns;
}

TEST(Copy, FillsTheTargetInThePromisedOrder) {
  std::string calls;
  const auto watched = boost::make_shared<TFaults>();
  watched->fWatch = [&](const std::string& call) { calls += call.substr(4) + "\n"; };
  const TNamespace target = MakeRepositoryNamespace("target");
  TCIMCopy::CopyClasses(MakeSmallSource(), MakeFaultyNamespace(target, watched));

  // "@" stands for the copy of both qualifiers onto the element that follows.
  std::istringstream expected(R"(
Namespace::CreateQualifierDecl(Mark,,16,8) QualifierDecl::Commit()
Namespace::CreateQualifierDecl(Note,,16,8) QualifierDecl::Commit()
Namespace::CreateClass(T_A) @Class::AddQualifier(class)
  Class::GetPropertyDecl(Level) Class::CreatePropertyDecl(Level,1)
    @PropertyDecl::AddQualifier(property) PropertyDecl::Commit()
  Class::GetPropertyDecl(Above) Class::CreatePropertyDecl(Above,1)
    @PropertyDecl::AddQualifier(property) PropertyDecl::Commit()
  Class::SetStaticPropertyValue(Level,2) Class::SetStaticPropertyValue(Above,3)
  Class::CreateMethodDecl(Reset,sint8)
    MethodDecl::CreateParameterDecl(Force,boolean)
      @ParameterDecl::AddQualifier(parameter) ParameterDecl::Commit()
    MethodDecl::CreateParameterDecl(After,boolean)
      @ParameterDecl::AddQualifier(parameter) ParameterDecl::Commit()
    @MethodDecl::AddQualifier(method)
  Class::CreateMethodDecl(Apply,uint8)
  Class::Commit()
  Namespace::GetClass(T_A) Class::CreateInstance()
    Instance::SetPropertyValue(Level,5) Instance::SetPropertyValue(Above,6) Instance::Commit()
  Namespace::GetClass(T_A) Class::CreateInstance()
    Instance::SetPropertyValue(Level,4) Instance::SetPropertyValue(Above,6) Instance::Commit()
Namespace::GetClass(T_A) Namespace::CreateClass(T_B)
  Class::GetPropertyDecl(Level) Class::GetPropertyDecl(Above) Class::Commit())");
  std::string lines;
  for (std::string word; expected >> word;) {
    if (word[0] == '@') {
      for (const std::string name : {"Mark", "Note"}) {
        lines += "Namespace::GetQualifierDecl(" + name + ")\n" + word.substr(1) +
                 "\nQualifier::Commit()\n";
      }
    } else {
      lines += word + "\n";
    }
  }
  EXPECT_EQ(calls, lines);
}

TEST(Copy, EndsWhereANamespaceFails) {
  // Whether in the target, operation, status (kQDXStatusOK returns null), outcome.
  const std::tuple<bool, const char*, EQDXStatusCode, const char*> rows[] = {
      {true, "ICIMNamespace::GetQualifierDecl", kQDXStatusOK, "new kQDXStatusFail"},
      {true, "ICIMClass::GetPropertyDecl", kQDXStatusNotSupported, "new kQDXStatusNotSupported"},
      {true, "ICIMNamespace::GetClass", kQDXStatusOK, "new kQDXStatusFail"},  // an instance's
      {true, "ICIMInstance::Commit", kQDXStatusAlreadyExists, "kQDXStatusAlreadyExists"},
      {false, "ICIMClass::GetSuperclass", kQDXStatusOK, "new kQDXStatusFail"},
      {false, "ICIMClass::EnumerateInstances", kQDXStatusNotFound, "kQDXStatusNotFound"},
      {false, "ICIMPropertyDecl::GetQualifier", kQDXStatusAccessDenied, "done"},
      {false, "ICIMPropertyDecl::GetQualifier", kQDXStatusOK, "done, and B has a Level"},
  };
  for (const auto& [inTarget, operation, status, expected] : rows) {
    const auto faults = boost::make_shared<TFaults>(), none = boost::make_shared<TFaults>();
    faults->Fail(operation, status);
    const TNamespace target = MakeRepositoryNamespace("target");
    std::string outcome = "done";
    try {
      TCIMCopy::CopyClasses(MakeFaultyNamespace(MakeSmallSource(), inTarget ? none : faults),
                            MakeFaultyNamespace(target, inTarget ? faults : none));
    } catch (const TInjected& e) {
      outcome = e.what();
    } catch (const TQDXException& e) {
      outcome = std::string("new ") + e.what();
    }
    const auto level = [&](const char* name) {
      return target->GetClass(name, {})->GetPropertyDecl("Level", {});
    };
    if (outcome == "done" && level("T_A") != level("T_B")) outcome += ", and B has a Level";
    EXPECT_EQ(outcome, expected) << operation;
    EXPECT_NE(target->GetQualifierDecl("Mark", {}), nullptr);  // what was committed stays
  }
}

/// Three levels, and associations before the classes they refer to, one below an ordinary class
/// and before an ordinary one.
TNamespace MakeSource() {
  TNamespace ns = MakeNamespace();
  ns->CreateQualifierDecl("PluginName", kNoText, kScopeClass, kFlavorTranslatable, {})->Commit();
  const auto root = AddClass(ns, "T_Root", {});
  const auto base = AddClass(ns, "T_Base", {{"Id", 0U}}, {{"Name", kNoText}});
  const TCIMValue toBase = NullReference(ns, "T_Base");
  AddClass(ns, "T_Link", {{"From", toBase}}, {{"To", toBase}}, root, true);
  AddDerived(ns, "T_Node", root, {});
  const auto user = ns->CreateClass("T_User", nullptr, {});
  const auto method = user->CreateMethodDecl("Use", TCIMType::kCIMTypeUint32, {});
  const auto links =
      method->CreateParameterDecl("Links", TCIMType::kCIMTypeReference | TCIMType::kCIMTypeArray);
  SetReferencedClassName(*links, "T_Link");
  links->Commit();
  user->Commit({});
  AddClass(ns, "T_Meta", {{"Of", NullReference(ns, "T_Link")}}, {}, nullptr, true, true);
  const auto middle = ns->CreateClass("T_Middle", base, {});
  Qualify(ns, middle->CreatePropertyDecl("Name", "middle", {}), "Override", "Name")->Commit();
  middle->Commit({});
  AddDerived(ns, "T_Leaf", middle, {});
  Qualify(ns, ns->CreateClass("T_Plugin", base, {}), "PluginName", "p")->Commit({});
  for (const char* name : {"T_Base", "T_Middle", "T_Leaf", "T_Plugin"}) {
    AddInstance(ns, name, {{"Id", 7U}});
  }
  AddInstance(ns, "T_Link", {{"From", ReferenceTo(ns, R"(T_Leaf.Id="7")")}});
  return ns;
}

TNamespace MakeCopy() {
  TNamespace target = MakeRepositoryNamespace("target");
  TCIMCopy::CopyClasses(MakeSource(), target);
  return target;
}

INSTANTIATE_TEST_SUITE_P(Copy, ProvidedNamespace, ::testing::Values(&MakeCopy));

TEST(Copy, LeavesOutInstancesOfPluginsAndRepeatsInheritedOverriding) {
  const auto faults = boost::make_shared<TFaults>();
  const TNamespace target = MakeRepositoryNamespace("target");
  int asked = 0;
  faults->fWatch = [&](const std::string& c) { asked += c == "ICIMClass::EnumerateInstances(0)"; };
  TCIMCopy::CopyClasses(MakeFaultyNamespace(MakeSource(), faults), target);
  EXPECT_EQ(asked, 7);  // not of T_Plugin, T_Meta
  const auto declared = [&](const char* name, const char* property) {
    return target->GetClass(name, {})->GetPropertyDecl(property, {});
  };
  EXPECT_EQ(declared("T_Middle", "Name")->GetDefaultValue(), TCIMValue("middle"));
  EXPECT_NE(declared("T_Leaf", "Name"), declared("T_Middle", "Name"));
  EXPECT_EQ(declared("T_Leaf", "Id"), declared("T_Base", "Id"));
}

TEST(Copy, BindsReferencesToTheTarget) {
  const TNamespace source = MakeSource(), target = MakeCopy();
  for (const char* path : {"T_Leaf", R"(T_Leaf.Id="7")", R"(T_Link.From="T_Leaf.Id="7"")",
                           R"(T_Link.From="T_Leaf.Id="7"",To="T_Base.Id="7"")",
                           R"(T_Meta.Of="T_Link.From="T_Leaf.Id="7""")"}) {
    const TCIMValue copy = TCIMCopy::CopyValue(ReferenceTo(source, path), target);
    // Classes compare by identity, in keys as well.
    EXPECT_EQ(copy, ReferenceTo(target, path)) << path;
    EXPECT_EQ(copy.GetReferencedClass(), ReferenceTo(target, path).GetReferencedClass()) << path;
    EXPECT_EQ(static_cast<TCIMReference>(copy).GetNamespace(), target) << path;
  }
  EXPECT_EQ(TCIMCopy::CopyValue(NullReference(source, "T_Link"), target),
            NullReference(target, "T_Link"));
  // Arrays of references stay what they are.
  for (const TCIMValue& value :
       {TCIMValue(TCIMType::kCIMTypeReference, 0, {ReferenceTo(source, "T_Leaf")}), TCIMValue(),
        TCIMValue(TCIMType::kCIMTypeUint8, 4), TCIMValue("text")}) {
    EXPECT_EQ(TCIMCopy::CopyValue(value, target), value);
  }
}

TEST(Copy, KeepsTheClassesThatParametersReferTo) {
  std::string classes;
  const auto add = [&](const boost::shared_ptr<ICIMParameterDecl>& parameter) {
    classes += GetReferencedClassName(*parameter);
    return true;
  };
  MakeCopy()
      ->GetClass("T_User", {})
      ->EnumerateMethodDecls(
          [&](const auto& method) {
            method->EnumerateParameterDecls(add);
            return true;
          },
          {});
  EXPECT_EQ(classes, "T_Link");
}

TEST(Copy, CannotReferToAClassThatTheTargetLacks) {
  const TNamespace source = MakeNamespace(), target = MakeRepositoryNamespace("target");
  const auto self = source->CreateClass("T_Self", nullptr, {});
  TCIMValue toSelf(TCIMType::kCIMTypeReference, 0);
  toSelf.SetReferencedClass(self);
  self->CreatePropertyDecl("Parent", toSelf, {})->Commit();
  self->Commit({});
  EXPECT_QDX_STATUS(TCIMCopy::CopyClasses(source, target), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(target->GetClass("T_Self", {}), kQDXStatusNotFound);
  const TCIMValue toNoClass(TCIMType::kCIMTypeReference, 0);
  EXPECT_QDX_STATUS(TCIMCopy::CopyValue(toNoClass, target), kQDXStatusFail);
  const auto faults = boost::make_shared<TFaults>();
  faults->Fail("ICIMNamespace::GetClass", kQDXStatusOK);
  const TLogCapture log;
  const TNamespace faulty = MakeFaultyNamespace(target, faults);
  EXPECT_QDX_STATUS(TCIMCopy::CopyValue(toSelf, faulty), kQDXStatusFail);
  EXPECT_NE(log.Messages().at(0).find("[px != 0]"), std::string::npos);
}
