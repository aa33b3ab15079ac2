// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace NVORNQDX20;

namespace fs = std::filesystem;
using TOS = TOSSpecific;

class Files : public ::testing::Test {
 protected:
  Files() { ::umask(0); }
  std::string At(const std::string& name) const { return (fDir.Path() / name).string(); }

  const TTempDir fDir;
};

TEST_F(Files, AreToldFromDirectories) {
  fs::resize_file(fDir.Write("file", "x"), 5000000000);  // beyond 32 bits, most of it a hole
  fs::create_symlink("file", At("link"));
  fs::create_symlink("none", At("dangling"));
  ASSERT_EQ(::mkfifo(At("pipe").c_str(), 0600), 0);
  for (const std::string name : {"file", "link", "pipe", "", "none", "dangling"}) {
    const bool isFile = name == "file" || name == "link" || name == "pipe";
    EXPECT_EQ(TOS::FileExists(At(name)), isFile) << name;
    EXPECT_EQ(TOS::DirExists(At(name)), name.empty()) << name;
    EXPECT_EQ(StatusThrownBy([&] { TOS::GetFileSize(At(name)); }),
              isFile ? "nothing" : "kQDXStatusFileNotFound");
  }
  EXPECT_EQ(TOS::GetFileSize(At("link")), 5000000000U);
}

TEST_F(Files, DirectoriesAreCreatedOneAtATime) {
  TOS::CreateDir(At("new"));
  EXPECT_EQ(fs::status(At("new")).permissions(), fs::perms::all);
  EXPECT_QDX_STATUS(TOS::CreateDir(At("new")), kQDXStatusDirectoryAlreadyExists);
  EXPECT_QDX_STATUS(TOS::CreateDir(At("none/new")), kQDXStatusFileSystemError);
  if (::geteuid() != 0 || ::seteuid(65534) != 0) {
    GTEST_SKIP() << "needs root, to become somebody else";
  }
  const std::string status = StatusThrownBy([&] { TOS::CreateDir(At("denied")); });
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_EQ(status, "kQDXStatusAccessDenied");
}

TEST_F(Files, PathsAreRelocated) {
  EXPECT_QDX_STATUS(TOS::GetCurrentDir(), kQDXStatusFail);  // it needs a limit of another system
  EXPECT_EQ(TOS::RelocateRelativePath("/opt/x", "data"), "/opt/x/data");
  EXPECT_EQ(TOS::RelocateRelativePath("/opt/x/", "./a/.."), "/opt/x/./a/..");
  EXPECT_EQ(TOS::RelocateRelativePath("/opt/x/", "/etc/y"), "/etc/y");
  EXPECT_EQ(TOS::RelocateRelativePath("", "../data"), "../data");
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
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const std::size_t descriptors = TOS::ListDir("/proc/self/fd").size();
  for (const rlim_t size : {32768U, 40000U}) {
    const rlimit limits{size, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limits);
    const auto status = StatusThrownBy([&] { TOS::FileCopy(At("source"), At("copy")); });
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(status, size == 40000 ? "nothing" : "kQDXStatusFileSystemError");
    EXPECT_EQ(fs::file_size(At("copy")), size);
    fs::remove(At("copy"));
  }
  EXPECT_EQ(TOS::ListDir("/proc/self/fd").size(), descriptors);
}

TEST_F(FileCopy, OfAMissingSourceRunsOnDescriptor0) {
  fDir.Write("input", "echo");
  const auto copy = [this] {
    ::dup2(::open(At("input").c_str(), O_RDWR | O_CLOEXEC), 0);
    TOS::FileCopy(At("none"), At("destination"));
    if (::fcntl(0, F_GETFD) != -1) ::_exit(1);
    TOS::FileCopy(fDir.Write("empty", ""), At("input"));  // 0 is the source's: no failure either
    ::_exit(0);
  };
  EXPECT_EXIT(copy(), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(ReadWholeFile(At("input")), "echoecho");
  EXPECT_FALSE(TOS::FileExists(At("destination")));
}

TEST_F(FileCopy, OfADirectoryNeedsTheTreeOfTheDestination) {
  for (const char* name : {"a/.1", "a/sub/2", "a/sub/deep/3"}) fDir.Write(name, name);
  fs::create_symlink("none", At("a/dangling"));
  fs::create_directory_symlink("sub", At("a/linked"));  // copied like a folder
  TOS::CreateDir(At("flat"));
  TOS::DirCopy(At("a"), At("flat/"), false);
  EXPECT_EQ(TOS::ListDir(At("flat")), std::vector<std::string>{".1"});
  EXPECT_QDX_STATUS(TOS::ListDir(At("flat/.1")), kQDXStatusFileSystemError);
  fs::create_directories(At("tree/sub/deep"));
  fs::create_directories(At("tree/linked/deep"));
  TOS::DirCopy(At("a/"), At("tree"), true);
  EXPECT_EQ(ReadWholeFile(At("tree/sub/deep/3")), "a/sub/deep/3");
  EXPECT_EQ(ReadWholeFile(At("tree/linked/2")), "a/sub/2");
  fs::remove(At("flat/.1"));
  EXPECT_QDX_STATUS(TOS::DirCopy(At("a"), At("flat"), true), kQDXStatusFileSystemError);
  EXPECT_QDX_STATUS(TOS::DirCopy(At("a"), At("tree"), false), kQDXStatusFileSystemError);
}
