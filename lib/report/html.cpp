// SPDX-License-Identifier: Apache-2.0
#include "html.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "escape.h"

namespace NVORNQDX20::NReport {
namespace {

/// A number for an attribute, whatever the locale.
std::string Decimal(double number) {
  const auto thousandths = static_cast<long>(std::lround(number * 1000));
  char text[32];
  std::snprintf(text, sizeof(text), "%ld.%03ld", thousandths / 1000, thousandths % 1000);
  return text;
}

}  // namespace

THTML Element(const std::string& tag, const std::string& styleClass, const THTML& contents) {
  const std::string attribute = styleClass.empty() ? "" : " class=\"" + styleClass + "\"";
  return "<" + tag + attribute + ">" + contents + "</" + tag + ">";
}

THTML TextElement(const std::string& tag, const std::string& styleClass, const std::string& text) {
  return Element(tag, styleClass, Escaped(text));
}

THTML Link(const std::optional<std::size_t>& instance, const std::string& text) {
  if (!instance) return Escaped(text);
  return "<a href=\"#instance-" + std::to_string(*instance) + "\">" + Escaped(text) + "</a>";
}

THTML Section(const std::string& id, const std::string& title, const THTML& contents) {
  if (contents.empty()) return "";
  return "<section id=\"" + id + "\">\n" + TextElement("h2", "", title) + "\n" + contents +
         "\n</section>\n";
}

THTML Facts(const std::vector<std::pair<std::string, THTML>>& facts) {
  THTML rows;
  for (const auto& [name, value] : facts) {
    if (value.empty()) continue;
    rows += Element("div", "", TextElement("dt", "", name) + Element("dd", "", value)) + "\n";
  }
  return rows.empty() ? "" : Element("dl", "facts", rows);
}

THTML Strip(const std::vector<TPart>& parts, const std::string& label) {
  double total = 0;
  for (const TPart& part : parts) total += part.fSize;
  if (!(total > 0) || !std::isfinite(total)) return "";
  constexpr double kWidth = 1000;
  THTML shapes;
  double from = 0;
  for (const TPart& part : parts) {
    const double width = part.fSize / total * kWidth;
    shapes += "<rect x=\"" + Decimal(from) + "\" width=\"" + Decimal(width) +
              "\" height=\"10\" class=\"" + part.fStyle + "\">";
    if (!part.fTitle.empty()) shapes += TextElement("title", "", part.fTitle);
    shapes += "</rect>";
    from += width;
  }
  return "<svg class=\"strip\" viewBox=\"0 0 1000 10\" preserveAspectRatio=\"none\" role=\"img\" "
         "aria-label=\"" +
         Escaped(label) + "\">" + shapes + "</svg>";
}

THTML Gauge(double fraction, const std::string& label) {
  const double full = std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 0;
  constexpr double kNearlyFull = 0.9;
  return Strip({{full, full >= kNearlyFull ? "high" : "full", ""}, {1 - full, "free", ""}}, label);
}

}  // namespace NVORNQDX20::NReport
