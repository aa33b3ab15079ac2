// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/names.h>

#include <qdxmodel/names.h>
#include <qdxmodel/nearest_name.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "words.h"

namespace NVORNQDX20 {
namespace {

using TNames = std::vector<std::string>;

/// What people call a class that has another name.
constexpr std::pair<std::string_view, std::string_view> kCommonWords[] = {
    {"account", "Account"},
    {"address", "IPProtocolEndpoint"},
    {"array", "StorageVolume"},
    {"bios", "BIOSElement"},
    {"board", "Card"},
    {"cache", "CacheMemory"},
    {"cards", "PCIDevice"},  // as the summary calls them; one card is a board
    {"computer", "ComputerSystem"},
    {"core", "ProcessorCore"},
    {"cpu", "Processor"},
    {"dimm", "PhysicalMemory"},
    {"disk", "DiskDrive"},
    {"drive", "DiskDrive"},
    {"ethernet", "EthernetPort"},
    {"filesystem", "LocalFileSystem"},
    {"firmware", "BIOSElement"},
    {"fs", "FileSystem"},
    {"interface", "EthernetPort"},
    {"ip", "IPProtocolEndpoint"},
    {"kernel", "InstalledKernel"},
    {"machine", "ComputerSystem"},
    {"memory", "PhysicalMemory"},
    {"module", "KernelModule"},
    {"mount", "MountSetting"},
    {"network", "EthernetPort"},
    {"nic", "EthernetPort"},
    {"os", "OperatingSystem"},
    {"package", "SoftwareIdentity"},
    {"partition", "DiskPartition"},
    {"pci", "PCIDevice"},
    {"port", "EthernetPort"},
    {"process", "UnixProcess"},
    {"raid", "StorageVolume"},
    {"ram", "PhysicalMemory"},
    {"route", "NextHopIPRoute"},
    {"sensor", "NumericSensor"},
    {"system", "ComputerSystem"},
    {"thread", "HardwareThread"},
    {"usb", "USBDevice"},
    {"user", "Account"},
    {"volume", "StorageVolume"}};

bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }

/// Returns whether a word of the name begins with the text, which is in lower case: "DiskDrive"
/// has the words "DiskDrive" and "Drive", "IPRoute" has "Route", too.
bool HasWord(std::string_view name, std::string_view text) {
  const std::string folded = NModel::Folded(name);
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool begins =
        i == 0 || (IsUpper(name[i]) &&
                   (!IsUpper(name[i - 1]) || (i + 1 < name.size() && !IsUpper(name[i + 1]))));
    if (begins && BeginsWith(std::string_view(folded).substr(i), text)) return true;
  }
  return false;
}

template <typename TMatches>
TNames NamesWhich(const TNames& names, const TMatches& matches) {
  TNames found;
  std::copy_if(names.begin(), names.end(), std::back_inserter(found), matches);
  return found;
}

/// Finds the names that are `folded` exactly, with or without their schema, or by a common word.
TNames FindWhole(const std::string& folded, const TNames& names) {
  TNames found =
      NamesWhich(names, [&](const std::string& name) { return NModel::Folded(name) == folded; });
  const auto findShort = [&](std::string_view wanted) {
    return NamesWhich(names, [wanted](const std::string& name) {
      return NModel::EqualIgnoringCase(ShortClassName(name), wanted);
    });
  };
  if (found.empty()) found = findShort(folded);
  if (!found.empty()) return found;
  const auto word = std::find_if(std::begin(kCommonWords), std::end(kCommonWords),
                                 [&folded](const auto& each) { return each.first == folded; });
  return word == std::end(kCommonWords) ? found : findShort(word->second);
}

/// Returns the text in the singular; none if it is no plural.
std::optional<std::string> Singular(const std::string& folded) {
  const auto ends = [&folded](std::string_view end) {
    return folded.size() > end.size() + 1 &&
           std::string_view(folded).substr(folded.size() - end.size()) == end;
  };
  if (ends("ies")) return folded.substr(0, folded.size() - 3) + "y";
  if (ends("sses") || ends("xes") || ends("ches")) return folded.substr(0, folded.size() - 2);
  if (ends("s")) return folded.substr(0, folded.size() - 1);
  return std::nullopt;
}

TNames Find(const std::string& folded, const TNames& names) {
  TNames found = FindWhole(folded, names);
  if (!found.empty()) return found;
  if (const auto singular = Singular(folded)) found = FindWhole(*singular, names);
  if (!found.empty()) return found;
  found = NamesWhich(names, [&folded](const std::string& name) {
    return BeginsWith(NModel::Folded(ShortClassName(name)), folded);
  });
  if (!found.empty()) return found;
  return NamesWhich(
      names, [&folded](const std::string& name) { return HasWord(ShortClassName(name), folded); });
}

std::string Nearest(const std::string& typed, const TNames& names) {
  // Both forms of each name, so that a forgotten schema is no slip of the hand.
  TNames forms;
  forms.reserve(2 * names.size() + std::size(kCommonWords));
  for (const std::string& name : names) {
    forms.push_back(name);
    forms.push_back(ShortClassName(name));
  }
  // A name whose rest is short for a class: "VORNSG_disk".
  const TNames meant = Find(NModel::Folded(ShortClassName(typed)), names);
  if (!meant.empty()) return meant.front();
  for (const auto& [word, name] : kCommonWords) {
    if (!FindWhole(std::string(word), names).empty()) forms.emplace_back(word);
  }
  std::string nearest = NModel::NearestName(typed, forms);
  if (nearest.empty()) nearest = NModel::NearestName(ShortClassName(typed), forms);
  const auto found = std::find(forms.begin(), forms.end(), nearest);
  const auto index = static_cast<std::size_t>(found - forms.begin());
  return index < 2 * names.size() ? names[index / 2] : nearest;
}

