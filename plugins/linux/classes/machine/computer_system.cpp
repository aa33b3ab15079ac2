// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_ComputerSystem: the machine itself.
#include <qdxcore/schema_helper.h>

#include <array>
#include <cstdio>
#include <initializer_list>
#include <locale>
#include <vector>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include "classes/catalogue.h"
#include "sources/fields.h"

namespace NVORNQDX20 {
namespace {

bool IsTypeAndModel(const std::string& text) {
  return text.size() == 7 && TCIMSchemaHelper::IsValidMTM(text);
}

bool IsMaker(const std::string& vendor) {
  return boost::algorithm::istarts_with(vendor, "VORN", std::locale::classic());
}

/// A machine without DMI: what its firmware, or the hypervisor of a mainframe, says instead.
struct TOtherNames {
  explicit TOtherNames(const THost& host);
  TText fMaker;
  TText fProduct;
  TText fSerialNumber;
  TText fUUID;
};

/// Returns the text before the first zero, with which texts in a device tree end.
TText ReadTreeText(const TFiles& tree, std::initializer_list<const char*> names) {
  const TText file = tree.FirstOf(names);
  return file.and_then([&tree](const std::string& name) {
    return tree.Read(name).and_then([&](const std::string& bytes) -> TText {
      std::string text = PrintableText(bytes.substr(0, bytes.find('\0')));
      if (text.empty()) return tree.MissingFrom(name, "empty");
      return text;
    });
  });
}

TOtherNames::TOtherNames(const THost& host) {
  const TFiles tree = host.In("/proc/device-tree");
  if (tree.IsAbsent("")) {
    const char* const path = "/proc/sysinfo";
    const TFields fields(path, host.Read(path), ':');
    fMaker = fields.Get("Manufacturer");
    fProduct = fields.Get("Type").map([&fields](const std::string& type) {
      const std::string model = fields.Get("Model").ValueOr("");
      return model.empty() ? type : type + "-" + model.substr(0, model.find(' '));
    });
    fSerialNumber = fields.Get("Sequence Code");
    fUUID = fields.Get("LPAR UUID");
    return;
  }
  fProduct = ReadTreeText(tree, {"model-name", "model"});
  fSerialNumber = ReadTreeText(tree, {"serial-number", "system-id"});
  fUUID = ReadTreeText(tree, {"vm,uuid", "system-uuid"});
  // The maker is before the comma: "maker,product".
  fMaker = ReadTreeText(tree, {"vendor", "compatible"}).map([](const std::string& text) {
    return text.substr(0, text.find(','));
  });
}

/// Reads a text of the DMI table; of a machine without one, what is known otherwise.
auto DMIString(const char* name, TText TOtherNames::*other) {
  return [name, other](const THost& host) -> TText {
    TText text = host.ReadDMIString(name);
    if (text || !host.IsAbsent("/sys/class/dmi/id") || host.GetSMBIOS()) return text;
    const TText& replacement = host.Shared<TOtherNames>().*other;
    return replacement ? replacement : text;
  };
}
auto DMIString(const char* name) {
  return [name](const THost& host) { return host.ReadDMIString(name); };
}

/// The maker's machines have type and model in the product name, or separately as the SKU. Other
/// makers' SKUs mean something else, so they are not used.
TText ReadProductName(const THost& host) {
  TText name = DMIString("product_name", &TOtherNames::fProduct)(host);
  if (!name || IsTypeAndModel(*name) || name->find("-[") != std::string::npos) return name;
  TText vendor = host.ReadDMIString("sys_vendor");
  TText sku = host.ReadDMIString("product_sku");
  // Without a part that is there and cannot be read, the name would be that of another product.
  if (vendor.GetReason().IsError()) return vendor;
  if (!vendor || !IsMaker(*vendor)) return name;
  if (sku.GetReason().IsError()) return sku;
  if (!sku || !IsTypeAndModel(*sku)) return name;
  return *name + " -[" + *sku + "]-";
}

/// Writes the bytes as people write a UUID. The first three numbers are written from their last
/// byte since SMBIOS 2.6.
std::string FormatUUID(const std::string& bytes, bool isReversed) {
  const int order[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    const std::size_t place = isReversed ? static_cast<std::size_t>(order[i]) : i;
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(bytes[place]));
    text += digits.data();
  }
  return text;
}

TText ReadSMBIOSUUID(const TSMBIOS& smbios, const TSMBIOSStructure& system) {
  return system.ReadBytes(0x08, 16).and_then([&](const std::string& bytes) -> TText {
    if (bytes == std::string(16, '\0') || bytes == std::string(16, '\xFF')) {
      return system.MissingFrom("the UUID is not set");
    }
    return FormatUUID(bytes, smbios.GetVersion() == 0 || smbios.GetVersion() >= 0x0206);
  });
}

TText ReadUUID(const THost& host) {
  const TReading<TSMBIOS>& smbios = host.GetSMBIOS();
  const auto systems = smbios ? smbios->OfType(1) : std::vector<TSMBIOSStructure>();
  if (!systems.empty()) return ReadSMBIOSUUID(*smbios, systems.front());
  return DMIString("product_uuid", &TOtherNames::fUUID)(host).map([](std::string uuid) {
    boost::algorithm::to_lower(uuid, std::locale::classic());
    return uuid;
  });
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
       {"Manufacturer", "The maker, as the firmware names it.",
        DMIString("sys_vendor", &TOtherNames::fMaker)},
       {"ProductName",
        "The product name; on the maker's machines it carries type and model as -[TTTTMMM]-.",
        ReadProductName},
       {"SerialNumber", "The serial number of the machine.",
        DMIString("product_serial", &TOtherNames::fSerialNumber), ESecret::kSerial},
       {"UUID", "Tells the machine from all others.", ReadUUID, ESecret::kSerial},
       {"Family", "The products that it is one of.", DMIString("product_family")},
       {"SKUNumber", "The number under which it is sold.", DMIString("product_sku")},
       {"ProductVersion", "The version, as its maker counts.", DMIString("product_version")}}};
}

}  // namespace NVORNQDX20
