// SPDX-License-Identifier: Apache-2.0
/// What holds for every provider's namespace. One test program of a provider includes this and says
///
///   INSTANTIATE_TEST_SUITE_P(MyProvider, ProvidedNamespace, ::testing::Values(&MakeFilled));
///
/// where MakeFilled makes a namespace with classes and with an instance that has keys.
#ifndef TESTS_SUPPORT_PROVIDER_SUITE_H_
#define TESTS_SUPPORT_PROVIDER_SUITE_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>
#include <qdxcore/status.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "support/expect_status.h"

#include <gtest/gtest.h>

class ProvidedNamespace
    : public ::testing::TestWithParam<boost::shared_ptr<NVORNQDX20::ICIMNamespace> (*)()> {
 protected:
  template <typename T>
  using TPtr = boost::shared_ptr<T>;
  template <typename T>
  using TVisit = NVORNQDX20::TAddToVectorCallback<T>;
  using ICIMClass = NVORNQDX20::ICIMClass;
  using ICIMInstance = NVORNQDX20::ICIMInstance;
  using ICIMProperty = NVORNQDX20::ICIMProperty;
  using ICIMPropertyDecl = NVORNQDX20::ICIMPropertyDecl;
  using ICIMQualifier = NVORNQDX20::ICIMQualifier;

  ProvidedNamespace() {
    std::vector<TPtr<ICIMClass>> roots;
    fNamespace->EnumerateClasses(TVisit<ICIMClass>(roots), {});
    for (const auto& root : roots) {
      fClasses.push_back(root);
      root->EnumerateSubclasses(TVisit<ICIMClass>(fClasses), true, {});
    }
  }

  static std::string NameOf(const TPtr<ICIMClass>& c) { return c->GetName({}); }
  static std::string InOtherCase(std::string name) {
    for (char& c : name) {
      const auto u = static_cast<unsigned char>(c);
      c = static_cast<char>(std::isupper(u) != 0 ? std::tolower(u) : std::toupper(u));
    }
    return name;
  }

  static std::vector<TPtr<ICIMPropertyDecl>> PropertiesOf(const TPtr<ICIMClass>& cimClass) {
    std::vector<TPtr<ICIMPropertyDecl>> decls;
    cimClass->EnumeratePropertyDecls(TVisit<ICIMPropertyDecl>(decls), {});
    return decls;
  }
  static std::vector<TPtr<ICIMInstance>> InstancesOf(const TPtr<ICIMClass>& cimClass, bool deep) {
    std::vector<TPtr<ICIMInstance>> instances;
    cimClass->EnumerateInstances(TVisit<ICIMInstance>(instances), deep, {});
    return instances;
  }
  static bool IsKey(const TPtr<const ICIMPropertyDecl>& decl) {
    try {
      return decl->GetQualifier("key")->GetValue() == NVORNQDX20::TCIMValue(true);
    } catch (const NVORNQDX20::TQDXException&) {
      return false;
    }
  }

  const TPtr<NVORNQDX20::ICIMNamespace> fNamespace = GetParam()();
  std::vector<TPtr<ICIMClass>> fClasses;
};

TEST_P(ProvidedNamespace, GivesEachClassOnceAndAfterItsSuperclass) {
  ASSERT_FALSE(fClasses.empty());
  std::set<std::string> seen;
  for (const auto& cimClass : fClasses) {
    EXPECT_TRUE(seen.insert(NameOf(cimClass)).second) << NameOf(cimClass);
    if (cimClass->IsRootClass({})) continue;
    EXPECT_EQ(seen.count(NameOf(cimClass->GetSuperclass({}))), 1U) << NameOf(cimClass);
  }
}

TEST_P(ProvidedNamespace, FindsClassesWithoutRegardToCase) {
  for (const auto& cimClass : fClasses) {
    EXPECT_EQ(fNamespace->GetClass(NameOf(cimClass), {}), cimClass) << NameOf(cimClass);
    EXPECT_EQ(fNamespace->GetClass(InOtherCase(NameOf(cimClass)), {}), cimClass);
  }
}

TEST_P(ProvidedNamespace, SaysWhatIsAbsentAsItShould) {
  for (const auto& cimClass : fClasses) {
    EXPECT_QDX_STATUS(cimClass->GetPropertyDecl("Qdx_NoSuch", {}), NVORNQDX20::kQDXStatusNotFound);
    EXPECT_EQ(cimClass->GetQualifier("Qdx_NoSuch"), nullptr);
    for (const auto& decl : PropertiesOf(cimClass)) {
      EXPECT_THROW(decl->GetQualifier("Qdx_NoSuch"), NVORNQDX20::TQDXException);
    }
  }
}

