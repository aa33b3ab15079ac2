// SPDX-License-Identifier: Apache-2.0
#include "pci.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "id_names.h"

namespace NVORNQDX20 {
namespace {

/// A number that a function has in its registers.
struct TField {
  const char* fFile;       ///< In sysfs.
  std::size_t fRegister;   ///< The offset in the configuration space.
  std::size_t fAliasFrom;  ///< Where the digits are in "pci:v00008086d00001572sv000015D9sd...".
};
constexpr TField kVendor{"vendor", 0x00, 5};
constexpr TField kDevice{"device", 0x02, 14};
constexpr TField kSubsystemVendor{"subsystem_vendor", 0x2c, 24};
constexpr TField kSubsystem{"subsystem_device", 0x2e, 34};
constexpr TField kClass{"class", 0x09, std::string::npos};
constexpr TField kRevision{"revision", 0x08, std::string::npos};

/// Returns the first registers; missing if they say nothing.
TText ReadConfiguration(const TFiles& function) {
  constexpr std::size_t kHeaderSize = 64;
  const char* const file = "config";
  return function.ReadStart(file, kHeaderSize).and_then([&](const std::string& bytes) -> TText {
    if (bytes.size() < kHeaderSize) return function.MissingFrom(file, "less than 64 bytes");
    // A function that is switched off reads as ones only.
    const bool isOff = bytes.compare(0, 2, "\xff\xff") == 0;
    return isOff ? TText(function.MissingFrom(file, "the function does not answer")) : bytes;
  });
}

/// Reads the numbers of a function: from a file each; where that does not exist, from the
/// configuration space; and where that was not copied, from what modules are found by.
class TRegisters {
 public:
  explicit TRegisters(const TFiles& function) : fFunction(function) {}

  /// `size` is the number of bytes.
  template <typename T>
  TReading<T> Read(const TField& field, std::size_t size = sizeof(T)) {
    TReading<T> number = fFunction.ReadNumber<T>(field.fFile);
    if (number || !fFunction.IsAbsent(field.fFile)) return number;
    if (!fFunction.IsAbsent("config"))
      return ReadRegister(field, size).map([](unsigned value) { return static_cast<T>(value); });
    const TReading<T> alias = ReadAlias<T>(field);
    return alias ? alias : number;
  }

 private:
  TReading<unsigned> ReadRegister(const TField& field, std::size_t size) {
    constexpr std::size_t kHeaderType = 0x0e;
    if (!fConfiguration) fConfiguration = ReadConfiguration(fFunction);
    return fConfiguration->and_then([&](const std::string& bytes) -> TReading<unsigned> {
      const auto byteAt = [&bytes](std::size_t at) {
        return static_cast<unsigned char>(bytes[at]);
      };
      const bool isBridge = (byteAt(kHeaderType) & 0x7fU) != 0;
      if (isBridge && field.fRegister >= kSubsystemVendor.fRegister) return Missing("a bridge");
      unsigned number = 0;
      for (std::size_t i = size; i > 0; --i)
        number = number << 8U | byteAt(field.fRegister + i - 1);
      return number;
    });
  }

  template <typename T>
  TReading<T> ReadAlias(const TField& field) {
    constexpr std::size_t kDigits = 8;
    return ToNumber<T>(
        fFunction.ReadLine("modalias").and_then([&field](const std::string& alias) -> TText {
          if (alias.size() < field.fAliasFrom) return Missing("not in modalias");
          return "0x" + alias.substr(field.fAliasFrom, kDigits);
        }),
        fFunction.PathOf("modalias"));
  }

  const TFiles& fFunction;
  std::optional<TText> fConfiguration;
};

/// Physical slots by the address of what is in them.
class TPCISlots {
 public:
  explicit TPCISlots(const THost& host) {
    const TInstances<TDeviceFolder> slots = ListDevices(host, "/sys/bus/pci/slots");
    fReason = slots.fReason;
    for (const TDeviceFolder& slot : slots.fAll) {
      const TText address = slot.ReadLine("address");
      if (address) fSlots.emplace(*address, slot.fFileName);
      if (!address) fReason.Add(address.GetReason());
    }
  }

  /// A slot has the address without the function, as in "0000:3b:00", or only that of a bus.
  TText Find(const std::string& function) const {
    for (const char end : {'.', ':'}) {
      const auto found = fSlots.find(function.substr(0, function.rfind(end)));
      if (found != fSlots.end()) return found->second;
    }
    return Missing(fReason.empty() ? TReason("in no slot that is known") : fReason);
  }

