// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/utf8.h>
#include <qdxsystem/write.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

bool IsOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

TDescriptor OpenNull() { return TDescriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC)); }

TEST(Descriptor, HasOneOwnerWhoClosesIt) {
  int moved = 0, released = 0;
  {
    TDescriptor first = OpenNull(), second = OpenNull();
    const int overwritten = second.Get();
    moved = first.Get();
    second = std::move(first);
    EXPECT_FALSE(IsOpen(overwritten));
    EXPECT_EQ(second.Get(), moved);
    const TDescriptor third(std::move(second));
    EXPECT_FALSE(second.IsOpen());
    EXPECT_TRUE(IsOpen(moved));
    released = OpenNull().Release();
  }
  EXPECT_FALSE(IsOpen(moved));
  EXPECT_TRUE(IsOpen(released));
  EXPECT_TRUE(TDescriptor(released).Close());
  EXPECT_FALSE(IsOpen(released));
}

TEST(Descriptor, KeepsTheErrorOfAFailedCall) {
  TDescriptor none(::open("/none", O_RDONLY | O_CLOEXEC));
  errno = 0;
  EXPECT_FALSE(none.IsOpen());
  EXPECT_EQ(none.GetError(), ENOENT);
  EXPECT_TRUE(none.Close());
  none = OpenNull();
  EXPECT_EQ(none.GetError(), 0);
  ::close(none.Get());
  EXPECT_FALSE(none.Close());
  EXPECT_EQ(errno, EBADF);
  const auto leaveScope = [] {
    const TDescriptor stale(12345);
    errno = ENOSPC;
  };
  leaveScope();
  EXPECT_EQ(errno, ENOSPC);
}

/// The status of a child process that runs the action.
template <typename TAction>
int InChild(const TAction& action) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(action());
  int status = -1;
  ::waitpid(child, &status, 0);
  return status;
}

TEST(Pipe, AvoidsTheNumbersOfStandardStreams) {
  const auto action = [] {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO}) ::close(stream);
    const TPipe pipe = OpenPipe();
    for (const TDescriptor& end : {std::cref(pipe.fReadEnd), std::cref(pipe.fWriteEnd)}) {
      if (end.Get() <= STDERR_FILENO || ::fcntl(end.Get(), F_GETFD) != FD_CLOEXEC) return 1;
    }
    return IsOpen(STDIN_FILENO) || IsOpen(STDOUT_FILENO) ? 2 : 0;
  };
  EXPECT_EQ(InChild(action), 0);
}

/// Reads to the end, slowly at first; whether that is the text.
bool ReadsSlowly(int descriptor, const std::string& text) {
  ::usleep(50000);
  std::string read;
  char buffer[8192];
  for (ssize_t count = 0; (count = ::read(descriptor, buffer, sizeof buffer)) > 0;) {
    read.append(buffer, static_cast<std::size_t>(count));
  }
  return read == text;
}

TEST(WriteAll, GoesOnAfterSignalsAndShortWrites) {
  std::string text;
  for (int i = 0; i < 50000; ++i) text += std::to_string(i);
  TPipe pipe = OpenPipe();
  const pid_t reader = ::fork();
  if (reader == 0) {
    pipe.fWriteEnd.Close();
    ::_exit(ReadsSlowly(pipe.fReadEnd.Get(), text) ? 0 : 1);
  }
  static volatile std::sig_atomic_t signals = 0;
  struct sigaction action = {}, before = {};
  action.sa_handler = [](int) { signals = signals + 1; };  // interrupts calls
  ::sigaction(SIGALRM, &action, &before);
  ::ualarm(1000, 1000);
  EXPECT_TRUE(WriteAll(pipe.fWriteEnd.Get(), text));
  ::ualarm(0, 0);
  ::sigaction(SIGALRM, &before, nullptr);
  EXPECT_GT(signals, 1);
  pipe.fWriteEnd.Close();
  int status = -1;
  ::waitpid(reader, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(WriteAll, FailsWithTheReason) {
  const TDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  EXPECT_FALSE(WriteAll(full.Get(), "x"));
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_TRUE(WriteAll(full.Get(), ""));
}

TEST(ErrorText, IsTheOneOfTheCLibrary) {
  for (int error = -1; error < 140; ++error) {
    EXPECT_EQ(ErrorText(error), std::strerror(error));  // of the locale "C"
  }
}

/// The code points of the text; 0 for a byte that is not UTF-8.
std::u32string CodePoints(std::string_view text) {
  std::u32string codePoints;
  std::string bytes;
  for (std::string_view rest = text; !rest.empty();) {
    const TUTF8Character character = TakeCharacter(rest);
    codePoints += character.fCodePoint.value_or(0);
    bytes += character.fBytes;
  }
  EXPECT_EQ(bytes, text);
  return codePoints;
}

TEST(UTF8, CostsOneByteWhereItIsBad) {
  const struct {
    std::string fText;
    std::u32string fCodePoints;
  } rows[] = {{"a\x7f", U"a\x7f"},
              // The first and the last of each length.
              {"\xC2\x80\xDF\xBF", U"\x80\x7FF"},
              {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", U"\x800\xD7FF\xE000\xFFFF"},
              {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", U"\x10000\x10FFFF"},
              // Overlong, surrogates, beyond the last, bytes that begin nothing.
              {"\xC1\xBF", {0, 0}},
              {"\xE0\x9F\xBF", {0, 0, 0}},
              {"\xF0\x8F\xBF\xBF", {0, 0, 0, 0}},
              {"\xED\xA0\x80\xED\xBF\xBF", {0, 0, 0, 0, 0, 0}},
              {"\xF4\x90\x80\x80", {0, 0, 0, 0}},
              {"\xF5\xFE\xFF\x80", {0, 0, 0, 0}},
              // Cut off, by what is good itself and by the end.
              {"\xC3(", {0, U'('}},
              {"\xE2\x82\xC3\xA9", {0, 0, 0xE9}},
              {"\xF0\x9F\x98z", {0, 0, 0, U'z'}},
              {"z\xE2\x82", {U'z', 0, 0}}};
  for (const auto& [text, codePoints] : rows) EXPECT_TRUE(CodePoints(text) == codePoints) << text;
}

}  // namespace
}  // namespace NVORNQDX20
