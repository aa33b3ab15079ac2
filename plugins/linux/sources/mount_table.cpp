// SPDX-License-Identifier: Apache-2.0
#include "mount_table.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <vector>

#include "reading.h"

namespace NVORNQDX20 {
namespace {

/// File systems in memory or on a block device: statfs cannot hang.
constexpr std::string_view kLocalTypes[] = {
    "bcachefs", "btrfs",    "erofs", "exfat", "ext2",   "ext3",  "ext4",    "f2fs",
    "hfsplus",  "iso9660",  "jfs",   "msdos", "nilfs2", "ntfs3", "overlay", "ramfs",
    "reiserfs", "squashfs", "tmpfs", "udf",   "vfat",   "xfs",   "zfs"};

/// Interfaces of the kernel without files of users. statfs cannot hang here, either.
constexpr std::string_view kInterfaceTypes[] = {
    "binfmt_misc", "bpf",      "cgroup",     "cgroup2",   "configfs", "debugfs", "devpts",
    "devtmpfs",    "efivarfs", "fusectl",    "hugetlbfs", "mqueue",   "nsfs",    "proc",
    "pstore",      "rootfs",   "securityfs", "selinuxfs", "sysfs",    "tracefs"};

template <std::size_t kSize>
bool IsOneOf(const std::string_view (&types)[kSize], const std::string& type) {
  return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

std::vector<std::string_view> WordsOf(std::string_view line, std::string_view separators) {
  std::vector<std::string_view> words;
  while (!line.empty()) {
    const std::size_t end = std::min(line.find_first_of(separators), line.size());
    if (end != 0) words.push_back(line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return words;
}

bool IsOctal(std::string_view digits) {
  return digits.size() == 3 && digits.find_first_not_of("01234567") == std::string_view::npos;
}

/// Decodes blanks, tabs, line ends and backslashes, written as a backslash and three octal digits.
std::string Unescape(std::string_view word) {
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

std::vector<TMount> ParseLines(std::string_view table) {
  std::vector<TMount> mounts;
  while (!table.empty()) {
    const std::vector<std::string_view> words = WordsOf(TakeLine(table), " \t");
    const bool mount = words.size() >= 4 && words[0].front() != '#' && words[1].front() == '/';
    if (!mount) continue;
    const std::vector<std::string_view> options = WordsOf(words[3], ",");
    const bool readOnly = std::find(options.begin(), options.end(), "ro") != options.end();
    mounts.push_back(
        {Unescape(words[0]), Unescape(words[1]), std::string(words[2]), readOnly, false});
  }
  return mounts;
}

/// Returns whether the path, or one of its parent directories, is one of the places.
bool LeadsThrough(const std::set<std::string>& places, const std::string& path) {
  if (places.count("/") != 0) return true;
  for (std::size_t end = path.find('/', 1); end < path.size(); end = path.find('/', end + 1)) {
    if (places.count(path.substr(0, end)) != 0) return true;
  }
  return places.count(path) != 0;
}

}  // namespace

std::map<std::string, TMount> ParseMounts(std::string_view table) {
  std::map<std::string, TMount> mounts;
  std::set<std::string> uncertain;
  for (TMount& mount : ParseLines(table)) {
    if (IsOneOf(kInterfaceTypes, mount.fType)) continue;
    if (!IsOneOf(kLocalTypes, mount.fType)) uncertain.insert(mount.fPath);
    const std::string key = PrintableText(mount.fPath);
    mounts.insert_or_assign(key, std::move(mount));
  }
  for (auto& [key, mount] : mounts) mount.fCanBeAsked = !LeadsThrough(uncertain, mount.fPath);
  return mounts;
}

}  // namespace NVORNQDX20
