// SPDX-License-Identifier: Apache-2.0
// Sensors, fans and power of a made-up machine.
#include "linux/machine.h"
#include "linux/smbios_builder.h"

namespace NVORNQDX20 {
namespace {

const char* const kSensorFiles = R"(
sys/devices/platform/nct.656/hwmon/hwmon2: name=nct6775; temp1_input=41500; temp1_label=CPU
sys/devices/platform/nct.656/hwmon/hwmon2: temp1_max=80000; temp1_max_hyst=75000; temp1_crit=bad
sys/devices/platform/nct.656/hwmon/hwmon2: temp1_max_alarm=1; temp1_alarm=0; temp1_fault=0
sys/devices/platform/nct.656/hwmon/hwmon2: temp2_input=-128000; temp2_fault=1; temp3_max=1; temp_x=
sys/devices/platform/nct.656/hwmon/hwmon2: fan2_input=1180; fan2_min=300; fan2_alarm=0; pwm2=128
sys/devices/platform/nct.656/hwmon/hwmon2: pwm2_enable=5; fan10_input=; in0_input=-1032; in0_lcrit=8
sys/devices/platform/nct.656/hwmon/hwmon2: intrusion0_alarm=1; curr1_input=3000000000
sys/devices/pci0/0000:00:18.3/hwmon/hwmon0: name=pmbus; power1_average=2500000000; power1_cap=7
sys/devices/pci0/0000:00:18.3/hwmon/hwmon0: power2_input=1999; power2_label=pout1
sys/devices/pci0/0000:00:18.3/hwmon/hwmon0: energy1_input=7200000000000; humidity1_input=45500
sys/devices/pci0/0000:00:18.3/hwmon/hwmon0: freq1_input=2500000000
sys/devices/pci0/0000:00:18.3/hwmon/hwmon1: name=pmbus; temp1_input=1
sys/devices/platform/smc.768: name=smc; fan1_input=1998; hwmon/hwmon10/uevent=
sys/class/hwmon/hwmon4: name=bare; temp1_input=55000; temp1_emergency=99000
sys/class/thermal/thermal_zone0: type=acpitz; temp=-44000; policy=step_wise; mode=enabled
sys/class/thermal/thermal_zone0: trip_point_0_type=critical; trip_point_0_temp=105000
sys/class/thermal/thermal_zone0: trip_point_1_type=passive; trip_point_1_temp=95000
sys/class/thermal/thermal_zone0: trip_point_2_type=hot; trip_point_2_temp=90000
sys/class/thermal/thermal_zone2: type=acpitz; temp=1000
sys/class/thermal/thermal_zone10: type=acpitz; trip_point_0_temp=1; trip_point_0_type=active
sys/devices/LNX/power_supply/BAT0/hwmon/hwmon5: name=BAT0; in0_input=12229
sys/devices/pci0/0000:01:00.0/nvme/nvme0/hwmon/hwmon6: name=nvme; temp1_input=43850
sys/class/hwmon: hwmon7=
sys/devices/platform/coretemp.5/hwmon/hwmon8: name=coretemp; temp1_input=1; temp1_label=Package id 1
sys/devices/platform/coretemp.5/hwmon/hwmon8: temp2_input=2; temp2_label=Core 0
sys/devices/platform/coretemp.0/hwmon/hwmon9: name=coretemp; temp2_input=3; temp2_label=Core 0
sys/devices/system/cpu: present=0-1; online=0-1; cpu0/topology/physical_package_id=0
sys/devices/system/cpu: cpu1/topology/physical_package_id=1; cpu0/topology/core_cpus_list=0
sys/devices/system/cpu: cpu1/topology/core_cpus_list=1; cpu0/topology/package_cpus_list=0
sys/devices/system/cpu: cpu1/topology/package_cpus_list=1
sys/devices/pci0/ata1/0:0:0:0/hwmon/hwmon11: name=drivetemp; temp1_input=33000
sys/devices/pci0/ata1/0:0:0:0/block: sda/size=8
sys/block/sda: size=8
sys/class/nvme/nvme0: model=P
sys/bus/pci/devices/0000:00:18.3: vendor=0x1022
sys/class/power_supply/AC: type=Mains; online=0
sys/class/power_supply/BAT0: type=Battery; status=Charging; capacity_level=Low; current_now=-1500000
sys/class/power_supply/BAT0: charge_full_design=4400000; charge_full=4500000; cycle_count=7
sys/class/power_supply/BAT0: voltage_min_design=10800000; serial_number=0000; technology=LiFe
sys/class/power_supply/BAT0: time_to_empty_avg=3659; voltage_now=12229000; model_name= LNV-45N1
sys/class/thermal/cooling_device0: type=Processor; cur_state=-1; max_state=10
sys/class/thermal/cooling_device1: type=TFN1; max_state=50
)";

const char* const kSensorValues = R"(
platform/nct.656/nct6775/temp1: Name=temp1; ElementName=CPU; Chip=nct6775; SensorType=2
platform/nct.656/nct6775/temp1: BaseUnits=2; UnitModifier=-3; CurrentReading=41500
platform/nct.656/nct6775/temp1: UpperThresholdNonCritical=80000; Hysteresis=5000
platform/nct.656/nct6775/temp1: UpperThresholdCritical=/sys/class/hwmon/hwmon2/temp1_crit: 'bad' is no valid number
platform/nct.656/nct6775/temp1: CurrentState=Upper Non-Critical
platform/nct.656/nct6775/temp1: PossibleStates={ Fault, Upper Non-Critical, Alarm, Normal }
platform/nct.656/nct6775/temp2: CurrentState=Fault
platform/nct.656/nct6775/temp2: CurrentReading=/sys/class/hwmon/hwmon2/temp2_fault: the sensor is faulty
platform/nct.656/nct6775/fan2: BaseUnits=19; UnitModifier=0; CurrentReading=1180; CurrentState=Normal
platform/nct.656/nct6775/fan2: LowerThresholdNonCritical=300; VariableSpeed=true; ControlMode=2
platform/nct.656/nct6775/fan10: VariableSpeed=false; CurrentState=the driver has no alarm for it
platform/nct.656/nct6775/fan10: CurrentReading=/sys/class/hwmon/hwmon2/fan10_input: empty
platform/nct.656/nct6775/in0: SensorType=3; CurrentReading=-1032; LowerThresholdCritical=8
platform/nct.656/nct6775/curr1: CurrentReading=/sys/class/hwmon/hwmon2/curr1_input: 3000000000 is out of range
platform/nct.656/nct6775/intrusion0: SensorType=16; CurrentState=Alarm
pci0/0000:00:18.3/pmbus/power1: SensorType=13; CurrentReading=2500000; AverageReading=2500000
pci0/0000:00:18.3/pmbus/power2: SensorType=14; BaseUnits=7; CurrentReading=1
pci0/0000:00:18.3/pmbus/energy1: SensorType=6; BaseUnits=8; UnitModifier=0; CurrentReading=7200000
pci0/0000:00:18.3/pmbus/humidity1: SensorType=9; BaseUnits=65; CurrentReading=45500
pci0/0000:00:18.3/pmbus/freq1: OtherSensorTypeDescription=Frequency; CurrentReading=2500000
pci0/0000:00:18.3/pmbus 2/temp1: CurrentReading=1
platform/smc.768/smc/fan1: CurrentReading=1998; DesiredSpeed=/sys/class/hwmon/hwmon*_target: No such file or directory
hwmon4/bare/temp1: CurrentReading=55000; UpperThresholdFatal=99000
thermal/acpitz: Name=thermal_zone0; CurrentReading=-44000; UpperThresholdCritical=105000
thermal/acpitz: UpperThresholdNonCritical=90000; Policy=step_wise; Mode=enabled; ElementName=acpitz
thermal/acpitz 2: CurrentReading=1000; Name=thermal_zone2
thermal/acpitz 3: UpperThresholdNonCritical=the zone has no such trip point
cooling/Processor: MaxCoolingState=10; ActiveCooling=false
cooling/Processor: CoolingState=/sys/class/thermal/cooling_device0/cur_state: not known to the driver
AC: Type=Mains; Online=false; IsACInput=true; Present=the kernel tells, not the firmware
BAT0: BatteryStatus=8; ChargingStatus=2; Status=Charging; DesignCapacity=47520; HealthPercent=100
BAT0: FullChargeCapacity=48600; DesignVoltage=10800; Current=-1500; Voltage=12229; RechargeCount=7
BAT0: SerialNumber=/sys/class/power_supply/BAT0/serial_number: placeholder text '0000'; Chemistry=1
BAT0: RemainingCapacity=/sys/class/power_supply/*/energy_now: No such file or directory
BAT0: EstimatedRunTime=60; Technology=LiFe; Model=LNV-45N1
hid: EstimatedChargeRemaining=85; Scope=Device
hid: RechargeCount=/sys/class/power_supply/hid/cycle_count: not known to the driver
hid: Status=/sys/class/power_supply/hid/status: No such file or directory
System Power Supply: Type=Switching; Status=OK; ElementName=PS1; Location=Rear 1; Manufacturer=DELTA
System Power Supply: SerialNumber=SN7; Model=DPS-750; Revision=A01; Present=true; Unplugged=false
System Power Supply: AssetTag=SMBIOS structure of type 39: placeholder text 'To be filled by O.E.M.'
System Power Supply: HotReplaceable=true; IsSwitchingSupply=true; TypeOfRangeSwitching=4
System Power Supply: RatedMaxOutputPower=750; OutputPowerUnits=watt
cooling/TFN1: MaxCoolingState=50; ActiveCooling=the type does not tell
)";

void WriteFirmware(const TMachine& machine) {
  machine.Write("sys/firmware/dmi/tables/smbios_entry_point", SMBIOS3EntryPoint(3, 2));
  machine.Write(
      "sys/firmware/dmi/tables/DMI",
      SMBIOSStructure(
          39, 0x27, "01 01 02 03 04 05 06 07 EE02 A311 FFFF FFFF FFFF",
          {"Rear 1", "PS1", "DELTA", "SN7", "To be filled by O.E.M.", "DPS-750", "A01"}) +
          SMBIOSStructure(22, 0x16, "01 01 00 00 02 06 8813 302A 00 FF 0000 0000 00 0A 00000000",
                          {"Rear", "DELL"}) +
          SMBIOSStructure(127, 0x7F, ""));
}

class LinuxSensors : public ::testing::Test {
 protected:
  void SetUp() override {
    fMachine.WriteFiles(kSensorFiles);
    fMachine.Write(
        "sys/class/power_supply/hid/uevent",
        "POWER_SUPPLY_TYPE=Battery\nPOWER_SUPPLY_CAPACITY=85\nPOWER_SUPPLY_SCOPE=Device\n"
        "POWER_SUPPLY_CYCLE_COUNT=0\n");
    WriteFirmware(fMachine);
    const auto hwmon = fMachine.Path() / "sys/class/hwmon";
    const auto link = [&](const std::string& name, const std::string& device) {
      std::filesystem::create_symlink("../../devices/" + device + "/hwmon/" + name, hwmon / name);
    };
    link("hwmon0", "pci0/0000:00:18.3");
    link("hwmon1", "pci0/0000:00:18.3");
    link("hwmon2", "platform/nct.656");
    link("hwmon3", "platform/gone");
    link("hwmon5", "LNX/power_supply/BAT0");
    link("hwmon6", "pci0/0000:01:00.0/nvme/nvme0");
    link("hwmon8", "platform/coretemp.5");
    link("hwmon9", "platform/coretemp.0");
    link("hwmon10", "platform/smc.768");
    link("hwmon11", "pci0/ata1/0:0:0:0");
    std::filesystem::create_symlink(
        "../../../smc.768", fMachine.Path() / "sys/devices/platform/smc.768/hwmon/hwmon10/device");
  }

  const TMachine fMachine{};
};

TEST_F(LinuxSensors, HaveReadingsLimitsAndStates) {
  const auto ns = fMachine.Namespace();
  const TTexts values = ValuesOf(*ns, {"Sensor", "NumericSensor", "ThermalZone", "Fan",
                                       "ThermalCoolingDevice", "Battery", "PowerSupply"});
  ExpectValues(values, kSensorValues);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_Fan").size(), 3U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_AssociatedSensor").size(), 15U);
  const std::set<std::string> ties = EndsOfTies(*ns, "VORNSG_AssociatedSensor");
  for (const char* tie :
       {"platform/coretemp.5/coretemp/temp1 - CPU1", "platform/coretemp.5/coretemp/temp2 - CPU1",
        "platform/coretemp.0/coretemp/temp2 - CPU0", "pci0/ata1/0:0:0:0/drivetemp/temp1 - /dev/sda",
        "pci0/0000:01:00.0/nvme/nvme0/nvme/temp1 - /dev/nvme0"}) {
    EXPECT_EQ(ties.count(tie), 1U) << tie;
  }
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_Battery").size(), 2U);
  EXPECT_EQ(ReasonsOf(*ns)["VORNSG_Fan"],
            "/sys/class/hwmon/hwmon3: a link that leads nowhere; "
            "/sys/class/hwmon/hwmon7: Not a directory");
}

TEST_F(LinuxSensors, HaveABatteryOfTheFirmwareIfTheKernelHasNone) {
  const TMachine machine;
  WriteFirmware(machine);
  const auto ns = machine.Namespace();
  ExpectValues(
      ValuesOf(*ns, {"Battery"}),
      "Portable Battery: Model=DELL; Chemistry=6; DesignCapacity=50000; DesignVoltage=10800");
  EXPECT_EQ(ReasonsOf(*ns).count("VORNSG_Battery"), 0U);  // all that there is was found
}

const char* const kProbeValues = R"(
Voltage Probe: ElementName=12V; BaseUnits=5; UnitModifier=-3; SensorType=3; Location=7; Status=3
Voltage Probe: MaxReadable=13200; MinReadable=10800; Resolution=10; Tolerance=50; Accuracy=250
Voltage Probe: NominalReading=12000; LowerThresholdNonCritical=11000; UpperThresholdFatal=13000
Voltage Probe: UpperThresholdNonCritical=SMBIOS structure of type 36: unknown
Voltage Probe: CurrentReading=the firmware's table has no readings
Voltage Probe 2: MaxReadable=40000; Resolution=SMBIOS structure of type 26: 5 tenths of the unit are no whole number
Voltage Probe 2: Location=SMBIOS structure of type 26: number 31 has no meaning in SMBIOS
Voltage Probe 2: NominalReading=SMBIOS structure of type 26: has 20 bytes, none at offset 20
Voltage Probe 2: UpperThresholdFatal=the firmware's table has no limits for it
Temperature Probe: BaseUnits=2; MinReadable=-40000; MaxReadable=125000; Resolution=500; Location=12
Temperature Probe: NominalReading=SMBIOS structure of type 28: unknown; Status=4
Electrical Current Probe: BaseUnits=6; MaxReadable=SMBIOS structure of type 29: unknown
Cooling Device: ElementName=Fan 1; DeviceType=3; Status=3; CoolingUnitGroup=1; NominalSpeed=6000
Cooling Device: ActiveCooling=true
Cooling Device 2: DeviceType=17; ActiveCooling=false
Cooling Device 2: CoolingUnitGroup=SMBIOS structure of type 27: is in no group
Cooling Device 2: NominalSpeed=SMBIOS structure of type 27: has 12 bytes, none at offset 12
Cooling Device 2: ElementName=SMBIOS structure of type 27: has 12 bytes, none at offset 14
Cooling Device 3: DeviceType=SMBIOS structure of type 27: number 30 has no meaning in SMBIOS
)";

TEST(FirmwareSensors, AreDescribedWithoutReadings) {
  const TMachine machine;
  machine.Write("sys/firmware/dmi/tables/DMI",
                SMBIOSStructure(26, 1, "01 67 9033 302A 6400 3200 FA00 00000000 E02E", {"12V"}) +
                    SMBIOSStructure(26, 2, "00 7F 409C 0000 0500 0000 0000 00000000") +
                    SMBIOSStructure(28, 3, "00 8C E204 70FE F401 0500 0080 00000000 0080") +
                    SMBIOSStructure(29, 4, "00 43 0080 0080 0080 0080 0080 00000000 0080") +
                    SMBIOSStructure(27, 5, "0300 63 01 00000000 7017 01", {"Fan 1"}) +
                    SMBIOSStructure(27, 6, "FFFF 71 00 00000000") +
                    SMBIOSStructure(27, 7, "0100 5E 00 00000000 0080 00") +
                    SMBIOSStructure(35, 8, "00 0000 0100 0900") +
                    SMBIOSStructure(36, 9, "F82A 0080 0080 0080 0080 C832") +
                    SMBIOSStructure(35, 10, "00 0000 0200 0100") +  // limits that are none
                    SMBIOSStructure(39, 11, "00 00 00 00 00 00 00 00 0000 0000 0100 0500 0400") +
                    SMBIOSStructure(127, 0x7F, ""));
  const auto ns = machine.Namespace();
  ExpectValues(ValuesOf(*ns, {"FirmwareSensor", "FirmwareCoolingDevice"}), kProbeValues);
  EXPECT_EQ(EndsOfTies(*ns, "VORNSG_AssociatedSensor"),
            (std::set<std::string>{"Temperature Probe - Cooling Device",
                                   "Voltage Probe - Cooling Device 3",
                                   "Voltage Probe - System Power Supply",
                                   "Electrical Current Probe - System Power Supply"}));
}

}  // namespace
}  // namespace NVORNQDX20
