// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include <cstring>
#include <thread>

#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace NVORNQDX20;

/// Makes standard input a terminal, with this program at the keys.
class Console : public ::testing::Test {
 protected:
  Console() {
    int terminal = -1;
    EXPECT_EQ(::openpty(&fKeys, &terminal, nullptr, nullptr, nullptr), 0);
    ::dup2(terminal, STDIN_FILENO);
    ::close(terminal);
    fAttributes = Attributes();
  }
  ~Console() override {
    const termios after = Attributes();
    EXPECT_EQ(std::memcmp(&fAttributes, &after, sizeof after), 0);
    ::close(fKeys);
  }

  static termios Attributes() {
    termios attributes{};
    ::tcgetattr(STDIN_FILENO, &attributes);
    return attributes;
  }
  void Type(char key) const { EXPECT_EQ(::write(fKeys, &key, 1), 1); }
  /// Types the key as soon as the terminal is in the mode in which keys are read.
  int GetTyped(char key) const {
    std::thread typist([this, key] {
      while (Attributes().c_lflag != 0) ::usleep(1000);
      ::usleep(20000);
      Type(key);
    });
    const int result = TOSSpecific::GetKeyboardChar();
    typist.join();
    return result;
  }

  int fKeys = -1;
  termios fAttributes{};
};

TEST_F(Console, ReadsKeysWithoutEchoWhileItWaits) {
  for (const char key : {'a', '\x03', '\x1a', '\r'}) {
    EXPECT_EQ(GetTyped(key), key == '\r' ? '\n' : key);
    pollfd screen{fKeys, POLLIN, 0};
    EXPECT_EQ(::poll(&screen, 1, 0), 0) << "echo";
  }
}

TEST_F(Console, SeesAKeyWithoutTakingIt) {
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());
  Type('k');
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());
  EXPECT_EQ(TOSSpecific::GetKeyboardChar(), 'k');
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());
}

TEST_F(Console, CountsAnErrorAsAKey) {
  rlimit limits{};
  ::getrlimit(RLIMIT_NOFILE, &limits);
  const rlimit none{0, limits.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);  // more than poll() may ask for
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());
  ::setrlimit(RLIMIT_NOFILE, &limits);
}
