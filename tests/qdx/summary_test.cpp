// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <sstream>
#include <tuple>

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "linux/smbios_builder.h"
#include "qdx/installation.h"

namespace {

using NVORNQDX20::SMBIOS3EntryPoint;
using NVORNQDX20::SMBIOSStructure;
using TJSON = nlohmann::json;

/// A socket with a module of 8 GiB, or with none.
std::string Socket(std::uint16_t handle, const std::string& place, bool isFree) {
  return SMBIOSStructure(17, handle,
                         std::string("0010 FEFF 4800 4000 ") + (isFree ? "0000" : "0020") +
                             "0900 01 02 1A 8000 600A 03 04 05 06 02 00000000 600A",
                         {place, "Bank", "Maker", "S", "A", "P"});
}

struct TFile {
  const char* fPath;
  const char* fText;
};

/// A server with something wrong in each corner.
constexpr TFile kServer[] = {
    {"proc/sys/kernel/hostname", "srv1\n"},
    {"proc/sys/kernel/ostype", "Linux\n"},
    {"proc/sys/kernel/osrelease", "6.1.0-18\n"},
    {"etc/os-release", "NAME='Server OS'\nVERSION_ID=9.3\nPRETTY_NAME='Server OS 9.3'\n"},
    {"proc/uptime", "1047600.99 1.00\n"},
    {"proc/loadavg", "0.50 12.25 3.00 1/100 1\n"},
    {"proc/meminfo", "MemTotal: 16000000 kB\nMemAvailable: 8388608 kB\nSwapTotal: 0 kB\n"},
    {"proc/cpuinfo",
     "processor\t: 0\nphysical id\t: 0\nmodel name\t: Xeon 8\ncpu cores\t: 1\n\n"
     "processor\t: 1\nphysical id\t: 1\nmodel name\t: Xeon 8\ncpu cores\t: 1\n"},
    {"sys/class/dmi/id/sys_vendor", "VORN\n"},
    {"sys/class/dmi/id/product_name", "Loftnode -[47111AB]-\n"},
    {"sys/class/dmi/id/product_serial", "S1\n"},
    {"sys/block/sda/device/model", "PM893\n"},
    {"sys/block/sda/size", "937703088\n"},
    {"sys/block/sda/queue/rotational", "0\n"},
    {"sys/block/sda/sda1/partition", "1\n"},
    {"sys/block/sda/sda1/dev", "8:1\n"},
    {"sys/block/sda/sda1/size", "8\n"},
    {"sys/block/sdb/device/model", "Big\n"},
    {"sys/block/sdb/size", "7814037168\n"},
    {"sys/block/sdc/device/model", "Big\n"},
    {"sys/block/sdc/size", "7814037168\n"},
    {"sys/block/sdd/device/model", "Big\n"},
    {"sys/block/sdd/device/state", "offline\n"},
    {"sys/block/md0/dev", "9:0\n"},
    {"sys/block/md0/size", "7814037168\n"},
    {"sys/block/md0/md/level", "raid1\n"},
    {"sys/block/md0/md/array_state", "clean\n"},
    {"sys/block/md0/md/degraded", "1\n"},
    {"sys/block/md0/slaves/sdb/x", ""},
    {"sys/block/md0/slaves/sdc/x", ""},
    {"proc/mounts",
     "/dev/sda1 / ext4 rw 0 0\n/dev/sda1 /srv/bind ext4 rw 0 0\n/dev/md0 /data xfs rw 0 0\n"
     "/dev/loop1 /snap/a squashfs ro 0 0\n/dev/loop2 /snap/b squashfs ro 0 0\n"
     "tmpfs /run tmpfs rw 0 0\nsrv:/x /mnt/nfs nfs rw 0 0\noverlay /o overlay rw 0 0\n"},
    {"sys/class/net/lo/type", "772\n"},
    {"sys/class/net/eth0/type", "1\n"},
    {"sys/class/net/eth0/operstate", "up\n"},
    {"sys/class/net/eth0/speed", "25000\n"},
    {"sys/class/net/eth1/type", "1\n"},
    {"sys/class/net/eth1/operstate", "down\n"},
    {"sys/class/net/eth2/type", "1\n"},
    {"sys/class/net/eth2/operstate", "down\n"},
    {"proc/net/if_inet6",
     "fd000000000000000000000000000002 02 40 00 80 eth0\n"
     "fe800000000000000000000000000001 02 40 20 80 eth0\n"
     "fe800000000000000000000000000002 03 40 20 80 eth1\n"},
    {"usr/share/misc/pci.ids", "8086  Intel\n\t1572  Ethernet X710\n"},
    {"sys/bus/pci/devices/0000:00:00.0/vendor", "0x8086\n"},
    {"sys/bus/pci/devices/0000:00:00.0/class", "0x060000\n"},
    {"sys/bus/pci/devices/0000:3b:00.0/vendor", "0x8086\n"},
    {"sys/bus/pci/devices/0000:3b:00.0/device", "0x1572\n"},
    {"sys/bus/pci/devices/0000:3b:00.0/class", "0x020000\n"},
    {"sys/bus/pci/devices/0000:3b:00.1/vendor", "0x8086\n"},
    {"sys/bus/pci/devices/0000:3b:00.1/device", "0x1572\n"},
    {"sys/bus/pci/devices/0000:3b:00.1/class", "0x020000\n"},
    {"sys/bus/pci/devices/0000:5e:00.0/vendor", "0x1d0f\n"},
    {"sys/bus/pci/devices/0000:5e:00.0/device", "0xefa1\n"},
    {"sys/bus/pci/devices/0000:5e:00.0/class", "0x120000\n"},
    {"sys/class/hwmon/hwmon0/name", "chip\n"},
    {"sys/class/hwmon/hwmon0/temp1_input", "98000\n"},
    {"sys/class/hwmon/hwmon0/temp1_label", "Core 0\n"},
    {"sys/class/hwmon/hwmon0/temp1_crit", "95000\n"},
    {"sys/class/hwmon/hwmon0/temp1_crit_alarm", "1\n"},
    {"sys/class/hwmon/hwmon0/temp2_input", "41500\n"},
    {"sys/class/hwmon/hwmon0/temp2_max", "80000\n"},
    // Nobody has set the limit of this one, and the driver of the other knows better.
    {"sys/class/hwmon/hwmon0/in1_input", "1200\n"},
    {"sys/class/hwmon/hwmon0/in1_max", "0\n"},
    {"sys/class/hwmon/hwmon0/in2_input", "1200\n"},
    {"sys/class/hwmon/hwmon0/in2_max", "1000\n"},
    {"sys/class/hwmon/hwmon0/in2_max_alarm", "0\n"}};

const char* const kScreen =
    "Machine     srv1, VORN Loftnode -[47111AB]-, serial S1\n"
    "Attention   disk sdd: offline\n"
    "            array md0 lacks 1 disk\n"
    "            sensor Core 0 of chip: Upper Critical, 98 °C, the limit is 95 °C\n"
    "System      Server OS 9.3\n"
    "Kernel      6.1.0-18\n"
    "Up          12 days 3 h, load 0.50 12.25 3.00\n"
    "Processors  2 x Xeon 8, 2 cores, 2 threads\n"
    "Memory      16 GiB, 8 GiB available, no swap, 3 slots, 1 free\n"
    "            2 x 8 GiB DDR4-2656\n"
    "Disks       disk           Big    sdd      offline\n"
    "            2 x 4 TB disk  Big    sdb sdc\n"
    "            480.1 GB SSD   PM893  sda\n"
    "Arrays      md0  4 TB  raid1, clean\n"
    "Files       /                ext4      on sda\n"
    "            /data            xfs       on sdb sdc\n"
    "            /mnt/nfs         nfs\n"
    "            /snap/a ... (2)  squashfs  read only\n"
    "Network     eth0           Ethernet  up    25 Gbit/s  fd00::2/64\n"
    "            eth1 eth2 (2)  Ethernet  down\n"
    "Cards       2 x 8086:1572 Intel Ethernet X710\n"
    "            1d0f:efa1 accelerator\n"
    "Sensors     4, 1 out of range; warmest 98 °C (Core 0)\n"
    "Not there   firmware (the SMBIOS table has no structure of type 0),\n"
    "            names of cards\n";

/// The command, with a tree that stands in for a server.
class QDXSummary : public ::testing::Test {
 protected:
  QDXSummary() {
    fInstallation.AddLinuxProvider();
    fInstallation.AddDocumentPlugins();
    for (const auto& [path, text] : kServer) fTree.Write(path, text);
    const std::string tables = "sys/firmware/dmi/tables/";
    fTree.Write(tables + "smbios_entry_point", SMBIOS3EntryPoint(3, 2));
    fTree.Write(tables + "DMI", Socket(1, "A1", false) + Socket(2, "A2", false) +
                                    Socket(3, "A3", true) + SMBIOSStructure(127, 9, ""));
  }
  TProgramRun Run(std::vector<std::string> words) const {
    words.insert(words.end(), {"--root", fTree.Path().string()});
    return fInstallation.Run(words);
  }

