// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

#include <algorithm>
#include <csignal>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

long gPathLimit = 0;  // what pathconf() answers for the limit 4096; the system's own answer for 0

}  // namespace

/// Stands before the C library's function, for the library under test too.
extern "C" QDXCORE_EXPORT long pathconf(const char* path, int name) noexcept {
  if (name == 4096 && gPathLimit != 0) return gPathLimit;
  using TPathconf = long (*)(const char*, int);
  return reinterpret_cast<TPathconf>(::dlsym(RTLD_NEXT, "pathconf"))(path, name);
}

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;
using TOS = TOSSpecific;

class Files : public ::testing::Test {
 protected:
  std::string At(const std::string& name) const { return (fDir.Path() / name).string(); }

  const TTempDir fDir;
};

TEST_F(Files, AreToldFromDirectories) {
  fDir.Write("file", "12345");
  fs::create_symlink("file", At("link"));
  fs::create_symlink("none", At("dangling"));
  ASSERT_EQ(::mkfifo(At("pipe").c_str(), 0600), 0);
  const struct {
    const char* fName;
    bool fIsFile, fIsDir;
  } rows[] = {{"file", true, false}, {"link", true, false},  {"pipe", true, false},
              {"", false, true},     {"none", false, false}, {"dangling", false, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(TOS::FileExists(At(row.fName)), row.fIsFile) << row.fName;
    EXPECT_EQ(TOS::DirExists(At(row.fName)), row.fIsDir) << row.fName;
  }
  EXPECT_EQ(TOS::GetFileSize(At("link")), 5U);
  EXPECT_QDX_STATUS(TOS::GetFileSize(At("")), kQDXStatusFileNotFound);
  EXPECT_QDX_STATUS(TOS::GetFileSize(At("none")), kQDXStatusFileNotFound);
}

TEST_F(Files, OfADirectoryAreListed) {
  EXPECT_TRUE(TOS::ListDir(At("")).empty());
  for (const char* name : {"a", ".hidden", "folder/inside"}) fDir.Write(name, "");
  std::vector<std::string> names = TOS::ListDir(At(""));
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{".hidden", "a", "folder"}));
  EXPECT_QDX_STATUS(TOS::ListDir(At("a")), kQDXStatusFileSystemError);
}

TEST_F(Files, DirectoriesAreCreatedOneAtATime) {
  TOS::CreateDir(At("new"));
  EXPECT_TRUE(TOS::DirExists(At("new")));
  EXPECT_QDX_STATUS(TOS::CreateDir(At("new")), kQDXStatusDirectoryAlreadyExists);
  EXPECT_QDX_STATUS(TOS::CreateDir(At("none/new")), kQDXStatusFileSystemError);
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become somebody else";
  ASSERT_EQ(::seteuid(65534), 0);
  const std::string status = StatusThrownBy([&] { TOS::CreateDir(At("denied")); });
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_EQ(status, "kQDXStatusAccessDenied");
}

TEST_F(Files, PathsAreRelocated) {
  const struct {
    const char *fBase, *fPath, *fResult;
  } rows[] = {{"/opt/x", "data", "/opt/x/data"},
              {"/opt/x/", "data", "/opt/x/data"},
              {"/opt/x/", "/etc/y", "/etc/y"},
              {"", "../data", "../data"},
              {"/opt", "", "/opt/"},
              {"/opt", "./a/..", "/opt/./a/.."}};
  for (const auto& row : rows) {
    EXPECT_EQ(TOS::RelocateRelativePath(row.fBase, row.fPath), row.fResult);
  }
}

using FileCopy = Files;

TEST_F(FileCopy, TakesContentsAndPermissions) {
  std::string contents(100000, 'x');
  contents[50000] = '\0';
  fDir.Write("source", contents);
  fs::permissions(At("source"), fs::perms::owner_all | fs::perms::group_read);
  TOS::FileCopy(At("source"), At("copy"));
  EXPECT_EQ(ReadWholeFile(At("copy")), contents);
  EXPECT_EQ(fs::status(At("copy")).permissions(), fs::status(At("source")).permissions());
  fDir.Write("empty", "");
  TOS::FileCopy(At("empty"), At("empty copy"));
  EXPECT_EQ(TOS::GetFileSize(At("empty copy")), 0U);
}

TEST_F(FileCopy, LeavesWhatIsThere) {
  fDir.Write("source", "new");
  fDir.Write("old", "old");
  EXPECT_QDX_STATUS(TOS::FileCopy(At("source"), At("old")), kQDXStatusFileSystemError);
  EXPECT_EQ(ReadWholeFile(At("old")), "old");
  EXPECT_QDX_STATUS(TOS::FileCopy(At("source"), At("none/new")), kQDXStatusFileSystemError);
  EXPECT_QDX_STATUS(TOS::FileCopy(At(""), At("copy of a directory")), kQDXStatusFileSystemError);
}

