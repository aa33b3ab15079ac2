// SPDX-License-Identifier: Apache-2.0
// Reads single keys from the terminal.
#include <qdxcore/os_specific.h>

#include <cstdio>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

/// Puts the terminal on standard input into raw mode for its lifetime: no line buffering, no echo,
/// no signals from keys. Does nothing if standard input is not a terminal.
class TKeyMode {
 public:
  TKeyMode() : fIsTerminal(::tcgetattr(STDIN_FILENO, &fSaved) == 0) {
    termios attributes = fSaved;
    attributes.c_lflag = 0;
    Set(attributes);
  }
  ~TKeyMode() { Set(fSaved); }
  TKeyMode(const TKeyMode&) = delete;
  TKeyMode& operator=(const TKeyMode&) = delete;

 private:
  void Set(const termios& attributes) const {
    if (fIsTerminal) ::tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
  }

  termios fSaved{};
  const bool fIsTerminal;
};

}  // namespace

bool TOSSpecific::IsKeyWaiting() {
  const TKeyMode mode;
  pollfd input{STDIN_FILENO, POLLIN, 0};
  // An error counts as a waiting key on purpose: the caller then reads and sees the failure.
  return ::poll(&input, 1, 0) != 0;
}

std::int32_t TOSSpecific::GetKeyboardChar() {
  const TKeyMode mode;
  return std::getchar();
}

}  // namespace NVORNQDX20