  const TInstallation fInstallation;
  const TTempDir fTree;
};

TEST_F(QDXSummary, IsOneScreenAndTheVerbOfQDXAlone) {
  const TProgramRun run = Run({"summary"});
  EXPECT_EQ(run.fOutput, kScreen);
  EXPECT_EQ(run.fErrors, "");
  EXPECT_EQ(run.fExitCode, 0);
  EXPECT_EQ(Run({}).fOutput, run.fOutput);
}

TEST_F(QDXSummary, IsPrintedAsJSON) {
  const TProgramRun run = Run({"summary", "--json"});
  TJSON summary = TJSON::parse(run.fOutput);
  const TJSON expected = TJSON::parse(R"json({
      "machine": {"hostName": "srv1", "manufacturer": "VORN", "productName": "Loftnode -[47111AB]-",
                  "serialNumber": "S1", "chassis": null, "boardManufacturer": null, "board": null},
      "firmware": {"manufacturer": null, "version": null, "releaseDate": null, "uefi": null},
      "processors": [{"count": 2, "name": "Xeon 8", "cores": 2, "threads": 2, "maxHertz": null}],
      "memory": {"bytes": 17179869184, "availableBytes": 8589934592, "swapBytes": 0,
                 "freeSwapBytes": null, "slots": 3, "freeSlots": 1, "correctedErrors": null,
                 "uncorrectedErrors": null,
                 "modules": [{"count": 2, "bytes": 8589934592, "type": "DDR4",
                              "transfersPerSecond": 2656000000}]},
      "arrays": [{"name": "md0", "level": "raid1", "state": "clean", "bytes": 4000787030016,
                  "missingMembers": 1, "syncAction": null, "syncPercent": null}],
      "batteries": [], "powerSupplies": []})json");
  for (const auto& [key, value] : expected.items()) EXPECT_EQ(summary[key], value) << key;
  const std::pair<const char*, const char*> parts[] = {
      {"/operatingSystem/uptimeSeconds", "1047600"},
      {"/operatingSystem/load", "[0.5,12.25,3.0]"},
      {"/disks/1/names", R"(["sdb","sdc"])"},
      {"/disks/2/medium", R"("solid state")"},
      {"/fileSystems/0/otherMounts", "1"},
      {"/fileSystems/1/disks", R"(["sdb","sdc"])"},
      {"/ports/0/bitsPerSecond", "25000000000"},
      {"/ports/0/addresses", R"(["fd00::2/64","fe80::1/64"])"},
      {"/cards/0/addresses", R"(["0000:3b:00.0","0000:3b:00.1"])"},
      {"/cards/0/vendorID", "32902"},
      {"/sensors/outOfRange/0/reading", "98.0"},
      {"/sensors/outOfRange/0/unit", R"("degree celsius")"},
      {"/gaps/0/kind", R"("not there")"},
      {"/gaps/0/subjects", R"(["firmware"])"}};
  for (const auto& [path, value] : parts) {
    EXPECT_EQ(summary[TJSON::json_pointer(path)].dump(), value) << path;
  }
}

