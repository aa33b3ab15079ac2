// SPDX-License-Identifier: Apache-2.0
/// Says whose code was running when the command crashes.
#ifndef TOOLS_QDX_PLUGIN_HOST_CRASH_NOTE_H_
#define TOOLS_QDX_PLUGIN_HOST_CRASH_NOTE_H_

#include <string>

namespace NVORNQDX20 {

/// While it lives, a crash is reported in one line, "ACTION: it crashed (SEGV)", and ends the
/// process as it would have. Of nested ones the innermost speaks.
class TCrashNote {
 public:
  explicit TCrashNote(const std::string& action);
  ~TCrashNote();
  TCrashNote(const TCrashNote&) = delete;
  TCrashNote& operator=(const TCrashNote&) = delete;

 private:
  const std::string fOuter;
};

/// To be called once, at the start. A plug-in that calls exit is reported as well: "it ended the
/// command", with kExitNothingCollected.
void ReportCrashes();
/// The work is done: to end is no fault any more.
void ReportNoEnd();
/// For a process whose crash another one reports.
void LeaveCrashesToOthers();

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_CRASH_NOTE_H_
