// SPDX-License-Identifier: Apache-2.0
// The operator's terminal, key by key.
#include <qdxcore/os_specific.h>

#include <cstdio>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

/// While it lives, the terminal on standard input hands over every key at once, without echo, and
/// makes no signals of keys. What is no terminal stays as it is.
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
  // An error counts as a key, on purpose: the caller's loop then reads, and sees the failure.
  return ::poll(&input, 1, 0) != 0;
}

std::int32_t TOSSpecific::GetKeyboardChar() {
  const TKeyMode mode;
  return std::getchar();
}

}  // namespace NVORNQDX20