TEST_F(QDXSummary, SortsNumbersInNamesAsNumbers) {
  std::string mounts;
  for (const char* const number : {"100", "10", "2"}) {
    const std::string disk = std::string("nvme") + number + "n1";
    fTree.Write("sys/block/" + disk + "/device/model", "Fast\n");
    fTree.Write("sys/block/md9/slaves/" + disk + "/x", "");
    fTree.Write("sys/block/md" + std::string(number) + "/md/level", "raid1\n");
    fTree.Write("sys/class/net/eth" + std::string(number) + "/type", "1\n");
    mounts += "srv:/" + disk + " /m" + number + " nfs rw 0 0\n";
  }
  fTree.Write("sys/block/md9/dev", "9:9\n");
  fTree.Write("sys/block/md9/md/level", "raid1\n");
  fTree.Write("proc/mounts", mounts + "/dev/md9 /data xfs rw 0 0\n");
  const TJSON summary = TJSON::parse(Run({"summary", "--json"}).fOutput);
  const auto list = [&summary](const char* part, const char* property) {
    std::string names;
    for (const TJSON& each : summary[part]) names += each[property].get<std::string>() + " ";
    return names;
  };
  const TJSON disks = {"nvme2n1", "nvme10n1", "nvme100n1"};
  EXPECT_EQ(summary["fileSystems"][0]["disks"], disks);
  EXPECT_TRUE(std::any_of(summary["disks"].begin(), summary["disks"].end(),
                          [&disks](const TJSON& each) { return each["names"] == disks; }));
  EXPECT_EQ(list("fileSystems", "mountPoint"), "/data /m2 /m10 /m100 ");
  EXPECT_EQ(list("arrays", "name"), "md0 md2 md9 md10 md100 ");
  EXPECT_EQ(list("ports", "name"), "eth0 eth1 eth2 eth10 eth100 ");
}

