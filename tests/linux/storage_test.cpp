// SPDX-License-Identifier: Apache-2.0
// Disks, what is on them, and what is mounted, on a made-up server.
#include "linux/machine.h"

#include <algorithm>

namespace NVORNQDX20 {
namespace {

const char* const kBlockDevices = R"(
sys/block/sda: dev=8:0; size=1000215217; removable=0; ro=0; device/vendor=ATA     ; device/rev=904Q
sys/block/sda: device/model=SAMSUNG MZ7LH480; device/ioerr_cnt=0x1f; queue/rotational=0
sys/block/sda: queue/logical_block_size=512; queue/scheduler=none [mq-deadline] kyber
sys/block/sda/sda1: partition=1; dev=8:1; size=2048; start=34; ro=1
sys/block/sda/sda2: partition=2; dev=8:2; size=4096; start=4096; ro=0
sys/block/sda/sda5x: size=1
sys/block/sdb: dev=8:16; size=0; removable=1; device/vpd_pg80=abc; device/model=Card Reader
sys/block/cciss!c0d0: dev=104:0; size=8; device/x=; cciss!c0d0p1/partition=1; cciss!c0d0p1/size=2
sys/block/xvda: dev=202:0; size=16; queue/rotational=1
sys/block/mmcblk0: dev=179:0; size=8; device/name=SD16G; device/life_time=0x01 0x0b
sys/block/mmcblk0/mmcblk0boot0: size=8
sys/block/sr0: dev=11:0; size=2097151; removable=1; ro=1; device/vendor=QEMU
sys/block/nvme0n1: dev=259:0; size=8; nsid=1; wwid=eui.0025; device/firmware_rev=EXA7301Q; hidden=0
sys/block/nvme0c1n1: hidden=1; size=8
sys/class/nvme/nvme1: model=P; serial=S; firmware_rev=F; state=live; cntlid=3; nvme0c1n1/size=8
sys/class/scsi_tape/st0: dev=9:0; device/vendor=HP; device/model=Ultrium 8-SCSI; device/rev=N9SG
sys/class/scsi_tape/st0: stats/read_byte_cnt=7; stats/write_cnt=3; device/vpd_pg80=x
sys/class/scsi_tape: nst0/dev=9:128; st0a/dev=9:96; st1/uevent=; stx/dev=9:1
sys/class/scsi_generic/sg3/device: model=Ultrium; scsi_tape/st0/dev=9:0; scsi_tape/nst0/dev=9:128
sys/class/scsi_generic/sg4/device: block/sda/size=1; block/gone/size=1
sys/block/dm-0: dev=253:0; size=64; dm/name=vg--a-lv-root; dm/uuid=LVM-uuid; dm/suspended=1
sys/block/dm-0: slaves/sda2/size=4096; slaves/md5/size=8; queue/logical_block_size=4096
sys/block/dm-1: dev=253:1; size=64; dm/name=safe; dm/uuid=CRYPT-LUKS2-uuid-safe
sys/block/dm-2: dev=253:2; size=64; dm/name=safe1; dm/uuid=part1-CRYPT-LUKS2-uuid-safe
sys/block/md5: dev=9:5; size=8; md/level=raid5; md/raid_disks=4 (3); md/degraded=1; md/uuid=u-5
sys/block/md5: md/sync_action=reshape; md/sync_completed=30 / 90; md/dev-sdx/state=faulty
sys/block/md5: md/dev-sdy/state=in_sync; md/dev-sdz/state=spare; md/chunk_size=524288
sys/block/md7: md/level=container; md/raid_disks=
sys/block/loop0: dev=7:0; size=8; loop/backing_file=/srv/image; loop0p1/partition=1; loop0p1/size=4
sys/block/loop1: dev=7:1; size=0
sys/block/zram0: dev=252:0; size=16; ro=0
sys/block/nbd0: dev=43:0; size=0
sys/block/ram0: dev=1:0; size=8192
)";

const char* const kDeviceValues = R"(
/dev/sda: Name=sda; Model=SAMSUNG MZ7LH480; ElementName=SAMSUNG MZ7LH480HAHQ-00005
/dev/sda: Manufacturer=ATA; SerialNumber=S45PNA0M; Revision=904Q; FirmwareRevision=HXT7904Q
/dev/sda: WWN=naa.5002538e40a1b2c3; Size=512110191104; MaxMediaSize=512110191; DefaultBlockSize=512
/dev/sda: DiskType=3; RPM=does not turn; FormFactor=5; InterconnectSpeed=6000000000
/dev/sda: Transport=sata; InterconnectType=4; Scheduler=mq-deadline; ErrorCount=31
/dev/sda: PartitionTableType=gpt; Kind=disk; NumberOfBlocks=1000215217; Access=3; Primordial=true
/dev/sda1: Name=sda1; Size=1048576; BlockSize=512; NumberOfBlocks=2048; StartingOffset=17408
/dev/sda1: PartitionNumber=1; Access=1; Kind=part; ContentType=vfat; ContentUUID=A1-B2
/dev/sda1: ContentLabel=my disk; PartitionLabel=EFI system; PartitionUUID=p-1; Bootable=true
/dev/sda1: PartitionType=the partition table is of type gpt
/dev/sda2: PartitionType=3; Bootable=false
/dev/sdb: Size=0; Model=Card Reader; SerialNumber=/sys/block/sdb/device/vpd_pg80: empty
/dev/cciss/c0d0: Name=cciss/c0d0; Size=4096
/dev/cciss/c0d0p1: Name=cciss/c0d0p1; Size=1024
/dev/xvda: Size=8192; DiskType=2
/dev/mmcblk0: Model=SD16G; LifeTimeUsed=100; Transport=mmc
/dev/sr0: MediumSize=1073741; SerialNumber=QM00003; Model=QEMU DVD-ROM; Revision=1.5.3; Kind=rom
/dev/sr0: MaxMediaSize=depends on the medium
/dev/st0: Model=Ultrium 8-SCSI; Manufacturer=HP; Revision=N9SG; SerialNumber=HUJ5; Removable=true
/dev/st0: MaxMediaSize=depends on the medium; NonRewindingDevice=/dev/nst0; BytesRead=7; Writes=3
/dev/st1: NonRewindingDevice=/sys/class/scsi_tape/nst1: No such file or directory
/dev/nvme0n1: LifeTimeUsed=no file has it: the health log of an NVMe disk (page 2) is read by ioctl only
/dev/nvme0n1: WWN=eui.0025; FirmwareRevision=EXA7301Q; NamespaceID=1; Transport=nvme
/dev/nvme1: Model=P; SerialNumber=S; FirmwareRevision=F; State=live; ControllerID=3
/dev/dm-0: Name=dm-0; Kind=lvm; ElementName=vg--a-lv-root; VolumeGroup=vg-a; LogicalVolume=lv-root
/dev/dm-0: Size=32768; NumberOfBlocks=8; Suspended=true; Primordial=false
/dev/dm-1: Kind=crypt; LogicalVolume=not a logical volume; BackingFile=not a loop device
/dev/dm-2: Kind=part
/dev/md5: Kind=raid5; NumberOfMembers=4; Degraded=1; PackageRedundancy=0; ChunkSize=524288
/dev/md5: NoSinglePointOfFailure=false; SyncAction=reshape; SyncProgress=33; UUID=u-5
/dev/md7: RAIDLevel=container; PackageRedundancy=level container tells nothing about redundancy
/dev/loop0: Kind=loop; BackingFile=/srv/image; ElementName=not of the device mapper
/dev/loop0p1: Size=2048
/dev/zram0: Kind=zram; Size=8192; Primordial=true
/dev/sdc: Size=1024000; DeviceNumber=8:32; DefaultBlockSize=sysfs does not have the device
/dev/sdc1: Size=512000; Kind=part; DeviceNumber=8:33
/dev/nvme9n1p2: Size=4096
/dev/md7: Size=2048; DeviceNumber=9:7
)";

