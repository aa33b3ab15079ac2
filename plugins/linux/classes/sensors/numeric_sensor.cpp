// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_NumericSensor: sensors with a number as their reading.
#include "sensor.h"

namespace NVORNQDX20 {
namespace {

/// A limit can lie on the other side of a reading that is not in order.
TReading<std::uint32_t> ReadHysteresis(const TChannel& channel) {
  for (const auto& [limit, end] : {std::pair("max", "max_hyst"), std::pair("crit", "crit_hyst")}) {
    if (!channel.Has(end)) continue;
    return channel.Read(limit).and_then([&, end = end](std::int32_t high) {
      return channel.Read(end).and_then([&](std::int32_t low) -> TReading<std::uint32_t> {
        const std::int64_t margin = std::int64_t{high} - low;
        if (margin >= 0) return static_cast<std::uint32_t>(margin);
        return channel.fFolder.MissingFrom(channel.PathOf(end), "is above the limit");
      });
    });
  }
  return Missing("the driver has no hysteresis");
}

TNumericSensor SensorOf(const TChannel& channel) {
  TNumericSensor sensor;
  static_cast<TSensor&>(sensor) = SensorOfChannel(channel);
  // The output of a power supply has a label such as "pout1" (PMBus).
  if (channel.fQuantity->fSensorType == kPowerConsumption) {
    if (sensor.fLabel.ValueOr("").rfind("pout", 0) == 0) sensor.fType = kPowerProduction;
    if (sensor.fLabel.GetReason().IsError()) sensor.fType = Missing(sensor.fLabel.GetReason());
  }
  sensor.fBaseUnits = channel.fQuantity->fBaseUnits;
  sensor.fUnitModifier = channel.fQuantity->fUnitModifier;
  sensor.fReading = channel.ReadValue();
  sensor.fAverage = channel.Read("average");
  sensor.fLowerNonCritical = channel.Read("min");
  sensor.fUpperNonCritical = channel.Read("max");
  sensor.fLowerCritical = channel.Read("lcrit");
  sensor.fUpperCritical = channel.Read("crit");
  sensor.fUpperFatal = channel.Read("emergency");
  sensor.fHysteresis = ReadHysteresis(channel);
  return sensor;
}

TInstances<TNumericSensor> ListNumericSensors(const THost& host) {
  const auto& chips = host.Shared<TChips>();
  TInstances<TNumericSensor> sensors({}, chips.fReason);
  for (const TChannel& channel : chips.fChannels) {
    if (channel.fQuantity->fSensorType != kIntrusion) sensors.fAll.push_back(SensorOf(channel));
  }
  if (sensors.fAll.empty() && sensors.fReason.empty()) sensors.Miss("no sensor has a reading");
  return sensors;
}

}  // namespace

THostTable<TNumericSensor> NumericSensorTable() {
  const TEnumeration units = {
      {0, "Unknown"},       {1, "Other"},        {2, "Degrees C"},
      {3, "Degrees F"},     {4, "Degrees K"},    {5, "Volts"},
      {6, "Amps"},          {7, "Watts"},        {8, "Joules"},
      {9, "Coulombs"},      {10, "VA"},          {11, "Nits"},
      {12, "Lumens"},       {13, "Lux"},         {14, "Candelas"},
      {15, "kPa"},          {16, "PSI"},         {17, "Newtons"},
      {18, "CFM"},          {19, "RPM"},         {20, "Hertz"},
      {21, "Seconds"},      {22, "Minutes"},     {23, "Hours"},
      {24, "Days"},         {25, "Weeks"},       {26, "Mils"},
      {27, "Inches"},       {28, "Feet"},        {29, "Cubic Inches"},
      {30, "Cubic Feet"},   {31, "Meters"},      {32, "Cubic Centimeters"},
      {33, "Cubic Meters"}, {34, "Liters"},      {35, "Fluid Ounces"},
      {36, "Radians"},      {37, "Steradians"},  {38, "Revolutions"},
      {39, "Cycles"},       {40, "Gravities"},   {41, "Ounces"},
      {42, "Pounds"},       {43, "Foot-Pounds"}, {44, "Ounce-Inches"},
      {45, "Gauss"},        {46, "Gilberts"},    {47, "Henries"},
      {48, "Farads"},       {49, "Ohms"},        {50, "Siemens"},
      {51, "Moles"},        {52, "Becquerels"},  {53, "PPM (parts/million)"},
      {54, "Decibels"},     {55, "DbA"},         {56, "DbC"},
      {57, "Grays"},        {58, "Sieverts"},    {59, "Color Temperature Degrees K"},
      {60, "Bits"},         {61, "Bytes"},       {62, "Words (data)"},
      {63, "DoubleWords"},  {64, "QuadWords"},   {65, "Percentage"},
      {66, "Pascals"}};
  return THostTable<TNumericSensor>{
      "VORNSG_NumericSensor",
      "A sensor that reads a number. All its numbers are in BaseUnits * 10 ^ UnitModifier.",
      ListNumericSensors,
      {{"BaseUnits", "What is counted.", &TNumericSensor::fBaseUnits, units},
       {"UnitModifier", "The power of ten of that: -3 is for thousandths.",
        &TNumericSensor::fUnitModifier},
       {"RateUnits", "Whether numbers are of something in a time.", Constant(std::uint16_t{0}),
        TEnumeration{{0, "None"},
                     {1, "Per MicroSecond"},
                     {2, "Per MilliSecond"},
                     {3, "Per Second"},
                     {4, "Per Minute"},
                     {5, "Per Hour"},
                     {6, "Per Day"},
                     {7, "Per Week"},
                     {8, "Per Month"},
                     {9, "Per Year"}}},
       {"CurrentReading", "What it reads now.", &TNumericSensor::fReading, kGauge, kVolatile},
       {"AverageReading", "The average over a time, if the chip has one.",
        &TNumericSensor::fAverage, kGauge, kVolatile},
       {"LowerThresholdNonCritical", "The lowest reading that is in order.",
        &TNumericSensor::fLowerNonCritical},
       {"UpperThresholdNonCritical", "The highest reading that is in order.",
        &TNumericSensor::fUpperNonCritical},
       {"LowerThresholdCritical", "Readings below it are critical.",
        &TNumericSensor::fLowerCritical},
       {"UpperThresholdCritical", "Readings above it are critical.",
        &TNumericSensor::fUpperCritical},
       {"UpperThresholdFatal", "Readings above it call for an emergency.",
        &TNumericSensor::fUpperFatal},
       {"Hysteresis", "How far a reading has to fall below a limit before its alarm ends.",
        &TNumericSensor::fHysteresis}}}
      .DerivedFrom(SensorTable());
}

TClass NumericSensorClass() { return NumericSensorTable(); }

}  // namespace NVORNQDX20
