// SPDX-License-Identifier: Apache-2.0
// A provider that publishes the fans and thermometers of a machine: lists of instances, a
// superclass, an association, and a host that the classes share.
#include <qdxdescribe/provider.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace NVORNQDX20;
using namespace NDescribe;

namespace {

/// What several classes need. It is made once for each description.
struct TMachine {
  explicit TMachine(const TRequest& request)
      : fFiles(TFiles(request).In("/sys/class/hwmon")), fChips(fFiles.List()) {}

  TFiles fFiles;
  TReading<std::vector<std::string>> fChips;
};

/// Its files are those of its folder.
struct TChip : TFiles {
  std::string fID;
};

struct TSensor {
  std::string fChip;
  std::string fID;  // for example "hwmon0/fan1"
};

TReading<std::vector<TChip>> ListChips(const TMachine& machine) {
  return machine.fChips.map([&machine](const std::vector<std::string>& names) {
    std::vector<TChip> chips;
    for (const std::string& name : names) chips.push_back({machine.fFiles.In(name), name});
    return chips;
  });
}

/// Lists the sensors that have a file such as "fan1_input"; its first letters are the kind.
TInstances<TSensor> ListSensors(const TMachine& machine, const std::string& kind) {
  TInstances<TSensor> sensors;
  if (!machine.fChips) sensors.Miss(machine.fChips.GetReason());
  for (const std::string& chip : machine.fChips.ValueOr({})) {
    const auto files = machine.fFiles.List(chip);
    if (!files) sensors.Miss(files.GetReason());
    for (const std::string& file : files.ValueOr({})) {
      const std::size_t end = file.find("_input");
      if (end == file.npos || file.compare(0, kind.size(), kind) != 0) continue;
      sensors.fAll.push_back({chip, chip + "/" + file.substr(0, end)});
    }
  }
  return sensors;
}
auto List(const char* kind) {
  return [kind](const TMachine& machine) { return ListSensors(machine, kind); };
}

// Readers of rows, by the last part of the file's name.
auto Line(const char* end) {
  return [end](const TSensor& sensor, const TMachine& machine) {
    return machine.fFiles.ReadLine(sensor.fID + end);
  };
}
auto Number(const char* end) {
  return [end](const TSensor& sensor, const TMachine& machine) {
    return machine.fFiles.ReadNumber<std::int32_t>(sensor.fID + end);
  };
}

TReading<double> ReadTemperature(const TSensor& sensor, const TMachine& machine) {
  return Number("_input")(sensor, machine).map([](std::int32_t number) { return number / 1000.0; });
}

TTable<TChip, TMachine> Chips() {
  return {"Example_Chip",
          "A chip that has sensors.",
          ListChips,
          {{"ID", "The name of its folder.", &TChip::fID, kKey},
           {"Driver", "The name that its driver gives.", FileLine("name")},
           {"Files", "The names of its files.", [](const TChip& chip) { return chip.List(); }}}};
}

using TSensorTable = TTable<TSensor, TMachine>;

/// Abstract, since nothing lists its instances.
TSensorTable Sensors() {
  return {"Example_Sensor",
          "A sensor of any kind.",
          {{"ID", "The folder and the beginning of its files' names.", &TSensor::fID, kKey},
           {"Label", "What it measures.", Line("_label")}}};
}

TSensorTable Fans() {
  return TSensorTable{"Example_Fan",
                      "A fan.",
                      List("fan"),
                      {{"Speed", "How fast it turns.", Number("_input"),
                        TUnit{"revolution / minute"}, kGauge, kVolatile}}}
      .DerivedFrom(Sensors());
}

TSensorTable Thermometers() {
  return TSensorTable{"Example_Thermometer",
                      "A thermometer.",
                      List("temp"),
                      {{"Temperature", "What it shows.", ReadTemperature, TUnit{"degree celsius"},
                        kGauge, kVolatile},
                       {"Type", "How it measures.", Number("_type"),
                        TEnumeration{{1, "CPU diode"}, {3, "Thermal diode"}, {4, "Thermistor"}}}}}
      .DerivedFrom(Sensors());
}

TInstanceName ChipOf(const TSensor& fan) { return {"Example_Chip", fan.fChip}; }
TInstanceName FanOf(const TSensor& fan) { return {"Example_Fan", fan.fID}; }

TSensorTable ChipsOfFans() {
  return TSensorTable{"Example_ChipOfFan",
                      "Which chip measures a fan.",
                      List("fan"),
                      {{"Chip", "The chip.", ChipOf, kKey, TRefersTo{"Example_Chip"}},
                       {"Fan", "The fan.", FanOf, kKey, TRefersTo{"Example_Sensor"}}}}
      .AsAssociation();
}

/// Each class comes after its superclass, and after those it refers to.
std::vector<TClassOf<TMachine>> AllClasses() {
  return {Chips(), Sensors(), Fans(), Thermometers(), ChipsOfFans()};
}

[[maybe_unused]] const bool kRegistered = RegisterProvider(
    [] { return MakeProvider<TMachine>("sensors", "root/sensors", AllClasses()); });

}  // namespace