/// A page of vital product data: four bytes of header before the payload.
std::string Page(char code, const std::string& payload) {
  const auto size = payload.size();
  return {std::string{'\0', code, static_cast<char>(size >> 8U), static_cast<char>(size & 0xffU)} +
          payload};
}

/// Puts a text of ATA into the identification, whose words have the second character first.
void PutText(std::string& identify, std::size_t word, const std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) identify[word * 2 + (i ^ 1U)] = text[i];
}

std::string ATAPage() {
  std::string identify(512, '\0');
  PutText(identify, 23, "HXT7904Q");
  PutText(identify, 27, "SAMSUNG MZ7LH480HAHQ-00005              ");
  identify[154] = 6;  // word 77: third generation of SATA
  identify[336] = 3;  // word 168: 2.5 inches
  identify[434] = 1;  // word 217: does not turn
  return Page('\x89', std::string(56, '\0') + identify);
}

/// The two ends of each tie, by their last keys: "/dev/sda /dev/sda1".
std::vector<std::string> TiesOf(const ICIMNamespace& ns, const std::string& className,
                                const char* antecedent = "Antecedent",
                                const char* dependent = "Dependent") {
  std::vector<std::string> ties;
  for (const auto& tie : InstancesOf(ns, "VORNSG_" + className)) {
    std::string ends;
    for (const char* name : {antecedent, dependent}) {
      const TCIMReference reference = tie->GetProperty(name, {})->GetValue();
      const auto end = boost::dynamic_pointer_cast<ICIMInstance>(reference.GetCIMElement());
      std::string key;
      for (const auto& property : NModel::PropertiesOf(*end->GetClass({}))) {
        if (property.fIsKey) key = TextOf(*end, property.fDecl->GetName());
      }
      ends += (ends.empty() ? "" : " ") + key;
    }
    ties.push_back(ends);
  }
  std::sort(ties.begin(), ties.end());
  return ties;
}

