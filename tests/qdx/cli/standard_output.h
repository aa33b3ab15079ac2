// SPDX-License-Identifier: Apache-2.0
/// Standard output, led elsewhere for the length of a test.
#ifndef TESTS_QDX_CLI_STANDARD_OUTPUT_H_
#define TESTS_QDX_CLI_STANDARD_OUTPUT_H_

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

/// Closes the descriptor that takes its place.
class TStandardOutput {
 public:
  explicit TStandardOutput(int replacement) {
    std::fflush(stdout);
    ::dup2(replacement, STDOUT_FILENO);
    ::close(replacement);
  }
  ~TStandardOutput() {
    ::dup2(fBefore, STDOUT_FILENO);
    ::close(fBefore);
  }
  TStandardOutput(const TStandardOutput&) = delete;
  TStandardOutput& operator=(const TStandardOutput&) = delete;

 private:
  const int fBefore = ::dup(STDOUT_FILENO);
};

/// A terminal that shows what it is given as it is.
class TTerminal {
 public:
  TTerminal() {
    ::grantpt(fReader);
    ::unlockpt(fReader);
    termios settings{};
    ::tcgetattr(fReader, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(fReader, TCSANOW, &settings);
  }
  ~TTerminal() { ::close(fReader); }
  TTerminal(const TTerminal&) = delete;
  TTerminal& operator=(const TTerminal&) = delete;

  int Open() const { return ::open(::ptsname(fReader), O_RDWR | O_NOCTTY | O_CLOEXEC); }
  /// What was shown, at most a line or two.
  std::string Read() const {
    char text[1000];
    const ssize_t size = ::read(fReader, text, sizeof text);
    return {text, static_cast<std::size_t>(size < 0 ? 0 : size)};
  }

 private:
  const int fReader = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
};

#endif  // TESTS_QDX_CLI_STANDARD_OUTPUT_H_
