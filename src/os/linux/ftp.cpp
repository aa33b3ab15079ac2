// SPDX-License-Identifier: Apache-2.0
// FTP transfers by libcurl, which is loaded at the first transfer.
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/status.h>

#include <cstdio>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>

#include "loader_error.h"

namespace NVORNQDX20 {
namespace {

constexpr char kDownloadFolder[] = "ftp://" QDX_FTP_DOWNLOAD_HOST "/";
constexpr char kUploadFolder[] =
    "ftp://" QDX_FTP_UPLOAD_HOST "/loftnode/tovorn/qseries/prq_upload/";
constexpr char kUploadExtension[] = ".xml.gz";

// The values are part of libcurl's binary interface, so that its headers are not needed to build.
constexpr long kGlobalAll = 3;
constexpr std::size_t kErrorTextSize = 256;
constexpr int kCouldNotResolveHost = 6;
constexpr int kCouldNotConnect = 7;
enum EOption : int {
  kOptionUpload = 46,
  kOptionWriteData = 10001,
  kOptionURL = 10002,
  kOptionReadData = 10009,
  kOptionErrorBuffer = 10010,
  kOptionWriteFunction = 20011
};

/// Any return value other than the size makes libcurl end the transfer.
constexpr std::size_t kWriteError = 0xffffffff;

/// The target file of a download, and its stream, which is opened when the first data arrives.
using TWriteContext = std::pair<std::string, std::FILE*>;

/// One transfer and the library that runs it.
///
/// A failure throws and cleans up nothing, on purpose: the library stays loaded, its handle and the
/// streams stay open. Hence no destructor; only End() cleans up.
class TTransfer {
 public:
  /// Loads the library.
  TTransfer() : fLibrary(::dlopen("libcurl.so", RTLD_LAZY)) {
    if (fLibrary == nullptr) {
      Fail("TOSSpecific|FTPFile: Error opening curl library: ", LoaderError());
    }
    Find("curl_global_init", fGlobalInit);
    Find("curl_easy_init", fInit);
    Find("curl_easy_setopt", fSetOption);
    Find("curl_easy_perform", fPerform);
    Find("curl_easy_cleanup", fCleanUp);
    Find("curl_global_cleanup", fGlobalCleanUp);
  }

  void Begin() {
    fGlobalInit(kGlobalAll);
    fHandle = fInit();
    if (fHandle == nullptr) Fail("TOSSpecific|FTPFile: Error initalizing curl");
    Set(kOptionErrorBuffer, fErrorText, "TOSSpecific|FTPFile: Error configuring curl error buffer");
  }

  /// REQUIRES: the value has exactly the type that libcurl reads from its variable arguments.
  template <typename TValue>
  void Set(EOption option, TValue value, const char* failureText) {
    if (fSetOption(fHandle, option, value) != 0) Fail(failureText);
  }

  void SetURL(const std::string& url) {
    Set(kOptionURL, url.c_str(), "TOSSpecific|FTPFile: Error setting curl target");
  }

  void Perform(const char* connectionFailureText, const char* failureText) {
    const int result = fPerform(fHandle);
    if (result == kCouldNotResolveHost || result == kCouldNotConnect) {
      LogErrorAndThrow(kQDXStatusConnectionFailed, {connectionFailureText});
    }
    if (result != 0) Fail(failureText, fErrorText);
  }

  /// libcurl takes a read error for the end of the file, and succeeds.
  static void RequireNoReadError(std::FILE* stream, const char* failureText) {
    if (std::ferror(stream) != 0) Fail(failureText, "the file could not be read to its end");
  }

  /// Also closes the stream if it is open.
  void End(std::FILE* stream) {
    fCleanUp(fHandle);
    fGlobalCleanUp();
    if (stream != nullptr) std::fclose(stream);
    ::dlclose(fLibrary);
  }

 private:
  [[noreturn]] static void Fail(const std::string& text, const std::string& reason = "") {
    LogErrorAndThrow(kQDXStatusLibCurlFailure, {text, reason});
  }

  template <typename TFunction>
  void Find(const char* name, TFunction& function) {
    function = reinterpret_cast<TFunction>(::dlsym(fLibrary, name));
    if (function == nullptr) {
      Fail("TOSSpecific|FTPFile: Error loading curl library: ", LoaderError());
    }
  }

  void* fLibrary;
  void* fHandle = nullptr;
  char fErrorText[kErrorTextSize] = "";

  int (*fGlobalInit)(long flags) = nullptr;
  void* (*fInit)() = nullptr;
  int (*fSetOption)(void* handle, int option, ...) = nullptr;
  int (*fPerform)(void* handle) = nullptr;
  void (*fCleanUp)(void* handle) = nullptr;
  void (*fGlobalCleanUp)() = nullptr;
};

std::FILE* OpenToRead(const std::string& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) {
    LogErrorAndThrow(kQDXStatusFileSystemError, {"TOSSpecific|FTPFile: Error getting file size"});
  }
  std::FILE* const stream = ::fdopen(descriptor, "rb");
  if (stream == nullptr) {
    LogErrorAndThrow(kQDXStatusFileSystemError,
                     {"TOSSpecific|FTPFile: Error creating file stream"});
  }
  return stream;
}

}  // namespace

std::size_t curl_fwrite(const void* data, std::size_t size, std::size_t count,
                        void* context) noexcept {
  if (context == nullptr) return kWriteError;
  auto& [file, stream] = *static_cast<TWriteContext*>(context);
  if (stream == nullptr) {
    stream = std::fopen(file.c_str(), "wbe");
    if (stream == nullptr) return kWriteError;
    // Unbuffered, so that a full disk is noticed at the write and not when the stream is closed.
    std::setvbuf(stream, nullptr, _IONBF, 0);
  }
  return std::fwrite(data, size, count, stream);
}

void TOSSpecific::FTPFileFromVORN(std::string localFile, std::string remotePath) {
  const std::string url = kDownloadFolder + remotePath;
  TTransfer transfer;
  TWriteContext context(localFile, nullptr);
  transfer.Begin();
  const char* const writeFailureText = "TOSSpecific|FTPFile: Error setting curl write function";
  transfer.Set(kOptionWriteFunction, &curl_fwrite, writeFailureText);
  transfer.Set(kOptionWriteData, &context, writeFailureText);
  transfer.SetURL(url);
  transfer.Perform("TOSSpecific|FTPFile: Error connecting to VORN",
                   "TOSSpecific|FTPFile: Error performing ftp get command: ");
  transfer.End(context.second);
}

void TOSSpecific::FTPFile(std::string localFile, std::string remoteName) {
  const std::string url = kUploadFolder + remoteName + kUploadExtension;
  TTransfer transfer;
  std::FILE* const stream = OpenToRead(localFile);
  transfer.Begin();
  transfer.Set(kOptionUpload, 1L, "TOSSpecific|FTPFile: Error setting curl upload");
  transfer.SetURL(url);
  transfer.Set(kOptionReadData, stream, "TOSSpecific|FTPFile: Error setting curl upload file");
  const char* const failureText = "TOSSpecific|FTPFile: Error performing upload command: ";
  transfer.Perform("TOSSpecific|FTPFile: Error connecting to VORN Service", failureText);
  TTransfer::RequireNoReadError(stream, failureText);
  transfer.End(stream);
}

}  // namespace NVORNQDX20