TEST_F(QDXSummary, OfADocumentIsThatOfTheMachine) {
  const TTempDir folder;
  const std::string file = (folder.Path() / "d.xml").string();
  Run({"collect", "-o", file});
  std::string output = fInstallation.Run({"summary", file}).fOutput;
  const std::size_t collected = output.find("Collected   20");
  ASSERT_NE(collected, std::string::npos) << output;
  output.erase(collected, output.find('\n', collected) + 1 - collected);
  EXPECT_EQ(output, kScreen);
  EXPECT_EQ(fInstallation.RunScript("\"$0\" summary - <" + file).fExitCode, 0);

  // Parts that nobody asked for are not in the summary of the machine either.
  Run({"collect", "-o", file, "--without", "disks,network"});
  output = fInstallation.Run({"summary", file}).fOutput;
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "\nLeft out    disks, network\n", output);
  const TProgramRun found = fInstallation.Run({"show", file, "CIM_DiskDirve"});
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "instance; parts disks, network are left out\n",
                      found.fErrors);
}

TEST_F(QDXSummary, SaysWhatOnlyRootMayRead) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can ask for somebody else";
  for (const auto& path : {fTree.Path(), fInstallation.Folder().parent_path().parent_path()}) {
    std::filesystem::permissions(path, std::filesystem::perms(0755));
  }
  for (const char* const path :
       {"sys/class/dmi/id/product_serial", "sys/firmware/dmi/tables/DMI"}) {
    std::filesystem::permissions(fTree.Path() / path, std::filesystem::perms::none);
  }
  const TProgramRun run = Run({"summary", "--user", "nobody"});
  EXPECT_PRED_FORMAT2(::testing::IsSubstring,
                      "\nAs root     serial number, firmware, memory modules, chassis, board,\n"
                      "            memory slots, batteries, power supplies\n",
                      run.fOutput);
  EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
}