TEST_P(ProvidedNamespace, StopsWhenACallbackAnswersFalse) {
  int calls = 0;
  const auto stop = [&](const auto&) { return ++calls < 0; };
  fNamespace->EnumerateClasses(stop, {});
  EXPECT_EQ(calls, 1);
  for (const auto& cimClass : fClasses) {
    calls = 0;
    cimClass->EnumeratePropertyDecls(stop, {});
    EXPECT_EQ(calls, PropertiesOf(cimClass).empty() ? 0 : 1) << NameOf(cimClass);
    calls = 0;
    cimClass->EnumerateInstances(stop, true, {});
    EXPECT_EQ(calls, InstancesOf(cimClass, true).empty() ? 0 : 1) << NameOf(cimClass);
  }
}

TEST_P(ProvidedNamespace, FindsInheritedPropertiesWithTheirTypes) {
  for (const auto& cimClass : fClasses) {
    for (auto from = cimClass;; from = from->GetSuperclass({})) {
      for (const auto& decl : PropertiesOf(from)) {
        const auto found = cimClass->GetPropertyDecl(InOtherCase(decl->GetName()), {});
        EXPECT_EQ(found->GetType(), decl->GetType()) << NameOf(cimClass) << decl->GetName();
        EXPECT_EQ(found->GetType(), found->GetDefaultValue().GetType());
        EXPECT_EQ(found->GetDefaultValue().IsReference(),
                  found->GetDefaultValue().GetReferencedClass() != nullptr);
      }
      if (from->IsRootClass({})) break;
    }
  }
}

TEST_P(ProvidedNamespace, DeclaresItsQualifiers) {
  for (const auto& cimClass : fClasses) {
    std::vector<TPtr<ICIMQualifier>> qualifiers;
    cimClass->EnumerateQualifiers(TVisit<ICIMQualifier>(qualifiers));
    for (const auto& decl : PropertiesOf(cimClass)) {
      decl->EnumerateQualifiers(TVisit<ICIMQualifier>(qualifiers));
    }
    for (const auto& qualifier : qualifiers) {
      const auto declared = fNamespace->GetQualifierDecl(qualifier->GetDecl()->GetName(), {});
      EXPECT_EQ(qualifier->GetValue().GetType(), declared->GetDefaultValue().GetType())
          << NameOf(cimClass) << declared->GetName();
    }
  }
}

TEST_P(ProvidedNamespace, GivesInstancesWithTheirClassAndTypedProperties) {
  for (const auto& cimClass : fClasses) {
    for (const auto& instance : InstancesOf(cimClass, false)) {
      EXPECT_EQ(instance->GetClass({}), cimClass);
      std::vector<TPtr<ICIMProperty>> properties;
      instance->EnumerateProperties(TVisit<ICIMProperty>(properties), {});
      EXPECT_EQ(properties.size(), PropertiesOf(cimClass).size());
      for (const auto& property : properties) {
        const std::string name = property->GetDecl()->GetName();
        EXPECT_EQ(property->GetValue().GetType(), property->GetDecl()->GetType()) << name;
        const auto same = instance->GetProperty(InOtherCase(name), {});
        EXPECT_EQ(same->GetValue(), property->GetValue()) << name;
      }
    }
  }
}

TEST_P(ProvidedNamespace, CountsTheInstancesOfSubclassesWhenDeep) {
  for (const auto& cimClass : fClasses) {
    std::vector<TPtr<ICIMClass>> subclasses;
    cimClass->EnumerateSubclasses(TVisit<ICIMClass>(subclasses), true, {});
    std::size_t instances = InstancesOf(cimClass, false).size();
    for (const auto& subclass : subclasses) instances += InstancesOf(subclass, false).size();
    EXPECT_EQ(InstancesOf(cimClass, true).size(), instances) << NameOf(cimClass);
  }
}

TEST_P(ProvidedNamespace, FindsEachInstanceByThePathOfItsKeys) {
  int resolved = 0;
  for (const auto& cimClass : fClasses) {
    for (const auto& instance : InstancesOf(cimClass, false)) {
      NVORNQDX20::TCIMReference path(fNamespace, {});
      path.SetClass(cimClass);
      for (const auto& decl : PropertiesOf(cimClass)) {
        if (!IsKey(decl)) continue;
        path.AddKeyValue(decl->GetName(), instance->GetProperty(decl->GetName(), {})->GetValue());
      }
      if (path.GetPath() == NameOf(cimClass)) continue;  // a class without keys
      const NVORNQDX20::TCIMReference read(fNamespace, path.GetPath(), {});
      EXPECT_TRUE(read == path) << path.GetPath();
      const auto found = boost::dynamic_pointer_cast<ICIMInstance>(read.GetCIMElement());
      ASSERT_NE(found, nullptr) << path.GetPath();
      for (const auto& decl : PropertiesOf(cimClass)) {
        EXPECT_EQ(found->GetProperty(decl->GetName(), {})->GetValue(),
                  instance->GetProperty(decl->GetName(), {})->GetValue())
            << path.GetPath() << decl->GetName();
      }
      ++resolved;
    }
  }
  EXPECT_GT(resolved, 0);
}

#endif  // TESTS_SUPPORT_PROVIDER_SUITE_H_
