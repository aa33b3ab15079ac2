// SPDX-License-Identifier: Apache-2.0
/// Files that appear under their name complete or not at all.
#ifndef TOOLS_QDX_CLI_NEW_FILE_H_
#define TOOLS_QDX_CLI_NEW_FILE_H_

#include <qdxsystem/descriptor.h>

#include <filesystem>
#include <string>
#include <vector>

namespace NVORNQDX20 {

/// Returns the file that a new file replaces: the target if the path is a symbolic link. Throws a
/// TCommandFailure for a dangling or circular link.
std::filesystem::path FileToReplace(const std::filesystem::path& path);

/// Throws a TCommandFailure if the output would replace one of the files that the command reads.
void RefuseToReplace(const std::string& output, const std::vector<std::string>& inputs);

/// A temporary file with mode 0600 in the target's folder, until Publish() renames it. Removed if
/// the command ends before that, by an exception or by a terminating signal from a terminal,
/// another process or a resource limit. SIGKILL, a crash and unusual signals leave it behind. Only
/// one object at a time.
class TNewFile {
 public:
  /// Creates the empty file in the folder, with a name that ends in `suffix`. Throws a
  /// TCommandFailure, which names the file `shownAs`, on failure.
  TNewFile(const std::string& folder, const std::string& suffix, const std::string& shownAs);
  ~TNewFile();
  TNewFile(const TNewFile&) = delete;
  TNewFile& operator=(const TNewFile&) = delete;

  /// The path under which the writer opens the file.
  const std::string& GetPath() const { return fPath; }

  /// Writes the contents to the disk (fsync), then renames the file to `path` in the same folder.
  /// Throws a TCommandFailure, and leaves `path` unchanged, on failure.
  void Publish(const std::string& path);
  /// Like Publish(), but returns false if a file exists at `path`. A file that is created there at
  /// the same moment is never replaced.
  bool PublishIfNew(const std::string& path);

 private:
  void WriteToDisk(const std::string& path);
  bool Link(const std::string& path);

  std::string fPath;
  TDescriptor fDescriptor;  // for fsync
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_NEW_FILE_H_
