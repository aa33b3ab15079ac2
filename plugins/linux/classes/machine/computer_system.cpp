// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_ComputerSystem: the machine itself.
#include <qdxcore/schema_helper.h>

#include <locale>

#include <boost/algorithm/string/predicate.hpp>

#include "classes/catalogue.h"

namespace NVORNQDX20 {
namespace {

bool IsTypeAndModel(const std::string& text) {
  return text.size() == 7 && TCIMSchemaHelper::IsValidMTM(text);
}

bool IsMaker(const std::string& vendor) {
  return boost::algorithm::istarts_with(vendor, "VORN", std::locale::classic());
}

/// The maker's machines have type and model in the product name, or separately as the SKU. Other
/// makers' SKUs mean something else, so they are not used.
TText ReadProductName(const THost& host) {
  TText name = host.ReadDMIString("product_name");
  if (!name || IsTypeAndModel(*name) || name->find("-[") != std::string::npos) return name;
  const TText vendor = host.ReadDMIString("sys_vendor");
  const TText sku = host.ReadDMIString("product_sku");
  if (!vendor || !sku || !IsMaker(*vendor) || !IsTypeAndModel(*sku)) return name;
  return *name + " -[" + *sku + "]-";
}

auto DMIString(const char* name) {
  return [name](const THost& host) { return host.ReadDMIString(name); };
}

}  // namespace

TClass ComputerSystemClass() {
  return THostTable<TOnly>{
      TCIMSchemaHelper::kSystemCreationClassName.c_str(),
      "The machine itself.",
      kOnly,
      {{"CreationClassName", "The name of this class.", kClassName, kKey},
       {"Name", "The host name; empty if the host has none.", &THost::fName, kKey,
        ESecret::kHostName},
       {"Manufacturer", "The maker, as the firmware names it.", DMIString("sys_vendor")},
       {"ProductName",
        "The product name; on the maker's machines it carries type and model as -[TTTTMMM]-.",
        ReadProductName},
       {"SerialNumber", "The serial number of the machine.", DMIString("product_serial"),
        ESecret::kSerial}}};
}

}  // namespace NVORNQDX20
