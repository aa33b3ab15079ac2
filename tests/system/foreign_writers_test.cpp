// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/foreign_writers.h>

#include <functional>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "support/temp_dir.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// The folders "a" and "b", and a file in each; others can write to what `change` makes theirs.
std::string Found(const std::string& name, const std::function<void(const std::string&)>& change,
                  uid_t owner = ::geteuid()) {
  const TTempDir dir;
  const std::string path = std::filesystem::canonical(dir.Path()).string() + "/";
  for (const char* file : {"a/file", "b/file"}) ::chmod(dir.Write(file, "").c_str(), 0644);
  for (const char* folder : {"a", "b"}) ::chmod((path + folder).c_str(), 0755);
  change(path);
  std::string found = FindForeignWriter(path + name, owner).value_or("nobody");
  const std::size_t at = found.find(path);
  return at == std::string::npos ? found : found.erase(at, path.size());
}

std::function<void(const std::string&)> Mode(const char* name, mode_t mode) {
  return [=](const std::string& path) { ::chmod((path + name).c_str(), mode); };
}

std::function<void(const std::string&)> Link(const char* target, const char* name,
                                             const char* everybodys = "") {
  return [=](const std::string& path) {
    std::filesystem::create_symlink(target, path + name);
    if (*everybodys != 0) ::chmod((path + everybodys).c_str(), 0777);
  };
}

TEST(ForeignWriter, IsFoundAlongTheWholeWay) {
  const std::string away = "; 'chmod o-w' takes that right away";
  const std::pair<std::string, std::string> rows[] = {
      {Found("a/file", Mode("", 0755)), "nobody"},
      {Found("a/file", Mode("a", 0757)), "everybody may write to folder a" + away},
      {Found("a/file", Mode("", 01777)), "nobody"},  // sticky
      // Others cannot replace the file, but add one.
      {Found("a/file", Mode("a", 01777)), "everybody may write to folder a" + away},
      {Found("a/file", Mode("a/file", 0646)), "everybody may write to it" + away},
      {Found("a/file", Mode("a/file", 01646)), "everybody may write to it" + away},
      {Found("a/link", Link("../b/file", "a/link")), "nobody"},
      {Found("a/link", Link("../b/file", "a/link", "b")), "everybody may write to folder b" + away},
      {Found("a/link", Link("../b/file", "a/link", "b/file")),
       "everybody may write to file b/file" + away},
      {Found("c/file", Link("b/../a/.", "c", "b")), "everybody may write to folder b" + away},
      {Found("a/x/y", Link("x", "a/x")), "link a/x is one of too many links"},
      {Found("a/none", Mode("", 0755)), "a/none cannot be examined: No such file or directory"}};
  for (const auto& [found, expected] : rows) EXPECT_EQ(found, expected);
}

TEST(ForeignWriter, IsTheOwnerUnlessItIsTheCommands) {
  if (::geteuid() != 0) return;  // only root can give files away
  constexpr uid_t kUser = 65534;
  const auto give = [](const char* name) {
    return [=](const std::string& path) {
      std::filesystem::create_symlink("../b/file", path + "a/link");
      ::lchown((path + name).c_str(), kUser, kUser);
      ::chmod(path.c_str(), 01777);
    };
  };
  const std::string may = "user nobody may write to ";
  const std::string away = "; 'chown root' takes that right away";
  EXPECT_EQ(Found("a/file", give("a")), may + "folder a" + away);
  EXPECT_EQ(Found("a/file", give("a/file")), may + "it" + away);
  EXPECT_EQ(Found("a/link", give("a/link")), may + "it" + away);
  EXPECT_EQ(Found("a/file", give("a"), kUser), "nobody");
  const auto ofDaemon = [](gid_t group) {
    return [=](const std::string& path) {
      ::chown((path + "a").c_str(), 1, group);
      ::chmod((path + "a").c_str(), 0775);
    };
  };
  EXPECT_EQ(Found("a/file", ofDaemon(1), 1), "nobody");
  const std::string groups = " may write to folder a; 'chmod g-w' takes that right away";
  EXPECT_EQ(Found("a/file", ofDaemon(2), 1), "group bin" + groups);
  EXPECT_EQ(Found("a/file", Mode("a", 0775)), "group root" + groups);
}

}  // namespace
}  // namespace NVORNQDX20
