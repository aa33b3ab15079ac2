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

/// Written before the name of the signal. A buffer, since a signal handler must not allocate.
char gNote[512];

void SetNote(const std::string& note) { gNote[note.copy(gNote, sizeof(gNote) - 1)] = '\0'; }

void Write(const char* text) {
  (void)WriteAll(STDERR_FILENO, text);  // a failure cannot be reported
}

extern "C" void ReportAndEnd(int signal) {
  Write(gNote);
  Write("it crashed (");
  Write(::sigabbrev_np(signal));
  Write(")\n");
  ::raise(signal);  // again, now with the default action
}

/// The process whose exit is reported: children of a plug-in may exit.
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
  // A separate stack, since the handler also runs after a stack overflow.
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
    if (action.sa_handler != SIG_DFL) continue;  // that of a sanitizer reports more
    action.sa_handler = ReportAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_ONSTACK | SA_NODEFER;
    ::sigaction(signal, &action, nullptr);
  }
}

void ReportNoEnd() {
  SetNote("qdx: all done, then: ");
  gProcess = 0;
}

void StopReportingCrashes() {
  for (const int signal : kCrashes) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler == ReportAndEnd) std::signal(signal, SIG_DFL);
  }
}

}  // namespace NVORNQDX20
