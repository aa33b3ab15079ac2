// SPDX-License-Identifier: Apache-2.0
/// The values of properties as people read them.
#ifndef QDXDISPLAY_VALUE_TEXT_H_
#define QDXDISPLAY_VALUE_TEXT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

/// Returns a value of the property: with its unit ("512.1 GB") or the text of its number
/// ("2 (OK)"), an address of a port as "52:54:00:12:34:56" and of a byte as "0x5ffffffff", an ID of
/// PCI and USB as "8086", a date-time as "2004-03-15 14:30:00 +01:00" or "12 days 3 h", a reference
/// as the short name of its instance; the elements of an array likewise. Everything else is as
/// PlainText() returns it.
std::string TextForPeople(const TJSON& value, const TPropertySnapshot& property);

/// Returns the same for one value of an instance, with what its other properties say about it: the
/// unit of a sensor's reading, the names of IDs ("8086 (Intel Corporation)", "8086:1572 (Intel
/// Corporation Ethernet Controller X710)").
/// REQUIRES: the instance has values; `property` is an index of the class's properties.
std::string TextForPeople(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                          std::size_t property);

/// Returns the texts of two values that differ. They are bare, as PlainText() returns them, if they
/// would look the same.
std::pair<std::string, std::string> DistinctTexts(const TJSON& one, const TJSON& other,
                                                  const TPropertySnapshot& property);

/// Returns the text that the property's enumeration has for the value; null for none.
const std::string* NameOfValue(const TJSON& value, const TPropertySnapshot& property);

/// Returns whether the numbers of the property are shown in hexadecimal digits, as IDs of PCI are.
bool IsShownInHex(const TPropertySnapshot& property);

/// Returns the number in a value of a numeric property, also one of 64 bits, which is a text.
std::optional<long double> NumberIn(const TJSON& value);

/// Returns the unit of the property as a PUnit, for the readings of a sensor that of the sensor;
/// empty if it has none. REQUIRES: the instance has values.
std::string UnitOf(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                   std::size_t property);

}  // namespace NVORNQDX20

#endif  // QDXDISPLAY_VALUE_TEXT_H_
