// SPDX-License-Identifier: Apache-2.0
/// The instances of a namespace by the short names of their classes.
#ifndef LIB_REPORT_RECORDS_H_
#define LIB_REPORT_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "contents.h"

namespace NVORNQDX20::NReport {

/// One instance. Refers to the namespace that it is from.
class TRecord {
 public:
  TRecord(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance, std::size_t number)
      : fClass(&cimClass), fInstance(&instance), fNumber(number) {}

  /// Returns the bare value; empty if it is missing or no text.
  std::string GetText(const std::string& property) const;
  /// Returns the value as people read it; empty if it is missing.
  std::string GetShown(const std::string& property) const;
  /// Returns nothing if the value is missing or no number; true is 1.
  std::optional<double> GetNumber(const std::string& property) const;
  const std::string& GetPath() const { return fInstance->fPath; }
  std::size_t GetNumber() const { return fNumber; }

 private:
  std::optional<std::size_t> Find(const std::string& property) const;
  const TJSON* FindValue(const std::string& property) const;

  const TClassSnapshot* fClass;
  const TInstanceSnapshot* fInstance;
  std::size_t fNumber;
};

/// Reads the instances of one of several namespaces.
class TRecords {
 public:
  TRecords(const std::vector<TReportedNamespace>& namespaces, std::size_t chosen);

  /// Returns the instances of a class, by its name without the schema; without those of subclasses.
  std::vector<TRecord> Of(const std::string& shortName) const;
  /// Returns the first instance of one of these classes whose property has this text.
  std::optional<TRecord> Find(const std::vector<std::string>& shortNames,
                              const std::string& property, const std::string& text) const;

 private:
  const TReportedNamespace& fNamespace;
  std::size_t fFirst = 0;  // the number of the first instance
};

/// Parses a list of numbers such as "0-3,8". Ends at what is no number; ranges are bounded.
std::set<unsigned> NumbersIn(const std::string& list);

}  // namespace NVORNQDX20::NReport

#endif  // LIB_REPORT_RECORDS_H_
