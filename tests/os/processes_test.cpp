// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

#include <csignal>
#include <cstdlib>
#include <tuple>

#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

static std::string gFailing;  // the call that fails
static int gPipeCloses = 0;   // the close() of a pipe's end that fails, the first one as 1
static uid_t gUser = 0;       // the real one

// They stand before the C library's functions, for the library under test too.
extern "C" {
QDXCORE_EXPORT int clone(int (*run)(void*), void* stack, int flags, void* argument, ...) {
  static const auto next = reinterpret_cast<decltype(&clone)>(::dlsym(RTLD_NEXT, "clone"));
  return gFailing == "clone" ? -1 : next(run, stack, flags, argument);
}
QDXCORE_EXPORT int pipe2(int* ends, int flags) noexcept {
  static const auto next = reinterpret_cast<decltype(&pipe2)>(::dlsym(RTLD_NEXT, "pipe2"));
  return gFailing == "pipe2" ? -1 : next(ends, flags);
}
QDXCORE_EXPORT int close(int descriptor) {
  static const auto next = reinterpret_cast<decltype(&close)>(::dlsym(RTLD_NEXT, "close"));
  struct stat status {};
  const bool isPipe = ::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
  const bool fails = isPipe && gPipeCloses > 0 && --gPipeCloses == 0;
  return next(descriptor) == 0 && !fails ? 0 : -1;
}
QDXCORE_EXPORT int dup2(int descriptor, int other) noexcept {
  static const auto next = reinterpret_cast<decltype(&dup2)>(::dlsym(RTLD_NEXT, "dup2"));
  if (gFailing == "child") ::kill(::getpid(), SIGUSR1);
  return next(descriptor, other);
}
QDXCORE_EXPORT uid_t getuid() noexcept { return gUser; }
}

using namespace NVORNQDX20;

namespace fs = std::filesystem;
using TOS = TOSSpecific;
using TWords = std::vector<std::string>;

std::size_t OpenDescriptors() { return TOS::ListDir("/proc/self/fd").size(); }

TEST(SpawnProcess, ReturnsWhatIsPrintedAndTheExitCode) {
  const TTempDir dir;
  const std::string script = dir.Write("script", "echo \"without a first line: $#\"\n");
  ::chmod(script.c_str(), 0700);
  // Command, arguments, exit status, output.
  const std::tuple<std::string, TWords, int, std::string> rows[] = {
      {"true", {}, 0, ""},
      {dir.Path(), {}, 1, ""},
      {"sh", {"-c", "echo a; echo b >&2; echo c; exit 459"}, 203, "a\nb\nc\n"},
      {"printf", {"%s|", "two words", "", "$HOME"}, 0, "two words||$HOME|"},
      {"printf", {"\\000x"}, 0, std::string("\0x", 2)},
      {"ls", {"/proc/self/fd"}, 0, "0\n1\n2\n"},  // 0 is the folder: there is no input
      {"grep", {"-c", "SigBlk.*[1-9a-f]", "/proc/self/status"}, 1, "0\n"},
      {"head", {"-c", "1000000", "/dev/zero"}, 0, std::string(1000000, '\0')},
      {script, TWords(10000), 0, "without a first line: 10000\n"}};
  // Inherited is only what is not the library's own.
  for (const std::string& number : TOS::ListDir("/proc/self/fd")) {
    if (std::stoi(number) > STDERR_FILENO) ::fcntl(std::stoi(number), F_SETFD, FD_CLOEXEC);
  }
  TOS::CaptureFile(script);  // stays open
  const std::size_t before = OpenDescriptors();
  for (const auto& [command, arguments, status, expected] : rows) {
    std::string output = "old";
    EXPECT_EQ(TOS::SpawnProcess(command, arguments, output), status) << command;
    EXPECT_EQ(output, expected) << command;
  }
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(TOS::SpawnProcess("echo"), "\n");
  const TLogCapture log;
  EXPECT_EQ(TOS::SpawnProcess("echo", {"x"}), "x\n");
  EXPECT_EQ(log.Messages(), (TWords{"3 SpawnProcess: process echo",
                                    "3 Debug (linux toss): GetFileContents() Returned: x\n"}));
}

TEST(SpawnProcess, NeedsNoStandardStreams) {
  const auto run = [](int first, int last) {
    for (int stream = first; stream <= last; ++stream) ::close(stream);
    std::string output;
    const int code = TOS::SpawnProcess("sh", {"-c", "echo a; echo b >&2; exit 7"}, output);
    ::_exit(output == "a\nb\n" ? code : 99);
  };
  for (const auto& [first, last] : {std::pair{0, 0}, {0, 1}, {0, 2}, {1, 2}}) {
    EXPECT_EXIT(run(first, last), ::testing::ExitedWithCode(7), "") << first << last;
  }
}

