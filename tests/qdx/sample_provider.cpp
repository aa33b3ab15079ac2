// SPDX-License-Identifier: Apache-2.0
// Provider "sample": root/sample has a value of every type, and as many instances as the
// environment asks for. Provider "spoiled": root/sample too, and root/spoiled, which fails
// half-way.
#include <qdxcore/registry.h>

#include <cmath>
#include <cstdlib>

#include "support/class_builder.h"
#include "support/faulty_provider.h"

using namespace NVORNQDX20;

namespace {

using TType = TCIMValue::TCIMType;

::TNamespace MakeSample() {
  const ::TNamespace ns = MakeNamespace();
  const char* const wanted = std::getenv("QDX_SAMPLE_INSTANCES");
  AddClass(ns, "Sample_Many", {{"Number", 0U}}, {{"Text", ""}, {"UpTime", 0U}});
  for (int i = wanted != nullptr ? std::atoi(wanted) : 2; i-- > 0;) {
    AddInstance(ns, "Sample_Many", {{"Number", static_cast<unsigned>(i)}, {"Text", "xxx"}});
  }
  if (std::getenv("QDX_SAMPLE_MISTAKE") != nullptr) {
    AddInstance(ns, "Sample_Many", {{"Number", 9U}, {"Txet", ""}});
  }
  TCIMReference path(ns, "Sample_Many.Number=\"1\"", {});
  const TCIMValue null(TType::kCIMTypeUint8, 0), none(TType::kCIMTypeString, 0, {});
  const TCIMValue list(TType::kCIMTypeUint8, 0, {std::uint8_t(1), std::uint8_t(2)});
  TProperties values = {{"Infinite", HUGE_VAL}, {"Null", null}, {"List", list}, {"None", none}};
  const TCIMDateTime time("20040315143000.000000+060");
  const std::uint8_t u8 = 255;
  const std::int8_t i8 = -128;
  const std::uint16_t u16 = 65535;
  const std::int16_t i16 = -32768;
  const TCIMValue typed[] = {true, u8,  i8,   u16,   i16,        ~0U,  -5,
                             ~0UL, -9L, 0.1F, -0.25, "a\n\"b\"", time, path};
  for (const TCIMValue& value : typed) values.emplace_back(value.GetType().ToString(), value);
  AddClass(ns, "Sample_All", {{"Key", ""}}, values);
  AddInstance(ns, "Sample_All", {{"Key", "a/b"}});
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
