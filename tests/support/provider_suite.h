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

#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "support/expect_status.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {

class ProvidedNamespace : public ::testing::TestWithParam<boost::shared_ptr<ICIMNamespace> (*)()> {
 protected:
  using TClass = boost::shared_ptr<ICIMClass>;
  using TInstance = boost::shared_ptr<ICIMInstance>;
  using TDecl = boost::shared_ptr<ICIMPropertyDecl>;

  ProvidedNamespace() {
    std::vector<TClass> roots;
    fNamespace->EnumerateClasses(TAddToVectorCallback(roots), {});
    for (const TClass& root : roots) {
      fClasses.push_back(root);
      root->EnumerateSubclasses(TAddToVectorCallback(fClasses), true, {});
    }
  }

  static std::string InOtherCase(std::string name) {
    for (char& c : name) {
      if (std::isalpha(static_cast<unsigned char>(c)) != 0) c = static_cast<char>(c ^ ' ');
    }
    return name;
  }
  static std::vector<TDecl> DeclsOf(const TClass& c) {
    std::vector<TDecl> decls;
    c->EnumeratePropertyDecls(TAddToVectorCallback(decls), {});
    return decls;
  }
  static std::vector<TInstance> InstancesOf(const TClass& c, bool deep) {
    std::vector<TInstance> instances;
    c->EnumerateInstances(TAddToVectorCallback(instances), deep, {});
    return instances;
  }
  static TCIMValue ValueOf(const TInstance& instance, const std::string& name) {
    return instance->GetProperty(name, {})->GetValue();
  }
  static bool IsKey(const TDecl& decl) {
    return StatusThrownBy([&] { decl->GetQualifier("key"); }) == "nothing";
  }

  const boost::shared_ptr<ICIMNamespace> fNamespace = GetParam()();
  std::vector<TClass> fClasses;
};

TEST_P(ProvidedNamespace, GivesEachClassOnceAfterItsSuperclassAndFindsItInAnyCase) {
  ASSERT_FALSE(fClasses.empty());
  std::set<TClass> seen;
  for (const TClass& c : fClasses) {
    const std::string name = c->GetName({});
    EXPECT_TRUE(seen.insert(c).second) << name;
    EXPECT_TRUE(c->IsRootClass({}) || seen.count(c->GetSuperclass({})) == 1) << name;
    EXPECT_EQ(fNamespace->GetClass(InOtherCase(name), {}), c) << name;
  }
}

TEST_P(ProvidedNamespace, StopsWhenACallbackAnswersFalse) {
  std::size_t calls = 0, expected = 1;
  const auto stop = [&](const auto&) { return ++calls == 0; };
  fNamespace->EnumerateClasses(stop, {});
  for (const TClass& c : fClasses) {
    expected += (DeclsOf(c).empty() ? 0 : 1) + (InstancesOf(c, true).empty() ? 0 : 1);
    c->EnumeratePropertyDecls(stop, {});
    c->EnumerateInstances(stop, true, {});
    EXPECT_EQ(calls, expected) << c->GetName({});
  }
}

TEST_P(ProvidedNamespace, DeclaresPropertiesAndSaysWhatIsAbsent) {
  for (const TClass& c : fClasses) {
    SCOPED_TRACE(c->GetName({}));
    EXPECT_QDX_STATUS(c->GetPropertyDecl("Qdx_NoSuch", {}), kQDXStatusNotFound);
    EXPECT_EQ(c->GetQualifier("Qdx_NoSuch"), nullptr);
    for (const TDecl& decl : DeclsOf(c)) {
      EXPECT_THROW(decl->GetQualifier("Qdx_NoSuch"), TQDXException);
      const auto found = c->GetPropertyDecl(InOtherCase(decl->GetName()), {});
      EXPECT_EQ(found->GetName(), decl->GetName());
      EXPECT_EQ(found->GetType(), found->GetDefaultValue().GetType()) << decl->GetName();
    }
  }
}

TEST_P(ProvidedNamespace, GivesInstancesOfTheirClassesWithTypedProperties) {
  for (const TClass& c : fClasses) {
    for (const TInstance& instance : InstancesOf(c, false)) {
      EXPECT_EQ(instance->GetClass({}), c);
      std::vector<boost::shared_ptr<ICIMProperty>> properties;
      instance->EnumerateProperties(TAddToVectorCallback(properties), {});
      EXPECT_EQ(properties.size(), DeclsOf(c).size());
      for (const auto& property : properties) {
        const std::string name = property->GetDecl()->GetName();
        EXPECT_EQ(property->GetValue().GetType(), property->GetDecl()->GetType()) << name;
        EXPECT_EQ(ValueOf(instance, InOtherCase(name)), property->GetValue()) << name;
      }
    }
  }
}

TEST_P(ProvidedNamespace, FindsEachInstanceByThePathOfItsKeys) {
  bool resolved = false;
  for (const TClass& c : fClasses) {
    for (const TInstance& instance : InstancesOf(c, false)) {
      TCIMReference path(fNamespace, {});
      path.SetClass(c);
      for (const TDecl& decl : DeclsOf(c)) {
        if (IsKey(decl)) path.AddKeyValue(decl->GetName(), ValueOf(instance, decl->GetName()));
      }
      if (path.GetPath() == c->GetName({})) continue;  // a class without keys
      SCOPED_TRACE(path.GetPath());
      const TCIMReference read(fNamespace, path.GetPath(), {});
      EXPECT_TRUE(read == path);
      EXPECT_NE(read.GetCIMElement(), nullptr);
      resolved = true;
    }
  }
  EXPECT_TRUE(resolved);
}

}  // namespace NVORNQDX20

#endif  // TESTS_SUPPORT_PROVIDER_SUITE_H_
