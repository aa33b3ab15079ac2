// SPDX-License-Identifier: Apache-2.0
// The network of a made-up server: ports of all kinds, addresses, routes, bonds, bridges, VLANs.
#include "linux/machine.h"

#include <set>

namespace NVORNQDX20 {
namespace {

const std::vector<std::string> kClasses = {"NetworkPort",
                                           "EthernetPort",
                                           "WiFiPort",
                                           "IBPort",
                                           "FCPort",
                                           "IPProtocolEndpoint",
                                           "NextHopIPRoute",
                                           "DNSProtocolEndpoint",
                                           "RemoteServiceAccessPoint",
                                           "BondPortGroup",
                                           "BridgePortGroup",
                                           "VLANEndpoint"};

const char* const kServer = R"(
sys/class/net/eth0: type=1; address=52:54:00:00:00:01; addr_assign_type=3; operstate=up; mtu=9000
sys/class/net/eth0: flags=0x1003; speed=-1; duplex=unknown; ifalias=uplink; uevent=INTERFACE=eth0
sys/class/net/eth0: device/uevent=DRIVER=ixgbe; phys_port_id=0a1b
sys/module/ixgbe: version=5.19.6
sys/class/net/bond0: type=1; bonding/mode=802.3ad 4; bonding/slaves=eth0 eth1; bonding/miimon=100
sys/class/net/bond0: bonding/mii_status=up; bonding/active_slave=; flags=0x1002; mtu=1500
sys/class/net/bond0: bonding/xmit_hash_policy=layer3+4 1; bonding/ad_partner_mac=00:1b:00:00:00:09
sys/class/net/br0: type=1; bridge/stp_state=0; bridge/bridge_id=8000.5254; bridge/root_id=8000.5254
sys/class/net/br0: brif/vnet1/x=1; uevent=DEVTYPE=bridge
sys/class/net/eth0.5: type=1; uevent=DEVTYPE=vlan
sys/class/net/ib0: type=32; address=80:00:00:48:fe:80:00:00:00:00:00:00:00:02:c9:03:00:f9:bf:a1
sys/class/net/lo: type=772; address=00:00:00:00:00:00; addr_assign_type=0; operstate=unknown
sys/class/net/old: mtu=576
sys/class/net/tun0: type=65534; tun_flags=0x1
sys/class/net/vnet1: type=1; uevent=DEVTYPE=none
sys/class/net/wlan0: type=1; uevent=DEVTYPE=wlan; address=52:54:00:00:00:07
sys/class/net: bonding_masters=bond0
sys/class/infiniband/mlx4_0: fw_ver=2.31.5050; board_id=SM_1; ports/1/rate=2.5 Gb/sec (1X SDR)
sys/class/infiniband/mlx4_0/ports/1: state=4: ACTIVE; phys_state=5: LinkUp; link_layer=InfiniBand
sys/class/infiniband/mlx4_0/ports/1: gids/0=fe80:0000:0000:0000:0002:c903:00f9:bfa1
sys/class/infiniband/mlx4_0/ports/1: counters/port_rcv_data=3
sys/class/fc_host/host3: port_name=0x10000090fa000001; node_name=0x20000090fa000001; speed=16 Gbit
sys/class/fc_host/host3: port_state=Online; port_type=NPort (fabric via point-to-point)
sys/class/fc_host/host3: supported_speeds=4 Gbit, 16 Gbit, 8 Gbit; fabric_name=0xffffffffffffffff
sys/class/fc_host/host3/statistics: rx_words=0x10; tx_words=0xffffffffffffffff
)";

/// The tables of the kernel, which have blanks at the beginning of lines.
void WriteTables(const TMachine& machine, const std::string& folder) {
  machine.Write(
      folder + "route",
      "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n"
      "eth0\t00000000\t010200C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
      "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
      "*\t0000000A\t00000000\t0201\t0\t0\t0\t000000FF\t0\t0\t0\n");
  machine.Write(folder + "fib_trie",
                "Main:\n  +-- 0.0.0.0/0 3 0 5\n     +-- 127.0.0.0/8 2 0 2\n"
                "           |-- 127.0.0.0\n              /8 host LOCAL\n"
                "           |-- 127.0.0.1\n              /32 host LOCAL\n"
                "           |-- 192.0.2.0\n              /24 link UNICAST\n"
                "           |-- 192.0.2.7\n              /32 host LOCAL\n"
                "           |-- 198.51.100.9\n              /32 host LOCAL\n"
                "Local:\n           |-- 192.0.2.7\n              /32 host LOCAL\n");
  machine.Write(folder + "if_inet6",
                "00000000000000000000000000000001 01 80 10 80       lo\n"
                "20010db8000000000000000000000005 02 40 00 00     eth0\n");
  machine.Write(folder + "ipv6_route",
                "20010db8000000000000000000000000 40 00000000000000000000000000000000 00 "
                "00000000000000000000000000000000 00000100 00000001 00000000 00000001     eth0\n"
                "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200       lo\n");
  machine.Write(folder + "vlan/config",
                "VLAN Dev name    | VLAN ID\nName-Type: VLAN_NAME_TYPE_RAW_PLUS_VID_NO_PAD\n"
                "eth0.5         | 5  | eth0\n");
}

const char* const kValues = R"(
eth0: LinkTechnology=2; Speed=/sys/class/net/eth0/speed: not known to the driver; EnabledState=2
eth0: ElementName=uplink; PhysicalPortID=0a1b; Kind=; Driver=ixgbe; DriverVersion=5.19.6
eth0: PermanentAddress=/sys/class/net/eth0/addr_assign_type: the address was assigned
eth0: BytesReceived=7; TransmitDrops=12; Collisions=14
bond0: EnabledState=3; Kind=bond; Mode=4; Members={ eth0, eth1 }; ActiveMember=
bond0: MIIStatus=up; TransmitHashPolicy=layer3+4; PartnerAddress=001B00000009
br0: Kind=bridge; Members={ vnet1 }; SpanningTree=false
ib0: LinkTechnology=3; CurrentAddress=80000048FE800000000000000002C90300F9BFA1
lo: OtherLinkTechnology=Loopback; LinkState=unknown
lo: PermanentAddress=/sys/class/net/lo/address: only zeros
lo: Kind=; Driver=no driver is bound to it
old: LinkTechnology=0; ActiveMaximumTransmissionUnit=576; Kind=/sys/class/net/*/uevent: No such file or directory
old: ElementName=/sys/class/net/*/ifalias: No such file or directory
old: Driver=/sys/class/net/*/uevent: No such file or directory
tun0: OtherLinkTechnology=Tunnel; Kind=tun; Driver=tun
wlan0: LinkTechnology=11; CurrentAddress=525400000007; Kind=
mlx4_0/1: Adapter=mlx4_0; FirmwareVersion=2.31.5050; Speed=2500000000; PortState=ACTIVE
mlx4_0/1: LinkState=up; PermanentAddress=0002C90300F9BFA1; BytesReceived=12
mlx4_0/1: BytesTransmitted=/sys/class/infiniband/mlx4_0/ports/1/counters/port_xmit_data: No such file or directory
host3: PermanentAddress=10000090FA000001; NodeName=20000090FA000001; Speed=16000000000
host3: MaxSpeed=16000000000; PortType=10; FabricName=/sys/class/fc_host/host3/fabric_name: no name
host3: BytesReceived=64
host3: BytesTransmitted=/sys/class/fc_host/host3/statistics/tx_words: not counted by the driver
eth0 192.0.2.7/24: IPv4Address=192.0.2.7; SubnetMask=255.255.255.0; AddressOrigin=0; PortName=eth0
lo 127.0.0.1/8: AddressOrigin=2
198.51.100.9/32: PortName=the tables do not tell which port has it
eth0 2001:db8::5/64: IPv6Address=2001:db8::5; AddressOrigin=8; AddressType=2
254 0.0.0.0/0 192.0.2.1 eth0 100: NextHopAddress=192.0.2.1; RouteMetric=100; RouteDerivation=0
254 192.0.2.0/24 eth0 0: DestinationMask=255.255.255.0; RouteDerivation=2
254 10.0.0.0/8 0: Action=7; PortName=
254 2001:db8::/64 eth0 256: RouteMetric=256
gateway 192.0.2.1: AccessContext=2; InfoFormat=3
dns 2001:db8::53: AccessContext=3; InfoFormat=4
/etc/resolv.conf: DNSServerAddresses={ 2001:db8::53 }; DNSSuffixesToAppend={ b.example, c.example }
eth0.5: VLANID=5; PortName=eth0
)";

class LinuxNetwork : public ::testing::Test {
 protected:
  void SetUp() override {
    fMachine.WriteFiles(kServer);
    WriteTables(fMachine, "proc/net/");
    fMachine.Write("proc/net/dev", "face |bytes\n  eth0: 7 0 0 0 0 0 0 0 0 0 0 12 0 14 0 0\n");
    fMachine.Write("etc/resolv.conf",
                   "# made by hand\nsearch a.example\nnameserver 2001:db8::53 ; first\n"
                   "search b.example c.example\n");
    std::filesystem::create_directory_symlink("gone", fMachine.Path() / "sys/class/net/dangling");
    const auto device = fMachine.Path() / "sys/devices/pci0000:00/0000:3b:00.0";
    fMachine.Write("sys/devices/pci0000:00/0000:3b:00.0/net/eth1/type", "1");
    fMachine.Write("sys/bus/pci/devices/0000:3b:00.0/vendor", "0x8086");
    std::filesystem::create_directory_symlink("../../devices/pci0000:00/0000:3b:00.0/net/eth1",
                                              fMachine.Path() / "sys/class/net/eth1");
  }
  TMachine fMachine;
};

TEST_F(LinuxNetwork, IsDescribed) {
  const auto ns = fMachine.Namespace();
  const TTexts values = ValuesOf(*ns, kClasses);
  ExpectValues(values, kValues);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_NetworkPort").size(), 4U);   // without the superclass's others
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_EthernetPort").size(), 6U);  // no dangling link
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_NextHopIPRoute").size(), 4U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_IPProtocolEndpoint").size(), 5U);
}

TEST_F(LinuxNetwork, IsTiedTogether) {
  const auto ns = fMachine.Namespace();
  using TTies = std::set<std::string>;
  EXPECT_EQ(EndsOfTies(*ns, "VORNSG_PortImplementsEndpoint"),
            (TTies{"eth0 - eth0 192.0.2.7/24", "eth0 - eth0 2001:db8::5/64", "eth0 - eth0.5",
                   "lo - lo 127.0.0.1/8", "lo - lo ::1/128"}));
  EXPECT_EQ(EndsOfTies(*ns, "VORNSG_MemberOfPortGroup"),
            (TTies{"bond0 - eth0", "bond0 - eth1", "br0 - vnet1"}));
  EXPECT_EQ(EndsOfTies(*ns, "VORNSG_DeviceIdentity"), TTies{"0000:3b:00.0 - eth1"});
}

const char* const kBond = R"(Ethernet Channel Bonding Driver: v6.1.0

Bonding Mode: fault-tolerance (active-backup)
Primary Slave: None
Currently Active Slave: eth1
MII Status: up
MII Polling Interval (ms): 200

Slave Interface: eth0
MII Status: down
Link Failure Count: 3
Permanent HW addr: 52:54:00:00:00:11

Slave Interface: eth1
MII Status: up
Link Failure Count: 0
)";

/// Another order of sources: archives have some of them only.
TEST_F(LinuxNetwork, IsFoundInTheTablesOfAProcess) {
  std::filesystem::remove_all(fMachine.Path() / "proc/net");
  std::filesystem::remove_all(fMachine.Path() / "sys/class/net");
  WriteTables(fMachine, "proc/1/net/");
  fMachine.Write("proc/1/net/dev", "  eth0: 7 0 0 0 0 0 0 0 0 0 0 12 0 14 0 0\n eth1: 1\n");
  fMachine.Write("proc/1/net/bonding/bond0", kBond);
  const auto ns = fMachine.Namespace();
  ExpectValues(ValuesOf(*ns, kClasses), R"(
eth0: LinkTechnology=0; BytesReceived=7; LinkState=/sys/class/net/eth*/operstate: No such file or directory
eth0 192.0.2.7/24: SubnetMask=255.255.255.0
bond0: Mode=1; Members={ eth0, eth1 }; ActiveMember=eth1; MIIPollingInterval=200
)");
  const auto members = InstancesOf(*ns, "VORNSG_MemberOfPortGroup");
  ASSERT_EQ(members.size(), 2U);
  EXPECT_EQ(TextOf(*members[0], "LinkFailures") + TextOf(*members[0], "MIIStatus"), "3down");
}

TEST(LinuxThisNetwork, HasTheLoopbackAddress) {
  const std::string table = ReadWholeFile("/proc/net/fib_trie");
  if (table.find("127.0.0.1") == std::string::npos) GTEST_SKIP() << "no loopback interface is up";
  const TTexts values = ValuesOf(*Describe({}), kClasses);
  ExpectValues(values, "lo 127.0.0.1/8: PortName=lo; AddressOrigin=2\n");
}

}  // namespace
}  // namespace NVORNQDX20
