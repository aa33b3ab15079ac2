// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include <cstdio>
#include <cstring>
#include <string>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// Standard input is a terminal for the length of a test, with this program at the keys.
class Console : public ::testing::Test {
 protected:
  void SetUp() override {
    int terminal = -1;
    ASSERT_EQ(::openpty(&fKeys, &terminal, nullptr, nullptr, nullptr), 0);
    fInput = ::dup(STDIN_FILENO);
    ::dup2(terminal, STDIN_FILENO);
    ::close(terminal);
    fAttributes = Attributes();
  }
  void TearDown() override {
    EXPECT_EQ(std::memcmp(&fAttributes, &fAfter, sizeof fAfter), 0);
    if (fInput >= 0) ::dup2(fInput, STDIN_FILENO);
    ::close(fInput);
    ::close(fKeys);
  }

  static termios Attributes() {
    termios attributes{};
    ::tcgetattr(STDIN_FILENO, &attributes);
    return attributes;
  }
  void Type(char key) const { EXPECT_EQ(::write(fKeys, &key, 1), 1); }
  bool IsWaiting() {
    const bool isWaiting = TOSSpecific::IsKeyWaiting();
    fAfter = Attributes();
    return isWaiting;
  }
  /// Has a child type the key as soon as the terminal is in the mode in which keys are read.
  int GetTyped(char key) {
    const pid_t typist = ::fork();
    if (typist == 0) {
      ::alarm(10);
      while (Attributes().c_lflag != 0) ::usleep(1000);
      ::usleep(20000);
      Type(key);
      ::_exit(Attributes().c_lflag == 0 ? 0 : 1);
    }
    const int result = TOSSpecific::GetKeyboardChar();
    fAfter = Attributes();
    ::waitpid(typist, nullptr, 0);
    return result;
  }

  int fKeys = -1;
  int fInput = -1;
  termios fAttributes{};
  termios fAfter{};
};

TEST_F(Console, ReadsKeysWithoutEchoWhileItWaits) {
  for (const char key : {'a', '\x03', '\x1a', '\r'}) {
    EXPECT_EQ(GetTyped(key), key == '\r' ? '\n' : key);
    pollfd screen{fKeys, POLLIN, 0};
    EXPECT_EQ(::poll(&screen, 1, 0), 0) << "an echo";
  }
}

TEST_F(Console, SeesAKeyWithoutTakingIt) {
  EXPECT_FALSE(IsWaiting());
  Type('k');
  EXPECT_TRUE(IsWaiting());
  EXPECT_TRUE(IsWaiting());
  EXPECT_EQ(TOSSpecific::GetKeyboardChar(), 'k');
  EXPECT_FALSE(IsWaiting());
}

TEST_F(Console, CountsAnErrorAsAKey) {
  fAfter = fAttributes;
  ::close(STDIN_FILENO);
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());
  EXPECT_EQ(TOSSpecific::GetKeyboardChar(), EOF);
  std::clearerr(stdin);
}

}  // namespace
}  // namespace NVORNQDX20
