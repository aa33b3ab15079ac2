// SPDX-License-Identifier: Apache-2.0
// The operating system with its surroundings, services, packages, users and processes.
#include "linux/machine.h"

#include <array>

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

/// The files of a machine, by their folders.
const char* const kFiles = R"(
etc: debian_version=12.11; machine-id=8f7e; timezone=Etc/UTC
proc: cpuinfo=processor : 0
proc: cmdline=quiet	root=/dev/sda1; version=Linux version 6.1.0-18 (a@b (gcc #12)) #1 SMP Debian
proc: modules=xt_nat 16384 1 nf_nat,nf_tables, Live 0x0 (OE); stat=btime 1079361000
proc/sys/kernel: pid_max=4194304; random/boot_id=b00t; hostname=srv1; arch=aarch64
proc/1: cgroup=0::/; stat=1 (init) S 0 1 1 0 -1 0 0 0 0 0 20 30 0 0 20 0 1 0 150
proc/7: stat=7 (sh) Z 1 7 1 0 -1 0 0 0 0 0 0 0 0 0 20 -5 1 0 0; status=
sys/fs/cgroup: cgroup.controllers=cpu; cgroup.type=domain; memory.max=1073741824
sys/fs/cgroup: cpu.max=150000 100000; pids.max=max; cpuset.cpus.effective=0-1
sys/module/xt_nat: version=1.2
boot: vmlinuz-6.1.0-18=; initrd.img-6.1.0-18=; initrd.img-5.0=; config-6.1.0-18=
lib/modules: 6.1.0-18/x=; 6.2.0/x=
usr/lib/systemd/system: a.timer=[Timer]
etc/init.d: old=# Short-Description: An old one; new.sh=; README=; halt=
etc/rc3.d: S02old=; K01new=
)";

const char* const kValues = R"(
: PointRelease=12.11; DistributionID=debian; MachineID=8f7e; TimeZone=Etc/UTC; CurrentTimeZone=0
: KernelRelease=6.1.0-18; KernelVersion=#1 SMP Debian; Architecture=aarch64; BootID=b00t
: KernelCommandLine=quiet root=/dev/sda1; MaxNumberOfProcesses=4194304; Caption=Debian 12
: Container=other; LimitScope=container; MemoryLimit=1073741824
: VirtualMachine=nothing is there that would tell of a hypervisor
: ProcessorLimit=1.5; ProcessLimit=not limited: /sys/fs/cgroup; ProcessorSet=0-1
: ControlGroupVersion=2; OSType=36
xt_nat: Size=16384; UseCount=1; UsedBy={ nf_nat, nf_tables }; State=Live; Taint=(OE); Version=1.2
xt_nat: SourceVersion=
6.1.0-18: Image=/boot/vmlinuz-6.1.0-18; InitialFiles=/boot/initrd.img-6.1.0-18; Running=true
6.1.0-18: Modules=/lib/modules/6.1.0-18
6.2.0: Image=; Running=false
5.0: Image=(no such property)
dpkg:a:all: Name=a; VersionString=1:2-3; Architecture=all; InstalledSize=12; Manufacturer=M <m@x>
dpkg:a:all: PackageStatus=install ok installed; ExtendedResourceType=8; Description=In a line
old: UnitFileState=enabled; Manager=SysV; StartMode=Automatic; Description=An old one
new.sh: UnitFileState=disabled; StartMode=Manual; StartProgram=/etc/init.d/new.sh
1: Name=init; ExecutionState=4; CreationDate=20040315143001.000000+000; KernelModeTime=300
1: UserModeTime=200; ParentProcessID=0; Parameters={ /sbin/init, --a b }; RealUserID=0
1: WorkingSetSize=4096; NumberOfThreads=1
7: Name=sh; ExecutionState=7; RealUserID=1000; NiceValue=-5; WorkingSetSize=0; ProcessGroupID=7
u: UserID=1000; GroupID=100; HomeDirectory=/home/u; LoginShell=/bin/sh; Comment=U. Ser
users: GroupID=100; Members={  }
)";

