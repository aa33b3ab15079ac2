// SPDX-License-Identifier: Apache-2.0
// Sensors, fans and power of a made-up machine.
#include "linux/machine.h"

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
platform/smc.768/smc/fan1: CurrentReading=1998; DesiredSpeed=/sys/class/hwmon/hwmon10/device/fan1_target: No such file or directory
hwmon4/bare/temp1: CurrentReading=55000; UpperThresholdFatal=99000
thermal/acpitz: Name=thermal_zone0; CurrentReading=-44000; UpperThresholdCritical=105000
thermal/acpitz: UpperThresholdNonCritical=90000; Policy=step_wise; Mode=enabled; ElementName=acpitz
thermal/acpitz 2: CurrentReading=1000; Name=thermal_zone2
thermal/acpitz 3: UpperThresholdNonCritical=the zone has no such trip point
cooling/Processor: CoolingState=-1; MaxCoolingState=10; ActiveCooling=false
cooling/TFN1: MaxCoolingState=50; ActiveCooling=the type does not tell
)";

class LinuxSensors : public ::testing::Test {
 protected:
  void SetUp() override {
    fMachine.WriteFiles(kSensorFiles);
    const auto hwmon = fMachine.Path() / "sys/class/hwmon";
    const auto link = [&](const std::string& name, const std::string& device) {
      std::filesystem::create_symlink("../../devices/" + device + "/hwmon/" + name, hwmon / name);
    };
    link("hwmon0", "pci0/0000:00:18.3");
    link("hwmon1", "pci0/0000:00:18.3");
    link("hwmon2", "platform/nct.656");
    link("hwmon3", "platform/gone");
    link("hwmon10", "platform/smc.768");
    std::filesystem::create_symlink(
        "../../../smc.768", fMachine.Path() / "sys/devices/platform/smc.768/hwmon/hwmon10/device");
  }

  const TMachine fMachine{};
};

TEST_F(LinuxSensors, HaveReadingsLimitsAndStates) {
  const auto ns = fMachine.Namespace();
  const TTexts values =
      ValuesOf(*ns, {"Sensor", "NumericSensor", "ThermalZone", "Fan", "ThermalCoolingDevice"});
  ExpectValues(values, kSensorValues);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_Fan").size(), 3U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_AssociatedSensor").size(), 3U);
  EXPECT_EQ(ReasonsOf(*ns)["VORNSG_Fan"], "/sys/class/hwmon/hwmon3: a link that leads nowhere");
}

}  // namespace
}  // namespace NVORNQDX20
