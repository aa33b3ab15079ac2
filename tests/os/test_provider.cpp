// SPDX-License-Identifier: Apache-2.0
// A provider library that registers itself as "test", and asks for the registry to the very end.
#include <qdxcore/parts.h>
#include <qdxcore/registry.h>

using namespace NVORNQDX20;

struct TTestProvider : INamespaceProvider, IPartsOfProvider {
  ~TTestProvider() override { TRootObject::GetNamespaceProviderManager(); }
  const std::string& GetName(TOptionsMap) const override { return fName; }
  void EnumerateParts(const TPartCallback& callback) const override {
    callback("small", false);
    callback("dear", true);
  }
  const std::string fName = "test";
};

[[maybe_unused]] static const bool kRegistered = RegisterProvider<TTestProvider>();
