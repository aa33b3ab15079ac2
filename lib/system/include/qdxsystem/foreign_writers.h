// SPDX-License-Identifier: Apache-2.0
/// Finds out whether somebody else may replace a file.
#ifndef QDXSYSTEM_FOREIGN_WRITERS_H_
#define QDXSYSTEM_FOREIGN_WRITERS_H_

#include <optional>
#include <string>

#include <sys/types.h>

namespace NVORNQDX20 {

/// Returns nothing if only root and `owner` may write to the file, and to all folders and links on
/// the way to it. Else returns who may write to what, and the remedy, for example "everybody may
/// write to folder /opt/qdx; 'chmod o-w' takes that right away". The file itself is "it".
///
/// In a folder with the sticky bit, such as /tmp, nobody can replace what belongs to another user,
/// so only its owner counts; except in the folder of the file itself, to which others could add
/// files. The group of a user with the user's name and no other member counts as
/// that user. In a user namespace, users outside of it do not count.
std::optional<std::string> FindForeignWriter(const std::string& file, uid_t owner);

/// The same about a file whose code this process is to run: with root's rights, only what root or
/// the owner of the program can have written. Returns nothing for other users.
std::optional<std::string> FindForeignWriterOfCode(const std::string& file);

}  // namespace NVORNQDX20

#endif  // QDXSYSTEM_FOREIGN_WRITERS_H_
