// SPDX-License-Identifier: Apache-2.0
#include "common_values.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <array>
#include <string>
#include <unordered_set>

namespace NVORNQDX20::NRedact {
namespace {

using NDescribe::ESecret;
using TWords = std::unordered_set<std::string_view>;

/// Accounts and groups of distributions, of packages and of images for clouds.
const TWords& Accounts() {
  static const TWords words = {"root",
                               "daemon",
                               "bin",
                               "sys",
                               "sync",
                               "games",
                               "man",
                               "lp",
                               "mail",
                               "news",
                               "uucp",
                               "proxy",
                               "www-data",
                               "backup",
                               "list",
                               "irc",
                               "gnats",
                               "nobody",
                               "nogroup",
                               "operator",
                               "adm",
                               "tty",
                               "disk",
                               "kmem",
                               "dialout",
                               "fax",
                               "voice",
                               "cdrom",
                               "floppy",
                               "tape",
                               "sudo",
                               "audio",
                               "dip",
                               "src",
                               "shadow",
                               "utmp",
                               "video",
                               "sasl",
                               "plugdev",
                               "staff",
                               "users",
                               "user",
                               "input",
                               "sgx",
                               "kvm",
                               "render",
                               "crontab",
                               "netdev",
                               "wheel",
                               "lock",
                               "dbus",
                               "messagebus",
                               "sshd",
                               "ssh",
                               "_ssh",
                               "_apt",
                               "ntp",
                               "_chrony",
                               "chrony",
                               "polkitd",
                               "rtkit",
                               "avahi",
                               "colord",
                               "saned",
                               "usbmux",
                               "geoclue",
                               "pulse",
                               "gdm",
                               "sddm",
                               "lightdm",
                               "nm-openvpn",
                               "tss",
                               "uuidd",
                               "tcpdump",
                               "landscape",
                               "pollinate",
                               "syslog",
                               "lxd",
                               "docker",
                               "libvirt",
                               "libvirt-qemu",
                               "libvirt-dnsmasq",
                               "qemu",
                               "dnsmasq",
                               "named",
                               "bind",
                               "postfix",
                               "postdrop",
                               "exim",
                               "dovecot",
                               "dovenull",
                               "mysql",
                               "mariadb",
                               "postgres",
                               "redis",
                               "mongodb",
                               "memcache",
                               "memcached",
                               "rabbitmq",
                               "elasticsearch",
                               "kibana",
                               "logstash",
                               "grafana",
                               "prometheus",
                               "nginx",
                               "apache",
                               "httpd",
                               "tomcat",
                               "haproxy",
                               "squid",
                               "varnish",
                               "jenkins",
                               "gitlab",
                               "git",
                               "zabbix",
                               "nagios",
                               "nrpe",
                               "munin",
                               "telegraf",
                               "influxdb",
                               "ceph",
                               "cinder",
                               "nova",
                               "neutron",
                               "glance",
                               "keystone",
                               "ftp",
                               "rpc",
                               "rpcuser",
                               "nfsnobody",
                               "statd",
                               "nslcd",
                               "sssd",
                               "abrt",
                               "cockpit-ws",
                               "clevis",
                               "setroubleshoot",
                               "pcp",
                               "pesign",
                               "mailnull",
                               "smmsp",
                               "halt",
                               "shutdown",
                               "mem",
                               "cgred",
                               "stapdev",
                               "stapusr",
                               "screen",
                               "ssh_keys",
                               "unbound",
                               "node_exporter",
                               "etcd",
                               "consul",
                               "vault",
                               "kube",
                               "puppet",
                               "salt",
                               "ansible",
                               "admin",
                               "administrator",
                               "guest",
                               "debian",
                               "ubuntu",
                               "centos",
                               "fedora",
                               "rocky",
                               "almalinux",
                               "rhel",
                               "suse",
                               "opensuse",
                               "arch",
                               "alpine",
                               "core",
                               "vagrant",
                               "ec2-user",
                               "cloud-user",
                               "opc",
                               "pi",
                               "default",
                               "ssl-cert",
                               "bluetooth",
                               "scanner",
                               "lpadmin",
                               "sambashare",
                               "systemd",
                               "debian-exim",
                               "debian-tor",
                               "debian-snmp",
                               "snmp",
                               "whoopsie",
                               "kernoops",
                               "hplip",
                               "speech-dispatcher",
                               "gnome-initial-setup",
                               "cups-pk-helper",
                               "fwupd-refresh",
                               "tftp",
                               "dhcpd",
                               "radvd",
                               "openvpn",
                               "strongswan",
                               "freerad",
                               "www",
                               "web",
                               "http",
                               "nm-openconnect",
                               "flatpak",
                               "gluster"};
  return words;
}

const TWords& Hosts() {
  static const TWords words = {"localhost",
                               "localhost.localdomain",
                               "localhost4",
                               "localhost6",
                               "localdomain",
                               "local",
                               "lan",
                               "home",
                               "internal",
                               "intranet",
                               "home.arpa",
                               "(none)",
                               "host",
                               "domain",
                               "linux",
                               "unknown",
                               "debian",
                               "ubuntu",
                               "fedora",
                               "centos",
                               "rocky",
                               "alpine",
                               "archlinux",
                               "raspberrypi",
                               "."};
  return words;
}

/// What firmware says if nobody filled in a number, in lower case.
const TWords& Placeholders() {
  static const TWords words = {"none",
                               "n/a",
                               "na",
                               "null",
                               "unknown",
                               "empty",
                               "default",
                               "default string",
                               "not specified",
                               "not available",
                               "not applicable",
                               "not provided",
                               "not present",
                               "no asset tag",
                               "no asset information",
                               "asset tag",
                               "serial number",
                               "system serial number",
                               "chassis serial number",
                               "base board serial number",
                               "asset-1234567890",
                               "to be filled by o.e.m.",
                               "o.e.m.",
                               "oem",
                               "invalid",
                               "undefined",
                               "serial",
                               "unspecified",
                               "0123456789",
                               "123456789",
                               "1234567890",
                               "dimm",
                               "nvme",
                               "disk"};
  return words;
}

bool IsOneCharacter(std::string_view value) {
  return value.find_first_not_of(value.front()) == std::string_view::npos;
}

bool IsNumber(std::string_view value) {
  return value.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

bool IsCommon(ESecret kind, std::string_view value) {
  if (value.empty()) return true;
  const std::string folded = NModel::Folded(value);
  switch (kind) {
    case ESecret::kSerial:
      return Placeholders().count(folded) != 0 || (value.size() > 3 && IsOneCharacter(value));
    case ESecret::kHostName:
      return Hosts().count(folded) != 0;
    case ESecret::kUser:
      // A number is a user ID; "%i" is a pattern of systemd.
      return Accounts().count(folded) != 0 || IsNumber(value) || value.front() == '%' ||
             folded.rfind("systemd-", 0) == 0;
    case ESecret::kNone:
    case ESecret::kAddress:
    case ESecret::kCommandLine:
    case ESecret::kMountSource:
      return false;
  }
  return false;
}

bool IsSystemFolder(std::string_view path) {
  static constexpr std::array<std::string_view, 14> kFolders = {
      "/bin",  "/boot", "/dev", "/etc",  "/lib", "/nonexistent", "/opt",
      "/proc", "/root", "/run", "/sbin", "/sys", "/usr",         "/var"};
  const std::string_view first = path.substr(0, path.find('/', 1));
  return first == "/" || std::find(kFolders.begin(), kFolders.end(), first) != kFolders.end();
}

}  // namespace NVORNQDX20::NRedact
