// SPDX-License-Identifier: Apache-2.0
/// Quantities as people read them: "512.1 GB", "3.2 GHz", "12 days 3 h".
#ifndef QDXDISPLAY_QUANTITY_H_
#define QDXDISPLAY_QUANTITY_H_

#include <optional>
#include <string>

namespace NVORNQDX20 {

/// Returns the number with its unit, a PUnit (DMTF DSP0004, annex C) such as "byte * 2^10". It is
/// rounded to one digit after the point, below 10 to two. A unit that is not known follows the
/// number unchanged; an empty one gives the number alone.
///
/// Bytes are decimal ("512.1 GB"), as on the labels of disks. They are binary ("64 GiB") if the
/// unit counts in powers of two, or if the number does: at most one digit after the point is exact.
/// Times have the two largest units, without a rest: "12 days 3 h" may be 12 days, 3 h and 59 min.
std::string FormatQuantity(long double number, const std::string& unit);

/// Reads a number that a person typed for a property of this unit: "100", "100 GB", "64GiB",
/// "3.2GHz", also without the symbol of the unit, "100G", and in any case unless that is ambiguous.
/// Returns it in the unit, in which a bare number is already; none if the text is something else.
std::optional<long double> ParseQuantity(const std::string& text, const std::string& unit);

/// Returns a time in the two largest of days, hours, minutes and seconds.
std::string FormatDuration(long double seconds);

}  // namespace NVORNQDX20

#endif  // QDXDISPLAY_QUANTITY_H_
