// SPDX-License-Identifier: Apache-2.0
// Opens document files, and caches the last document.
#include <qdxcimxml/document_reader.h>

#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace NVORNQDX20::NCIMXML {
namespace {

[[noreturn]] void Refuse(const std::string& file) {
  const auto code = errno == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileNotFound;
  const std::string reason = ErrorText(errno);
  LogErrorAndThrow(code, {"cimxml: ", file == "-" ? "standard input" : file, ": ", reason});
}

bool IsSame(const timespec& left, const timespec& right) {
  return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

}  // namespace

boost::shared_ptr<TRepositoryProvider> ReadDocumentFile(const std::string& file,
                                                        const TReadingLimits& limits,
                                                        const TDefectListener& onDefect) {
  if (file == "-") return ReadDocument("standard input", STDIN_FILENO, limits, onDefect);
  const TDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor.IsOpen()) Refuse(file);
  return ReadDocument(file, descriptor.Get(), limits, onDefect);
}

TDocumentCache::TIdentity::TIdentity(const std::string& file) {
  struct stat status {};
  const bool isThere =
      file == "-" ? ::fstat(STDIN_FILENO, &status) == 0 : ::stat(file.c_str(), &status) == 0;
  if (!isThere) Refuse(file);
  fDevice = status.st_dev;
  fInode = status.st_ino;
  if (file == "-" || !S_ISREG(status.st_mode)) return;  // cannot be read twice
  fSize = status.st_size;
  fTime = status.st_mtim;
  fChangeTime = status.st_ctim;
}

bool TDocumentCache::TIdentity::operator==(const TIdentity& other) const {
  return fDevice == other.fDevice && fInode == other.fInode && fSize == other.fSize &&
         IsSame(fTime, other.fTime) && IsSame(fChangeTime, other.fChangeTime);
}

boost::shared_ptr<TRepositoryProvider> TDocumentCache::Read(const std::string& file) {
  const TIdentity identity(file);
  if (!fLast || !(identity == fLastIdentity)) {
    fLast.reset();  // frees the old document before the new one is read
    fLast = ReadDocumentFile(file, fLimits);
    fLastIdentity = identity;
  }
  return fLast;
}

}  // namespace NVORNQDX20::NCIMXML
