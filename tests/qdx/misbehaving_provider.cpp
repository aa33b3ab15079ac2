// SPDX-License-Identifier: Apache-2.0
// A provider that does something wrong in one of its operations: init, name, list, open, read (an
// enumeration) or end (its destructor).
#include <qdxcore/registry.h>

#include "qdx/misbehaving.h"
#include "support/class_builder.h"
#include "support/faulty_provider.h"

using namespace NVORNQDX20;

namespace {

/// Never deleted, since the provider's destructor is called after those of later objects.
const std::string& Service() {
  static const std::string* const service =
      new std::string(ServiceOf(reinterpret_cast<void*>(&Service)));
  return *service;
}

void Do(const std::string& where) {
  const std::size_t end = where.size();
  if (Service().compare(0, end, where) == 0) Misbehave(Service().substr(end + 1));
}

class TMisbehavingProvider : public INamespaceProvider {
 public:
  // NOLINTNEXTLINE(bugprone-exception-escape): one of the mistakes
  ~TMisbehavingProvider() override { Do("end"); }

  const std::string& GetName(TOptionsMap) const override {
    Do("name");
    return fName;
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    Do("list");
    do callback("root/" + fName);
    while (Service() == "list_endless");
  }

  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string&, TOptionsMap) override {
    Do("open");
    const ::TNamespace ns = MakeNamespace();
    AddClass(ns, "A", {{"Key", ""}}, {{"Text", "x"}});
    AddInstance(ns, "A", {{"Key", "1"}});
    const auto faults = boost::make_shared<TFaults>();
    faults->fWatch = [](const std::string& call) {
      if (call.find("EnumerateInstances") != call.npos) Do("read");
    };
    return MakeFaultyNamespace(ns, faults);
  }

 private:
  const std::string fName = Service() == "a_linux" ? "linux" : Service();
};

[[maybe_unused]] const bool kRegistered = [] {
  Do("init");
  return RegisterProvider<TMisbehavingProvider>();
}();

}  // namespace
