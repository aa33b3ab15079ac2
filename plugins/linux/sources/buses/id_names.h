// SPDX-License-Identifier: Apache-2.0
/// Names of makers, devices and classes by their numbers: the lists pci.ids and usb.ids, which
/// other packages install.
#ifndef PLUGINS_LINUX_SOURCES_BUSES_ID_NAMES_H_
#define PLUGINS_LINUX_SOURCES_BUSES_ID_NAMES_H_

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>

#include "sources/reading.h"

namespace NVORNQDX20 {

/// Names by their path in the list: the IDs of each level with a tab between them, for example
/// "8086\t1572" for a device and "C 02\t00" for a class.
using TNamesByID = std::map<std::string, std::string, std::less<>>;

/// Parses lines of an ID, two blanks and a name, each indented by as many tabs as its level. Other
/// lines are left out, and so is what is below them and below an ID that is not wanted. The first
/// of two names counts.
TNamesByID ParseIDNames(std::string_view list,
                        const std::function<bool(const std::string& path)>& isWanted);

/// Returns a number as in these lists: two hexadecimal digits for each byte.
template <typename T>
std::string HexID(T number) {
  static_assert(std::is_unsigned_v<T>, "IDs are unsigned");
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  for (unsigned shift = 8 * sizeof(T); shift > 0;) digits += kDigits[number >> (shift -= 4) & 0xfU];
  return digits;
}

/// The names that a machine needs, of the list that it has.
class TIDNames {
 public:
  /// Reads the first list that is there, in one pass, and keeps the wanted names. Nothing is read
  /// if none is wanted.
  TIDNames(const TFiles& files, std::initializer_list<const char*> lists,
           const std::set<std::string>& wanted);

  /// Returns the name of a path that was wanted.
  TText Get(const std::string& path) const;

 private:
  std::string fList;
  TReason fReason;  // set if no list could be read
  TNamesByID fNames;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_BUSES_ID_NAMES_H_
