// SPDX-License-Identifier: Apache-2.0
#include "secrets.h"

#include <regex>

#include <gtest/gtest.h>

namespace {

using namespace NVORNQDX20::NRedact;

/// In the patterns, "#" is any hexadecimal digit.
bool Matches(const std::string& text, const std::string& pattern) {
  std::string expression;
  for (const char c : pattern) {
    if (c == '#') {
      expression += "[0-9a-f]";
    } else {
      if (std::string("[](){}.*+?^$|\\").find(c) != std::string::npos) expression += '\\';
      expression += c;
    }
  }
  return std::regex_match(text, std::regex(expression));
}

struct TSecretValue {
  const char* fName;
  ESecret fKind;
  const char* fValue;
  const char* fPattern;  ///< What it becomes.
};
class SecretValue : public ::testing::TestWithParam<TSecretValue> {};

TEST_P(SecretValue, HasAPseudonymOfItsForm) {
  const auto& [name, kind, value, pattern] = GetParam();
  TSecrets secrets({"key", {}, false});
  secrets.Learn(kind, value);
  EXPECT_TRUE(Matches(secrets.Redact(kind, value), pattern)) << secrets.Redact(kind, value);
  TSecrets keeping({"key", {kind}, false});
  keeping.Learn(kind, value);
  EXPECT_EQ(keeping.Redact(kind, value), value);
}
INSTANTIATE_TEST_SUITE_P(
    Kinds, SecretValue,
    ::testing::Values(
        TSecretValue{"Serial", ESecret::kSerial, "KPX1234", "serial-########"},
        TSecretValue{"ShortSerial", ESecret::kSerial, "7", "serial-########"},
        TSecretValue{"UUID", ESecret::kSerial, "4c4c4544-0042-3510-8052-b4c04f334e31",
                     "serial-########"},
        TSecretValue{"NoSerial", ESecret::kSerial, "To Be Filled By O.E.M.",
                     "To Be Filled By O.E.M."},
        TSecretValue{"Zeros", ESecret::kSerial, "00000000", "00000000"},
        TSecretValue{"Host", ESecret::kHostName, "web1", "host-########"},
        TSecretValue{"HostInDomain", ESecret::kHostName, "web1.acme.example",
                     "host-########.domain-########"},
        TSecretValue{"Domain", ESecret::kHostName, "acme.example", "domain-########"},
        TSecretValue{"LocalDomain", ESecret::kHostName, "web1.local", "host-########.local"},
        TSecretValue{"Localhost", ESecret::kHostName, "localhost", "localhost"},
        TSecretValue{"HostWithAddress", ESecret::kHostName, "deadbeef0123", "host-########"},
        TSecretValue{"User", ESecret::kUser, "alice", "user-########"},
        TSecretValue{"CommonUser", ESecret::kUser, "www-data", "www-data"},
        TSecretValue{"UserID", ESecret::kUser, "1000", "1000"},
        TSecretValue{"Home", ESecret::kUser, "/home/alice", "/home/user-########"},
        TSecretValue{"OtherHome", ESecret::kUser, "/srv/alice", "/user-########"},
        TSecretValue{"SystemFolder", ESecret::kUser, "/var/lib/misc", "/var/lib/misc"},
        TSecretValue{"Ethernet", ESecret::kAddress, "52:54:00:12:34:56", "02:##:##:##:##:##"},
        TSecretValue{"EthernetDigits", ESecret::kAddress, "525400123456", "02##########"},
        TSecretValue{"NoEthernet", ESecret::kAddress, "000000000000", "000000000000"},
        TSecretValue{"Bridge", ESecret::kAddress, "8000.525400123456", "8000.02##########"},
        TSecretValue{"WWN", ESecret::kAddress, "0x21000024ff5b8c4e", "0x3###############"},
        TSecretValue{"ShortDigits", ESecret::kAddress, "0106ef", "address-########"},
        TSecretValue{"PCI", ESecret::kAddress, "0000:3b:00.0", "0000:3b:00.0"},
        TSecretValue{"Loopback", ESecret::kAddress, "127.0.0.1", "127.0.0.1"},
        TSecretValue{"LoopbackV6", ESecret::kAddress, "::1", "::1"},
        TSecretValue{"DefaultRoute", ESecret::kAddress, "0.0.0.0", "0.0.0.0"},
        TSecretValue{"Multicast", ESecret::kAddress, "ff02::1", "ff02::1"},
        TSecretValue{"Port", ESecret::kAddress, "22", "22"},
        TSecretValue{"Socket", ESecret::kAddress, "ListenStream=/run/x.socket",
                     "ListenStream=/run/x.socket"},
        TSecretValue{"LocalDevice", ESecret::kMountSource, "/dev/mapper/vg0-root",
                     "/dev/mapper/vg0-root"},
        TSecretValue{"Tag", ESecret::kMountSource, "UUID=0c1d-93AF", "UUID=serial-########"},
        TSecretValue{"NFS", ESecret::kMountSource, "nas9:/export", "host-########:/export"},
        TSecretValue{"SMB", ESecret::kMountSource, "//files.acme.example/a",
                     "//host-########.domain-########/a"},
        TSecretValue{"Lustre", ESecret::kMountSource, "mgs1@tcp0:mgs2@o2ib:/fs",
                     "host-########@tcp0:host-########@o2ib:/fs"},
        TSecretValue{"Gluster", ESecret::kMountSource, "glu1:vol", "host-########:vol"},
        TSecretValue{"GlusterServers", ESecret::kMountSource, "rw,backup-volfile-servers=glu1:glu2",
                     "rw,backup-volfile-servers=host-########:host-########"},
        TSecretValue{"SSH", ESecret::kMountSource,
                     "jane:pass7@far1:", "user-########:user-########@host-########:"},
        TSecretValue{"CephUser", ESecret::kMountSource, "rw,name=jane,mon_addr=mon1:6789/mon2:6789",
                     "rw,name=user-########,mon_addr=host-########:6789/host-########:6789"},
        TSecretValue{"ControlGroup", ESecret::kMountSource, "rw,name=elogind", "rw,name=elogind"},
        TSecretValue{"Flash", ESecret::kMountSource, "ubi0:rootfs", "ubi0:rootfs"},
        TSecretValue{"Ceph", ESecret::kMountSource, "mon1:6789,mon2:6789:/",
                     "host-########:6789,host-########:6789:/"},
        TSecretValue{"URL", ESecret::kMountSource, "https://dav.acme.example/a",
                     "https://host-########.domain-########/a"},
        TSecretValue{"Overlay", ESecret::kMountSource, "lowerdir=/a:/b,upperdir=/c",
                     "lowerdir=/a:/b,upperdir=/c"}),
    [](const auto& each) { return std::string(each.param.fName); });

class Secrets : public ::testing::Test {
 protected:
  std::string Address(const std::string& value) {
    fSecrets.Learn(ESecret::kAddress, value);
    return fSecrets.Redact(ESecret::kAddress, value);
  }
  TSecrets fSecrets{{"key", {}, false}};
};

TEST_F(Secrets, AreTheSameInEverySpelling) {
  for (const auto& [value, spelling] : {std::pair("52:54:00:ab:cd:ef", "525400abcdef"),
                                        {"52:54:00:ab:cd:ef", "52-54-00-AB-CD-EF"}}) {
    fSecrets.Learn(ESecret::kAddress, value);
    EXPECT_NE(fSecrets.RedactText(spelling), spelling);
  }
  const std::string full = Address("2a01:04f8:0000:0001:0000:0000:0000:0002");
  EXPECT_TRUE(Matches(full, "2001:0db8:####:####:####:####:####:####")) << full;
  EXPECT_EQ(fSecrets.RedactText("2A01:4F8:0:1::2").substr(0, 9), "2001:DB8:");
  EXPECT_NE(fSecrets.RedactText("2a0104f8000000010000000000000002").substr(0, 4), "2a01");
  fSecrets.Learn(ESecret::kSerial, "4c4c4544-0042-3510-8052-b4c04f334e31");
  EXPECT_EQ(fSecrets.RedactText("4C4C45440042351080 52b4c04f334e31").find("serial"),
            std::string::npos);
  EXPECT_EQ(fSecrets.RedactText("4C4C4544004235108052B4C04F334E31").size(), 15);
  fSecrets.Learn(ESecret::kSerial, "AB CD \"9\"");
  fSecrets.Learn(ESecret::kHostName, "nas-seven");
  for (const char* const text : {"tunnel@nas\\x2dseven.service",
                                 "dev-disk-by\\x2duuid-4c4c4544\\x2d0042\\x2d3510\\x2d8052\\x2d"
                                 "b4c04f334e31.swap",
                                 "md-uuid-4c4c4544:00423510:8052b4c0:4f334e31"}) {
    const std::string redacted = fSecrets.RedactText(text);
    EXPECT_EQ(redacted.find("seven"), std::string::npos) << redacted;
    EXPECT_EQ(redacted.find("4c4c"), std::string::npos) << redacted;
  }
  EXPECT_EQ(fSecrets.RedactText("x.Tag=\"AB CD \\\"9\\\"\"").size(), 23);
}

TEST_F(Secrets, KeepNetworks) {
  const auto network = [](const std::string& text) { return text.substr(0, text.rfind('.')); };
  const std::string one = Address("192.168.7.1"), other = Address("192.168.7.20");
  EXPECT_NE(one, other);
  EXPECT_GE(one, "240.");
  EXPECT_EQ(network(one), network(other));
  EXPECT_EQ(Address("192.168.7.0"), network(one) + ".0");
  EXPECT_EQ(Address("192.168.7.255"), network(one) + ".255");
  EXPECT_NE(network(Address("192.168.8.1")), network(one));
  EXPECT_EQ(Address("fe80::5054:ff:fe12:3456").substr(0, 6), "fe80::");
  const std::string listen = Address("[2a01:4f8::7]:443");
  EXPECT_TRUE(std::regex_match(listen, std::regex(R"(\[2001:db8:[0-9a-f:]+\]:443)"))) << listen;
  EXPECT_EQ(Address("::ffff:192.168.7.20"), "::ffff:" + other);
}

TEST_F(Secrets, NeverShareAPseudonym) {
  std::set<std::string> seen;
  for (int i = 0; i < 40000; ++i) {
    const std::string address = "10." + std::to_string(i / 254 / 100) + "." +
                                std::to_string(i / 254 % 100) + "." + std::to_string(1 + i % 254);
    EXPECT_TRUE(seen.insert(Address(address)).second) << address;
  }
}

TEST_F(Secrets, AreInEachText) {
  fSecrets.Learn(ESecret::kHostName, "web1.acme.example");
  fSecrets.Learn(ESecret::kUser, "Jane Doe,Room 51,555123456");
  EXPECT_EQ(fSecrets.RedactText("/dev/web1-vg").find("web1"), std::string::npos);
  EXPECT_EQ(fSecrets.RedactText("webserver web12 myweb1"), "webserver web12 myweb1");
  EXPECT_EQ(fSecrets.RedactText("ACME.example"), fSecrets.RedactText("ACME.example"));
  EXPECT_EQ(fSecrets.RedactText("jane doe called 555123456").find("5551"), std::string::npos);
  EXPECT_TRUE(Matches(fSecrets.RedactText("to old.backup9.acme.example."),
                      "to host-########.domain-########."));
  const std::string iscsi = "ip-10.66.1.2:3260-iscsi-iqn.2001-05.com.acme:disk-lun-0";
  fSecrets.Learn(ESecret::kMountSource, iscsi);
  fSecrets.LearnFrom(iscsi);
  const std::string redacted = fSecrets.RedactText(iscsi);
  EXPECT_EQ(redacted.find("10.66"), std::string::npos) << redacted;
  EXPECT_EQ(redacted.find("acme"), std::string::npos) << redacted;
  EXPECT_EQ(redacted.substr(redacted.size() - 6), "-lun-0");
  fSecrets.LearnFrom("bound to hid-00:1f:20:aa:bb:cc-battery below /home/mallory/x");
  EXPECT_EQ(fSecrets.RedactText("001f20aabbcc").substr(0, 2), "02");
  EXPECT_EQ(fSecrets.RedactText("/var/mallory").substr(0, 10), "/var/user-");
  EXPECT_EQ(fSecrets.RedactText("0000:00:1f.2"), "0000:00:1f.2");
}

TEST_F(Secrets, OfTheKernelLeaveItsParameters) {
  const std::string line =
      "BOOT_IMAGE=/vmlinuz-6.1.0 root=UUID=11111111-2222-3333-4444-555555555555 ro quiet "
      "luks.pw=geheim \"msg=two words\" token net.x=1 ip=10.9.8.7::10.9.8.1";
  fSecrets.Learn(ESecret::kCommandLine, line);
  EXPECT_TRUE(Matches(fSecrets.RedactKernelLine(line),
                      "BOOT_IMAGE=/vmlinuz-6.1.0 root=UUID=serial-######## ro quiet "
                      "luks.pw=argument-######## argument-######## argument-######## net.x=1 "
                      "ip=argument-########"))
      << fSecrets.RedactKernelLine(line);
  EXPECT_NE(fSecrets.RedactText("route to 10.9.8.1"), "route to 10.9.8.1");
}

TEST_F(Secrets, OfTheKernelAreNoServersNorOptions) {
  const std::string line =
      "root=nfs:nas7:/x\tresume=/dev/sda2 rootflags=addr=nas8,pass=geheim "
      "systemd.unit=rescue.target "
      "rd.md.uuid=3ffe1234:4e5f6a7b:8c9dab01:11223344 systemd.unit=vpn@acme.service";
  fSecrets.Learn(ESecret::kCommandLine, line);
  EXPECT_TRUE(Matches(fSecrets.RedactKernelLine(line),
                      "root=argument-########\tresume=/dev/sda2 rootflags=argument-######## "
                      "systemd.unit=rescue.target rd.md.uuid=serial-######## "
                      "systemd.unit=argument-########"))
      << fSecrets.RedactKernelLine(line);
}

TEST_F(Secrets, OfAProcessLeaveTheNamesOfOptions) {
  const std::vector<std::string> words = {"/usr/bin/db", "-v",         "-pgeheim", "--port=5432",
                                          "--",          "--password", "secret"};
  const auto redacted = fSecrets.RedactCommand(words);
  ASSERT_EQ(redacted.size(), words.size());
  const std::vector<std::string> patterns = {
      "/usr/bin/db", "-v",         "argument-########", "--port=argument-########",
      "--",          "--password", "argument-########"};
  for (std::size_t i = 0; i < words.size(); ++i) {
    EXPECT_TRUE(Matches(redacted[i], patterns[i])) << redacted[i];
  }
  EXPECT_TRUE(Matches(fSecrets.RedactCommand({"sshd: alice [priv]"})[0], "argument-########"));
}

}  // namespace
