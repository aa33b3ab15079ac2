// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>

#include <qdxcore/logger.h>
#include <qdxcore/registry.h>

#include "support/expect_status.h"

#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

namespace NVORNQDX20 {
namespace {

/// The place of a virtual function in its class's table: the compiler keeps it, plus one byte, in
/// the pointer to the member. The destructor takes the places 0 and 1.
template <typename TMember>
std::uint64_t SlotOf(TMember member) {
  std::uint64_t words[2];
  static_assert(sizeof member == sizeof words);
  std::memcpy(words, &member, sizeof words);
  EXPECT_EQ(words[1], 0U) << "not in the first table of its class";
  return (words[0] - 1) / sizeof(void*);
}

#define EXPECT_SLOT(function, slot) EXPECT_EQ(SlotOf(&function), std::uint64_t{slot}) << #function

TEST(InterfaceSlots, NeverChange) {
  EXPECT_SLOT(ICIMNamespace::GetName, 2);
  EXPECT_SLOT(ICIMNamespace::CreateClass, 5);
  EXPECT_SLOT(ICIMNamespace::GetClass, 7);
  EXPECT_SLOT(ICIMNamespace::EnumerateClasses, 9);
  EXPECT_SLOT(ICIMNamespace::CreateQualifierDecl, 11);
  EXPECT_SLOT(ICIMNamespace::GetQualifierDecl, 13);
  EXPECT_SLOT(ICIMNamespace::EnumerateQualifierDecls, 14);

  EXPECT_SLOT(ICIMClass::Commit, 3);
  EXPECT_SLOT(ICIMClass::GetName, 6);
  EXPECT_SLOT(ICIMClass::IsAssociation, 8);
  EXPECT_SLOT(ICIMClass::IsAbstract, 9);
  EXPECT_SLOT(ICIMClass::IsRootClass, 10);
  EXPECT_SLOT(ICIMClass::GetSuperclass, 11);
  EXPECT_SLOT(ICIMClass::EnumerateSubclasses, 12);
  EXPECT_SLOT(ICIMClass::GetQualifier, 20);
  EXPECT_SLOT(ICIMClass::EnumerateQualifiers, 21);
  EXPECT_SLOT(ICIMClass::CreatePropertyDecl, 22);
  EXPECT_SLOT(ICIMClass::GetPropertyDecl, 24);
  EXPECT_SLOT(ICIMClass::EnumeratePropertyDecls, 25);
  EXPECT_SLOT(ICIMClass::SetStaticPropertyValue, 28);
  EXPECT_SLOT(ICIMClass::EnumerateStaticProperties, 29);
  EXPECT_SLOT(ICIMClass::CreateInstance, 30);
  EXPECT_SLOT(ICIMClass::GetInstance, 32);
  EXPECT_SLOT(ICIMClass::EnumerateInstances, 33);
  EXPECT_SLOT(ICIMClass::CreateMethodDecl, 34);
  EXPECT_SLOT(ICIMClass::EnumerateMethodDecls, 37);

  EXPECT_SLOT(ICIMInstance::Commit, 3);
  EXPECT_SLOT(ICIMInstance::GetClass, 7);
  EXPECT_SLOT(ICIMInstance::GetProperty, 10);
  EXPECT_SLOT(ICIMInstance::SetPropertyValue, 12);
  EXPECT_SLOT(ICIMInstance::EnumerateProperties, 13);

  EXPECT_SLOT(ICIMProperty::GetValue, 5);
  EXPECT_SLOT(ICIMProperty::GetDecl, 14);

  EXPECT_SLOT(ICIMPropertyDecl::GetQualifier, 6);
  EXPECT_SLOT(ICIMPropertyDecl::EnumerateQualifiers, 7);
  EXPECT_SLOT(ICIMPropertyDecl::Commit, 9);
  EXPECT_SLOT(ICIMPropertyDecl::GetName, 11);
  EXPECT_SLOT(ICIMPropertyDecl::GetType, 13);
  EXPECT_SLOT(ICIMPropertyDecl::GetDefaultValue, 15);

  EXPECT_SLOT(ICIMQualifierDecl::Commit, 3);
  EXPECT_SLOT(ICIMQualifierDecl::GetName, 5);
  EXPECT_SLOT(ICIMQualifierDecl::GetDefaultValue, 9);
  EXPECT_SLOT(ICIMQualifierDecl::GetScope, 11);
  EXPECT_SLOT(ICIMQualifierDecl::GetFlavor, 14);

  EXPECT_SLOT(ICIMQualifier::Commit, 3);
  EXPECT_SLOT(ICIMQualifier::GetDecl, 9);
  EXPECT_SLOT(ICIMQualifier::GetValue, 10);

  EXPECT_SLOT(ICIMNamedElement::AddQualifier, 3);

  EXPECT_SLOT(ICIMMethodDecl::EnumerateQualifiers, 7);
  EXPECT_SLOT(ICIMMethodDecl::GetName, 10);
  EXPECT_SLOT(ICIMMethodDecl::GetReturnType, 12);
  EXPECT_SLOT(ICIMMethodDecl::CreateParameterDecl, 13);
  EXPECT_SLOT(ICIMMethodDecl::EnumerateParameterDecls, 16);

  EXPECT_SLOT(ICIMParameterDecl::Commit, 9);
  EXPECT_SLOT(ICIMParameterDecl::GetName, 10);
  EXPECT_SLOT(ICIMParameterDecl::GetType, 12);
  EXPECT_SLOT(ICIMParameterDecl::EnumerateQualifiers, 14);

  EXPECT_SLOT(INamespaceProviderManager::RegisterNamespaceProvider, 2);
  EXPECT_SLOT(INamespaceProviderManager::GetNamespaceProvider, 3);
  EXPECT_SLOT(INamespaceProviderManager::EnumerateNamespaceProviders, 4);

  EXPECT_SLOT(ILogger::OutputLogEntry, 2);
  EXPECT_SLOT(ILogger::GetLog, 3);
  EXPECT_SLOT(ILogger::ClearLog, 4);
  EXPECT_SLOT(ILogger::SetLogThreshold, 5);
  EXPECT_SLOT(ILogger::GetLogThreshold, 6);
  EXPECT_SLOT(ILogger::SetLogFilename, 7);

  EXPECT_SLOT(INamespaceProvider::GetName, 2);
  EXPECT_SLOT(INamespaceProvider::GetNamespace, 3);
  EXPECT_SLOT(INamespaceProvider::EnumerateNamespaceNames, 4);
  EXPECT_SLOT(INamespaceConsumer::GetName, 2);
  EXPECT_SLOT(INamespaceConsumer::Consume, 3);
}

// The four that carry qualifiers convert to their base; for a class that base is not the first.
static_assert(std::is_base_of_v<ICIMNamedElement, ICIMClass>);
static_assert(std::is_base_of_v<ICIMNamedElement, ICIMPropertyDecl>);
static_assert(std::is_base_of_v<ICIMNamedElement, ICIMMethodDecl>);
static_assert(std::is_base_of_v<ICIMNamedElement, ICIMParameterDecl>);

/// A plug-in that knows the listed operations only.
class TMinimalProvider : public INamespaceProvider {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

