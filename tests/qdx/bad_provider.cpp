// SPDX-License-Identifier: Apache-2.0
// A provider whose namespace cannot be had, and whose names would steer a terminal.
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>

#include <boost/make_shared.hpp>

using namespace NVORNQDX20;

namespace {

class TBadProvider : public INamespaceProvider {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string&, TOptionsMap) override {
    LogErrorAndThrow(kQDXStatusAccessDenied, {"the table is locked"});
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    callback("red\033[31m\xff");
  }

 private:
  std::string fName = "bad";
};

const bool kRegistered = [] {
  TRootObject::GetNamespaceProviderManager()->RegisterNamespaceProvider(
      boost::make_shared<TBadProvider>());
  return true;
}();

}  // namespace
