// SPDX-License-Identifier: Apache-2.0
#include "cli/progress.h"

#include <gtest/gtest.h>

#include <functional>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cli/failure.h"

namespace NVORNQDX20 {
namespace {

/// Returns what a process prints whose terminal this is.
std::string PrintedOnTerminal(const std::function<void()>& print) {
  int terminal = -1;
  const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (child == 0) {
    print();
    ::_exit(0);
  }
  std::string printed;
  char bytes[256];
  for (ssize_t size = 0; (size = ::read(terminal, bytes, sizeof bytes)) > 0;) {
    printed.append(bytes, static_cast<std::size_t>(size));
  }
  ::close(terminal);
  ::waitpid(child, nullptr, 0);
  return printed;
}

TEST(ProgressLine, GivesWayToMessages) {
  const std::string printed = PrintedOnTerminal([] {
    {
      TProgressLine line;
      line.Show("1 of 20");
      PrintError("bad");
      PrintError("worse");
      line.Show("2 of 20");
      line.Show("end");
    }
    PrintError("last");
  });
  EXPECT_EQ(printed,
            "\r1 of 20\r       \rqdx: bad\r\nqdx: worse\r\n\r2 of 20\rend    \r   \rqdx: last\r\n");
}

}  // namespace
}  // namespace NVORNQDX20