class LinuxSoftware : public ::testing::Test {
 protected:
  void SetUp() override {
    fMachine.WriteFiles(kFiles);
    fMachine.Write("etc/os-release", "ID=debian\nVERSION=\"12\"\nPRETTY_NAME='Debian 12'\n");
    fMachine.Write("proc/1/cmdline", std::string("/sbin/init\0--a b\0", 17));
    fMachine.Write("proc/1/status", "Name:\tinit\nUid:\t0\t0\t0\t0\nVmRSS:\t       4 kB\n");
    fMachine.Write("proc/7/status", "Name:\tsh\nUid:\t1000\t0\t0\t0\n");
    fMachine.Write("var/lib/dpkg/status",
                   "Package: a\nStatus: install ok installed\nMaintainer: M <m@x>\nVersion: 1:2-3\n"
                   "Architecture: all\nInstalled-Size: 12\nDescription: In a line\n more\n");
    fMachine.Write("etc/passwd", "u:x:1000:100:U. Ser:/home/u:/bin/sh\n");
    fMachine.Write("etc/group", "users:x:100:\nwheel:x:10:u,nobody\n");
  }
  boost::shared_ptr<ICIMNamespace> Namespace() const {
    const TCIMValue with(TCIMValue::TCIMType::kCIMTypeString, 0,
                         std::vector<TCIMValue>{"users", "processes"});
    return Describe({{"root", fMachine.Path().string()}, {"with", with}});
  }
  void Link(const std::string& target, const std::string& name) const {
    fs::create_directories((fMachine.Path() / name).parent_path());
    fs::create_symlink(target, fMachine.Path() / name);
  }
  std::string OS(const std::string& property) const {
    return ValuesOf(*fMachine.Namespace(), {"OperatingSystem"}).at(property);
  }

  const TMachine fMachine{};
};

TEST_F(LinuxSoftware, IsDescribed) {
  ExpectValues(
      ValuesOf(*Namespace(), {"OperatingSystem", "KernelModule", "InstalledKernel",
                              "SoftwareIdentity", "Service", "UnixProcess", "Account", "Group"}),
      kValues);
  std::string pairs;
  for (const auto& tie : InstancesOf(*Namespace(), "VORNSG_MemberOfCollection")) {
    for (const char* end : {"Collection", "Member"}) {
      const TCIMReference reference = tie->GetProperty(end, {})->GetValue();
      const auto instance = boost::dynamic_pointer_cast<ICIMInstance>(reference.GetCIMElement());
      pairs += TextOf(*instance, "Name") + " ";
    }
  }
  EXPECT_EQ(pairs, "users u wheel u ");
  EXPECT_EQ(InstancesOf(*Namespace(), "VORNSG_RunningOS").size(), 1U);
}

TEST_F(LinuxSoftware, IsNotAskedAboutUsersAndProcessesByItself) {
  const auto ns = fMachine.Namespace();
  for (const char* name : {"VORNSG_Account", "VORNSG_Group", "VORNSG_UnixProcess"}) {
    EXPECT_TRUE(InstancesOf(*ns, name).empty()) << name;
  }
}

