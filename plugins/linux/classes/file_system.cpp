// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_FileSystem: mounts that hold files.
#include <qdxcore/schema_helper.h>

#include "catalogue.h"
#include "machine/mount_table.h"
#include "machine/numbers.h"
#include "machine/text.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

const char* const kClassName = "VORNSG_FileSystem";

TReading ReadTable(const THostFiles& files) {
  if (files.IsThisMachine()) return files.Read("/proc/self/mounts", THostFiles::kMaxTableSize);
  // Below another root: the recorded mounts, else those that fstab configures.
  TReading mounts = files.Read("/proc/mounts", THostFiles::kMaxTableSize);
  return mounts ? mounts : files.Read("/etc/fstab");
}

TReadingOf<TSpace> ReadSpace(const THostFiles& files, const TMount& mount) {
  if (!mount.fCanBeAsked) return TReadingOf<TSpace>::Missing("not asked: may hang");
  return files.ReadSpace(mount.fPath);
}

TNumber Of(const TReadingOf<TSpace>& space, std::uint64_t TSpace::*field) {
  return space ? TNumber::Of((*space.fValue).*field) : TNumber::Missing(space.fReason);
}

/// Some file systems allocate inodes on demand and report 0.
TNumber InodesOf(const TReadingOf<TSpace>& space, std::uint64_t TSpace::*field) {
  const bool unlimited = space && space.fValue->fInodes == 0;
  return unlimited ? TNumber::Missing("has no fixed number of inodes") : Of(space, field);
}

void AddFileSystems(TNamespaceBuilder& builder, const THost& host, ICIMClass& fileSystem) {
  const TReading table = ReadTable(host.fFiles);
  if (!table) builder.NoteMissingInstances(fileSystem, table.fReason);
  for (const auto& [name, mount] : ParseMounts(table.fValue.value_or(std::string()))) {
    const TReadingOf<TSpace> space = ReadSpace(host.fFiles, mount);
    builder.AddInstance(fileSystem,
                        {{"CSCreationClassName", TCIMSchemaHelper::kSystemCreationClassName},
                         {"CSName", host.fName.fValue.value_or(std::string())},
                         {"CreationClassName", kClassName},
                         {"Name", name},
                         {"Device", PrintableText(mount.fDevice)},
                         {"FileSystemType", PrintableText(mount.fType)},
                         {"ReadOnly", mount.fReadOnly},
                         {"FileSystemSize", Of(space, &TSpace::fSize)},
                         {"AvailableSpace", Of(space, &TSpace::fAvailable)},
                         {"TotalInodes", InodesOf(space, &TSpace::fInodes)},
                         {"FreeInodes", InodesOf(space, &TSpace::fFreeInodes)}},
                        name);
  }
}

}  // namespace

TClassDescription FileSystemClass() {
  const auto number = TType::kCIMTypeUint64;
  return {{kClassName,
           "A file system that is mounted, or that an image mounts when it runs.",
           {{"CSCreationClassName", TType::kCIMTypeString, true, "The class of the machine."},
            {"CSName", TType::kCIMTypeString, true, "The name of the machine."},
            {"CreationClassName", TType::kCIMTypeString, true, "The name of this class."},
            {"Name", TType::kCIMTypeString, true, "Where it is mounted."},
            {"Device", TType::kCIMTypeString, false, "What is mounted."},
            {"FileSystemType", TType::kCIMTypeString, false, "Its type, as in \"ext4\"."},
            {"ReadOnly", TType::kCIMTypeBoolean, false, "Whether it refuses to be written."},
            {"FileSystemSize", number, false, "Its size.", "byte"},
            {"AvailableSpace", number, false, "The space left for users.", "byte"},
            {"TotalInodes", number, false, "The number of files that it can hold."},
            {"FreeInodes", number, false, "The number of files that it can still take."}}},
          AddFileSystems};
}

}  // namespace NVORNQDX20
