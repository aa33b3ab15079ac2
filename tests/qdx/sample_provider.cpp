// SPDX-License-Identifier: Apache-2.0
// Provider "sample": root/sample has a value of every type, and as many instances as the
// environment asks for. Provider "spoiled": root/sample too, and root/spoiled, which fails
// half-way.
#include <qdxcore/registry.h>

#include <cstdlib>
#include <limits>

#include <boost/make_shared.hpp>

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
  TCIMReference path(ns, "Sample_Many.Number=\"1\"", {});
  const TProperties values = {
      {"B", true},
      {"U8", std::uint8_t{255}},
      {"I8", std::int8_t{-128}},
      {"U16", std::uint16_t{65535}},
      {"I16", std::int16_t{-32768}},
      {"U32", 4294967295U},
      {"I32", std::numeric_limits<int>::min()},
      {"U64", std::numeric_limits<unsigned long>::max()},
      {"I64", std::numeric_limits<long>::min()},
      {"R32", 0.1F},
      {"R64", -0.25},
      {"Infinite", std::numeric_limits<double>::infinity()},
      {"Text", "a\n\"b\""},
      {"Empty", ""},
      {"Time", TCIMDateTime("20040315143000.000000+060")},
      {"Link", path},
      {"Null", TCIMValue(TType::kCIMTypeUint8, 0)},
      {"List", TCIMValue(TType::kCIMTypeUint8, 0, {std::uint8_t{1}, std::uint8_t{2}})},
      {"None", TCIMValue(TType::kCIMTypeString, 0, {})}};
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
