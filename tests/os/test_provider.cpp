// SPDX-License-Identifier: Apache-2.0
// A provider library that registers itself as "test", and asks for the registry to the very end.
#include <qdxcore/registry.h>

using namespace NVORNQDX20;

struct TTestProvider : INamespaceProvider {
  ~TTestProvider() override { TRootObject::GetNamespaceProviderManager(); }
  const std::string& GetName(TOptionsMap) const override { return fName; }
  const std::string fName = "test";
};

[[maybe_unused]] static const bool kRegistered = RegisterProvider<TTestProvider>();
