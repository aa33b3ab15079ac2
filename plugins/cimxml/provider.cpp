// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxcore/status.h>
#include <qdxmodel/options.h>
#include <qdxrepository/repository.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/make_shared.hpp>

#include "reading/document.h"

namespace NVORNQDX20 {
namespace {

using TNamespaces = boost::shared_ptr<TRepositoryProvider>;

[[noreturn]] void Refuse(const std::string& file) {
  const auto code = errno == EACCES ? kQDXStatusAccessDenied : kQDXStatusFileNotFound;
  const std::string reason = ErrorText(errno);
  LogErrorAndThrow(code, {"cimxml: ", file == "-" ? "standard input" : file, ": ", reason});
}

/// What tells one content of a file from another.
struct TIdentity {
  TIdentity() = default;
  explicit TIdentity(const std::string& file) {
    struct stat status {};
    const bool isThere =
        file == "-" ? ::fstat(STDIN_FILENO, &status) == 0 : ::stat(file.c_str(), &status) == 0;
    if (!isThere) Refuse(file);
    fDevice = status.st_dev;
    fInode = status.st_ino;
    if (file == "-" || !S_ISREG(status.st_mode)) return;  // those are read once
    fSize = status.st_size;
    fTime = status.st_mtim;
  }
  bool operator==(const TIdentity& other) const {
    return fDevice == other.fDevice && fInode == other.fInode && fSize == other.fSize &&
           fTime.tv_sec == other.fTime.tv_sec && fTime.tv_nsec == other.fTime.tv_nsec;
  }

  dev_t fDevice = 0;
  ino_t fInode = 0;
  off_t fSize = 0;
  timespec fTime{};
};

TNamespaces Read(const std::string& file) {
  if (file == "-") return NCIMXML::ReadDocument("standard input", STDIN_FILENO);
  const TDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor.IsOpen()) Refuse(file);
  return NCIMXML::ReadDocument(file, descriptor.Get());
}

/// Provider "cimxml": the namespaces of a CIM-XML document, plain or compressed with gzip.
///
/// Option "file" (string) names the document, "-" standard input; without it there are no
/// namespaces. The last document is kept, so that asking again does not read again, unless the file
/// has changed meanwhile; pipes are read once. A file that cannot be opened throws
/// kQDXStatusFileNotFound, or kQDXStatusAccessDenied where the right is missing, a bad one what
/// ReadDocument() says; both are logged.
class TCIMXMLProvider final : public INamespaceProvider {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name,
                                                TOptionsMap options) override {
    return NamespacesIn(options)->GetNamespace(name, {});
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback,
                               TOptionsMap options) override {
    NamespacesIn(options)->EnumerateNamespaceNames(callback, {});
  }

 private:
  TNamespaces NamespacesIn(const TOptionsMap& options) {
    const auto file = NModel::FileOf(options);
    if (!file) return boost::make_shared<TRepositoryProvider>(fName);
    const TIdentity identity(*file);
    if (!fLast || !(identity == fLastIdentity)) {
      fLast.reset();  // before there are two
      fLast = Read(*file);
      fLastIdentity = identity;
    }
    return fLast;
  }

  const std::string fName = "cimxml";
  TNamespaces fLast;
  TIdentity fLastIdentity;
};

[[maybe_unused]] const bool kRegistered = RegisterProvider<TCIMXMLProvider>();

}  // namespace
}  // namespace NVORNQDX20
