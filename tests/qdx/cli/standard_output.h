// SPDX-License-Identifier: Apache-2.0
/// Standard output, led into a pipe or a terminal for the length of a test.
#ifndef TESTS_QDX_CLI_STANDARD_OUTPUT_H_
#define TESTS_QDX_CLI_STANDARD_OUTPUT_H_

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

class TStandardOutput {
 public:
  enum EKind { kPipe, kTerminal };

  explicit TStandardOutput(EKind kind) {
    std::fflush(stdout);
    int ends[2] = {-1, -1};
    termios raw{};  // shows what it is given as it is
    if (kind == kPipe) (void)!::pipe2(ends, O_CLOEXEC);
    if (kind == kTerminal) ::openpty(&ends[0], &ends[1], nullptr, &raw, nullptr);
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[1]);
    fReadEnd = ends[0];
  }
  ~TStandardOutput() {
    ::dup2(fBefore, STDOUT_FILENO);
    ::close(fBefore);
    CloseReadEnd();
  }
  TStandardOutput(const TStandardOutput&) = delete;
  TStandardOutput& operator=(const TStandardOutput&) = delete;

  /// What was written, at most a line or two.
  std::string Read() const {
    char text[1000];
    const ssize_t size = ::read(fReadEnd, text, sizeof text);
    return {text, static_cast<std::size_t>(size < 0 ? 0 : size)};
  }
  void CloseReadEnd() {
    if (fReadEnd >= 0) ::close(fReadEnd);
    fReadEnd = -1;
  }

 private:
  const int fBefore = ::dup(STDOUT_FILENO);
  int fReadEnd;
};

#endif  // TESTS_QDX_CLI_STANDARD_OUTPUT_H_
