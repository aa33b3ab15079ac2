// SPDX-License-Identifier: Apache-2.0
/// The texts of date-times that cannot be held, as the reasons why their properties are null.
#ifndef LIB_CIMXML_READING_MISSING_REASONS_H_
#define LIB_CIMXML_READING_MISSING_REASONS_H_

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "reading_state.h"
#include "xml/element.h"

namespace NVORNQDX20 {
class ICIMClass;
class ICIMInstance;
class ICIMNamespace;
}  // namespace NVORNQDX20

namespace NVORNQDX20::NCIMXML {

/// The VALUE of a date-time that was read as null.
struct TUnheldDateTime {
  const TElement* fValue;
  std::optional<std::size_t> fIndex;  ///< In an array.
};

/// Collects the reasons of one namespace, and adds them to it in the end.
class TMissingReasons {
 public:
  /// A property and what it lacks: one date-time, or some of an array.
  struct TUnheld {
    const TElement* fProperty;
    std::vector<TUnheldDateTime> fValues;
  };

  /// Adds those of a committed instance. Returns the bytes that they need, also when written.
  std::size_t Add(const ICIMClass& cimClass, const ICIMInstance& instance,
                  const std::vector<TUnheld>& unheld);
  /// Counts those that cannot be recorded: of one among several instances without keys, and where
  /// the document itself explains the property.
  void Write(ICIMNamespace& ns, TReadingState& state);

 private:
  struct TText {
    std::string fReason;
    TCountedWarning fPlaces;
  };
  /// By class, key and property.
  std::map<std::tuple<std::string, std::string, std::string>, TText> fTexts;
  TCountedWarning fUnrecorded;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_MISSING_REASONS_H_
