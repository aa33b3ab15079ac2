// SPDX-License-Identifier: Apache-2.0
/// Pieces of text that the sections of the summary have in common.
#ifndef TOOLS_QDX_SUMMARY_WORDS_H_
#define TOOLS_QDX_SUMMARY_WORDS_H_

#include <qdxsummary/summary.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace NVORNQDX20 {

/// Joins the texts that are not empty.
std::string Listed(const std::vector<std::string>& texts, const std::string& separator = ", ");

/// Returns the first names, and "..." if there are more.
std::string FirstOf(const std::vector<std::string>& names, std::size_t most);

/// Returns the first of several reasons in a text.
std::string FirstReason(const std::string& reasons);

/// Returns "3 slots" or "1 slot".
std::string Counted(std::uint64_t count, const std::string& one, const std::string& many);

/// Returns "3 x ", or nothing for one.
std::string Times(std::size_t count);

/// Empty for a number that is not known.
std::string AsDiskSize(const NSummary::TNumber& bytes);
std::string AsMemorySize(const NSummary::TNumber& bytes);
std::string AsQuantity(const NSummary::TNumber& number, const char* unit);

/// Returns the day of a CIM date-time, "2026-11-23"; empty if it has none.
std::string DayOf(const std::string& dateTime);
/// Returns the day and the time of day as the text has them, "2026-11-23 14:30".
std::string MinuteOf(const std::string& dateTime);

/// Returns how much of a file system is in use, from 0 to 100; -1 if that is not known.
int PercentUsed(const NSummary::TFileSystem& system);

/// Returns "98 °C".
std::string ReadingOf(const NSummary::TSensor& sensor, std::int64_t reading);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_SUMMARY_WORDS_H_
