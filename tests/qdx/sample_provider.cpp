// SPDX-License-Identifier: Apache-2.0
// Provider "sample": root/sample, with a mistake where the environment asks for it. Provider
// "spoiled": root/sample too, and root/spoiled, which fails half-way.
#include <qdxcore/registry.h>

#include <cstdlib>

#include "support/class_builder.h"
#include "support/faulty_provider.h"

using namespace NVORNQDX20;

namespace {

::TNamespace MakeSample() {
  const ::TNamespace ns = MakeNamespace();
  AddClass(ns, "Sample_Many", {{"Number", 0U}}, {{"Text", ""}, {"UpTime", 0U}});
  for (const unsigned int number : {1U, 0U}) {
    AddInstance(ns, "Sample_Many", {{"Number", number}, {"Text", "xxx"}});
  }
  if (std::getenv("QDX_SAMPLE_MISTAKE") != nullptr) {
    AddInstance(ns, "Sample_Many", {{"Number", 9U}, {"Txet", ""}});
  }
  return ns;
}

class TProvider : public INamespaceProvider {
 public:
  explicit TProvider(const std::string& name) : fName(name) {}

  const std::string& GetName(TOptionsMap) const override { return fName; }

  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name, TOptionsMap) override {
    if (name == "root/sample") return MakeSample();
    const auto faults = boost::make_shared<TFaults>();
    faults->Fail("ICIMInstance::EnumerateProperties", kQDXStatusAccessDenied, 2);
    faults->Fail("ICIMInstance::GetProperty", kQDXStatusAccessDenied, 2);
    return MakeFaultyNamespace(MakeSample(), faults);
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    callback("root/sample");
    if (fName == "spoiled") callback("root/spoiled");
  }

 private:
  const std::string fName;
};

const bool kRegistered = [] {
  const auto registry = TRootObject::GetNamespaceProviderManager();
  for (const char* name : {"sample", "spoiled"}) {
    registry->RegisterNamespaceProvider(boost::make_shared<TProvider>(name));
  }
  return true;
}();

}  // namespace
