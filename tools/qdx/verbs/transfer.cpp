// SPDX-License-Identifier: Apache-2.0
// The verbs upload and download.
#include <qdxcore/os_specific.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/foreign_writers.h>
#include <qdxsystem/read.h>
#include <qdxsystem/write.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/algorithm/string/predicate.hpp>

#include "cli/failure.h"
#include "cli/new_file.h"
#include "cli/output.h"
#include "input/worker_options.h"
#include "transfer_worker.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

/// Longer than the timeouts of libcurl and the system, which give better reasons.
constexpr const char* kDefaultTimeout = "180";

const TOptionSpec kTimeoutOption = {"timeout", "SECONDS",
                                    "Give up after this time without progress (180 by default)."};

[[noreturn]] void FailOnFile(const std::string& action, const std::string& why) {
  throw TCommandFailure(kExitBadInput, action, {kQDXStatusFileSystemError, why});
}

std::chrono::seconds TimeoutOf(const TArguments& arguments) {
  return SecondsOf(arguments, kTimeoutOption.fName, kDefaultTimeout);
}

/// Shortens a message of the core: removes the name of the operation, which means nothing to an
/// operator, and an empty detail of libcurl.
std::string ShortenMessage(const std::string& message) {
  const std::string origin = "TOSSpecific|FTPFile: ";
  const bool hasOrigin = message.compare(0, origin.size(), origin) == 0;
  const std::string text = hasOrigin ? message.substr(origin.size()) : message;
  const bool isOpen = text.size() > 2 && text.compare(text.size() - 2, 2, ": ") == 0;
  return isOpen ? text + "no reason given" : text;
}

[[noreturn]] void FailToTransfer(const std::string& action, const TExplainedException& failure) {
  throw TCommandFailure(kExitTransferFailed, action,
                        {failure.GetStatusCode(), ShortenMessage(failure.GetReason())});
}

/// The name becomes part of a URL, in which other characters have a special meaning.
void CheckRemoteName(const std::string& name) {
  const auto isPlain = [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-';
  };
  if (name.empty() || !std::all_of(name.begin(), name.end(), isPlain) ||
      name.find("..") != std::string::npos) {
    FailOnUsage("the name '" + name +
                "' contains '..', or characters other than letters, digits, '.', '_' and '-'");
  }
}

/// The path must be valid in a URL, and must be that of a file: for a folder, a listing arrives.
void CheckRemotePath(const std::string& path) {
  const auto isForbidden = [](unsigned char c) {
    return c <= ' ' || c == 0x7f || c == '#' || c == '?';
  };
  if (path.empty() || path.back() == '/' || std::any_of(path.begin(), path.end(), isForbidden)) {
    FailOnUsage("the path '" + path +
                "' is empty, ends in '/', or contains a blank, '#', '?' or a control character");
  }
}

/// Returns an unnamed file.
TDescriptor OpenTemporaryFile() {
  char name[] = "/tmp/qdx-XXXXXX";
  TDescriptor file(::mkostemp(name, O_CLOEXEC));
  if (!file.IsOpen()) FailOnFile("opening a temporary file", ErrorText(file.GetError()));
  ::unlink(name);
  return file;
}

/// Returns a path for an unnamed file.
std::string PathOf(const TDescriptor& file) {
  return "/proc/self/fd/" + std::to_string(file.Get());
}

void WaitForData(const TDescriptor& file, const std::string& shownAs,
                 std::chrono::seconds timeout) {
  pollfd data = {file.Get(), POLLIN, 0};
  const std::chrono::milliseconds time = timeout;
  if (::poll(&data, 1, static_cast<int>(time.count())) != 0) return;
  throw TCommandFailure(
      kExitTransferFailed, "reading " + shownAs,
      {kQDXStatusFail, "no data came for " + std::to_string(timeout.count()) + " s"});
}

