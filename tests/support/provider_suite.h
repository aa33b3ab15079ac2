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

#include <set>

#include "support/expect_status.h"

#include <boost/algorithm/string/case_conv.hpp>

namespace NVORNQDX20 {

class ProvidedNamespace : public ::testing::TestWithParam<boost::shared_ptr<ICIMNamespace> (*)()> {
 protected:
  using TClass = boost::shared_ptr<ICIMClass>;

  ProvidedNamespace() {
    std::vector<TClass> roots;
    fNamespace->EnumerateClasses(TAddToVectorCallback(roots), {});
    for (const TClass& root : roots) {
      fClasses.push_back(root);
      root->EnumerateSubclasses(TAddToVectorCallback(fClasses), true, {});
    }
  }

  static auto DeclsOf(const TClass& c) {
    std::vector<boost::shared_ptr<ICIMPropertyDecl>> decls;
    c->EnumeratePropertyDecls(TAddToVectorCallback(decls), {});
    return decls;
  }
  static auto InstancesOf(const TClass& c, bool deep = false) {
    std::vector<boost::shared_ptr<ICIMInstance>> instances;
    c->EnumerateInstances(TAddToVectorCallback(instances), deep, {});
    return instances;
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
    EXPECT_EQ(fNamespace->GetClass(boost::to_upper_copy(name), {}), c) << name;
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
    EXPECT_QDX_STATUS(c->GetPropertyDecl("Qdx_NoSuch", {}), kQDXStatusNotFound);
    EXPECT_EQ(c->GetQualifier("Qdx_NoSuch"), nullptr);
    for (const auto& decl : DeclsOf(c)) {
      EXPECT_THROW(decl->GetQualifier("Qdx_NoSuch"), TQDXException);
      const auto found = c->GetPropertyDecl(boost::to_upper_copy(decl->GetName()), {});
      EXPECT_EQ(found->GetName(), decl->GetName()) << c->GetName({});
      EXPECT_EQ(found->GetType(), found->GetDefaultValue().GetType()) << decl->GetName();
    }
  }
}

TEST_P(ProvidedNamespace, GivesTypedPropertiesAndFindsInstancesByTheirKeys) {
  bool resolved = false;
  for (const TClass& c : fClasses) {
    for (const auto& instance : InstancesOf(c)) {
      EXPECT_EQ(instance->GetClass({}), c);
      std::vector<boost::shared_ptr<ICIMProperty>> properties;
      instance->EnumerateProperties(TAddToVectorCallback(properties), {});
      EXPECT_EQ(properties.size(), DeclsOf(c).size());
      TCIMReference path(fNamespace, {});
      path.SetClass(c);
      for (const auto& property : properties) {
        const auto decl = property->GetDecl();
        const std::string name = decl->GetName();
        EXPECT_EQ(property->GetValue().GetType(), decl->GetType()) << name;
        EXPECT_EQ(instance->GetProperty(boost::to_upper_copy(name), {})->GetValue(),
                  property->GetValue())
            << name;
        if (StatusThrownBy([&] { decl->GetQualifier("key"); }) != "nothing") continue;
        path.AddKeyValue(name, property->GetValue());
        resolved = true;
      }
      if (path.GetPath() == c->GetName({})) continue;  // a class without keys
      const TCIMReference read(fNamespace, path.GetPath(), {});
      EXPECT_TRUE(read == path) << path.GetPath();
      EXPECT_NE(read.GetCIMElement(), nullptr) << path.GetPath();
    }
  }
  EXPECT_TRUE(resolved);
}

}  // namespace NVORNQDX20

#endif  // TESTS_SUPPORT_PROVIDER_SUITE_H_
