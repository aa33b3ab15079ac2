// SPDX-License-Identifier: Apache-2.0
/// A file that appears under its name as a whole, or not at all.
#ifndef TOOLS_QDX_CLI_NEW_FILE_H_
#define TOOLS_QDX_CLI_NEW_FILE_H_

#include <qdxsystem/descriptor.h>

#include <filesystem>
#include <string>

namespace NVORNQDX20 {

/// What a new file takes the place of: not a link, but the file that it leads to. Throws a
/// TCommandFailure for a link that leads to nothing, or in circles.
std::filesystem::path FileToReplace(const std::filesystem::path& path);

/// Stands under a name of its own beside the final one, readable by its owner alone, until
/// Publish() renames it. Whatever ends the command before that removes it: an exception, or a
/// signal that asks it to end, from a terminal, another process or a limit. SIGKILL, a crash and
/// the exotic ones leave it behind. One at a time.
class TNewFile {
 public:
  /// Makes the empty file in the folder, with a name that ends in `suffix`. Throws a
  /// TCommandFailure that calls it `shownAs` if that cannot be done.
  TNewFile(const std::string& folder, const std::string& suffix, const std::string& shownAs);
  ~TNewFile();
  TNewFile(const TNewFile&) = delete;
  TNewFile& operator=(const TNewFile&) = delete;

  /// Whoever fills the file opens it by this name, and closes it again.
  const std::string& GetPath() const { return fPath; }

  /// Brings the contents to the disk, then puts the file in the place of `path`, in the same
  /// folder. Throws a TCommandFailure, and leaves `path` as it was, if that cannot be done.
  void Publish(const std::string& path);
  /// The same, but false if there is a file at `path`.
  bool PublishIfNew(const std::string& path);

 private:
  bool Rename(const std::string& path, unsigned int flags);

  std::string fPath;
  TDescriptor fDescriptor;  // kept for fsync
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_NEW_FILE_H_