/// The states are those that "systemctl --root=TREE list-unit-files" prints.
TEST_F(LinuxSoftware, HasServicesInTheStatesOfSystemd) {
  const std::string vendor = "usr/lib/systemd/system/";
  const std::string admin = "etc/systemd/system/";
  const auto write = [&](const std::string& name, const std::string& install) {
    fMachine.Write(vendor + name, "[Unit]\nDescription=About " + name + "\n[Install]\n" + install);
  };
  const std::string wanted = "WantedBy=multi-user.target\n";
  for (const char* name : {"on", "off", "run", "shadow", "vendor", "gone"}) {
    write(name + std::string(".service"), wanted);
  }
  write("known.service", "Alias=other.service\n");
  write("also.service", "Also=on.service\n");
  write("plain.service", "");
  write("t@.service", wanted + "DefaultInstance=a\n");
  write("u@.service", wanted);
  write("named.service", "");
  Link(vendor + "on.service", admin + "multi-user.target.wants/on.service");
  Link("nowhere", admin + "x.target.requires/t@a.service");
  Link("nowhere", admin + "x.target.wants/u@b.service");
  Link("nowhere", "run/systemd/system/x.target.wants/run.service");
  Link("../vendor.service", vendor + "x.target.wants/vendor.service");
  Link("/dev/null", admin + "shadow.service");
  Link("/dev/null", "run/systemd/system/gone.service");
  Link("/usr/lib/systemd/system/known.service", admin + "other.service");
  Link("named.service", admin + "name2.service");
  Link("name2.service", admin + "name3.service");
  Link("loop2.service", admin + "loop1.service");
  Link("loop1.service", admin + "loop2.service");
  Link("/opt/far.service", admin + "far.service");
  Link("/opt/missing.service", admin + "missing.service");
  Link("nowhere", admin + "y.target.wants");
  Link("nowhere", admin + "off.service.d/1.conf");
  Link("u@.service", vendor + "u@x.service");
  fMachine.Write("opt/far.service", "[Service]\nExecStart=/opt/far SECRET\nUser=far\n");
  fMachine.Write(vendor + "empty.service", "");
  fMachine.Write("run/systemd/generator/made.service", "[Unit]\n");
  fMachine.Write("run/systemd/transient/passing.service", "[Unit]\n");
  fMachine.Write(vendor + "plain.service.d/10-more.conf", "[Service]\nExecStart=/bin/vendor\n");
  fMachine.Write(admin + "plain.service.d/10-more.conf", "[Service]\nExecStart=/bin/admin\n");
  fMachine.Write(vendor + "huge.service", std::string(70000, 'x'));
  fMachine.Write(vendor + "a.timer", "[Timer]\nOnCalendar=daily\nOnFailure=x\nOnBootSec=5min\n");
  fMachine.Write(vendor + "a.socket", "[Socket]\nListenStream=22\nAccept=yes\n");
  const auto ns = fMachine.Namespace();
  ExpectValues(ValuesOf(*ns, {"Service", "TimerService", "SocketService"}), R"(
on.service: UnitFileState=enabled; StartMode=Automatic; EnabledDefault=2; StartedBy={ multi-user.target }
off.service: UnitFileState=disabled; StartMode=Manual; EnabledDefault=3; Description=About off.service
run.service: UnitFileState=enabled-runtime; UnitFile=/usr/lib/systemd/system/run.service
vendor.service: UnitFileState=disabled; StartMode=Automatic
shadow.service: UnitFileState=masked; EnabledDefault=3; Description=
gone.service: UnitFileState=masked-runtime
empty.service: UnitFileState=masked
known.service: UnitFileState=enabled
other.service: UnitFileState=alias; AliasOf=known.service; Description=About known.service
also.service: UnitFileState=indirect
plain.service: UnitFileState=static; StartProgram=/bin/admin; EnabledDefault=5
t@.service: UnitFileState=enabled
u@.service: UnitFileState=indirect
named.service: UnitFileState=indirect
name3.service: UnitFileState=alias; AliasOf=named.service
far.service: UnitFileState=linked; StartProgram=/opt/far; RunsAs=far
made.service: UnitFileState=generated
passing.service: UnitFileState=transient
loop1.service: UnitFileState=bad; AliasOf=loop2.service
missing.service: UnitFileState=bad
missing.service: EnabledDefault=/etc/systemd/system/missing.service: No such file or directory
u@x.service: UnitFileState=static
huge.service: UnitFileState=bad
a.timer: Times={ OnCalendar=daily, OnBootSec=5min }; Unit=a.service; UnitFileState=static
a.socket: Listen={ ListenStream=22 }; Unit=a@.service
)");
  const std::string reason = ReasonsOf(*ns).at("VORNSG_Service");
  for (const char* part : {"/huge.service: more than 64 KiB", "/loop1.service: leads to itself",
                           "/missing.service: No such file or directory"}) {
    EXPECT_NE(reason.find(part), std::string::npos) << reason;
  }
  EXPECT_EQ(ReasonsOf(*ns).count("VORNSG_TimerService"), 0U);  // services are no timers
}

