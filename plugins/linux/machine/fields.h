// SPDX-License-Identifier: Apache-2.0
/// Texts of lines that each give a name and its value, as procfs and uevent files have them.
#ifndef PLUGINS_LINUX_MACHINE_FIELDS_H_
#define PLUGINS_LINUX_MACHINE_FIELDS_H_

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "reading.h"

namespace NVORNQDX20 {

/// The fields of one text. Blanks around names and values do not count; of two fields of one name
/// the first holds. A line without the separator is left out.
class TFields {
 public:
  /// The source is named where a field is missing.
  TFields(std::string source, std::string_view text, char separator);
  /// Of a file that cannot be read every field is missing, for that reason.
  TFields(const std::string& source, const TReading& file, char separator);

  TReading Get(std::string_view name) const;
  /// The value must end with the unit, which may be empty.
  TNumber GetNumber(std::string_view name, std::string_view unit = {}) const;

 private:
  std::string fSource;
  std::string fReason;  // why there is no text
  std::map<std::string, std::string, std::less<>> fValues;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_MACHINE_FIELDS_H_
