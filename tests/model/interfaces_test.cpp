// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>

#include <qdxcore/class_base.h>
#include <qdxcore/registry.h>

#include "support/expect_status.h"
#include "support/log_capture.h"

#include <cstring>
#include <type_traits>

using namespace NVORNQDX20;

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

#define SLOT(function, slot) \
  EXPECT_EQ(SlotOf(&TInterface::function), std::uint64_t{slot}) << #function

TEST(InterfaceSlots, NeverChange) {
  // clang-format off
  { using TInterface = ICIMNamespace; SLOT(GetName, 2); SLOT(CreateClass, 5); SLOT(GetClass, 7);
    SLOT(EnumerateClasses, 9); SLOT(CreateQualifierDecl, 11); SLOT(GetQualifierDecl, 13);
    SLOT(EnumerateQualifierDecls, 14); }
  { using TInterface = ICIMClass; SLOT(Commit, 3); SLOT(GetName, 6); SLOT(IsAssociation, 8);
    SLOT(IsAbstract, 9); SLOT(IsRootClass, 10); SLOT(GetSuperclass, 11);
    SLOT(EnumerateSubclasses, 12); SLOT(GetQualifier, 20); SLOT(EnumerateQualifiers, 21);
    SLOT(CreatePropertyDecl, 22); SLOT(GetPropertyDecl, 24); SLOT(EnumeratePropertyDecls, 25);
    SLOT(SetStaticPropertyValue, 28); SLOT(EnumerateStaticProperties, 29); SLOT(CreateInstance, 30);
    SLOT(GetInstance, 32); SLOT(EnumerateInstances, 33); SLOT(CreateMethodDecl, 34);
    SLOT(EnumerateMethodDecls, 37); }
  { using TInterface = ICIMInstance; SLOT(Commit, 3); SLOT(GetClass, 7); SLOT(GetProperty, 10);
    SLOT(SetPropertyValue, 12); SLOT(EnumerateProperties, 13); }
  { using TInterface = ICIMProperty; SLOT(GetValue, 5); SLOT(GetDecl, 14); }
  { using TInterface = ICIMPropertyDecl; SLOT(GetQualifier, 6); SLOT(EnumerateQualifiers, 7);
    SLOT(Commit, 9); SLOT(GetName, 11); SLOT(GetType, 13); SLOT(GetDefaultValue, 15); }
  { using TInterface = ICIMQualifierDecl; SLOT(Commit, 3); SLOT(GetName, 5);
    SLOT(GetDefaultValue, 9); SLOT(GetScope, 11); SLOT(GetFlavor, 14); }
  { using TInterface = ICIMQualifier; SLOT(Commit, 3); SLOT(GetDecl, 9); SLOT(GetValue, 10); }
  { using TInterface = ICIMNamedElement; SLOT(AddQualifier, 3); }
  { using TInterface = ICIMMethodDecl; SLOT(EnumerateQualifiers, 7); SLOT(GetName, 10);
    SLOT(GetReturnType, 12); SLOT(CreateParameterDecl, 13); SLOT(EnumerateParameterDecls, 16); }
  { using TInterface = ICIMParameterDecl; SLOT(Commit, 9); SLOT(GetName, 10); SLOT(GetType, 12);
    SLOT(EnumerateQualifiers, 14); }
  { using TInterface = INamespaceProviderManager; SLOT(RegisterNamespaceProvider, 2);
    SLOT(GetNamespaceProvider, 3); SLOT(EnumerateNamespaceProviders, 4); }
  { using TInterface = ILogger; SLOT(OutputLogEntry, 2); SLOT(GetLog, 3); SLOT(ClearLog, 4);
    SLOT(SetLogThreshold, 5); SLOT(GetLogThreshold, 6); SLOT(SetLogFilename, 7); }
  { using TInterface = INamespaceProvider; SLOT(GetName, 2); SLOT(GetNamespace, 3);
    SLOT(EnumerateNamespaceNames, 4); }
  { using TInterface = INamespaceConsumer; SLOT(GetName, 2); SLOT(Consume, 3); }
  // clang-format on
}

// The four that carry qualifiers convert to their base; for a class that base is not the first.
template <typename... T>
constexpr bool kAreNamed = (std::is_base_of_v<ICIMNamedElement, T> && ...);
static_assert(kAreNamed<ICIMClass, ICIMPropertyDecl, ICIMMethodDecl, ICIMParameterDecl>);

struct TNamedProvider : public INamespaceProvider {
  explicit TNamedProvider(std::string name) : fName(std::move(name)) {}
  const std::string& GetName(TOptionsMap options) const override {
    if (fName.empty()) throw TQDXException(kQDXStatusAccessDenied);
    EXPECT_TRUE(options.empty());
    return fName;
  }
  const std::string fName;
};