 private:
  TReason fReason;
  std::map<std::string, std::string> fSlots;
};

/// Where the list has the names of a function.
struct TPCIPaths {
  TText fVendor;
  TText fDevice;
  TText fSubsystemVendor;
  TText fSubsystem;
  TText fClass;
  TText fSubclass;
};

TPCIPaths PathsOf(const TPCIFunction& function) {
  using TID = TReading<std::uint16_t>;
  const auto join = [](const TText& path, char separator, const TID& id) {
    return path.and_then([&](const std::string& begin) {
      return id.map([&](std::uint16_t number) { return begin + separator + HexID(number); });
    });
  };
  TPCIPaths paths;
  paths.fVendor = function.fVendor.map(HexID<std::uint16_t>);
  paths.fDevice = join(paths.fVendor, '\t', function.fDevice);
  // Without a subsystem, both numbers are 0.
  const TID subsystemVendor = function.fSubsystemVendor.and_then(
      [](std::uint16_t id) { return id == 0 ? TID(Missing("is in no subsystem")) : TID(id); });
  paths.fSubsystemVendor = subsystemVendor.map(HexID<std::uint16_t>);
  paths.fSubsystem = join(join(paths.fDevice, '\t', subsystemVendor), ' ', function.fSubsystem);
  paths.fClass = function.fClass.map(
      [](std::uint32_t code) { return "C " + HexID(static_cast<std::uint8_t>(code >> 16U)); });
  paths.fSubclass = paths.fClass.map([&](const std::string& path) {
    return path + '\t' + HexID(static_cast<std::uint8_t>(*function.fClass >> 8U));
  });
  return paths;
}

void SetNames(TPCIFunction& function, const TPCIPaths& paths, const TIDNames& names) {
  const auto nameOf = [&names](const TText& path) {
    return path.and_then([&names](const std::string& known) { return names.Get(known); });
  };
  function.fVendorName = nameOf(paths.fVendor);
  function.fDeviceName = nameOf(paths.fDevice);
  function.fSubsystemVendorName = nameOf(paths.fSubsystemVendor);
  function.fSubsystemName = nameOf(paths.fSubsystem);
  const bool isItsOwnSubsystem = paths.fSubsystem &&
                                 *function.fSubsystemVendor == *function.fVendor &&
                                 *function.fSubsystem == *function.fDevice;
  if (!function.fSubsystemName && isItsOwnSubsystem) function.fSubsystemName = function.fDeviceName;
  function.fClassName = nameOf(paths.fSubclass);
  if (!function.fClassName) function.fClassName = nameOf(paths.fClass);
}

/// Parses the hexadecimal digits in front of `end`, or all, and removes both from the text.
template <typename T>
bool TakeHex(std::string_view& text, char end, T& number) {
  const std::size_t size = std::min(text.find(end), text.size());
  const auto parsed = ParseNumber<T>("0x" + std::string(text.substr(0, size)));
  text.remove_prefix(std::min(size + 1, text.size()));
  if (parsed) number = *parsed;
  return parsed.has_value();
}

TPCIFunction MakeFunction(const TDeviceFolder& folder, const TPCISlots& slots) {
  TPCIFunction function{folder, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}};
  TRegisters registers(folder);
  function.fVendor = registers.Read<std::uint16_t>(kVendor);
  function.fDevice = registers.Read<std::uint16_t>(kDevice);
  function.fSubsystemVendor = registers.Read<std::uint16_t>(kSubsystemVendor);
  function.fSubsystem = registers.Read<std::uint16_t>(kSubsystem);
  function.fClass = registers.Read<std::uint32_t>(kClass, 3);
  function.fRevision = registers.Read<std::uint8_t>(kRevision);
  function.fSlot = slots.Find(folder.fFileName);
  return function;
}

}  // namespace

TReading<TPCIAddress> ParsePCIAddress(std::string_view address) {
  TPCIAddress parsed;
  const bool isAddress =
      TakeHex(address, ':', parsed.fDomain) && TakeHex(address, ':', parsed.fBus) &&
      TakeHex(address, '.', parsed.fDevice) && TakeHex(address, '\n', parsed.fFunction);
  return isAddress ? TReading<TPCIAddress>(parsed) : Missing("the name is no address");
}

TReading<std::uint16_t> ReadLinkWidth(const TFiles& function, const char* file) {
  return function.ReadNumber<std::uint16_t>(file).and_then(
      [&](std::uint16_t lanes) -> TReading<std::uint16_t> {
        constexpr std::uint16_t kUnknown = 255;
        if (lanes == kUnknown) return function.MissingFrom(file, "not known");
        return lanes;
      });
}

TInstances<TPCIFunction> ListPCIFunctions(const THost& host) {
  TInstances<TDeviceFolder> folders = ListDevices(host, "/sys/bus/pci/devices");
  const TPCISlots slots(host);
  TInstances<TPCIFunction> functions;
  functions.fReason = std::move(folders.fReason);
  functions.fAll.reserve(folders.fAll.size());
  std::vector<TPCIPaths> paths;
  paths.reserve(folders.fAll.size());
  std::set<std::string> wanted;
  for (const TDeviceFolder& folder : folders.fAll) {
    functions.fAll.push_back(MakeFunction(folder, slots));
    const TPCIPaths& own = paths.emplace_back(PathsOf(functions.fAll.back()));
    for (const TText* path : {&own.fVendor, &own.fDevice, &own.fSubsystemVendor, &own.fSubsystem,
                              &own.fClass, &own.fSubclass}) {
      if (*path) wanted.insert(**path);
    }
  }
  const TIDNames names(host, {"/usr/share/misc/pci.ids", "/usr/share/hwdata/pci.ids"}, wanted);
  for (std::size_t i = 0; i < paths.size(); ++i) SetNames(functions.fAll[i], paths[i], names);
  return functions;
}

}  // namespace NVORNQDX20