std::uintmax_t ReadAll(const TDescriptor& file, const std::string& shownAs,
                       std::chrono::seconds timeout,
                       const std::function<void(const std::string&)>& take) {
  char buffer[65536];
  std::uintmax_t total = 0;
  for (;;) {
    WaitForData(file, shownAs, timeout);
    const ssize_t count = ReadSome(file.Get(), buffer, sizeof buffer);
    if (count < 0) FailOnFile("reading " + shownAs, ErrorText(errno));
    if (count == 0) return total;
    take(std::string(buffer, static_cast<std::size_t>(count)));
    total += static_cast<std::uintmax_t>(count);
  }
}

/// Does not wait for a writer of a pipe: ReadAll does, for a limited time.
TDescriptor OpenSource(const std::string& operand, const std::string& shownAs) {
  // From the current position of standard input, which opening it by name would not keep.
  constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  TDescriptor file(operand == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                  : ::open(operand.c_str(), kFlags));
  if (!file.IsOpen()) FailOnFile("reading " + shownAs, ErrorText(file.GetError()));
  return file;
}

/// Returns how many bytes follow the current position; 0 if the file does not have a size.
std::uintmax_t RemainingSize(const TDescriptor& file) {
  struct stat status = {};
  if (::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  const off_t position = ::lseek(file.Get(), 0, SEEK_CUR);
  return status.st_size > position ? static_cast<std::uintmax_t>(status.st_size - position) : 0;
}

/// Returns an unnamed copy of the file to send: an error of reading it is found before the
/// transfer, and libcurl needs a path to open.
TDescriptor CopyOfSource(const std::string& operand, std::chrono::seconds timeout) {
  const std::string shownAs = operand == "-" ? "standard input" : operand;
  const TDescriptor source = OpenSource(operand, shownAs);
  TDescriptor copy = OpenTemporaryFile();
  const std::uintmax_t expected = RemainingSize(source);
  const std::uintmax_t size = ReadAll(source, shownAs, timeout, [&](const std::string& block) {
    if (!WriteAll(copy.Get(), block)) {
      FailOnFile("copying " + shownAs + " to a temporary file", ErrorText(errno));
    }
  });
  if (size < expected) FailOnFile("reading " + shownAs, "it became shorter meanwhile");
  if (size == 0) FailOnFile("reading " + shownAs, "it is empty");
  return copy;
}

/// libcurl would send the data, which identifies the machine, to a proxy in clear text.
void ForgetProxies() {
  std::vector<std::string> names;
  for (char** variable = ::environ; *variable != nullptr; ++variable) {
    const std::string text = *variable;
    const std::string name = text.substr(0, text.find('='));
    if (boost::algorithm::iends_with(name, "_proxy")) names.push_back(name);
  }
  for (const std::string& name : names) ::unsetenv(name.c_str());
}

/// The port is that of FTP unless the build gives another one.
std::string WithPort(const std::string& host) {
  return host.find(':') == std::string::npos ? host + ":21" : host;
}

/// The core loads the libcurl beside it, or else one of the system: with root's rights only if
/// nobody else can have put it there.
void RequireOwnLibcurl(const std::string& action) {
  const std::string folder = TOSSpecific::GetQDXRootPath();
  const std::string library =
      std::filesystem::path(folder + "/libcurl.so").lexically_normal().string();
  std::error_code error;
  const bool exists = std::filesystem::exists(library, error);
  const auto writer = FindForeignWriterOfCode(exists ? library : folder + "/.");
  if (!writer) return;
  throw TCommandFailure(kExitTransferFailed, action,
                        {kQDXStatusAccessDenied, "root does not load " + library + ": " + *writer});
}

/// Runs a transfer, and prints first what it does and where it goes.
void Transfer(const std::string& action, std::chrono::seconds timeout,
              const std::vector<int>& descriptors, const std::function<void()>& work) {
  RequireOwnLibcurl(action);
  ForgetProxies();
  PrintError(action);
  RunTransfer(action, timeout, descriptors, work);
}

EExitCode RunUpload(const TArguments& arguments) {
  const std::string operand = arguments.GetOperand(0);
  const std::string name = arguments.GetOperand(1);
  const auto timeout = TimeoutOf(arguments);
  CheckRemoteName(name);
  const TDescriptor copy = CopyOfSource(operand, timeout);
  const std::string action =
      "uploading " + operand + " to " + WithPort(QDX_FTP_UPLOAD_HOST) + " as " + name + ".xml.gz";
  Transfer(action, timeout, {copy.Get()}, [&] {
    const auto failure = Try([&] { TOSSpecific::FTPFile(PathOf(copy), name); });
    if (failure) FailToTransfer(action, *failure);
  });
  return kExitDone;
}

/// Throws if another byte cannot be written: only this distinguishes a full disk from a failed
/// transfer.
void CheckDiskSpace(const std::string& file, const std::string& shownAs) {
  const TDescriptor descriptor(::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  const bool hasRoom = descriptor.IsOpen() && WriteAll(descriptor.Get(), std::string_view("\0", 1));
  if (!hasRoom) FailOnFile("writing " + shownAs, ErrorText(errno));
}

/// After a failure the contents of the file are unspecified.
void Download(const TArguments& arguments, const std::string& file, const std::string& shownAs,
              const std::vector<int>& descriptors = {}) {
  const std::string remote = arguments.GetOperand(0);
  const std::string action = "downloading " + remote + " from " + WithPort(QDX_FTP_DOWNLOAD_HOST);
  Transfer(action, TimeoutOf(arguments), descriptors, [&] {
    const auto failure = Try([&] { TOSSpecific::FTPFileFromVORN(file, remote); });
    if (!failure) return;
    CheckDiskSpace(file, shownAs);
    FailToTransfer(action, *failure);
  });
}

/// Downloads into an unnamed file first, so that a failed download writes nothing.
void DownloadToOutput(const TArguments& arguments) {
  const TDescriptor file = OpenTemporaryFile();
  Download(arguments, PathOf(file), "temporary file", {file.Get()});
  CopyToOutput(file.Get());
}

/// Returns the file to replace: the target of a link, and never a device.
std::filesystem::path TargetOf(const std::filesystem::path& local) {
  std::error_code error;
  if (std::filesystem::exists(local, error) && !std::filesystem::is_regular_file(local, error)) {
    FailOnFile("writing " + local.string(), "it is not a regular file");
  }
  return FileToReplace(local);
}

/// Replaces the target only with a complete file.
void DownloadToFile(const TArguments& arguments, const std::string& local) {
  const std::filesystem::path target = TargetOf(local);
  const std::string folder = target.has_parent_path() ? target.parent_path().string() : ".";
  TNewFile file(folder, ".part", local);
  Download(arguments, file.GetPath(), local);
  file.Publish(target);
}

EExitCode RunDownload(const TArguments& arguments) {
  const std::string local = arguments.GetOperand(1);
  CheckRemotePath(arguments.GetOperand(0));
  local == "-" ? DownloadToOutput(arguments) : DownloadToFile(arguments, local);
  return kExitDone;
}

}  // namespace

TVerb UploadVerb() {
  return {
      "upload",
      "Sends collected data to the maker's service.",
      "FILE, an .xml.gz document or '-' for standard input, is sent by anonymous FTP and\n"
      "becomes NAME.xml.gz there. NAME consists of letters, digits, '.', '_' and '-'. The data\n"
      "is copied to a temporary file first, and must not be empty. Proxies are not used.\n",
      {kTimeoutOption},
      RunUpload,
      {{"FILE"}, {"NAME"}}};
}

TVerb DownloadVerb() {
  return {"download",
          "Fetches a file from the maker's service.",
          "REMOTE is the path of a file there, written as in a URL: a blank is '%20'. It is\n"
          "fetched by anonymous FTP. LOCAL, or the target if it is a link, is replaced after the\n"
          "whole file has arrived; '-' is standard output. After a failure it is unchanged. "
          "Proxies are not used.\n",
          {kTimeoutOption},
          RunDownload,
          {{"REMOTE"}, {"LOCAL"}}};
}

}  // namespace NVORNQDX20
