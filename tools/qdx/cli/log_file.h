// SPDX-License-Identifier: Apache-2.0
/// The file of the option --log.
#ifndef TOOLS_QDX_CLI_LOG_FILE_H_
#define TOOLS_QDX_CLI_LOG_FILE_H_

#include <qdxcore/logger.h>
#include <qdxsystem/descriptor.h>

#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20 {

/// Writes the messages that are logged during its lifetime to a file, in the logger's format. The
/// command opens the file itself because the logger follows links, truncates whatever has the name,
/// and does not report a write that fails. A forked process writes to the file unless it has closed
/// the descriptor.
class TLogFile {
 public:
  /// Creates the file with mode 0600, or truncates it. It must be a regular file, a terminal,
  /// /dev/null, /dev/full or, by name, /dev/stderr; no symbolic link. It must neither be one of
  /// `otherFiles`, which the command reads or writes, nor a file to which a standard stream is
  /// redirected, nor below one of the folders. Throws a TCommandFailure, without changing the file,
  /// on failure.
  TLogFile(const std::string& file, ILogger::EQDXLogSeverity threshold,
           const std::vector<std::string>& otherFiles,
           const std::vector<std::string>& otherFolders = {});
  TLogFile(const TLogFile&) = delete;
  TLogFile& operator=(const TLogFile&) = delete;

  /// Writes the closing line and closes the file. Returns whether all lines were written.
  bool Close();

 private:
  void WriteMessage(ILogger::EQDXLogSeverity severity, const std::string& message);
  bool IsClosedInChild() const;
  void Write(std::string_view line);
  void Require(bool done);

  const std::string fName;
  TDescriptor fDescriptor;
  const struct stat fStatus;
  const pid_t fProcess = ::getpid();
  bool fHasFailed = false;
  const TLogListener fListener;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_LOG_FILE_H_
