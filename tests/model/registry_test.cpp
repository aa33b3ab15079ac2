// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/registry.h>

#include "support/expect_status.h"
#include "support/log_capture.h"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

namespace NVORNQDX20 {
namespace {

class TNamedProvider : public INamespaceProvider {
 public:
  explicit TNamedProvider(std::string name) : fName(std::move(name)) {}
  const std::string& GetName(TOptionsMap options) const override {
    if (fName.empty()) throw TQDXException(kQDXStatusAccessDenied);
    EXPECT_TRUE(options.empty());
    return fName;
  }

 private:
  std::string fName;
};

boost::shared_ptr<INamespaceProvider> Register(const std::string& name) {
  const auto provider = boost::make_shared<TNamedProvider>(name);
  TRootObject::GetNamespaceProviderManager()->RegisterNamespaceProvider(provider);
  return provider;
}

/// The names in the order of the enumeration, up to and with `last`.
std::vector<std::string> Names(const std::string& last) {
  std::vector<std::string> names;
  boost::function<bool(boost::shared_ptr<INamespaceProvider>)> callback =
      [&](boost::shared_ptr<INamespaceProvider> provider) {
        names.push_back(provider->GetName({}));
        return names.back() != last;
      };
  TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(callback);
  return names;
}

TEST(Registry, IsOne) {
  EXPECT_EQ(TRootObject::GetNamespaceProviderManager(), TRootObject::GetNamespaceProviderManager());
  EXPECT_EQ(TNamespaceProviderManager::GetInstance(), TRootObject::GetNamespaceProviderManager());
}

TEST(Registry, KeepsTheFirstOfAName) {
  const auto registry = TRootObject::GetNamespaceProviderManager();
  const auto first = Register("first");
  const auto second = Register("first");
  EXPECT_EQ(registry->GetNamespaceProvider("first"), first);
  EXPECT_EQ(second.use_count(), 1);
}

TEST(Registry, LogsAndRefusesAnUnknownName) {
  const TLogCapture log;
  Register("known");
  EXPECT_QDX_STATUS(TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider("Known"),
                    kQDXStatusNotFound);
  EXPECT_EQ(log.Messages(), std::vector<std::string>{"0 Failed to find nsp named Known"});
}

TEST(Registry, EnumeratesInByteOrderUntilToldToStop) {
  for (const char* name : {"a", "B", "A", "C"}) Register(name);
  std::vector<std::string> names;
  for (const std::string& name : Names("a")) {
    if (name.size() == 1) names.push_back(name);  // other tests register longer ones
  }
  EXPECT_EQ(names, (std::vector<std::string>{"A", "B", "C", "a"}));
  EXPECT_EQ(Names("A").back(), "A");
}

TEST(Registry, TakesNothingThatFailsToNameItself) {
  const auto registry = TRootObject::GetNamespaceProviderManager();
  EXPECT_QDX_STATUS(Register(""), kQDXStatusAccessDenied);
  EXPECT_QDX_STATUS(registry->RegisterNamespaceProvider(nullptr), kQDXStatusFail);
  EXPECT_QDX_STATUS(registry->GetNamespaceProvider(""), kQDXStatusNotFound);
}

TEST(Registry, FindsAnEmptyCallbackOnlyWhenItIsCalled) {
  Register("entry");
  boost::function<bool(boost::shared_ptr<INamespaceProvider>)> empty;
  EXPECT_THROW(TRootObject::GetNamespaceProviderManager()->EnumerateNamespaceProviders(empty),
               boost::bad_function_call);
}

TEST(RootObject, HandsOutTheLoggerAsItStands) {
  EXPECT_EQ(TRootObject::GetCoreLogger(), nullptr);
  {
    const TLogCapture log;
    EXPECT_EQ(TRootObject::GetCoreLogger(), TLogger::GetInstance());
    EXPECT_NE(TRootObject::GetCoreLogger(), nullptr);
  }
  EXPECT_EQ(TRootObject::GetCoreLogger(), nullptr);
}

}  // namespace
}  // namespace NVORNQDX20
