// SPDX-License-Identifier: Apache-2.0
/// What the machine says about one thing, or why it says nothing.
#ifndef QDXLINUX_READING_H_
#define QDXLINUX_READING_H_

#include <optional>
#include <string>
#include <utility>

namespace NVORNQDX20 {

/// A text of the machine, or the reason why it cannot be had; never both.
struct TReading {
  static TReading Of(std::string text) { return {std::move(text), {}}; }
  static TReading Missing(std::string reason) { return {std::nullopt, std::move(reason)}; }

  explicit operator bool() const { return fText.has_value(); }

  std::optional<std::string> fText;
  std::string fReason;
};

}  // namespace NVORNQDX20

#endif  // QDXLINUX_READING_H_