TEST_F(LinuxSoftware, TellsContainersAndLimits) {
  // A file, its text; then a property and its value. Each row keeps the files of those before.
  const std::array<std::string, 4> rows[] = {
      {"sys/fs/cgroup/cpu.max", "max 100000", "ProcessorLimit", "not limited: /sys/fs/cgroup"},
      {"sys/fs/cgroup/cpu.max", "5", "ProcessorLimit", "/sys/fs/cgroup/cpu.max: no valid period"},
      {"proc/1/cgroup", "0::/a/b", "MemoryLimit", "1073741824"},
      {"sys/fs/cgroup/a/b/memory.max", "4096", "MemoryLimit", "4096"},  // "a" has no limit
      {"sys/fs/cgroup/a/memory.max", "8192", "MemoryLimit", "4096"},
      {"proc/1/cgroup", "0::/../x", "MemoryLimit", "1073741824"},
      {"proc/1/cgroup", "3:cpu:/docker/12", "Container", "docker"},
      {"proc/1/environ", std::string("A=1\0KUBERNETES_SERVICE_HOST=1", 29), "Container",
       "kubernetes"},
      {"proc/1/environ", std::string("container=lxc\0", 14), "Container", "lxc"},
      {".dockerenv", "", "Container", "docker"},
      {"run/systemd/container", "systemd-nspawn", "Container", "systemd-nspawn"},
      {"sys/class/dmi/id/product_name", "CloudStack KVM Hypervisor", "VirtualMachine", "KVM"},
      {"etc/debian_version", "trixie/sid", "PointRelease",
       "/etc/debian_version: no number in 'trixie/sid'"},
      {"etc/os-release", "ID=ubuntu\nVERSION=\"22.04.4 LTS (J)\"", "PointRelease", "22.04.4"},
      {"etc/os-release", "ID=rhel\nVERSION_ID=9.4", "PointRelease", "9.4"},
      {"etc/machine-id", "uninitialized", "MachineID", "/etc/machine-id: is not set yet"},
      {"etc/timezone", "Europe/Berlin", "CurrentTimeZone",
       "/etc/localtime: No such file or directory"},
      {"etc/localtime", "none", "CurrentTimeZone", "/etc/localtime: no valid time zone"}};
  for (const auto& [file, text, property, value] : rows) {
    fMachine.Write(file, text);
    EXPECT_EQ(OS(property), value) << file << " " << text;
  }
  fs::remove_all(fMachine.Path() / "sys/fs/cgroup");
  EXPECT_EQ(OS("MemoryLimit"), "/sys/fs/cgroup: no control groups");
  fMachine.WriteFiles(
      "sys/fs/cgroup: memory/memory.limit_in_bytes=9223372036854771712\n"
      "sys/fs/cgroup: cpu,cpuacct/cpu.cfs_quota_us=50000; pids/pids.max=10\n"
      "sys/fs/cgroup: cpu,cpuacct/cpu.cfs_period_us=100000\n");
  const TTexts values = ValuesOf(*fMachine.Namespace(), {"OperatingSystem"});
  ExpectValues(
      values,
      ": ControlGroupVersion=1; MemoryLimit=not limited: /sys/fs/cgroup/memory; ProcessLimit=10\n"
      ": ProcessorLimit=0.5\n");
}

TEST_F(LinuxSoftware, SaysWhyNothingIsThere) {
  fs::remove_all(fMachine.Path() / "var/lib/dpkg");
  const auto why = [this](const char* name) { return ReasonsOf(*fMachine.Namespace()).at(name); };
  EXPECT_EQ(why("VORNSG_SoftwareIdentity"), "/var/lib/dpkg/status: No such file or directory");
  fs::create_directories(fMachine.Path() / "var/lib/rpm");
  EXPECT_EQ(why("VORNSG_SoftwareIdentity"),
            "the packages are those of rpm, whose database /var/lib/rpm is not read");
  fMachine.Write("var/lib/dpkg/status.d/base", "Package: base\nVersion: 1\n");
  EXPECT_EQ(InstancesOf(*fMachine.Namespace(), "VORNSG_SoftwareIdentity").size(), 1U);
  fs::remove_all(fMachine.Path() / "proc/1");
  EXPECT_EQ(OS("NumberOfProcesses"), "/proc: shows no process 1, so that others may be hidden");
  fMachine.Write("usr/lib/systemd/system/huge.service", std::string(70000, 'x'));
  EXPECT_EQ(why("VORNSG_SocketService"), "no unit's name ends with .socket");
  fs::remove_all(fMachine.Path() / "usr");
  fs::remove_all(fMachine.Path() / "etc/init.d");
  EXPECT_EQ(why("VORNSG_Service"), "/usr/lib/systemd/system: No such file or directory");
}

}  // namespace
}  // namespace NVORNQDX20
