// SPDX-License-Identifier: Apache-2.0
#include "mount_table.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "fields.h"

namespace NVORNQDX20 {
namespace {

/// File systems in memory or on a block device: statfs cannot hang.
constexpr std::string_view kLocalTypes[] = {
    "bcachefs", "btrfs",    "erofs", "exfat", "ext2",   "ext3",  "ext4",    "f2fs",
    "hfsplus",  "iso9660",  "jfs",   "msdos", "nilfs2", "ntfs3", "overlay", "ramfs",
    "reiserfs", "squashfs", "tmpfs", "udf",   "vfat",   "xfs",   "zfs"};

/// Their files are on a server.
constexpr std::string_view kRemoteTypes[] = {"9p",   "afs",   "beegfs", "ceph",  "cifs",
                                             "gfs2", "gpfs",  "lustre", "ncpfs", "nfs",
                                             "nfs4", "ocfs2", "smb3",   "smbfs", "virtiofs"};

/// Interfaces of the kernel without files of users. statfs cannot hang here, either.
constexpr std::string_view kInterfaceTypes[] = {
    "binfmt_misc", "bpf",       "cgroup",   "cgroup2", "configfs",  "debugfs",
    "devpts",      "devtmpfs",  "efivarfs", "fusectl", "hugetlbfs", "mqueue",
    "nfsd",        "nsfs",      "proc",     "pstore",  "rootfs",    "rpc_pipefs",
    "securityfs",  "selinuxfs", "sysfs",    "tracefs", "usbfs"};

template <std::size_t kSize>
bool IsOneOf(const std::string_view (&types)[kSize], const std::string& type) {
  return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

bool IsOctal(std::string_view digits) {
  return digits.size() == 3 && digits.find_first_not_of("01234567") == std::string_view::npos;
}

using TParse = std::optional<TMount> (*)(const std::vector<std::string_view>& words);

/// Device, path, type, options; comments begin with "#".
std::optional<TMount> ParseMount(const std::vector<std::string_view>& words) {
  if (words.size() < 4 || words[0].front() == '#' || words[1].front() != '/') return std::nullopt;
  return TMount{UnescapeMount(words[0]),
                UnescapeMount(words[1]),
                std::string(words[2]),
                HasMountOption(words[3], "ro"),
                false,
                std::string(words[3]),
                {},
                {}};
}

/// A mount is read-only if it or its file system is; the options are listed once.
std::string JoinOptions(std::string_view ofMount, std::string_view ofFileSystem, bool readOnly) {
  std::set<std::string_view> listed = {"ro", "rw"};
  std::string joined = readOnly ? "ro" : "rw";
  for (std::string_view options : {ofMount, ofFileSystem}) {
    while (!options.empty()) {
      const std::string_view option = options.substr(0, options.find(','));
      options.remove_prefix(std::min(option.size() + 1, options.size()));
      // A doubled comma is part of a password, by which that is recognised.
      if (option.empty() || listed.insert(option).second) joined.append(",").append(option);
    }
  }
  joined.erase(joined.find_last_not_of(',') + 1);
  return joined;
}

/// ID, parent, number, folder, path, options, any number of tags, "-", type, device, options of the
/// file system.
std::optional<TMount> ParseInfo(const std::vector<std::string_view>& words) {
  constexpr std::size_t kFirstTag = 6;
  if (words.size() < kFirstTag || words[4].front() != '/') return std::nullopt;
  const auto dash = std::find(words.begin() + kFirstTag, words.end(), "-");
  const auto count = std::distance(dash, words.end());
  if (count < 3) return std::nullopt;
  const bool hasDevice = count > 3;  // the kernel writes no word for an empty device
  const std::string_view ofFileSystem = dash[hasDevice ? 3 : 2];
  const bool readOnly = HasMountOption(words[5], "ro") || HasMountOption(ofFileSystem, "ro");
  return TMount{hasDevice ? UnescapeMount(dash[2]) : std::string(),
                UnescapeMount(words[4]),
                std::string(dash[1]),
                readOnly,
                false,
                JoinOptions(words[5], ofFileSystem, readOnly),
                std::string(words[2]),
                UnescapeMount(words[3])};
}

/// Returns whether the path, or one of its parent directories, is one of the places.
bool LeadsThrough(const std::set<std::string>& places, const std::string& path) {
  if (places.count("/") != 0) return true;
  for (std::size_t end = path.find('/', 1); end < path.size(); end = path.find('/', end + 1)) {
    if (places.count(path.substr(0, end)) != 0) return true;
  }
  return places.count(path) != 0;
}

std::map<std::string, TMount> ParseTable(std::string_view table, TParse parse) {
  std::map<std::string, TMount> mounts;
  std::set<std::string> uncertain;
  while (!table.empty()) {
    std::optional<TMount> mount = parse(WordsOf(TakeLine(table)));
    if (!mount || IsOneOf(kInterfaceTypes, mount->fType)) continue;
    if (!IsOneOf(kLocalTypes, mount->fType)) uncertain.insert(mount->fPath);
    const std::string key = PrintableText(mount->fPath);
    mounts.insert_or_assign(key, *std::move(mount));
  }
  for (auto& [key, mount] : mounts) mount.fCanBeAsked = !LeadsThrough(uncertain, mount.fPath);
  return mounts;
}

}  // namespace

bool IsRemoteType(const std::string& type) {
  for (const std::string_view fuse :
       {"fuse.ceph", "fuse.glusterfs", "fuse.sshfs", "fuse.davfs", "fuse.rclone", "fuse.s3fs"}) {
    if (type == fuse) return true;
  }
  return IsOneOf(kRemoteTypes, type);
}

std::string UnescapeMount(std::string_view word) {
  std::string text;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const std::string_view digits = word.substr(i + 1, 3);
    if (word[i] == '\\' && IsOctal(digits)) {
      text += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + digits[2] - '0');
      i += digits.size();
    } else {
      text += word[i];
    }
  }
  return text;
}

bool HasMountOption(std::string_view options, std::string_view option) {
  const std::vector<std::string_view> all = WordsOf(options, ",");
  return std::find(all.begin(), all.end(), option) != all.end();
}

std::map<std::string, TMount> ParseMounts(std::string_view table) {
  return ParseTable(table, ParseMount);
}

std::map<std::string, TMount> ParseMountInfo(std::string_view table) {
  return ParseTable(table, ParseInfo);
}

}  // namespace NVORNQDX20
