// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_QDXProduct: the version of this product.
#include <qdxcore/config.h>

#include "catalogue.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

void AddQDXProduct(TNamespaceBuilder& builder, const THost&, ICIMClass& product) {
  builder.AddInstance(product,
                      {{"Name", "qdxcore"}, {"Vendor", "VORN"}, {"Version", QDXCORE_VERSION}});
}

}  // namespace

TClassDescription QDXProductClass() {
  return {{"VORNSG_QDXProduct",
           "The product that collected this data.",
           {{"Name", TType::kCIMTypeString, true, "The name of the product."},
            {"Vendor", TType::kCIMTypeString, true, "Who makes it."},
            {"Version", TType::kCIMTypeString, true, "Major, minor and build number."}}},
          AddQDXProduct};
}

}  // namespace NVORNQDX20
