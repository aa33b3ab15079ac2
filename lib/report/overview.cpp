// SPDX-License-Identifier: Apache-2.0
#include "overview.h"

#include <qdxdisplay/quantity.h>
#include <qdxdisplay/sensor.h>

#include <cmath>
#include <cstdio>

namespace NVORNQDX20::NReport {
namespace {

using namespace NSummary;

std::string Hundredths(double number) {
  char text[64];
  const auto hundredths = std::lround(number * 100);
  std::snprintf(text, sizeof(text), "%ld.%02ld", hundredths / 100, hundredths % 100);
  return text;
}

/// The day of a CIM date-time, or the text itself.
std::string DayOf(const std::string& dateTime) {
  if (dateTime.size() < 8) return dateTime;
  return dateTime.substr(0, 4) + "-" + dateTime.substr(4, 2) + "-" + dateTime.substr(6, 2);
}

std::string LoadOf(const TOperatingSystem& system) {
  std::vector<std::string> loads;
  for (const auto& load : system.fLoad) {
    if (load) loads.push_back(Hundredths(*load));
  }
  return Joined(loads, ", ");
}

std::string SwapOf(const TMemory& memory) {
  if (!memory.fSwapBytes) return "";
  if (*memory.fSwapBytes == 0) return "none";
  const auto size = [](std::uint64_t bytes) {
    return FormatQuantity(static_cast<double>(bytes) / 1024, "byte * 2^10");
  };
  if (!memory.fFreeSwapBytes) return size(*memory.fSwapBytes);
  return size(*memory.fFreeSwapBytes) + " free of " + size(*memory.fSwapBytes);
}

/// The provider writes "other" for a container or a virtual machine without a known name.
std::string KindOf(const std::string& name) {
  return name == "other" ? "of an unknown kind" : name;
}

THTML MachineFacts(const TSummary& summary) {
  const TProduct& product = summary.fProduct;
  const TFirmware& firmware = summary.fFirmware;
  const TOperatingSystem& system = summary.fOperatingSystem;
  const std::string uefi = firmware.fIsUEFI.value_or(false) ? "UEFI" : "";
  const std::string uptime =
      system.fUptimeSeconds ? FormatDuration(static_cast<double>(*system.fUptimeSeconds)) : "";
  const std::vector<std::pair<std::string, std::string>> texts = {
      {"Machine", Joined({product.fManufacturer, product.fName})},
      {"Serial number", product.fSerialNumber},
      {"Chassis", product.fShape},
      {"Board", Joined({product.fBoardManufacturer, product.fBoard})},
      {"Firmware",
       Joined({firmware.fManufacturer, firmware.fVersion, DayOf(firmware.fReleaseDate), uefi})},
      {"Operating system", system.fName},
      {"Kernel", Joined({system.fKernel, system.fArchitecture})},
      {"Container", KindOf(system.fContainer)},
      {"Virtual machine", KindOf(system.fVirtualMachine)},
      {"Up for", uptime},
      {"Up since", uptime.empty() ? DayOf(system.fBootTime) : ""},
      {"Load over 1, 5 and 15 minutes", LoadOf(system)},
      {"Swap", SwapOf(summary.fMemory)}};
  std::vector<std::pair<std::string, THTML>> facts;
  facts.reserve(texts.size());
  for (const auto& [name, text] : texts) facts.emplace_back(name, Link({}, text));
  return Facts(facts);
}

THTML Item(const THTML& contents) { return Element("li", "", contents) + "\n"; }

THTML List(const THTML& items) { return items.empty() ? "" : Element("ul", "plain", items); }

/// One item for each, up to a number that a reader still reads.
template <typename TElement, typename TShow>
THTML ListOf(const std::vector<TElement>& elements, const TShow& show) {
  constexpr std::size_t kMost = 30;
  THTML items;
  for (std::size_t i = 0; i < elements.size() && i < kMost; ++i) items += Item(show(elements[i]));
  if (elements.size() > kMost) {
    items += Item("and " + std::to_string(elements.size() - kMost) + " more");
  }
  return List(items);
}

THTML Cards(const TSummary& summary, const TRecords& records) {
  return ListOf(summary.fCards, [&records](const TCards& cards) {
    const std::string name = Joined({cards.fVendor, cards.fDevice});
    const std::string count =
        cards.fAddresses.size() > 1 ? std::to_string(cards.fAddresses.size()) + " \u00d7 " : "";
    const std::string address = cards.fAddresses.empty() ? "" : cards.fAddresses.front();
    const auto device = records.Find({"PCIDevice"}, "DeviceID", address);
    const auto number = device ? std::make_optional(device->GetNumber()) : std::nullopt;
    const std::string about =
        Joined({cards.fClass, cards.fDriver.empty() ? "" : "driver " + cards.fDriver,
                cards.fSlots.empty() ? "" : "in " + Joined(cards.fSlots, ", ")},
               ", ");
    return count + Link(number, name.empty() ? address : name) + " " +
           TextElement("span", "quiet", about);
  });
}

std::string ReadingOf(const TSensor& sensor, std::int64_t number) {
  return FormatReading(number, sensor.fBaseUnits.value_or(0), sensor.fModifier);
}

THTML Sensors(const TSummary& summary) {
  const TSensors& sensors = summary.fSensors;
  if (sensors.fCount == 0) return "";
  THTML html = TextElement(
      "p", "",
      std::to_string(sensors.fCount) + (sensors.fCount == 1 ? " sensor, " : " sensors, ") +
          (sensors.fOutOfRange.empty() ? "none out of range" : "out of range:"));
  html += ListOf(sensors.fOutOfRange, [](const TSensor& sensor) {
    std::string text = Joined({sensor.fChip, sensor.fName}) + ": ";
    if (sensor.fReading) text += ReadingOf(sensor, *sensor.fReading);
    if (sensor.fLimit) text += ", the limit is " + ReadingOf(sensor, *sensor.fLimit);
    return Link({}, text) + " " + TextElement("strong", "bad", sensor.fState);
  });
  if (sensors.fWarmest && sensors.fWarmest->fReading) {
    const TSensor& warmest = *sensors.fWarmest;
    html += TextElement("p", "",
                        "The warmest is " + Joined({warmest.fChip, warmest.fName}) + " with " +
                            ReadingOf(warmest, *warmest.fReading) + ".");
  }
  return html;
}

THTML Power(const TSummary& summary) {
  return ListOf(summary.fPowerSupplies,
                [](const TPowerSupplies& supplies) {
                  std::string text = std::to_string(supplies.fCount) + " \u00d7 " +
                                     (supplies.fModel.empty() ? "power supply" : supplies.fModel);
                  if (supplies.fWatts) text += ", " + std::to_string(*supplies.fWatts) + " W";
                  return Link({}, text) + " " + TextElement("strong", "bad", supplies.fFault);
                }) +
         ListOf(summary.fBatteries, [](const TBattery& battery) {
           std::string text = "battery " + Joined({battery.fName, battery.fStatus}, ", ");
           if (battery.fChargePercent) {
             text += ", " + std::to_string(*battery.fChargePercent) + " % charged";
           }
           return Link({}, text);
         });
}

THTML Gaps(const TSummary& summary) {
  THTML items;
  for (const TGap& gap : summary.fGaps) {
    // What the machine does not have is no news; the page of what is missing has it.
    if (gap.fKind == TGap::kNotThere) continue;
    const std::string before = gap.fKind == TGap::kNeedsRoot ? "Only root can read: "
                               : gap.fKind == TGap::kLeftOut ? "Left out: "
                                                             : "Could not be read: ";
    items += Item(Link({}, before + Joined(gap.fSubjects, ", ")) + " " +
                  TextElement("span", "quiet", gap.fReason));
  }
  return List(items);
}

}  // namespace

std::string Joined(const std::vector<std::string>& texts, const char* separator) {
  std::string joined;
  for (const std::string& text : texts) {
    if (!text.empty()) joined += (joined.empty() ? "" : separator) + text;
  }
  return joined;
}

THTML Overview(const TSummary& summary, const TRecords& records) {
  return MachineFacts(summary) + Section("gaps", "What could not be read", Gaps(summary)) +
         Section("processors", "Processors", Processors(summary, records)) +
         Section("memory", "Memory", Memory(summary, records)) +
         Section("storage", "Disks and file systems", Storage(summary, records)) +
         Section("network", "Network ports", Network(summary, records)) +
         Section("cards", "Cards", Cards(summary, records)) +
         Section("sensors", "Sensors", Sensors(summary)) +
         Section("power", "Power", Power(summary));
}

}  // namespace NVORNQDX20::NReport
