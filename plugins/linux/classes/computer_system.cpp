// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_ComputerSystem: the machine itself.
#include <qdxcore/schema_helper.h>

#include <locale>

#include <boost/algorithm/string/predicate.hpp>

#include "catalogue.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

bool IsTypeAndModel(const std::string& text) {
  return text.size() == 7 && TCIMSchemaHelper::IsValidMTM(text);
}

bool IsMaker(const std::string& vendor) {
  return boost::algorithm::istarts_with(vendor, "VORN", std::locale::classic());
}

/// The maker's machines have type and model in the product name, or separately as the SKU. Other
/// makers' SKUs mean something else, so they are not used.
TReading ReadProductName(const THost& host) {
  TReading name = host.ReadDMIString("product_name");
  if (!name || IsTypeAndModel(*name.fValue) || name.fValue->find("-[") != std::string::npos) {
    return name;
  }
  const TReading vendor = host.ReadDMIString("sys_vendor");
  const TReading sku = host.ReadDMIString("product_sku");
  if (vendor && sku && IsMaker(*vendor.fValue) && IsTypeAndModel(*sku.fValue)) {
    *name.fValue += " -[" + *sku.fValue + "]-";
  }
  return name;
}

void AddComputerSystem(TNamespaceBuilder& builder, const THost& host, ICIMClass& system) {
  builder.AddInstance(system, {{"CreationClassName", TCIMSchemaHelper::kSystemCreationClassName},
                               TPropertyValue::Key("Name", host.fName),
                               {"Manufacturer", host.ReadDMIString("sys_vendor")},
                               {"ProductName", ReadProductName(host)},
                               {"SerialNumber", host.ReadDMIString("product_serial")}});
}

}  // namespace

TClassDescription ComputerSystemClass() {
  return {{TCIMSchemaHelper::kSystemCreationClassName.c_str(),
           "The machine itself.",
           {{"CreationClassName", TType::kCIMTypeString, true, "The name of this class."},
            {"Name", TType::kCIMTypeString, true, "The host name; empty if the host has none."},
            {"Manufacturer", TType::kCIMTypeString, false, "The maker, as the firmware names it."},
            {"ProductName", TType::kCIMTypeString, false,
             "The product name; on the maker's machines it carries type and model as -[TTTTMMM]-."},
            {"SerialNumber", TType::kCIMTypeString, false, "The serial number of the machine."}}},
          AddComputerSystem};
}

}  // namespace NVORNQDX20
