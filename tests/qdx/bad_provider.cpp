// SPDX-License-Identifier: Apache-2.0
// A provider whose namespace cannot be had, and whose names would steer a terminal. With NAME_CALLS
// it tells its name so often, and throws whatever else it is asked.
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>

using namespace NVORNQDX20;

namespace {

class TBadProvider : public INamespaceProvider {
 public:
  const std::string& GetName(TOptionsMap) const override {
    return NAME_CALLS == 0 || fAsked++ < NAME_CALLS ? fName : throw fAsked;
  }

  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string&, TOptionsMap) override {
    LogErrorAndThrow(kQDXStatusAccessDenied, {"the table is locked"});
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    NAME_CALLS == 0 ? callback("red\033[31m\xff") : throw fAsked;
  }

 private:
  std::string fName = NAME_CALLS == 1 ? "shy" : "bad";
  mutable int fAsked = 0;
};

[[maybe_unused]] const bool kRegistered = RegisterProvider<TBadProvider>();

}  // namespace
