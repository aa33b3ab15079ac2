// SPDX-License-Identifier: Apache-2.0
#include "sqlite_file.h"

#include <qdxsystem/error_text.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <tuple>

#include <boost/algorithm/string/predicate.hpp>

#include "error.h"

namespace NVORNQDX20::NStore {
namespace {

/// SOCI reads a text without "=" as the name of the file, and else as parameters. For SQLite some
/// names are no files, such as ":memory:" and "file:x".
std::string FileParameters(std::string file) {
  if (!boost::starts_with(file, "/")) file.insert(0, "./");
  if (file.find('=') == std::string::npos) return file;
  if (file.find('"') != std::string::npos) {
    throw TDatabaseError(TDatabaseError::kUnusable, kQDXStatusNotSupported,
                         "a name with both \" and = cannot be opened");
  }
  return "dbname=\"" + file + "\"";
}

/// The parameters for a file that does not change.
std::string ImmutableFileParameters(const std::string& file) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string uri = boost::starts_with(file, "/") ? "file:" : "file:./";
  for (const char c : file) {
    if (std::string_view("%?#\"").find(c) == std::string_view::npos) {
      uri += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      (uri += '%') += kDigits[byte >> 4U];
      uri += kDigits[byte & 15U];
    }
  }
  return "dbname=\"" + uri + "?immutable=1\"";
}

bool MayUse(const std::filesystem::path& path, int how) {
  return ::faccessat(AT_FDCWD, path.c_str(), how, AT_EACCESS) == 0;
}

/// Also false on a disk that is mounted for reading only.
bool CanWrite(const std::filesystem::path& path) { return MayUse(path, W_OK); }

/// SQLite makes its files beside the store itself, not beside a link to it.
std::filesystem::path TargetOf(const std::string& file) {
  std::error_code error;
  const auto target = std::filesystem::canonical(file, error);
  return error ? std::filesystem::path(file) : target;
}

auto StateOf(const struct stat& status) {
  return std::tuple(status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
                    status.st_mtim.tv_nsec, status.st_ctim.tv_sec, status.st_ctim.tv_nsec);
}

}  // namespace

TSQLiteFile::TSQLiteFile(const std::string& file) : fFile(file) {
  const auto fail = [](TQDXStatusCode status, const std::string& reason) {
    throw TDatabaseError(TDatabaseError::kUnusable, status, reason);
  };
  if (::stat(file.c_str(), &fOpened) != 0) fail(kQDXStatusFileNotFound, ErrorText(errno));
  if (!S_ISREG(fOpened.st_mode)) fail(kQDXStatusFileSystemError, "it is no regular file");
  if (!MayUse(file, R_OK)) fail(kQDXStatusAccessDenied, ErrorText(errno));
  const std::filesystem::path target = TargetOf(file);
  struct stat log {};
  // What a writer has in its log would be missed. SQLite finds it with the index of the writer.
  const bool hasLog = ::stat((target.string() + "-wal").c_str(), &log) == 0 && log.st_size > 0;
  fIsLocked = hasLog || (CanWrite(target) && CanWrite(target.parent_path()));
  fParameters = fIsLocked ? FileParameters(file) : ImmutableFileParameters(file);
}

bool TSQLiteFile::HasChanged() const {
  if (fIsLocked) return false;
  struct stat status {};
  return ::stat(fFile.c_str(), &status) != 0 || StateOf(status) != StateOf(fOpened);
}

bool TSQLiteFile::IsReplaced() const {
  struct stat status {};
  return ::stat(fFile.c_str(), &status) != 0 || status.st_dev != fOpened.st_dev ||
         status.st_ino != fOpened.st_ino;
}

}  // namespace NVORNQDX20::NStore
