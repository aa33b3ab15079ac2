// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/sensor.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include <qdxdisplay/quantity.h>

namespace NVORNQDX20 {
namespace {

/// The PUnits of the numbers that BaseUnits of a sensor can have; the other numbers have none.
struct TBaseUnit {
  std::uint64_t fNumber;
  const char* fUnit;
};
constexpr TBaseUnit kBaseUnits[] = {{2, "degree celsius"},
                                    {3, "degree fahrenheit"},
                                    {4, "kelvin"},
                                    {5, "volt"},
                                    {6, "ampere"},
                                    {7, "watt"},
                                    {8, "joule"},
                                    {10, "volt * ampere"},
                                    {12, "lumen"},
                                    {15, "pascal * 10^3"},
                                    {19, "revolution / minute"},
                                    {20, "hertz"},
                                    {21, "second"},
                                    {22, "minute"},
                                    {23, "hour"},
                                    {24, "day"},
                                    {27, "inch"},
                                    {31, "meter"},
                                    {65, "percent"}};

}  // namespace

const char* UnitOfSensor(std::uint64_t baseUnits) {
  const auto found =
      std::find_if(std::begin(kBaseUnits), std::end(kBaseUnits),
                   [baseUnits](const TBaseUnit& each) { return each.fNumber == baseUnits; });
  return found == std::end(kBaseUnits) ? "" : found->fUnit;
}

std::string FormatReading(std::int64_t reading, std::uint64_t baseUnits, std::int64_t modifier) {
  const long double scale = std::pow(10.0L, static_cast<long double>(modifier));
  return FormatQuantity(static_cast<long double>(reading) * scale, UnitOfSensor(baseUnits));
}

}  // namespace NVORNQDX20
