// SPDX-License-Identifier: Apache-2.0
/// Tables with many rows: columns that fit a terminal, and CSV.
#ifndef TOOLS_QDX_CLI_TABLE_COLUMNS_H_
#define TOOLS_QDX_CLI_TABLE_COLUMNS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace NVORNQDX20 {

/// The blanks between columns.
inline constexpr std::size_t kColumnGap = 2;

/// Returns the columns of the terminal that are left for a table; without a terminal, any number.
std::size_t RoomForTable(std::size_t indent);

/// Takes from the widest columns as long as they do not fit, but leaves something of each.
void NarrowColumns(std::vector<std::size_t>& widths, std::size_t room);

/// Returns a line with the cells below those of other lines. A cell that is longer than its column
/// is cut. One that is much longer than others get is not reason enough to fill all of them up to
/// its length.
std::string AlignedLine(std::vector<std::string> cells, const std::vector<std::size_t>& widths);

/// Returns one record with its line end (RFC 4180): quotes around what has a quote, a comma or a
/// line end, and quotes in it doubled.
std::string CSVRecord(const std::vector<std::string>& fields);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_TABLE_COLUMNS_H_
