// SPDX-License-Identifier: Apache-2.0
/// Reports whose code was running when the command crashes.
#ifndef TOOLS_QDX_PLUGIN_HOST_CRASH_NOTE_H_
#define TOOLS_QDX_PLUGIN_HOST_CRASH_NOTE_H_

#include <string>

namespace NVORNQDX20 {

/// During its lifetime a crash prints a line "ACTION: it crashed (SEGV)", and then ends the process
/// as without this. Of nested objects the innermost one gives the action.
class TCrashNote {
 public:
  explicit TCrashNote(const std::string& action);
  ~TCrashNote();
  TCrashNote(const TCrashNote&) = delete;
  TCrashNote& operator=(const TCrashNote&) = delete;

 private:
  const std::string fOuter;
};

/// Installs the handlers; call it once, at the start. If a plug-in calls exit(), prints "it ended
/// the command" and ends with kExitNothingCollected.
void ReportCrashes();
/// Stops reporting exit(), since the command is done. Crashes are still reported.
void ReportNoEnd();
/// Removes the signal handlers in a child process whose parent reports its crash.
void StopReportingCrashes();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_CRASH_NOTE_H_