class LinuxStorage : public ::testing::Test {
 protected:
  void SetUp() override {
    fMachine.WriteFiles(kBlockDevices);
    const std::string sda = "sys/block/sda/device/";
    fMachine.Write(sda + "vpd_pg80", Page('\x80', "    S45PNA0M"));
    fMachine.Write(
        sda + "vpd_pg83",
        Page('\x83', std::string("\x02\x01\0\4abcd", 8) +
                         std::string("\x01\x13\0\x08portname", 12) +
                         std::string("\x01\x03\0\x08\x50\x02\x53\x8e\x40\xa1\xb2\xc3", 12)));
    fMachine.Write(sda + "vpd_pg89", ATAPage());
    fMachine.Write("sys/class/scsi_tape/st0/device/vpd_pg80", Page('\x80', "HUJ5"));
    const std::string udev = "run/udev/data/b";
    fMachine.Write(udev + "8:0",
                   "S:disk/by-id/ata-1\nE:ID_ATA_SATA=1\nE:ID_PART_TABLE_TYPE=gpt\n"
                   "E:ID_SERIAL_SHORT=S45PNA0M\n");
    fMachine.Write(udev + "8:1",
                   "S:disk/by-label/my\\x20disk\nE:ID_FS_TYPE=vfat\nE:ID_FS_UUID=A1-B2\n"
                   "E:ID_FS_LABEL_ENC=my\\x20disk\nE:ID_PART_ENTRY_NAME=EFI\\x20system\n"
                   "E:ID_PART_ENTRY_UUID=p-1\nE:ID_PART_ENTRY_SCHEME=gpt\n"
                   "E:ID_PART_ENTRY_FLAGS=0x4\n");
    fMachine.Write(udev + "8:2", "E:ID_PART_ENTRY_SCHEME=dos\nE:ID_PART_ENTRY_TYPE=0x83\n");
    fMachine.Write("sys/block/sda/sda2/partition", "6\n");
    fMachine.Write("proc/partitions",
                   "major minor  #blocks  name\n\n   8  0  9 sda\n 8 32 1000 sdc\n 8 33 500 sdc1\n"
                   "259 9 8 nvme9n1\n259 10 4 nvme9n1p2\n9 7 2 md7\n1 0 8 ram0\n8 x 1 y\n");
    fMachine.Write(udev + "11:0",
                   "E:ID_CDROM=1\nE:ID_CDROM_DVD=1\nE:ID_MODEL_ENC=QEMU\\x20DVD-ROM\\x20\\x20\n"
                   "E:ID_SERIAL_SHORT=QM00003\nE:ID_REVISION=1.5.3\n");
  }

  const TMachine fMachine{};
};

TEST_F(LinuxStorage, HasDisksAndWhatIsMadeOfThem) {
  const auto ns = fMachine.Namespace();
  const std::vector<std::string> extents = {"StorageExtent", "DiskPartition", "LogicalDisk",
                                            "StorageVolume"};
  const std::vector<std::string> drives = {"DiskDrive", "CDROMDrive", "DVDDrive", "TapeDrive",
                                           "NVMeController"};
  TTexts values = ValuesOf(*ns, drives);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_DVDDrive").size(), 1U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_DiskDrive").size(), 8U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_TapeDrive").size(), 2U);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_StorageExtent").size(), 9U);  // no card in sdb; with zram0
  for (auto& [name, value] : ValuesOf(*ns, extents)) values[name] = value;
  ExpectValues(values, kDeviceValues);
}

