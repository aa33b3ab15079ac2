// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_QDXProduct: the version of this product.
#include <qdxcore/config.h>

#include "classes/catalogue.h"

namespace NVORNQDX20 {

TClass QDXProductClass() {
  return THostTable<TOnly>{
      "VORNSG_QDXProduct",
      "The product that collected this data.",
      kOnly,
      {{"Name", "The name of the product.", Constant("qdxcore"), kKey},
       {"Vendor", "Who makes it.", Constant("VORN"), kKey},
       {"Version", "Major, minor and build number.", Constant(QDXCORE_VERSION), kKey}}};
}

}  // namespace NVORNQDX20
