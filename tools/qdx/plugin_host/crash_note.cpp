// SPDX-License-Identifier: Apache-2.0
#include "crash_note.h"

#include <qdxsystem/write.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "cli/exit_code.h"
#include "cli/terminal.h"

namespace NVORNQDX20 {
namespace {

constexpr int kCrashes[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

/// What the handler writes before the name of the signal; it may not make a text.
char gNote[512];

void SetNote(const std::string& note) { gNote[note.copy(gNote, sizeof(gNote) - 1)] = '\0'; }

void Write(const char* text) {
  (void)WriteAll(STDERR_FILENO, text);  // there is nobody else to tell
}

extern "C" void ReportAndEnd(int signal) {
  Write(gNote);
  Write("it crashed (");
  Write(::sigabbrev_np(signal));
  Write(")\n");
  ::raise(signal);  // once more, and by now for the default action
}

/// Whose end is reported; a child that a plug-in makes may end.
pid_t gProcess = 0;

void ReportEnd() {
  if (gProcess != ::getpid()) return;
  Write(gNote);
  Write("it ended the command\n");
  ::_exit(kExitNothingCollected);
}

}  // namespace

TCrashNote::TCrashNote(const std::string& action) : fOuter(gNote) {
  SetNote("qdx: " + ForTerminal(action) + ": ");
}

TCrashNote::~TCrashNote() { SetNote(fOuter); }

void ReportCrashes() {
  // A stack of its own: one that has overflowed is no place for a handler.
  static char stack[1 << 16];
  stack_t alternative = {};
  alternative.ss_sp = stack;
  alternative.ss_size = sizeof(stack);
  ::sigaltstack(&alternative, nullptr);
  SetNote("qdx: ");
  gProcess = ::getpid();
  std::atexit(ReportEnd);
  (void)std::at_quick_exit(ReportEnd);
  for (const int signal : kCrashes) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_DFL) continue;  // a sanitizer tells more
    action.sa_handler = ReportAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_ONSTACK | SA_NODEFER;
    ::sigaction(signal, &action, nullptr);
  }
}

void ReportNoEnd() {
  SetNote("qdx: all done, then: ");
  gProcess = 0;
}

void LeaveCrashesToOthers() {
  for (const int signal : kCrashes) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler == ReportAndEnd) std::signal(signal, SIG_DFL);
  }
}

}  // namespace NVORNQDX20