TEST_F(LinuxStorage, TiesBlockDevicesToEachOther) {
  const auto ns = fMachine.Namespace();
  using TTies = std::vector<std::string>;
  EXPECT_EQ(TiesOf(*ns, "BasedOn"),
            (TTies{"/dev/cciss/c0d0 /dev/cciss/c0d0p1", "/dev/loop0 /dev/loop0p1",
                   "/dev/md5 /dev/dm-0", "/dev/nvme9n1 /dev/nvme9n1p2", "/dev/sda /dev/sda1",
                   "/dev/sda /dev/sda2", "/dev/sda2 /dev/dm-0", "/dev/sdc /dev/sdc1"}));
  EXPECT_EQ(TiesOf(*ns, "ConcreteIdentity", "SystemElement", "SameElement"),
            (TTies{"/dev/sg3 /dev/st0", "/dev/sg4 /dev/sda"}));
  EXPECT_EQ(TiesOf(*ns, "ControlledBy"), TTies{"/dev/nvme1 /dev/nvme0n1"});
  const TTies media = TiesOf(*ns, "MediaPresent");
  EXPECT_EQ(media.size(), 8U);
  EXPECT_EQ(std::count(media.begin(), media.end(), "/dev/sr0 /dev/sr0"), 1);
}

TEST_F(LinuxStorage, KnowsVolumeGroups) {
  const std::string saved(32, 's');
  const std::string unsaved = "abcdefghijklmnopqrstuvwxyz012345";
  fMachine.WriteFiles(
      "sys/block/dm-0/dm: uuid=LVM-" + saved + std::string(32, 'v') +
      "\nsys/block: dm-3/dev=253:3; dm-3/size=8; dm-3/dm/name=vg1-a-real\n" +
      "sys/block/dm-3: slaves/sda1/x=; dm/uuid=LVM-" + unsaved + std::string(32, 'w') + "-real\n" +
      "sys/block: dm-4/dev=253:4; dm-4/size=8; dm-4/dm/name=vg1-a\n" +
      "sys/block/dm-4: slaves/dm-3/x=; dm/uuid=LVM-" + unsaved + std::string(32, 'w') + "\n");
  fMachine.Write("run/udev/data/b202:0", "E:ID_FS_UUID=pv-x\n");
  fMachine.Write("etc/lvm/backup/vg-a",
                 "vg-a { id = \"ssssss-ssss-ssss-ssss-ssss-ssss-ssssss\" extent_size = 8192\n"
                 "seqno = 7 status = [\"READ\"]\n"
                 "physical_volumes { pv0 { id = \"pv-x\" device = \"/dev/gone\" pe_count = 9 }\n"
                 "pv1 { id = \"pv-y\" device = \"/dev/cciss/c0d0\" pe_count = 1 }\n"
                 "pv2 { id = \"pv-z\" device = \"/dev/sda1\" status = [\"MISSING\"] } } }\n");
  fMachine.Write("etc/lvm/backup/broken", "vg {");
  const auto ns = fMachine.Namespace();
  ExpectValues(ValuesOf(*ns, {"StoragePool"}), R"(
VORNSG:vg-a: PoolID=vg-a; Active=true; ExtentSize=4194304; SequenceNumber=7; Status={ READ }
VORNSG:vg-a: TotalManagedSpace=the saved text has no pe_count
VORNSG:vg1: UUID=abcdef-ghij-klmn-opqr-stuv-wxyz-012345; Active=true
VORNSG:vg1: TotalManagedSpace=/etc/lvm/backup/vg1: No such file or directory
)");
  ExpectValues(ValuesOf(*ns, {"PhysicalVolume"}), R"(
VORNSG:vg-a/pv0: Device=/dev/xvda; SavedDevice=/dev/gone; TotalSpace=37748736; FreeSpace=37748736
VORNSG:vg-a/pv1: Device=/dev/cciss/c0d0
VORNSG:vg-a/pv2: Device=no block device is known to be the physical volume; Status={ MISSING }
)");
  using TTies = std::vector<std::string>;
  EXPECT_EQ(TiesOf(*ns, "ConcreteComponent", "GroupComponent", "PartComponent"),
            (TTies{"VORNSG:vg-a /dev/cciss/c0d0", "VORNSG:vg-a /dev/md5", "VORNSG:vg-a /dev/sda2",
                   "VORNSG:vg-a /dev/xvda", "VORNSG:vg1 /dev/sda1"}));
  EXPECT_EQ(TiesOf(*ns, "AllocatedFromStoragePool"),
            (TTies{"VORNSG:vg-a /dev/dm-0", "VORNSG:vg1 /dev/dm-3", "VORNSG:vg1 /dev/dm-4"}));
}

