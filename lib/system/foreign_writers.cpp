// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/foreign_writers.h>

#include <qdxsystem/error_text.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

std::string UserText(uid_t user) {
  const passwd* const entry = ::getpwuid(user);
  return "user " + (entry == nullptr ? std::to_string(user) : entry->pw_name);
}

std::string GroupText(gid_t group) {
  const ::group* const entry = ::getgrgid(group);
  return "group " + (entry == nullptr ? std::to_string(group) : entry->gr_name);
}

/// With the umask 002 a user's files can be written by this group.
bool IsPrivateGroup(gid_t group, uid_t user) {
  const passwd* const owner = ::getpwuid(user);
  if (user == 0 || owner == nullptr || owner->pw_gid != group) return false;
  const std::string name = owner->pw_name;
  const ::group* const entry = ::getgrgid(group);
  if (entry == nullptr || entry->gr_name != name) return false;
  char** member = entry->gr_mem;
  while (*member != nullptr && *member == name) ++member;
  return *member == nullptr;
}

/// Returns whether the user is outside of this user namespace, where the owner of the folder "/"
/// can be. All such users have one number, which is not mapped then.
bool IsUnmapped(uid_t user) {
  constexpr uid_t kOverflow = 65534;
  std::ifstream map("/proc/self/uid_map");
  std::uint64_t first = 0, outside = 0, count = 0;
  bool isMapped = !map.is_open();
  while (map >> first >> outside >> count) {
    isMapped = isMapped || (first <= kOverflow && kOverflow < first + count);
  }
  return user == kOverflow && !isMapped;
}

/// Follows a path from the root, one name at a time.
class TPathCheck {
 public:
  TPathCheck(const fs::path& path, uid_t owner) : fOwner(owner) { Push(path); }

  std::optional<std::string> Run() {
    std::optional<std::string> found = Examine();
    if (!found) found = CheckPlace();
    while (!found && !fRest.empty()) {
      const fs::path name = fRest.back();
      fRest.pop_back();
      found = Enter(name);
    }
    return found;
  }

 private:
  /// Puts the names of a path in front of the rest.
  void Push(const fs::path& path) {
    if (path.is_absolute()) fPlace = "/";
    const std::vector<fs::path> names(path.begin(), path.end());
    fRest.insert(fRest.end(), names.rbegin(), names.rend());
  }

  std::optional<std::string> Enter(const fs::path& name) {
    if (name.empty() || name == "." || name == "/") return std::nullopt;
    const fs::path folder = fPlace;
    // No name of fPlace is a link.
    fPlace = name == ".." ? folder.parent_path() : folder / name;
    auto found = Examine();
    if (found) return found;
    if (!S_ISLNK(fStatus.st_mode)) return CheckPlace();
    constexpr int kMaxLinks = 40;
    if (++fLinks > kMaxLinks) return Shown() + " is one of too many links";
    found = CheckOwner();
    if (found) return found;
    std::error_code error;
    const fs::path target = fs::read_symlink(fPlace, error);
    if (error) return Unreadable(error.value());
    fIsElsewhere = fIsElsewhere || fRest.empty();
    fPlace = folder;
    Push(target);
    return std::nullopt;
  }

  std::optional<std::string> Examine() {
    if (::lstat(fPlace.c_str(), &fStatus) != 0) return Unreadable(errno);
    return std::nullopt;
  }

  std::optional<std::string> CheckOwner() const {
    const uid_t user = fStatus.st_uid;
    if (user == 0 || user == fOwner || IsUnmapped(user)) return std::nullopt;
    return Writable(UserText(user), "chown root");
  }

  std::optional<std::string> CheckPlace() {
    auto found = CheckOwner();
    // Nobody can replace what is in a sticky folder, but to the file's own folder others could add.
    const bool isSticky = S_ISDIR(fStatus.st_mode) && (fStatus.st_mode & S_ISVTX) != 0;
    if (found || (isSticky && fRest.size() > 1)) return found;
    if ((fStatus.st_mode & S_IWOTH) != 0) return Writable("everybody", "chmod o-w");
    const bool isOfGroup = (fStatus.st_mode & S_IWGRP) != 0;
    if (isOfGroup && !IsPrivateGroup(fStatus.st_gid, fStatus.st_uid)) {
      return Writable(GroupText(fStatus.st_gid), "chmod g-w");
    }
    return std::nullopt;
  }

  std::string Shown() const {
    if (fRest.empty() && !fIsElsewhere) return "it";
    const bool isLink = S_ISLNK(fStatus.st_mode);
    const char* const kind = isLink ? "link " : S_ISDIR(fStatus.st_mode) ? "folder " : "file ";
    return kind + fPlace.string();
  }
  std::string Writable(const std::string& who, const std::string& remedy) const {
    return who + " may write to " + Shown() + "; '" + remedy + "' takes that right away";
  }
  std::string Unreadable(int error) const {
    return fPlace.string() + " cannot be examined: " + ErrorText(error);
  }

  const uid_t fOwner;
  std::vector<fs::path> fRest;  // the next name is the last one
  fs::path fPlace = "/";
  struct stat fStatus {};
  int fLinks = 0;
  bool fIsElsewhere = false;  // the file is a link
};

}  // namespace

std::optional<std::string> FindForeignWriter(const std::string& file, uid_t owner) {
  return TPathCheck(fs::absolute(file), owner).Run();
}

std::optional<std::string> FindForeignWriterOfCode(const std::string& file) {
  if (::geteuid() != 0) return std::nullopt;
  struct stat program {};  // root's, if there is no /proc
  ::stat("/proc/self/exe", &program);
  return FindForeignWriter(file, program.st_uid);
}

}  // namespace NVORNQDX20