TEST_F(FileCopy, FailsWhereNothingMoreIsWrittenButNotInTheMiddleOfABlock) {
  fDir.Write("source", std::string(50000, 'x'));
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const auto copy = [&](rlim_t limit, const char* destination) {
    const rlimit limits{limit, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limits);
    const std::string status =
        StatusThrownBy([&] { TOS::FileCopy(At("source"), At(destination)); });
    ::setrlimit(RLIMIT_FSIZE, &before);
    return status;
  };
  const std::size_t descriptors = TOS::ListDir("/proc/self/fd").size();
  EXPECT_EQ(copy(32768, "a"), "kQDXStatusFileSystemError");
  EXPECT_EQ(copy(40000, "b"), "nothing");
  EXPECT_EQ(TOS::GetFileSize(At("b")), 40000U);
  EXPECT_EQ(copy(40000, "b"), "kQDXStatusFileSystemError");  // it exists
  EXPECT_EQ(TOS::ListDir("/proc/self/fd").size(), descriptors);
  std::signal(SIGXFSZ, handler);
}

TEST_F(FileCopy, OfAMissingSourceRunsOnDescriptor0) {
  int ends[2];
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  const pid_t child = ::fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    ::dup2(ends[1], 0);
    ::close(ends[0]);
    ::close(ends[1]);
    const std::string status =
        StatusThrownBy([&] { TOS::FileCopy(At("none"), At("destination")); });
    ::_exit(status == "nothing" && ::fcntl(0, F_GETFD) == -1 ? 0 : 1);
  }
  ::close(ends[1]);
  ASSERT_EQ(::write(ends[0], "echo", 4), 4);
  ::shutdown(ends[0], SHUT_WR);
  EXPECT_EQ(TOS::GetFileContents(ends[0]), "echo");
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(TOS::FileExists(At("destination")));
  ::close(ends[0]);
}

TEST_F(FileCopy, OfADirectoryNeedsTheTreeOfTheDestination) {
  for (const char* name : {"a/1", "a/sub/2", "a/sub/deep/3"}) fDir.Write(name, name);
  fs::create_symlink("none", At("a/dangling"));
  fs::create_directories(At("flat"));
  TOS::DirCopy(At("a"), At("flat/"), false);
  EXPECT_EQ(TOS::ListDir(At("flat")), std::vector<std::string>{"1"});

  fs::create_directories(At("bare"));
  EXPECT_QDX_STATUS(TOS::DirCopy(At("a"), At("bare"), true), kQDXStatusFileSystemError);
  fs::create_directories(At("tree/sub/deep"));
  TOS::DirCopy(At("a/"), At("tree"), true);
  EXPECT_EQ(ReadWholeFile(At("tree/sub/deep/3")), "a/sub/deep/3");
  EXPECT_QDX_STATUS(TOS::DirCopy(At("a"), At("tree"), false), kQDXStatusFileSystemError);
  EXPECT_QDX_STATUS(TOS::DirCopy(At("none"), At("tree"), false), kQDXStatusFileSystemError);
}

TEST(FileContents, AreReadToTheEndAndLogged) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const std::string contents("a\0b", 3);
  ASSERT_EQ(::write(ends[1], contents.data(), contents.size()), 3);
  ::close(ends[1]);
  const TLogCapture log;
  EXPECT_EQ(TOS::GetFileContents(ends[0]), contents);
  EXPECT_EQ(::close(ends[0]), 0);  // it was left open
  EXPECT_QDX_STATUS(TOS::GetFileContents(ends[0]), kQDXStatusFileSystemError);
  EXPECT_EQ(log.Messages(), (std::vector<std::string>{
                                "3 Debug (linux toss): GetFileContents() Returned: " + contents,
                                "0 ERROR: GetFileContents failed to read file"}));
}

TEST_F(Files, TheCurrentDirectoryNeedsALimitThatThisSystemLacks) {
  EXPECT_QDX_STATUS(TOS::GetCurrentDir(), kQDXStatusFail);
  gPathLimit = 4096;
  EXPECT_EQ(TOS::GetCurrentDir(), fs::current_path().string());
  gPathLimit = 1;
  EXPECT_QDX_STATUS(TOS::GetCurrentDir(), kQDXStatusFail);
  gPathLimit = 0;
}

}  // namespace
}  // namespace NVORNQDX20