const char* const kMountInfo =
    "67 0 253:0 /@root / rw,relatime shared:1 master:2 - btrfs /dev/root "
    "rw,subvol=/@root,relatime\n"
    "68 67 0:5 / /proc rw - proc proc rw\n"
    "70 67 8:1 / /boot ro,noatime - vfat /dev/sda1 rw,fmask=0077\n"
    "71 67 8:1 /srv/x\\040y /mnt rw - vfat /dev/sda1 rw\n"
    "72 67 0:50 / /tmp rw - tmpfs  rw,size=1k\n"
    "73 67 0:51 / /share rw - cifs //srv/x rw,username=me,password=a,,b,uid=0\n"
    "74 67 0:52 / /ssh rw - fuse.sshfs me@srv:/home rw,user_id=0\n"
    "76 67 0:53 / /auto rw - autofs systemd-1 rw\n"
    "77 67 0:54 / /work rw - lustre 10.0.0.1@o2ib:10.0.0.2@o2ib:/work rw\n"
    "78 67 0:55 / /proc/bus/usb rw - usbfs /proc/bus/usb rw\n"
    "broken 67 8:1\n75 67 8:1 / /lost rw - vfat\n";

const char* const kMountValues = R"(
/: Device=/dev/root; SourceDevice=/dev/dm-0; MountedFolder=/@root; FileSystemType=btrfs
/: MountOptions=rw,relatime,subvol=/@root; ReadOnly=false; PersistenceType=2
/boot: SourceDevice=/dev/sda1; MountedFolder=/; ReadOnly=true; MountOptions=ro,noatime,fmask=0077
/mnt: MountedFolder=/srv/x y; ReadOnly=false
/tmp: Device=; SourceDevice=; PersistenceType=3; MountOptions=rw,size=1k
/share: MountOptions=rw,username=[removed],password=[removed],uid=0; PersistenceType=4
/ssh: Device=[removed]@srv:/home; PersistenceType=4; MountOptions=rw,user_id=0
/auto: PersistenceType=0
/work: Device=10.0.0.1@o2ib:10.0.0.2@o2ib:/work; PersistenceType=4
/dev/dm-1: Type=partition; Size=1047552; UsedSpace=1024; Priority=-2
/swap file: Type=file; Size=2048; Priority=5
)";

const char* const kFstab =
    "# comment\nUUID=\"A1-B2\" /boot vfat defaults 0 2\n/dev/vg-a/lv-root / btrfs rw\n"
    "LABEL=my\\040disk /old xfs noauto,ro 0 x\n/dev/mapper/safe none swap sw 0 0\n"
    "https://me:pw@srv/d?key=1 /dav davfs rw,username=me\n";

const char* const kFstabValues = R"(
/boot: Device=UUID="A1-B2"; SourceDevice=/dev/sda1; CheckPass=2; MountsAtBoot=true; IsMounted=true
/: SourceDevice=/dev/dm-0; MountOptions=rw; CheckPass=0
/old: MountsAtBoot=false; IsMounted=false; SourceDevice=/dev/sda1
/dev/mapper/safe: SourceDevice=/dev/dm-1; FileSystemType=swap; MountOptions=sw
/dav: Device=https://[removed]@srv/d?[removed]; MountOptions=rw,username=[removed]
)";

TEST_F(LinuxStorage, KnowsWhatIsMountedAndWhatIsConfigured) {
  fMachine.Write("proc/self/mountinfo", "");  // an empty copy
  fMachine.Write("proc/1/mountinfo", kMountInfo);
  fMachine.Write("proc/mounts", "/dev/sdz /other xfs rw 0 0\n");
  fMachine.Write("proc/swaps",
                 "Filename Type Size Used Priority\n/dev/dm-1 partition 1023\t1\t-2\n"
                 "/swap\\040file file 2 0 5\n\nbroken 1\n");
  fMachine.Write("etc/fstab", kFstab);
  const auto ns = fMachine.Namespace();
  TTexts values = ValuesOf(*ns, {"FileSystem"});
  for (auto& [name, value] : ValuesOf(*ns, {"SwapSpace"})) values[name] = value;
  ExpectValues(ValuesOf(*ns, {"MountSetting"}), kFstabValues);
  EXPECT_EQ(InstancesOf(*ns, "VORNSG_FileSystem").size(), 8U);
  ExpectValues(values, kMountValues);
  EXPECT_EQ(TiesOf(*ns, "ResidesOnExtent"),
            (std::vector<std::string>{"/dev/dm-0 /", "/dev/sda1 /boot", "/dev/sda1 /mnt"}));
  EXPECT_EQ(TiesOf(*ns, "HostedFileSystem", "PartComponent", "PartComponent").size(), 8U);
}

}  // namespace
}  // namespace NVORNQDX20