 private:
  std::string fName = "minimal";
};

class TMinimalConsumer : public INamespaceConsumer {};

TEST(InterfaceDefaults, SayThatTheyAreNotImplemented) {
  TMinimalProvider provider;
  EXPECT_QDX_STATUS(provider.GetNamespace("root", {}), kQDXStatusNotImplemented);
  EXPECT_QDX_STATUS(provider.EnumerateNamespaceNames(TNamespaceNameCallback(), {}),
                    kQDXStatusNotImplemented);
  TMinimalConsumer consumer;
  EXPECT_QDX_STATUS(consumer.GetName({}), kQDXStatusNotImplemented);
  EXPECT_QDX_STATUS(consumer.Consume(nullptr, {}), kQDXStatusNotImplemented);
}

TEST(AddToVectorCallback, AppendsThroughACopyOfItself) {
  std::vector<boost::shared_ptr<int>> numbers;
  const TEnumerationCallback<int> callback = TAddToVectorCallback<int>(numbers);
  EXPECT_TRUE(callback(boost::make_shared<int>(1)));
  EXPECT_TRUE(callback(boost::make_shared<int>(2)));
  ASSERT_EQ(numbers.size(), 2U);
  EXPECT_EQ(*numbers.back(), 2);
}

}  // namespace
}  // namespace NVORNQDX20
