// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/config.h>

#include "topics.h"

namespace NVORNQDX20 {

void AddQDXProduct(TNamespaceBuilder& builder, const THost&) {
  using TType = TCIMValue::TCIMType;
  const auto product = builder.DeclareClass(
      {"VORNSG_QDXProduct",
       "The product that collected this data.",
       {{"Name", TType::kCIMTypeString, true, "The name of the product."},
        {"Vendor", TType::kCIMTypeString, true, "Who makes it."},
        {"Version", TType::kCIMTypeString, true, "Major, minor and build number."}}});
  builder.AddInstance(*product,
                      {{"Name", "qdxcore"}, {"Vendor", "VORN"}, {"Version", QDXCORE_VERSION}});
}

}  // namespace NVORNQDX20