TEST(InterfaceDefaults, SayThatTheyAreNotImplemented) {
  TNamedProvider provider("minimal");
  EXPECT_QDX_STATUS(provider.GetNamespace("root", {}), kQDXStatusNotImplemented);
  EXPECT_QDX_STATUS(provider.EnumerateNamespaceNames({}, {}), kQDXStatusNotImplemented);
  struct TMinimalConsumer : public INamespaceConsumer {
  } consumer;
  EXPECT_QDX_STATUS(consumer.GetName({}), kQDXStatusNotImplemented);
  EXPECT_QDX_STATUS(consumer.Consume(nullptr, {}), kQDXStatusNotImplemented);
}

TEST(CIMClassBase, HasANameAndNothingElse) {
  struct TNamed final : public TCIMClassBase {
    const std::string& GetName(TOptionsMap) const override { return fName; }
    const std::string fName = "T_Named";
  };
  const auto named = boost::make_shared<TNamed>();
  const TCIMReference path(nullptr, {});
  EXPECT_TRUE(named->IsRootClass({}) && !named->IsAbstract({}) && !named->IsAssociation({}));
  EXPECT_EQ(named->GetQualifier("Key"), nullptr);
  EXPECT_EQ(named->GetInstance(path, {}), nullptr);
  EXPECT_QDX_STATUS(named->GetPropertyDecl("Id", {}), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(named->CreatePropertyDecl("Id", 1U, {}), kQDXStatusNotImplemented);
  EXPECT_QDX_STATUS(named->Commit({}), kQDXStatusNotImplemented);
}

boost::shared_ptr<INamespaceProvider> Register(const std::string& name) {
  const auto provider = boost::make_shared<TNamedProvider>(name);
  TRootObject::GetNamespaceProviderManager()->RegisterNamespaceProvider(provider);
  return provider;
}

TEST(Registry, KeepsTheFirstOfAName) {
  const auto registry = TRootObject::GetNamespaceProviderManager();
  EXPECT_EQ(TNamespaceProviderManager::GetInstance(), registry);
  const auto first = Register("first");
  EXPECT_EQ(Register("first").use_count(), 1);
  EXPECT_EQ(registry->GetNamespaceProvider("first"), first);
  EXPECT_QDX_STATUS(Register(""), kQDXStatusAccessDenied);
  EXPECT_QDX_STATUS(registry->RegisterNamespaceProvider(nullptr), kQDXStatusFail);
  const TLogCapture log;
  EXPECT_EQ(TRootObject::GetCoreLogger(), TLogger::GetInstance());
  EXPECT_QDX_STATUS(registry->GetNamespaceProvider("First"), kQDXStatusNotFound);
  EXPECT_EQ(log.Messages(), std::vector<std::string>{"0 Failed to find nsp named First"});
}

TEST(Registry, EnumeratesInByteOrderUntilToldToStop) {
  for (const char* name : {"a", "B", "A", "C"}) Register(name);
  std::string names;
  boost::function<bool(boost::shared_ptr<INamespaceProvider>)> callback = [&](const auto& each) {
    names += each->GetName({});
    return names.back() != 'C';
  };
  const auto registry = TRootObject::GetNamespaceProviderManager();
  registry->EnumerateNamespaceProviders(callback);
  EXPECT_EQ(names, "ABC");
  callback.clear();
  EXPECT_THROW(registry->EnumerateNamespaceProviders(callback), boost::bad_function_call);
}

using TProvider = boost::shared_ptr<INamespaceProvider>;

TEST(RegisterProvider, LogsTheReasonWhateverWasThrown) {
  const std::pair<TProvider (*)(), std::string> rows[] = {
      {[]() -> TProvider { throw TExplainedException(kQDXStatusFail, "no table"); }, "no table"},
      {[]() -> TProvider { throw TQDXException(kQDXStatusFail); }, "kQDXStatusFail"},
      {[]() -> TProvider {
         LogMessage(ILogger::kLogError, {"a line before"});
         throw TQDXException(kQDXStatusFail);
       },
       "a line before"},
      {[]() -> TProvider { throw std::out_of_range("x[3]"); }, "x[3]"},
      {[]() -> TProvider { throw 5; }, "an exception that is no std::exception"},
      {[]() -> TProvider { return boost::make_shared<TNamedProvider>(""); },
       "kQDXStatusAccessDenied"}};
  for (const auto& [make, reason] : rows) {
    const TLogCapture log;
    EXPECT_FALSE(RegisterProvider(make));
    EXPECT_EQ(log.Messages().back(), "0 Failed to register a provider: " + reason);
  }
}