struct TKey {
  std::string fName;
  std::string fValue;
};

bool IsNameCharacter(char c) {
  return IsUpper(c) || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

/// Takes an object path apart.
class TPathParser {
 public:
  explicit TPathParser(std::string_view path) : fRest(path) {}

  /// Returns whether the text is an object path with keys; then `className` and `keys` are set.
  bool Parse(std::string& className, std::vector<TKey>& keys) {
    // A reference to another namespace begins with its name.
    const std::size_t colon = fRest.find(':');
    if (colon != std::string_view::npos && colon < fRest.find_first_of(".\"=")) {
      fRest.remove_prefix(colon + 1);
    }
    className = TakeName();
    if (className.empty() || !Take('.')) return false;
    do {
      TKey key;
      key.fName = TakeName();
      if (key.fName.empty() || !Take('=') || !TakeValue(key.fValue)) return false;
      keys.push_back(std::move(key));
    } while (Take(','));
    return fRest.empty();
  }

 private:
  bool Take(char wanted) {
    if (fRest.empty() || fRest.front() != wanted) return false;
    fRest.remove_prefix(1);
    return true;
  }

  std::string TakeName() {
    std::size_t size = 0;
    while (size < fRest.size() && IsNameCharacter(fRest[size])) ++size;
    std::string name(fRest.substr(0, size));
    fRest.remove_prefix(size);
    return name;
  }

  bool TakeValue(std::string& value) {
    if (!Take('"')) {
      const std::size_t size = std::min(fRest.find(','), fRest.size());
      value = fRest.substr(0, size);
      fRest.remove_prefix(size);
      return size != 0;
    }
    while (!fRest.empty()) {
      if (Take('"')) return true;
      Take('\\');
      if (fRest.empty()) return false;
      value += fRest.front();
      fRest.remove_prefix(1);
    }
    return false;
  }

  std::string_view fRest;
};

/// Deeper references within keys are made to hurt.
constexpr int kDeepest = 8;

std::string LabelOf(const std::string& path, bool withClass, int depth);

std::string KeysLabel(const std::vector<TKey>& keys, int depth) {
  std::string label;
  for (const bool isSilent : {false, true}) {
    for (const TKey& key : keys) {
      if (!isSilent && IsSilentKey(key.fName)) continue;
      const std::string part = LabelOf(key.fValue, true, depth + 1);
      // The label of a reference has blanks.
      const bool isReference = part != key.fValue;
      label += (label.empty() ? "" : isReference ? ", " : " ") + part;
    }
    if (!label.empty()) break;  // else every key is silent: they are all that there is
  }
  return label;
}

std::string LabelOf(const std::string& path, bool withClass, int depth) {
  std::string className;
  std::vector<TKey> keys;
  if (depth > kDeepest || !TPathParser(path).Parse(className, keys)) return path;
  const std::string label = KeysLabel(keys, depth);
  return withClass ? ShortClassName(className) + " " + label : label;
}

/// Returns the text of a property; empty if there is none.
std::string TextNamed(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                      const char* name) {
  for (std::size_t i = 0; i < cimClass.fProperties.size(); ++i) {
    const TJSON& value = instance.fValues[i];
    if (value.is_string() && NModel::EqualIgnoringCase(cimClass.fProperties[i].fName, name)) {
      return value.get<std::string>();
    }
  }
  return "";
}

}  // namespace

std::string ShortClassName(const std::string& name) {
  const std::size_t underscore = name.find('_');
  const bool hasSchema = underscore != std::string::npos && underscore != 0;
  return hasSchema && underscore + 1 < name.size() ? name.substr(underscore + 1) : name;
}

TClassMatch FindClassFor(const std::string& typed, const std::vector<std::string>& names) {
  const std::string folded = NModel::Folded(typed);
  if (folded.empty()) return {};
  TClassMatch match{Find(folded, names), ""};
  if (match.fNames.empty()) match.fNearest = Nearest(typed, names);
  return match;
}

bool IsSilentKey(const std::string& name) {
  static constexpr std::string_view kOfMachine[] = {"SystemName", "CSName", "OSName"};
  static constexpr std::string_view kOfClass = "creationclassname";
  const std::string folded = NModel::Folded(name);
  const bool namesClass =
      folded.size() >= kOfClass.size() &&
      folded.compare(folded.size() - kOfClass.size(), kOfClass.size(), kOfClass) == 0;
  return namesClass ||
         std::any_of(std::begin(kOfMachine), std::end(kOfMachine), [&name](std::string_view each) {
           return NModel::EqualIgnoringCase(each, name);
         });
}

std::string InstanceLabel(const std::string& path) { return LabelOf(path, true, 0); }

std::string KeyLabel(const std::string& path) {
  std::string className;
  std::vector<TKey> keys;
  return TPathParser(path).Parse(className, keys) ? KeysLabel(keys, 0) : "";
}

std::string DeviceNameOf(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance) {
  std::string name = TextNamed(cimClass, instance, "VendorName");
  for (const char* const property : {"DeviceName", "ProductName"}) {
    const std::string product = TextNamed(cimClass, instance, property);
    if (!product.empty()) name += (name.empty() ? "" : " ") + product;
  }
  return name;
}

}  // namespace NVORNQDX20
