// SPDX-License-Identifier: Apache-2.0
/// Elements of a page. What is called a text is escaped here, what is called HTML is not.
#ifndef LIB_REPORT_HTML_H_
#define LIB_REPORT_HTML_H_

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace NVORNQDX20::NReport {

using THTML = std::string;

/// An element with a class for the style sheet, which may be empty.
THTML Element(const std::string& tag, const std::string& styleClass, const THTML& contents);

/// An element with a text.
THTML TextElement(const std::string& tag, const std::string& styleClass, const std::string& text);

/// A link to an instance by its number, or the text alone.
THTML Link(const std::optional<std::size_t>& instance, const std::string& text);

/// A section with a heading; empty without contents.
THTML Section(const std::string& id, const std::string& title, const THTML& contents);

/// Pairs of a name and a value, without those whose value is empty.
THTML Facts(const std::vector<std::pair<std::string, THTML>>& facts);

/// A part of a strip.
struct TPart {
  double fSize = 0;
  std::string fStyle;  ///< A class of the style sheet: "full", "free", "other".
  std::string fTitle;  ///< Shown by a pointer that rests on it.
};

/// Parts side by side, as wide as they are large. `label` is for those who do not see it.
THTML Strip(const std::vector<TPart>& parts, const std::string& label);

/// A strip that is full by a fraction from 0 to 1.
THTML Gauge(double fraction, const std::string& label);

}  // namespace NVORNQDX20::NReport

#endif  // LIB_REPORT_HTML_H_