std::size_t LinesOf(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(QDXSummary, OfALargeServerHas40LinesOf80Columns) {
  std::string mounts = "/dev/sda1 / ext4 rw 0 0\n", addresses;
  for (int i = 100; i < 200; ++i) {
    const std::string number = std::to_string(i);
    fTree.Write("sys/block/sdx" + number + "/device/model", "Model " + number + "\n");
    fTree.Write("sys/block/sdx" + number + "/size", "80000000\n");
    mounts += "/dev/sdx" + number + " /a/very/long/name/of/a/folder/" + number + " ext4 rw 0 0\n";
    fTree.Write("sys/class/net/p" + number + "/type", "1\n");
    addresses += "fd000000000000000000000000000" + number + " 02 40 00 80 p" + number + "\n";
    const std::string card = "sys/bus/pci/devices/0000:3a:00." + number;
    fTree.Write(card + "/vendor", "0x8086\n");
    fTree.Write(card + "/device", "0x1" + number + "\n");
    fTree.Write(card + "/class", "0x020000\n");
    const std::string sensor = "sys/class/hwmon/hwmon0/temp" + number;
    fTree.Write(sensor + "_input", "98000\n");
    fTree.Write(sensor + "_crit", "95000\n");
    fTree.Write("sys/class/net/veth" + number + "/type", "1\n");
  }
  fTree.Write("proc/mounts", mounts);
  fTree.Write("proc/net/if_inet6", addresses);
  const std::string output = Run({"summary"}).fOutput;
  EXPECT_EQ(LinesOf(output), 40U) << output;
  // Whatever is shortened says by how much, and only the longest is.
  EXPECT_EQ(LinesOf(output), LinesOf(Run({}).fOutput));
  for (const char* const line :
       {"\nUp          12 days", "\nArrays      md0", "\nNetwork     p100 ",
        "\n            2 x 8 GiB", "\nSensors     104, 101 out of range"}) {
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, line, output);
  }
  std::istringstream lines(output);
  int hidden = 0;
  for (std::string line; std::getline(lines, line);) hidden += line.find(" and ") == 11 ? 1 : 0;
  EXPECT_EQ(hidden, 5) << output;  // attention, disks, file systems, ports, cards
  const TProgramRun onTerminal = fInstallation.RunScript(
      "export TERM=xterm NO_COLOR=1; script -qec \"stty cols 80; '$0' summary --root '" +
      fTree.Path().string() + "'\" /dev/null | tr -d '\\r'");
  EXPECT_EQ(LinesOf(onTerminal.fOutput), 40U);
  std::istringstream shown(onTerminal.fOutput);
  for (std::string line; std::getline(shown, line);) {
    const auto bytes =
        std::count_if(line.begin(), line.end(), [](char byte) { return (byte & 0xC0) != 0x80; });
    EXPECT_LE(bytes, 80) << line;
  }
}

/// A document of the classes that the test wants, with the values that it wants.
class TMadeUp {
 public:
  void Add(const std::string& name, const std::string& key,
           const std::vector<std::array<std::string, 3>>& properties) {
    std::string declared, values;
    for (const auto& [property, type, value] : properties) {
      const std::string start = "<PROPERTY NAME='" + property + "' TYPE='" + type + "'>";
      const char* const isKey =
          "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>TRUE</VALUE></QUALIFIER>";
      declared += start + (property == key ? isKey : "") + "</PROPERTY>";
      values += start + "<VALUE>" + value + "</VALUE></PROPERTY>";
    }
    if (fText.find("<CLASS NAME='" + name) == std::string::npos) {
      fText += "<VALUE.OBJECT><CLASS NAME='" + name + "'>" + declared + "</CLASS></VALUE.OBJECT>\n";
    }
    fText += "<VALUE.OBJECT><INSTANCE CLASSNAME='" + name + "'>" + values +
             "</INSTANCE></VALUE.OBJECT>\n";
  }
  std::string Get() const {
    return "<CIM CIMVERSION='2.0' DTDVERSION='2.4'><DECLARATION><DECLGROUP>\n" + fText +
           "</DECLGROUP></DECLARATION></CIM>";
  }

 private:
  std::string fText;
};

