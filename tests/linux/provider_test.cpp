// SPDX-License-Identifier: Apache-2.0

#include "linux/machine.h"
#include "support/log_capture.h"
#include "support/provider_suite.h"

#include <algorithm>

namespace NVORNQDX20 {
namespace {

TEST(LinuxProvider, SaysOnceWhyAValueIsMissing) {
  const TMachine machine;
  machine.Write("proc/sys/kernel/ostype", "Linux\n");
  const TLogCapture log;
  const auto reasons = machine.Reasons();
  const std::string noFile = ": No such file or directory";
  const std::string noTable = "no DMI table: /sys/class/dmi/id does not exist";
  const std::string noVersion = "no VERSION_ID in os-release, and /proc/sys/kernel/osrelease";
  EXPECT_EQ(reasons.at("CSName"), "/etc/hostname" + noFile);
  EXPECT_EQ(reasons.at("Manufacturer"), noTable);
  EXPECT_EQ(reasons.at("Version"), noVersion + noFile);
  const auto messages = log.Messages();
  EXPECT_EQ(messages.size(), InstancesOf(*machine.Namespace(), "VORNSG_UnavailableValue").size());
  const std::string last = "1 linux: VORNSG_OperatingSystem.Version: " + reasons.at("Version");
  EXPECT_EQ(std::count(messages.begin(), messages.end(), last), 1);
  EXPECT_EQ(machine.System("Name"), "");  // a key, which is never null
}

TEST(LinuxProvider, RefusesWhatItDoesNotHave) {
  EXPECT_QDX_STATUS(Describe({{"root", 7}}), kQDXStatusTypeMismatch);
  const auto provider = TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider("linux");
  EXPECT_QDX_STATUS(provider->GetNamespace("root/other", {}), kQDXStatusNotFound);
}

boost::shared_ptr<ICIMNamespace> DescribeThisMachine() { return Describe({}); }

boost::shared_ptr<ICIMNamespace> DescribeSomeMachine() {
  const TMachine machine;
  const std::string folder = "sys/class/scsi_generic/";
  machine.Write("etc/hostname", "srv \"1\"\n");
  machine.Write(folder + "sg0/device/type", "0\n");
  machine.Write(folder + "sg0/device/model", "Flash Disk      \n");
  machine.Write(folder + "sg1/device/type", "31\n");
  machine.Write(folder + "sg1/device/vendor", "        \n");
  return machine.Namespace();
}

TEST(LinuxProvider, DescribesSCSIDevices) {
  std::string texts;
  for (const auto& device : InstancesOf(*DescribeSomeMachine(), "VORNSG_SCSIDevice")) {
    for (const char* property : {"DeviceID", "DeviceType", "VendorID", "ProductID"}) {
      texts += TextOf(*device, property) + ";";
    }
  }
  EXPECT_EQ(texts,
            "/dev/sg0;Direct Access Device;(null);Flash Disk;"
            "/dev/sg1;Device Type 31;;(null);");  // blank on the device is not missing
}

INSTANTIATE_TEST_SUITE_P(Linux, ProvidedNamespace,
                         ::testing::Values(&DescribeSomeMachine, &DescribeThisMachine));

}  // namespace
}  // namespace NVORNQDX20
