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

TEST(Registry, KeepsTheFirstOfAName) {
  const auto registry = TRootObject::GetNamespaceProviderManager();
  EXPECT_EQ(TNamespaceProviderManager::GetInstance(), registry);
  const auto first = Register("first");
  EXPECT_EQ(Register("first").use_count(), 1);
  EXPECT_EQ(registry->GetNamespaceProvider("first"), first);
  EXPECT_QDX_STATUS(Register(""), kQDXStatusAccessDenied);
  EXPECT_QDX_STATUS(registry->RegisterNamespaceProvider(nullptr), kQDXStatusFail);
  const TLogCapture log;
  EXPECT_QDX_STATUS(registry->GetNamespaceProvider("First"), kQDXStatusNotFound);
  EXPECT_EQ(log.Messages(), std::vector<std::string>{"0 Failed to find nsp named First"});
}

TEST(Registry, EnumeratesInByteOrderUntilToldToStop) {
  for (const char* name : {"a", "B", "A", "C"}) Register(name);
  std::string names;
  boost::function<bool(boost::shared_ptr<INamespaceProvider>)> callback =
      [&](boost::shared_ptr<INamespaceProvider> provider) {
        names += provider->GetName({});
        return names.back() != 'C';
      };
  const auto registry = TRootObject::GetNamespaceProviderManager();
  registry->EnumerateNamespaceProviders(callback);
  EXPECT_EQ(names, "ABC");
  callback.clear();
  EXPECT_THROW(registry->EnumerateNamespaceProviders(callback), boost::bad_function_call);
}

TEST(RootObject, HandsOutTheLoggerAsItStands) {
  {
    const TLogCapture log;
    EXPECT_EQ(TRootObject::GetCoreLogger(), TLogger::GetInstance());
    EXPECT_NE(TRootObject::GetCoreLogger(), nullptr);
  }
  EXPECT_EQ(TRootObject::GetCoreLogger(), nullptr);
}

}  // namespace
}  // namespace NVORNQDX20
