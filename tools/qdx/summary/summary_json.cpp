// SPDX-License-Identifier: Apache-2.0
#include "summary_json.h"

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include <qdxdisplay/sensor.h>

namespace NVORNQDX20 {
namespace {

using namespace NSummary;

TJSON Text(const std::string& text) { return text.empty() ? TJSON() : TJSON(text); }

template <typename T>
TJSON Number(const std::optional<T>& number) {
  return number ? TJSON(*number) : TJSON();
}

/// Passed through by name, so that each list is written in one place.
template <typename T>
TJSON List(const std::vector<T>& elements, TJSON (*convert)(const T&)) {
  TJSON list = TJSON::array();
  for (const T& element : elements) list.push_back(convert(element));
  return list;
}

TJSON MachineAsJSON(const TProduct& product) {
  return {{"hostName", Text(product.fHostName)},
          {"manufacturer", Text(product.fManufacturer)},
          {"productName", Text(product.fName)},
          {"serialNumber", Text(product.fSerialNumber)},
          {"chassis", Text(product.fShape)},
          {"boardManufacturer", Text(product.fBoardManufacturer)},
          {"board", Text(product.fBoard)}};
}

TJSON FirmwareAsJSON(const TFirmware& firmware) {
  return {{"manufacturer", Text(firmware.fManufacturer)},
          {"version", Text(firmware.fVersion)},
          {"releaseDate", Text(firmware.fReleaseDate)},
          {"uefi", Number(firmware.fIsUEFI)}};
}

TJSON SystemAsJSON(const TOperatingSystem& os) {
  TJSON load = TJSON::array();
  for (const auto& average : os.fLoad) load.push_back(Number(average));
  return {{"name", Text(os.fName)},
          {"kernel", Text(os.fKernel)},
          {"architecture", Text(os.fArchitecture)},
          {"container", Text(os.fContainer)},
          {"virtualMachine", Text(os.fVirtualMachine)},
          {"bootTime", Text(os.fBootTime)},
          {"uptimeSeconds", Number(os.fUptimeSeconds)},
          {"load", load},
          {"processes", Number(os.fProcesses)}};
}

TJSON ProcessorsAsJSON(const TProcessors& processors) {
  return {{"count", processors.fCount},
          {"name", Text(processors.fName)},
          {"cores", processors.fCores == 0 ? TJSON() : TJSON(processors.fCores)},
          {"threads", processors.fThreads == 0 ? TJSON() : TJSON(processors.fThreads)},
          {"maxHertz", Number(processors.fMaxHertz)}};
}

TJSON ModulesAsJSON(const TModules& modules) {
  return {{"count", modules.fCount},
          {"bytes", Number(modules.fBytes)},
          {"type", Text(modules.fType)},
          {"transfersPerSecond", Number(modules.fTransfersPerSecond)}};
}

TJSON MemoryAsJSON(const TMemory& memory) {
  return {{"bytes", Number(memory.fBytes)},
          {"availableBytes", Number(memory.fAvailableBytes)},
          {"swapBytes", Number(memory.fSwapBytes)},
          {"freeSwapBytes", Number(memory.fFreeSwapBytes)},
          {"slots", Number(memory.fSlots)},
          {"freeSlots", Number(memory.fFreeSlots)},
          {"modules", List(memory.fModules, ModulesAsJSON)},
          {"correctedErrors", Number(memory.fCorrectedErrors)},
          {"uncorrectedErrors", Number(memory.fUncorrectedErrors)}};
}

TJSON DisksAsJSON(const TDisks& disks) {
  const char* const media[] = {"", "disk", "solid state"};
  return {{"count", disks.fNames.size()},        {"names", disks.fNames},
          {"bytes", Number(disks.fBytes)},       {"medium", Text(media[disks.fMedium])},
          {"transport", Text(disks.fTransport)}, {"model", Text(disks.fModel)},
          {"fault", Text(disks.fState)}};
}

TJSON ArrayAsJSON(const TArray& array) {
  return {{"name", Text(array.fName)},
          {"level", Text(array.fLevel)},
          {"state", Text(array.fState)},
          {"bytes", Number(array.fBytes)},
          {"missingMembers", Number(array.fMissingMembers)},
          {"syncAction", Text(array.fSyncAction)},
          {"syncPercent", Number(array.fSyncPercent)}};
}

TJSON FileSystemAsJSON(const TFileSystem& system) {
  return {{"mountPoint", Text(system.fMountPoint)},
          {"type", Text(system.fType)},
          {"device", Text(system.fDevice)},
          {"disks", system.fDisks},
          {"bytes", Number(system.fBytes)},
          {"usedBytes", Number(system.fUsedBytes)},
          {"availableBytes", Number(system.fAvailableBytes)},
          {"otherMounts", system.fOtherMounts},
          {"readOnly", system.fIsReadOnly}};
}

TJSON PortAsJSON(const TPort& port) {
  return {{"name", Text(port.fName)},
          {"kind", Text(port.fKind)},
          {"technology", Text(port.fTechnology)},
          {"linkState", Text(port.fLinkState)},
          {"bitsPerSecond", Number(port.fBitsPerSecond)},
          {"hardwareAddress", Text(port.fHardwareAddress)},
          {"addresses", port.fAddresses}};
}

TJSON CardsAsJSON(const TCards& cards) {
  return {{"count", cards.fAddresses.size()}, {"addresses", cards.fAddresses},
          {"vendor", Text(cards.fVendor)},    {"device", Text(cards.fDevice)},
          {"vendorID", cards.fVendorID},      {"deviceID", cards.fDeviceID},
          {"classCode", cards.fClassCode},    {"class", Text(cards.fClass)},
          {"driver", Text(cards.fDriver)},    {"slots", cards.fSlots}};
}

TJSON ReadingAsJSON(const TSensor& sensor, const std::optional<std::int64_t>& reading) {
  if (!reading) return {};
  // Divided, since a power below one has no exact value: 41.5 is not 41500 * 0.001.
  const double scale = std::pow(10.0, std::fabs(static_cast<double>(sensor.fModifier)));
  const auto number = static_cast<double>(*reading);
  return sensor.fModifier < 0 ? number / scale : number * scale;
}

TJSON SensorAsJSON(const TSensor& sensor) {
  return {{"name", Text(sensor.fName)},
          {"chip", Text(sensor.fChip)},
          {"state", Text(sensor.fState)},
          {"unit", Text(UnitOfSensor(sensor.fBaseUnits.value_or(0)))},
          {"reading", ReadingAsJSON(sensor, sensor.fReading)},
          {"limit", ReadingAsJSON(sensor, sensor.fLimit)}};
}

TJSON SensorsAsJSON(const TSensors& sensors) {
  return {{"count", sensors.fCount},
          {"outOfRange", List(sensors.fOutOfRange, SensorAsJSON)},
          {"warmest", sensors.fWarmest ? SensorAsJSON(*sensors.fWarmest) : TJSON()}};
}

TJSON BatteryAsJSON(const TBattery& battery) {
  return {{"name", Text(battery.fName)},
          {"status", Text(battery.fStatus)},
          {"chargePercent", Number(battery.fChargePercent)},
          {"healthPercent", Number(battery.fHealthPercent)}};
}

TJSON SuppliesAsJSON(const TPowerSupplies& supplies) {
  return {{"count", supplies.fCount},
          {"model", Text(supplies.fModel)},
          {"watts", Number(supplies.fWatts)},
          {"fault", Text(supplies.fFault)}};
}

TJSON GapAsJSON(const TGap& gap) {
  const char* const kinds[] = {"not there", "needs root", "failed", "left out"};
  return {{"kind", kinds[gap.fKind]}, {"subjects", gap.fSubjects}, {"reason", gap.fReason}};
}

}  // namespace

TJSON SummaryAsJSON(const TSummary& summary) {
  return {{"machine", MachineAsJSON(summary.fProduct)},
          {"firmware", FirmwareAsJSON(summary.fFirmware)},
          {"operatingSystem", SystemAsJSON(summary.fOperatingSystem)},
          {"processors", List(summary.fProcessors, ProcessorsAsJSON)},
          {"memory", MemoryAsJSON(summary.fMemory)},
          {"disks", List(summary.fDisks, DisksAsJSON)},
          {"arrays", List(summary.fArrays, ArrayAsJSON)},
          {"fileSystems", List(summary.fFileSystems, FileSystemAsJSON)},
          {"ports", List(summary.fPorts, PortAsJSON)},
          {"cards", List(summary.fCards, CardsAsJSON)},
          {"sensors", SensorsAsJSON(summary.fSensors)},
          {"batteries", List(summary.fBatteries, BatteryAsJSON)},
          {"powerSupplies", List(summary.fPowerSupplies, SuppliesAsJSON)},
          {"gaps", List(summary.fGaps, GapAsJSON)}};
}

}  // namespace NVORNQDX20
