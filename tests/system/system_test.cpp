// SPDX-License-Identifier: Apache-2.0
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/utf8.h>
#include <qdxsystem/write.h>
#include <qdxsystem/zone_generation.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static ino_t gLocaltime = 1;

/// Stands before the C library's function: the file of the time zone has the number of gLocaltime.
extern "C" __attribute__((visibility("default"))) int stat(const char* path,
                                                           struct stat* result) noexcept {
  const int status = ::fstatat(AT_FDCWD, path, result, 0);
  if (status == 0 && std::strcmp(path, "/etc/localtime") == 0) result->st_ino = gLocaltime;
  return status;
}

using namespace NVORNQDX20;

bool IsOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

TDescriptor OpenNull() { return TDescriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC)); }

TEST(Descriptor, HasOneOwnerWhoClosesIt) {
  TDescriptor first = OpenNull(), second = OpenNull();
  const int overwritten = second.Get(), moved = first.Get();
  second = std::move(first);
  EXPECT_TRUE(!IsOpen(overwritten) && IsOpen(moved));
  EXPECT_EQ(TDescriptor(std::move(second)).Get(), moved);
  EXPECT_TRUE(!second.IsOpen() && !IsOpen(moved));
  const int released = OpenNull().Release();
  EXPECT_TRUE(IsOpen(released));
  EXPECT_TRUE(TDescriptor(released).Close());
  EXPECT_FALSE(IsOpen(released));
}

TEST(Descriptor, KeepsTheErrorOfAFailedCall) {
  TDescriptor file;
  file = TDescriptor(::open("", O_RDONLY | O_CLOEXEC));
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(file.GetError(), ENOENT);
  EXPECT_TRUE(file.Close());
  file = OpenNull();
  EXPECT_EQ(file.GetError(), 0);
  ::close(file.Get());
  EXPECT_FALSE(file.Close());
  EXPECT_EQ(errno, EBADF);
  {
    const TDescriptor notOpen(12345);
    errno = ENOSPC;
  }
  EXPECT_EQ(errno, ENOSPC);
}

TEST(Pipe, AvoidsTheNumbersOfStandardStreams) {
  const auto openPipe = [](const std::vector<int>& closed) {
    for (const int stream : closed) ::close(stream);
    const TPipe pipe = OpenPipe();
    bool isGood = true;
    for (const TDescriptor* end : {&pipe.fReadEnd, &pipe.fWriteEnd}) {
      isGood &= end->Get() > STDERR_FILENO && ::fcntl(end->Get(), F_GETFD) == FD_CLOEXEC;
    }
    for (const int stream : closed) isGood &= !IsOpen(stream);
    ::_exit(isGood ? 0 : 1);
  };
  for (const std::vector<int>& closed : {{}, {0, 2}, std::vector{0, 1, 2}}) {
    EXPECT_EXIT(openPipe(closed), ::testing::ExitedWithCode(0), "");
  }
}

int gReadEnd = -1;
char gText[1 << 19];
std::size_t gSize = 0;

void Read(std::size_t size) {
  gSize += static_cast<std::size_t>(::read(gReadEnd, gText + gSize, size));
}

TEST(WriteAll, GoesOnAfterSignalsAndShortWrites) {
  std::string text;
  for (int i = 0; i < 50000; ++i) text += std::to_string(i);
  static int signals = 0;
  struct sigaction action = {};
  action.sa_handler = [](int) {
    if (++signals % 2 == 0) Read(20000);  // at the others, the pipe is still full
  };
  ::sigaction(SIGALRM, &action, nullptr);
  for (const int flags : {0, O_NONBLOCK}) {
    const TPipe pipe = OpenPipe();
    gReadEnd = pipe.fReadEnd.Get();
    gSize = 0;
    ::fcntl(pipe.fWriteEnd.Get(), F_SETFL, flags);
    ::ualarm(1000, 1000);
    EXPECT_TRUE(WriteAll(pipe.fWriteEnd.Get(), text));
    ::ualarm(0, 0);
    Read(sizeof gText - gSize);
    EXPECT_TRUE(std::string(gText, gSize) == text);
  }
}

TEST(WriteAll, FailsWithTheReason) {
  const TDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  EXPECT_FALSE(WriteAll(full.Get(), "x"));
  EXPECT_EQ(errno, ENOSPC);
}

