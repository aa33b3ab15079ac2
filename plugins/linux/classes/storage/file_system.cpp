// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_FileSystem: mounts that hold files, and what they are tied to.
#include <qdxcore/schema_helper.h>

#include "sources/space.h"
#include "sources/storage/credentials.h"
#include "sources/storage/mounts.h"
#include "storage_extent.h"

namespace NVORNQDX20 {
namespace {

const char* const kFileSystemClassName = "VORNSG_FileSystem";

struct TFileSystem {
  std::string fName;
  TMount fMount;
  TReading<TSpace> fSpace;
  const TBlockDevice* fDevice;  ///< A null pointer if it is on no block device.
};

TInstances<TFileSystem> ListFileSystems(const THost& host) {
  const auto& mounts = host.Shared<TMounts>();
  const auto& devices = host.Shared<TBlockDevices>();
  TInstances<TFileSystem> systems;
  systems.fReason = mounts.fReason;
  systems.fAll.reserve(mounts.fAll.size());
  for (const auto& [name, mount] : mounts.fAll) {
    TReading<TSpace> space = Missing("not asked: may hang");
    if (mount.fIsHidden) {
      space = Missing("hidden from this process, which has mounts of its own");
    } else if (mount.fCanBeAsked) {
      space = ReadSpace(host, mount.fPath);
    }
    const TBlockDevice* const device = devices.FindMounted(mount.fNumber, mount.fDevice);
    systems.fAll.push_back({name, mount, std::move(space), device});
  }
  return systems;
}

auto Space(std::uint64_t TSpace::*field) {
  return [field](const TFileSystem& each) { return each.fSpace.map(std::mem_fn(field)); };
}

/// Some file systems allocate inodes on demand and report 0.
auto Inodes(std::uint64_t TSpace::*field) {
  return [field](const TFileSystem& each) {
    return each.fSpace.and_then([field](const TSpace& space) -> TReading<std::uint64_t> {
      if (space.fInodes == 0) return Missing("has no fixed number of inodes");
      return space.*field;
    });
  };
}

std::string DeviceOf(const TFileSystem& system) {
  return WithoutCredentials(PrintableText(system.fMount.fDevice), system.fMount.fType);
}

TText FolderOf(const TFileSystem& system) {
  if (system.fMount.fFolder.empty()) return Missing("only a table of mountinfo tells");
  return PrintableText(system.fMount.fFolder);
}

constexpr std::uint16_t kUnknown = 0, kPersistent = 2, kTemporary = 3, kExternal = 4;

std::uint16_t PersistenceTypeOf(const TFileSystem& system) {
  for (const char* inMemory : {"tmpfs", "ramfs"}) {
    if (system.fMount.fType == inMemory) return kTemporary;
  }
  const std::string& type = system.fMount.fType;
  if (IsRemoteType(type)) return kExternal;
  // A program decides, or what is mounted there when it is used.
  const bool isOpen = type == "autofs" || type == "fuse" || type.compare(0, 5, "fuse.") == 0;
  return isOpen ? kUnknown : kPersistent;
}

}  // namespace

TClass FileSystemClass() {
  return THostTable<TFileSystem>{
      kFileSystemClassName,
      "A file system that is mounted, or that an image mounts when it runs.",
      ListFileSystems,
      {{"CSCreationClassName", "The class of the machine.",
        Constant(TCIMSchemaHelper::kSystemCreationClassName), kKey},
       {"CSName", "The name of the machine.", &THost::GetNameAsKey, kKey, ESecret::kHostName},
       {"CreationClassName", "The name of this class.", kClassName, kKey},
       {"Name", "Where it is mounted.", &TFileSystem::fName, kKey},
       {"Device", "What is mounted.", DeviceOf, ESecret::kMountSource},
       {"FileSystemType", "Its type, as in \"ext4\".",
        [](const TFileSystem& each) { return PrintableText(each.fMount.fType); }},
       {"ReadOnly", "Whether it refuses to be written.",
        [](const TFileSystem& each) { return each.fMount.fReadOnly; }},
       {"FileSystemSize", "Its size.", Space(&TSpace::fSize), TUnit{"byte"}},
       {"UsedSpace", "How much of it is in use.", Space(&TSpace::fUsed), TUnit{"byte"}, kGauge,
        kVolatile},
       {"AvailableSpace",
        "The space left for users. What is kept for others is neither used nor available.",
        Space(&TSpace::fAvailable), TUnit{"byte"}, kGauge, kVolatile},
       {"TotalInodes", "The number of files that it can hold.", Inodes(&TSpace::fInodes)},
       {"FreeInodes", "The number of files that it can still take.", Inodes(&TSpace::fFreeInodes),
        kGauge, kVolatile},
       {"SourceDevice",
        "The kernel's device file of what is mounted, as in \"/dev/dm-0\"; for what is no block "
        "device, the same as Device.",
        [](const TFileSystem& each) {
          return each.fDevice == nullptr ? DeviceOf(each) : each.fDevice->GetPath();
        },
        ESecret::kMountSource},
       {"MountOptions", "The options of the mount and of the file system.",
        [](const TFileSystem& each) {
          return OptionsWithoutCredentials(PrintableText(each.fMount.fOptions));
        },
        ESecret::kMountSource},
       {"MountedFolder",
        "The folder of the file system that is mounted: not \"/\" for a bind mount or a "
        "subvolume.",
        FolderOf},
       {"PersistenceType", "How long it keeps its files.", PersistenceTypeOf,
        TEnumeration{
            {0, "Unknown"}, {1, "Other"}, {2, "Persistent"}, {3, "Temporary"}, {4, "External"}}}}};
}

TClass HostedFileSystemClass() {
  return THostTable<TInstanceName>{
      "VORNSG_HostedFileSystem",
      "Ties a file system to the machine that has mounted it.",
      [](const THost& host) {
        std::vector<TInstanceName> names;
        for (const auto& each : host.Shared<TMounts>().fAll) {
          names.push_back({kFileSystemClassName, each.first});
        }
        return names;
      },
      {{"GroupComponent", "The machine.",
        [](const TInstanceName&, const THost& host) {
          return TInstanceName{TCIMSchemaHelper::kSystemCreationClassName, host.GetNameAsKey()};
        },
        kKey, TRefersTo{TCIMSchemaHelper::kSystemCreationClassName.c_str()}},
       {"PartComponent", "The file system.", [](const TInstanceName& name) { return name; }, kKey,
        TRefersTo{kFileSystemClassName}}}}
      .AsAssociation();
}

TClass ResidesOnExtentClass() {
  return THostTable<TTie>{
      "VORNSG_ResidesOnExtent",
      "Ties a file system to the block device that it is on.",
      [](const THost& host) {
        const auto& devices = host.Shared<TBlockDevices>();
        std::vector<TTie> ties;
        for (const auto& [name, mount] : host.Shared<TMounts>().fAll) {
          const TBlockDevice* const device = devices.FindMounted(mount.fNumber, mount.fDevice);
          if (device == nullptr || device->IsEmpty()) continue;
          ties.push_back({ExtentName(*device), {kFileSystemClassName, name}});
        }
        return ties;
      },
      {{"Antecedent", "The block device.", &TTie::fAntecedent, kKey,
        TRefersTo{"VORNSG_StorageExtent"}},
       {"Dependent", "The file system.", &TTie::fDependent, kKey, TRefersTo{kFileSystemClassName}}}}
      .AsAssociation();
}

}  // namespace NVORNQDX20
