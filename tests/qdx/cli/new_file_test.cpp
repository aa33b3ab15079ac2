// SPDX-License-Identifier: Apache-2.0
#include <cli/new_file.h>

#include <cli/failure.h>

#include <cerrno>
#include <csignal>
#include <map>
#include <string>
#include <tuple>

#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "support/temp_dir.h"

namespace {

std::map<std::string, int> gErrors;  // of the calls that shall fail
std::string gSynced;

template <typename... TArguments>
int Call(const char* name, long number, TArguments... arguments) {
  errno = gErrors[name];
  return errno != 0 ? -1 : static_cast<int>(::syscall(number, arguments...));
}

}  // namespace

extern "C" {
int renameat2(int from, const char* a, int to, const char* b, unsigned int flags) noexcept {
  return Call("renameat2", SYS_renameat2, from, a, to, b, flags);
}
int link(const char* from, const char* to) noexcept { return Call("link", SYS_link, from, to); }
int fsync(int descriptor) {
  gSynced +=
      std::filesystem::is_directory("/proc/self/fd/" + std::to_string(descriptor)) ? "d" : "f";
  return 0;
}
}

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

class NewFile : public ::testing::Test {
 protected:
  std::string Path(const std::string& name) const { return (fFolder.Path() / name).string(); }
  std::size_t Count() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(fFolder.Path()), fs::directory_iterator()));
  }

  const TTempDir fFolder;
};

TEST_F(NewFile, AppearsAsAWholeForItsOwnerAlone) {
  fFolder.Write("x.xml", "old");
  {
    TNewFile file(fFolder.Path().string(), ".xml", "x.xml");
    EXPECT_EQ(fs::path(file.GetPath()).extension(), ".xml");
    EXPECT_EQ(fs::path(file.GetPath()).parent_path(), fFolder.Path());
    EXPECT_EQ(fs::status(file.GetPath()).permissions(), fs::perms(0600));
    std::ofstream(file.GetPath()) << "new";
    EXPECT_EQ(ReadWholeFile(Path("x.xml")), "old");
    EXPECT_FALSE(file.PublishIfNew(Path("x.xml")));
    EXPECT_EQ(ReadWholeFile(Path("x.xml")), "old");
    file.Publish(Path("x.xml"));
  }
  EXPECT_EQ(ReadWholeFile(Path("x.xml")), "new");
  EXPECT_EQ(Count(), 1U);
  EXPECT_TRUE(TNewFile(fFolder.Path().string(), "", "y").PublishIfNew(Path("y")));
  EXPECT_EQ(Count(), 2U);
}

TEST_F(NewFile, NeverReplacesWhatAppearsMeanwhile) {
  const std::tuple<int, int, std::string> rows[] = {
      {0, EPERM, "taken, then new"},
      {ENOSYS, 0, "taken, then new"},
      {EINVAL, 0, "taken, then new"},
      {EPERM, 0, "taken, then new"},
      {ENOSYS, EPERM, "(Operation not permitted); --output"},
      {EACCES, 0, "Permission denied"}};
  fFolder.Write("taken", "old");
  for (const auto& [renameError, linkError, effect] : rows) {
    gErrors = {{"renameat2", renameError}, {"link", linkError}};
    gSynced.clear();
    std::string text;
    try {
      TNewFile file(fFolder.Path().string(), "", "bad");
      text = file.PublishIfNew(Path("taken")) ? "replaced" : "taken";
      text += file.PublishIfNew(Path("new")) ? ", then new" : ", then taken";
      EXPECT_EQ(gSynced, "ffd");  // a file at each attempt, then the folder
    } catch (const TCommandFailure& failure) {
      text = failure.what();
    }
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, effect, text);
    EXPECT_EQ(ReadWholeFile(Path("taken")), "old");
    fs::remove(Path("new"));
    EXPECT_EQ(Count(), 1U);
  }
  gErrors.clear();
}

TEST_F(NewFile, LeavesNothingWhereItFails) {
  const std::string folder = fFolder.Path().string();
  EXPECT_THROW(TNewFile(Path("none"), "", ""), TCommandFailure);
  EXPECT_THROW(TNewFile(folder, std::string(5000, 'x'), ""), TCommandFailure);
  fFolder.Write("folder/file", "");
  EXPECT_THROW(TNewFile(folder, "", "").Publish(Path("folder")), TCommandFailure);
  EXPECT_EQ(Count(), 1U);
}

TEST_F(NewFile, IsRemovedByASignalThatEndsTheProcess) {
  for (const int signal : {SIGTERM, SIGINT, SIGXCPU, SIGHUP}) {
    const bool ignored = signal == SIGHUP;  // as under nohup
    const pid_t child = ::fork();
    if (child == 0) {
      ::signal(signal, ignored ? SIG_IGN : SIG_DFL);
      const TNewFile file(fFolder.Path().string(), "", "");
      ::raise(signal);
      ::_exit(std::filesystem::exists(file.GetPath()) ? 7 : 8);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status), ignored ? 7 : signal);
    EXPECT_EQ(Count(), ignored ? 1U : 0U) << signal;
  }
}

TEST_F(NewFile, ReplacesWhatALinkLeadsTo) {
  const std::string file = fFolder.Write("file", "").string();
  for (const auto& [target, name] :
       {std::pair{"file", "link"}, {"link", "far"}, {"none", "dangling"}, {"circle", "circle"}}) {
    fs::create_symlink(target, Path(name));
  }
  EXPECT_EQ(FileToReplace(file), file);
  EXPECT_EQ(FileToReplace(Path("none")), Path("none"));
  EXPECT_EQ(FileToReplace(Path("far")), fs::canonical(file));
  EXPECT_THROW(FileToReplace(Path("dangling")), TCommandFailure);
  EXPECT_THROW(FileToReplace(Path("circle")), TCommandFailure);
}

}  // namespace
}  // namespace NVORNQDX20