TEST(ErrorText, IsTheOneOfTheCLibrary) {
  for (int error = -1; error < 140; ++error) {
    EXPECT_EQ(ErrorText(error), std::strerror(error));  // of the locale "C"
  }
}

TEST(UTF8, CostsOneByteWhereItIsBad) {
  const std::pair<std::string, std::u32string> rows[] = {
      // The first and the last of each length.
      {"\x01\x7f\xC2\x80\xDF\xBF", U"\x01\x7f\x80\x7FF"},
      {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", U"\x800\xD7FF\xE000\xFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", U"\x10000\x10FFFF"},
      // Overlong, surrogates, beyond the last, bytes that begin nothing.
      {"\xC1\xBF\xE0\x9F\xBF\xF0\x8F\xBF\xBF", std::u32string(9, 0)},
      {"\xED\xA0\x80\xED\xBF\xBF", std::u32string(6, 0)},
      {"\xF4\x90\x80\x80\xF5\xFE\xFF\x80", std::u32string(8, 0)},
      // Cut off, by what is good itself and by the end.
      {"\xC3(\xE2\x82\xC3\xA9\xF0\x9F\x98z", {0, U'(', 0, 0, 0xE9, 0, 0, 0, U'z'}},
      {"z\xE2\x82", {U'z', 0, 0}}};
  for (const auto& [text, expected] : rows) {
    std::string bytes;
    std::u32string codePoints;
    for (std::string_view rest = text; !rest.empty();) {
      const TUTF8Character character = TakeCharacter(rest);
      bytes += character.fBytes;
      codePoints += character.fCodePoint.value_or(0);
    }
    EXPECT_EQ(bytes, text);
    EXPECT_TRUE(codePoints == expected) << ::testing::PrintToString(text);
  }
}

TEST(ZoneGeneration, ChangesWithTheFileOfTheZoneUnlessTZIsSet) {
  struct stat file {};
  if (::stat("/etc/localtime", &file) != 0) GTEST_SKIP() << "needs /etc/localtime";
  ::unsetenv("TZ");
  const std::uint32_t first = ZoneGeneration();
  EXPECT_NE(first, 0U);
  ::usleep(1100000);
  EXPECT_EQ(ZoneGeneration(), first);
  gLocaltime = 2;
  ::usleep(1100000);
  const std::uint32_t second = ZoneGeneration();
  EXPECT_NE(second, first);
  gLocaltime = 4;
  const std::uint32_t noticed = ZoneGenerationNow();
  EXPECT_NE(noticed, second);
  EXPECT_EQ(ZoneGeneration(), noticed);
  // Where TZ is set, the C library reads a replaced file again at a time of its own.
  ::setenv("TZ", ":/etc/localtime", 1);
  EXPECT_NE(ZoneGenerationNow(), 0U);
  gLocaltime = 5;
  EXPECT_EQ(ZoneGenerationNow(), 0U);
  EXPECT_EQ(ZoneGenerationNow(), 0U);
  ::setenv("TZ", "UTC", 1);
  const std::uint32_t set = ZoneGeneration();
  gLocaltime = 3;
  ::usleep(1100000);
  EXPECT_EQ(ZoneGeneration(), set);
  // Too long to be remembered.
  ::setenv("TZ", std::string(300, 'X').c_str(), 1);
  EXPECT_EQ(ZoneGeneration(), 0U);
  ::setenv("TZ", "UTC", 1);
  EXPECT_NE(ZoneGeneration(), set);
  // The longest name of a zone, as a path.
  ::setenv("TZ", ":/usr/share/zoneinfo/posix/America/Argentina/ComodRivadavia", 1);
  EXPECT_NE(ZoneGeneration(), 0U);
}

TEST(ZoneGeneration, LooksAgainAfterAHold) {
  ::setenv("TZ", "UTC", 1);
  const std::uint32_t first = ZoneGeneration();
  std::uint32_t held = first;
  ::setenv("TZ", "UTC1", 1);
  {
    const TZoneHold hold;
    held = ZoneGeneration();
    EXPECT_NE(held, first);
    ::setenv("TZ", "UTC2", 1);
    { const TZoneHold inner; }
    EXPECT_EQ(ZoneGeneration(), held);
  }
  EXPECT_NE(ZoneGeneration(), held);
}
