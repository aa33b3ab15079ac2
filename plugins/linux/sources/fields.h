// SPDX-License-Identifier: Apache-2.0
/// Parses lines of names and values, as in procfs and uevent files.
#ifndef PLUGINS_LINUX_SOURCES_FIELDS_H_
#define PLUGINS_LINUX_SOURCES_FIELDS_H_

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "reading.h"

namespace NVORNQDX20 {

/// Returns the words of a line, which have one or more of the separators between them.
std::vector<std::string_view> WordsOf(std::string_view line, std::string_view separators = " \t");

/// The fields of one text. Blanks around names and values are stripped; the first of two fields
/// with the same name counts. Lines without the separator are ignored.
class TFields {
 public:
  /// `source` is the file name for the reason of a missing field.
  TFields(std::string source, std::string_view text, char separator);
  /// If the file could not be read, every field is missing for that reason.
  TFields(const std::string& source, const TText& file, char separator);

  TText Get(std::string_view name) const;
  /// The number before `unit`. Missing if the value does not end with the unit, which may be empty.
  template <typename T = std::uint64_t>
  TReading<T> GetNumber(std::string_view name, std::string_view unit = {}) const {
    return ToNumber<T>(GetDigits(name, unit), SourceOf(name));
  }

 private:
  TText GetDigits(std::string_view name, std::string_view unit) const;
  std::string SourceOf(std::string_view name) const { return fSource + ": " + std::string(name); }

  std::string fSource;
  TReason fReason;  // set if the file could not be read
  std::map<std::string, std::string, std::less<>> fValues;
};

}  // namespace NVORNQDX20

#endif  // PLUGINS_LINUX_SOURCES_FIELDS_H_