TEST_F(QDXSummary, OfAMadeUpDocumentIsHarmless) {
  TMadeUp document;
  document.Add("VORNSG_ComputerSystem", "Name",
               {{"Name", "string", "\xE2\x80\xAEhost\nline"},
                {"Manufacturer", "string", std::string(1000000, 'x')},
                {"ProductName", "uint32", "4711"}});
  document.Add("VORNSG_FileSystem", "Name",
               {{"Name", "string", "/kept"},  // 600 GB for root
                {"FileSystemType", "string", "ext4"},
                {"Device", "string", "/dev/kept"},
                {"FileSystemSize", "uint64", "1000000000000"},
                {"UsedSpace", "uint64", "100000000000"},
                {"AvailableSpace", "uint64", "300000000000"}});
  const auto fileSystem = [&document](const char* name, const char* size, const char* free) {
    document.Add("VORNSG_FileSystem", "Name",
                 {{"Name", "string", name},
                  {"Device", "string", std::string("/dev/") + name},
                  {"FileSystemSize", "uint64", size},
                  {"AvailableSpace", "uint64", free}});
  };
  fileSystem("/full", "1000000000000", "50000000000");
  fileSystem("/empty", "18446744073709551615", "18446744073709551615");
  fileSystem("/more", "1000000", "2000000");
  fileSystem("/half", "1000000000000", "500000000000");
  fileSystem("/none", "0", "0");
  document.Add("VORNSG_DiskDrive", "DeviceID",
               {{"DeviceID", "string", "/dev/sdz"},
                {"Size", "string", "large"},
                {"MaxMediaSize", "uint64", "18446744073709551615"}});
  document.Add("VORNSG_Sensor", "DeviceID",
               {{"DeviceID", "string", "s"},
                {"BaseUnits", "uint16", "2"},
                {"UnitModifier", "sint32", "2147483647"},
                {"CurrentReading", "sint32", "1"}});
  const std::string file = fTree.Write("made-up.xml", document.Get()).string();
  const TProgramRun run = fInstallation.Run({"summary", file});
  EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
  EXPECT_EQ(run.fOutput.find("Machine    ?host?line, xxx"), 0U) << run.fOutput.substr(0, 200);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "xxx... 4711", run.fOutput);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring,
                      "Attention  file system /full: 95 % used\n"
                      "Disks      disk  sdz\n"
                      "Files      /full         1 TB, 95 % used, 50 GB free\n"
                      "           /half         1 TB, 50 % used, 500 GB free\n"
                      "           /kept   ext4  1 TB, 25 % used, 300 GB free\n"
                      "           /empty        18.4 EB, 0 % used, 18.4 EB free\n"
                      "           /more         1 MB, 0 % used, 1 MB free\n"
                      "           /none\n",
                      run.fOutput);
  EXPECT_LE(run.fOutput.size(), 2000U);
  EXPECT_TRUE(TJSON::accept(fInstallation.Run({"summary", file, "--json"}).fOutput));
}

TEST_F(QDXSummary, EndsAsScriptsExpect) {
  const TTempDir folder;
  const std::string empty = folder.Path().string();
  const std::string document = TMadeUp().Get();
  folder.Write("none.xml", document);
  std::filesystem::create_directories(fTree.Path() / "sys/block/sde/size");  // cannot be read
  const std::string tree = fTree.Path().string();
  const std::tuple<std::vector<std::string>, int, std::string> rows[] = {
      {{"--root", tree}, 3, "qdx: describing disks: /sys/block/sde/size: not a regular file"},
      {{"summary", "--root", empty}, 5, "describing the machine below " + empty + ": all values"},
      {{"summary", empty + "/none.xml"}, 5, "describing the machine of " + empty},
      {{"summary", empty + "/missing.xml"}, 4, empty + "/missing.xml"},
      {{"summary", empty + "/none.xml", "--root", tree}, 2, "option '--root' cannot be used with"},
      {{"--only", "disks"}, 2, "summary has no option '--only'"},
      {{"summary", "a", "b"}, 2, "unexpected argument 'b'"}};
  for (const auto& [words, exitCode, error] : rows) {
    const TProgramRun run = fInstallation.Run(words);
    EXPECT_EQ(run.fExitCode, exitCode) << error << run.fErrors << run.fOutput;
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, error, run.fErrors);
  }
  EXPECT_EQ(fInstallation.RunScript("\"$0\" --root " + tree + " >/dev/full").fExitCode, 4);
}

}  // namespace
