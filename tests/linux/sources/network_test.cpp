// SPDX-License-Identifier: Apache-2.0
#include "sources/network/addresses.h"
#include "sources/network/netlink.h"
#include "sources/network/ports.h"
#include "sources/network/tables.h"

#include <gtest/gtest.h>

#include <linux/rtnetlink.h>
#include <sys/socket.h>

namespace NVORNQDX20 {
namespace {

template <typename T>
std::string Bytes(const T& value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string Padded(std::string bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
  return bytes;
}

std::string Attribute(unsigned short type, const std::string& value) {
  const rtattr header{static_cast<unsigned short>(sizeof(rtattr) + value.size()), type};
  return Padded(Bytes(header) + value);
}

template <typename T>
std::string Message(std::uint16_t type, const T& header, const std::string& attributes) {
  const std::string payload = Padded(Bytes(header)) + attributes;
  nlmsghdr message{};
  message.nlmsg_len = static_cast<unsigned>(sizeof message + payload.size());
  message.nlmsg_type = type;
  return Bytes(message) + payload;
}

std::string LinkDump() {
  ifinfomsg eth{};
  eth.ifi_index = 4;
  ifinfomsg vlan{};
  vlan.ifi_index = 9;
  const std::string kind = Attribute(IFLA_INFO_KIND, std::string("vlan\0", 5)) +
                           Attribute(IFLA_INFO_DATA, Attribute(IFLA_VLAN_ID, Bytes<short>(77)));
  return Message(RTM_NEWLINK, eth, Attribute(IFLA_IFNAME, "eth0")) +
         Message(RTM_NEWLINK, vlan,
                 Attribute(IFLA_IFNAME, "vlan77") + Attribute(IFLA_LINK, Bytes(4)) +
                     Attribute(IFLA_LINKINFO, kind));
}

TLinks Links() {
  TLinks links;
  links.fByIndex = ParseLinks(LinkDump());
  return links;
}

TEST(NetlinkLinks, HaveKindAndVLAN) {
  const auto links = ParseLinks(LinkDump());
  ASSERT_EQ(links.size(), 2U);
  EXPECT_EQ(links.at(9).fName + " " + links.at(9).fKind, "vlan77 vlan");
  EXPECT_EQ(links.at(9).fVLAN, 77);
  EXPECT_EQ(links.at(9).fParent, 4U);
}

TEST(NetlinkLinks, EndWhereTheDumpIsCutOff) {
  const std::string dump = LinkDump();
  for (std::size_t size = 0; size < dump.size(); ++size) {
    const auto links = ParseLinks(std::string_view(dump).substr(0, size));
    EXPECT_LT(links.size(), 2U) << size;
  }
  nlmsghdr endless{};
  EXPECT_TRUE(ParseLinks(Bytes(endless) + dump).empty());
}

TEST(NetlinkAddresses, AreTheOwnOnesOfALinkBetweenTwoMachines) {
  ifaddrmsg header{AF_INET, 30, IFA_F_PERMANENT, RT_SCOPE_UNIVERSE, 4};
  const std::string dump =
      Message(RTM_NEWADDR, header,
              Attribute(IFA_ADDRESS, "\x0a\1\1\2") + Attribute(IFA_LOCAL, "\x0a\1\1\1"));
  header.ifa_flags = 0;
  const auto addresses = ParseAddressDump(
      dump + Message(RTM_NEWADDR, header, Attribute(IFA_LOCAL, "\x0a\1\1\5")), Links());
  ASSERT_EQ(addresses.size(), 2U);
  EXPECT_EQ(addresses[0].fAddress + " " + addresses[0].fPort, "10.1.1.1 eth0");
  EXPECT_EQ(addresses[0].fOrigin, EAddressOrigin::kStatic);
  EXPECT_EQ(addresses[1].fOrigin, EAddressOrigin::kDHCP);
}

TEST(NetlinkRoutes, AreOneForEachHopAndNoneOfTheKernelsOwn) {
  rtmsg header{};
  header.rtm_family = AF_INET;
  header.rtm_type = RTN_UNICAST;
  header.rtm_table = RT_TABLE_MAIN;
  const auto hop = [](const char* router) {
    const std::string attributes = Attribute(RTA_GATEWAY, router);
    rtnexthop next{};
    next.rtnh_len = static_cast<unsigned short>(sizeof next + attributes.size());
    next.rtnh_ifindex = 4;
    return Bytes(next) + attributes;
  };
  const std::string hops = Attribute(RTA_MULTIPATH, hop("\x0a\1\1\1") + hop("\x0a\1\1\2"));
  std::string dump = Message(RTM_NEWROUTE, header, hops + Attribute(RTA_PRIORITY, Bytes(70000)));
  header.rtm_type = RTN_LOCAL;
  dump += Message(RTM_NEWROUTE, header, Attribute(RTA_OIF, Bytes(4)));
  const auto routes = ParseRouteDump(dump, Links());
  ASSERT_EQ(routes.size(), 2U);
  EXPECT_EQ(AddressText(routes[1].fNextHop) + " " + routes[1].fPort, "10.1.1.2 eth0");
  EXPECT_EQ(routes[1].fMetric, 70000U);
}

TEST(RouteTable, IsOfEitherOrderOfBytes) {
  for (const char* row : {"e 000200C0 010200C0 1 0 0 0 00FFFFFF 0 0 0",
                          "e C0000200 C0000201 1 0 0 0 FFFFFF00 0 0 0"}) {
    const auto routes = ParseRoutes(row);
    ASSERT_EQ(routes.size(), 1U);
    EXPECT_EQ(AddressText(routes[0].fDestination) + " " + AddressText(routes[0].fNextHop),
              "192.0.2.0 192.0.2.1");
    EXPECT_EQ(routes[0].fPrefixLength, 24U);
  }
  EXPECT_TRUE(ParseRoutes("e 000200C0 0 1 0 0 0 00FF00FF 0 0 0").empty());
}

TEST(PCIFunction, IsTheLastOfAPath) {
  const std::pair<const char*, const char*> rows[] = {
      {"../../devices/pci0000:00/0000:00:03.0/virtio0/net/ens3", "0000:00:03.0"},
      {"../pci0000:00/0000:00:01.1/0000:02:00.3/net/eth1", "0000:02:00.3"},
      {"../pci10000:00/10000:02:00.0/nvme", "10000:02:00.0"},
      {"../../devices/virtual/net/lo", ""},
      {"00:00:03.0", ""}};
  for (const auto& [path, function] : rows) EXPECT_EQ(PCIFunctionIn(path), function) << path;
}

}  // namespace
}  // namespace NVORNQDX20
