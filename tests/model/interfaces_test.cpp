// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>

#include <qdxcore/logger.h>
#include <qdxcore/registry.h>

#include "support/expect_status.h"

#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>

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

#define SLOT(type, function, slot) \
  EXPECT_EQ(SlotOf(&type::function), std::uint64_t{slot}) << #type "::" #function

TEST(InterfaceSlots, NeverChange) {
  // clang-format off
  SLOT(ICIMNamespace, GetName, 2); SLOT(ICIMNamespace, CreateClass, 5);
  SLOT(ICIMNamespace, GetClass, 7); SLOT(ICIMNamespace, EnumerateClasses, 9);
  SLOT(ICIMNamespace, CreateQualifierDecl, 11); SLOT(ICIMNamespace, GetQualifierDecl, 13);
  SLOT(ICIMNamespace, EnumerateQualifierDecls, 14);
  SLOT(ICIMClass, Commit, 3); SLOT(ICIMClass, GetName, 6); SLOT(ICIMClass, IsAssociation, 8);
  SLOT(ICIMClass, IsAbstract, 9); SLOT(ICIMClass, IsRootClass, 10);
  SLOT(ICIMClass, GetSuperclass, 11); SLOT(ICIMClass, EnumerateSubclasses, 12);
  SLOT(ICIMClass, GetQualifier, 20); SLOT(ICIMClass, EnumerateQualifiers, 21);
  SLOT(ICIMClass, CreatePropertyDecl, 22); SLOT(ICIMClass, GetPropertyDecl, 24);
  SLOT(ICIMClass, EnumeratePropertyDecls, 25); SLOT(ICIMClass, SetStaticPropertyValue, 28);
  SLOT(ICIMClass, EnumerateStaticProperties, 29); SLOT(ICIMClass, CreateInstance, 30);
  SLOT(ICIMClass, GetInstance, 32); SLOT(ICIMClass, EnumerateInstances, 33);
  SLOT(ICIMClass, CreateMethodDecl, 34); SLOT(ICIMClass, EnumerateMethodDecls, 37);
  SLOT(ICIMInstance, Commit, 3); SLOT(ICIMInstance, GetClass, 7);
  SLOT(ICIMInstance, GetProperty, 10); SLOT(ICIMInstance, SetPropertyValue, 12);
  SLOT(ICIMInstance, EnumerateProperties, 13);
  SLOT(ICIMProperty, GetValue, 5); SLOT(ICIMProperty, GetDecl, 14);
  SLOT(ICIMPropertyDecl, GetQualifier, 6); SLOT(ICIMPropertyDecl, EnumerateQualifiers, 7);
  SLOT(ICIMPropertyDecl, Commit, 9); SLOT(ICIMPropertyDecl, GetName, 11);
  SLOT(ICIMPropertyDecl, GetType, 13); SLOT(ICIMPropertyDecl, GetDefaultValue, 15);
  SLOT(ICIMQualifierDecl, Commit, 3); SLOT(ICIMQualifierDecl, GetName, 5);
  SLOT(ICIMQualifierDecl, GetDefaultValue, 9); SLOT(ICIMQualifierDecl, GetScope, 11);
  SLOT(ICIMQualifierDecl, GetFlavor, 14);
  SLOT(ICIMQualifier, Commit, 3); SLOT(ICIMQualifier, GetDecl, 9);
  SLOT(ICIMQualifier, GetValue, 10);
  SLOT(ICIMNamedElement, AddQualifier, 3);
  SLOT(ICIMMethodDecl, EnumerateQualifiers, 7); SLOT(ICIMMethodDecl, GetName, 10);
  SLOT(ICIMMethodDecl, GetReturnType, 12); SLOT(ICIMMethodDecl, CreateParameterDecl, 13);
  SLOT(ICIMMethodDecl, EnumerateParameterDecls, 16);
  SLOT(ICIMParameterDecl, Commit, 9); SLOT(ICIMParameterDecl, GetName, 10);
  SLOT(ICIMParameterDecl, GetType, 12); SLOT(ICIMParameterDecl, EnumerateQualifiers, 14);
  SLOT(INamespaceProviderManager, RegisterNamespaceProvider, 2);
  SLOT(INamespaceProviderManager, GetNamespaceProvider, 3);
  SLOT(INamespaceProviderManager, EnumerateNamespaceProviders, 4);
  SLOT(ILogger, OutputLogEntry, 2); SLOT(ILogger, GetLog, 3); SLOT(ILogger, ClearLog, 4);
  SLOT(ILogger, SetLogThreshold, 5); SLOT(ILogger, GetLogThreshold, 6);
  SLOT(ILogger, SetLogFilename, 7);
  SLOT(INamespaceProvider, GetName, 2); SLOT(INamespaceProvider, GetNamespace, 3);
  SLOT(INamespaceProvider, EnumerateNamespaceNames, 4);
  SLOT(INamespaceConsumer, GetName, 2); SLOT(INamespaceConsumer, Consume, 3);
  // clang-format on
}

// The four that carry qualifiers convert to their base; for a class that base is not the first.
template <typename... T>
constexpr bool kAreNamed = (std::is_base_of_v<ICIMNamedElement, T> && ...);
static_assert(kAreNamed<ICIMClass, ICIMPropertyDecl, ICIMMethodDecl, ICIMParameterDecl>);

/// Plug-ins that know the listed operations only.
struct TMinimalProvider : public INamespaceProvider {
  const std::string& GetName(TOptionsMap) const override { return fName; }
  std::string fName = "minimal";
};
struct TMinimalConsumer : public INamespaceConsumer {};

TEST(InterfaceDefaults, SayThatTheyAreNotImplemented) {
  TMinimalProvider provider;
  EXPECT_QDX_STATUS(provider.GetNamespace("root", {}), kQDXStatusNotImplemented);
  EXPECT_QDX_STATUS(provider.EnumerateNamespaceNames({}, {}), kQDXStatusNotImplemented);
  TMinimalConsumer consumer;
  EXPECT_QDX_STATUS(consumer.GetName({}), kQDXStatusNotImplemented);
  EXPECT_QDX_STATUS(consumer.Consume(nullptr, {}), kQDXStatusNotImplemented);
}

}  // namespace
}  // namespace NVORNQDX20