TEST(SpawnProcess, LeavesTheCallersHandlersToTheCaller) {
  static volatile std::sig_atomic_t calls = 0;
  std::signal(SIGUSR1, [](int) { calls = calls + 1; });
  EXPECT_QDX_STATUS(TOS::SpawnProcess("sh", {"-c", "kill -USR1 $$"}), kQDXStatusFail);
  EXPECT_EQ(calls, 0);
  TOS::SpawnProcess("sh", {"-c", "kill -USR1 $PPID"});
  EXPECT_EQ(calls, 1);
  gFailing = "child";  // by the signal, before it runs its program
  EXPECT_QDX_STATUS(TOS::SpawnProcess("true"), kQDXStatusFail);
  gFailing.clear();
  EXPECT_EQ(calls, 1);
  std::signal(SIGUSR1, SIG_IGN);
  EXPECT_EQ(TOS::SpawnProcess("sh", {"-c", "kill -USR1 $$; echo ignored"}), "ignored\n");
}

TEST(SpawnProcess, WaitsThroughSignals) {
  struct sigaction action {};
  action.sa_handler = [](int) {};  // interrupts calls
  ::sigaction(SIGALRM, &action, nullptr);
  ::ualarm(50000, 0);
  EXPECT_EQ(TOS::SpawnProcess("sh", {"-c", "exec >/dev/null 2>&1; sleep 0.2"}), "");
}

TEST(SpawnProcess, ReportsEachFailure) {
  const std::pair<std::string, std::string> rows[] = {
      {"pipe2", "pipe call failed"},         {"clone", "fork call failed"},
      {"close 1", "close pipe call failed"}, {"close 2", "close pipe call failed"},
      {"wait", "waitpid call failed"},       {"kill", "child terminated abnormally"}};
  for (const auto& [failing, message] : rows) {
    const TLogCapture log(ILogger::kLogError);
    const std::size_t before = OpenDescriptors();
    gFailing = failing;
    gPipeCloses = failing.find("close") == 0 ? failing.back() - '0' : 0;
    std::signal(SIGCHLD, failing == "wait" ? SIG_IGN : SIG_DFL);
    const char* const script = failing == "kill" ? "kill -KILL $$" : "exit 0";
    EXPECT_QDX_STATUS(TOS::SpawnProcess("sh", {"-c", script}), kQDXStatusFail);
    std::signal(SIGCHLD, SIG_DFL);
    gFailing.clear();
    EXPECT_EQ(log.Messages(), TWords{"0 ERROR: SpawnProcess - " + message});
    EXPECT_EQ(OpenDescriptors(), before) << message;
  }
}

TEST(CaptureFile, ReadsAFileAndLeavesItOpen) {
  const TTempDir dir;
  const std::size_t before = OpenDescriptors();
  EXPECT_EQ(TOS::CaptureFile(dir.Write("file", "text")), "text");
  EXPECT_EQ(OpenDescriptors(), before + 1);

  const TLogCapture log;
  EXPECT_QDX_STATUS(TOS::CaptureFile("/none"), kQDXStatusFileNotFound);
  EXPECT_QDX_STATUS(TOS::CaptureFile("/"), kQDXStatusFileSystemError);
  EXPECT_EQ(log.Messages(), (TWords{"0 ERROR: CaptureFile failed to open: /none",
                                    "0 ERROR: GetFileContents failed to read file"}));
}

TEST(Launch, GivesTheLineToTheShellAsItIs) {
  const TTempDir dir;
  for (const char* name : {"vi", "sh"}) {
    ::chmod(dir.Write(name, "#!/bin/sh\necho \"$0 $*\" >>log\nexit 3\n").c_str(), 0700);
  }
  const auto launch = [&dir] {
    fs::current_path(dir.Path());
    ::setenv("PATH", ".:/usr/bin:/bin", 1);
    TOS::LaunchTextEditor("a  b; echo $((1 + 1)) >>log");
    TOS::LaunchCommandShell();
    ::_exit(0);
  };
  EXPECT_EXIT(launch(), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(ReadWholeFile(dir.Path() / "log"), "./vi a b\n2\n./sh \n");
}

TEST(IsAdmin, AsksForTheRealUser) {
  for (const uid_t user : {0U, 65534U}) {
    gUser = user;
    EXPECT_EQ(TOS::IsAdmin(), user == 0);
  }
}
