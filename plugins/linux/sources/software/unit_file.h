// SPDX-License-Identifier: Apache-2.0
/// Parses the files that describe the units of systemd (systemd.unit(5)).
#ifndef PLUGINS_LINUX_SOURCES_SOFTWARE_UNIT_FILE_H_
#define PLUGINS_LINUX_SOURCES_SOFTWARE_UNIT_FILE_H_

#include <string>
#include <string_view>
#include <vector>

namespace NVORNQDX20 {

/// The settings of one unit, in the order in which they were added.
class TUnitSettings {
 public:
  /// A setting with its section, as in "Timer" and "OnCalendar".
  struct TSetting {
    std::string fSection;
    std::string fName;
    std::string fValue;
  };

  /// Adds those of the text. A line that ends with a backslash goes on in the next one; lines that
  /// begin with "#" or ";" are comments.
  void Add(std::string_view text);

  /// Returns the last value; empty if there is none.
  std::string Get(std::string_view section, std::string_view name) const;
  /// Returns the words of all values. An empty value removes those before.
  std::vector<std::string> GetWords(std::string_view section, std::string_view name) const;
  /// Returns the settings whose names begin so, as in "OnCalendar=daily". An empty value removes
  /// all those before.
  std::vector<std::string> GetList(std::string_view section, std::string_view beginning) const;
  /// Returns the path of the program that the first of these command lines runs, without its
  /// arguments, since those can hold secrets.
  std::string GetProgram(std::string_view section, std::string_view name) const;

  const std::vector<TSetting>& GetAll() const { return fAll; }

 private:
  std::vector<TSetting> fAll;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_SOFTWARE_UNIT_FILE_H_
