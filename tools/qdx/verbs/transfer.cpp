// SPDX-License-Identifier: Apache-2.0
// The verbs upload and download.
#include <qdxcore/os_specific.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/write.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "cli/failure.h"
#include "cli/new_file.h"
#include "cli/output.h"
#include "plugin_host/watched.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

/// Longer than the timeouts of libcurl and the system, which give better reasons.
constexpr const char* kDefaultTimeout = "180";

const TOptionSpec kTimeoutOption = {"timeout", "SECONDS",
                                    "Give up after this time without progress (180 by default)."};

using TStream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void FailOnFile(const std::string& action, const std::string& why) {
  throw TCommandFailure(kExitBadInput, action, {kQDXStatusFileSystemError, why});
}

std::chrono::seconds TimeoutOf(const TArguments& arguments) {
  const std::string text = arguments.Get(kTimeoutOption.fName, kDefaultTimeout);
  std::uint16_t seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc() || end != text.data() + text.size() || seconds == 0) {
    FailOnUsage("'" + text + "' is not a number of seconds from 1 to 65535");
  }
  return std::chrono::seconds(seconds);
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

TStream OpenTemporaryFile() {
  TStream file(std::tmpfile(), std::fclose);
  if (!file) FailOnFile("opening a temporary file", ErrorText(errno));
  return file;
}

/// Returns a path for an unnamed file.
std::string PathOf(std::FILE* file) { return "/proc/self/fd/" + std::to_string(::fileno(file)); }

void ReadAll(std::FILE* file, const std::string& shownAs,
             const std::function<void(const std::string&)>& take) {
  char buffer[65536];
  std::size_t count = 0;
  while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
    take(std::string(buffer, count));
  }
  if (std::ferror(file) != 0) FailOnFile("reading " + shownAs, ErrorText(errno));
}

TStream OpenSource(const std::string& operand, const std::string& shownAs) {
  // From the current position of standard input, which opening it by name would not keep.
  std::FILE* const file = operand == "-" ? ::fdopen(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0), "rb")
                                         : std::fopen(operand.c_str(), "rbe");
  if (file == nullptr) FailOnFile("reading " + shownAs, ErrorText(errno));
  return {file, std::fclose};
}

/// Returns an unnamed copy of the file to send: libcurl takes a read error for the end of the file,
/// and needs a path to open.
TStream CopyOfSource(const std::string& operand) {
  const std::string shownAs = operand == "-" ? "standard input" : operand;
  const TStream source = OpenSource(operand, shownAs);
  TStream copy = OpenTemporaryFile();
  std::setvbuf(copy.get(), nullptr, _IONBF, 0);
  ReadAll(source.get(), shownAs, [&](const std::string& block) {
    if (std::fwrite(block.data(), 1, block.size(), copy.get()) != block.size()) {
      FailOnFile("copying " + shownAs + " to a temporary file", ErrorText(errno));
    }
  });
  if (std::ftell(copy.get()) == 0) FailOnFile("reading " + shownAs, "it is empty");
  return copy;
}

EExitCode RunUpload(const TArguments& arguments) {
  const std::string operand = arguments.GetOperand(0);
  const std::string name = arguments.GetOperand(1);
  const auto timeout = TimeoutOf(arguments);
  CheckRemoteName(name);
  const TStream copy = CopyOfSource(operand);
  const std::string action =
      "uploading " + operand + " to " QDX_FTP_UPLOAD_HOST " as " + name + ".xml.gz";
  RunWatched(action, timeout, [&] {
    const auto failure = Try([&] { TOSSpecific::FTPFile(PathOf(copy.get()), name); });
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
void Download(const TArguments& arguments, const std::string& file, const std::string& shownAs) {
  const std::string remote = arguments.GetOperand(0);
  const std::string action = "downloading " + remote + " from " QDX_FTP_DOWNLOAD_HOST;
  RunWatched(action, TimeoutOf(arguments), [&] {
    const auto failure = Try([&] { TOSSpecific::FTPFileFromVORN(file, remote); });
    if (!failure) return;
    CheckDiskSpace(file, shownAs);
    FailToTransfer(action, *failure);
  });
}

/// Downloads into an unnamed file first, so that a failed download writes nothing.
void DownloadToOutput(const TArguments& arguments) {
  const TStream file = OpenTemporaryFile();
  Download(arguments, PathOf(file.get()), "temporary file");
  ReadAll(file.get(), "temporary file", WriteOutput);
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
      "is copied to a temporary file first, and must not be empty.\n",
      {kTimeoutOption},
      RunUpload,
      {{"FILE"}, {"NAME"}}};
}

TVerb DownloadVerb() {
  return {"download",
          "Fetches a file from the maker's service.",
          "REMOTE is the path of a file there, written as in a URL: a blank is '%20'. It is\n"
          "fetched by anonymous FTP. LOCAL, or the target if it is a link, is replaced after the\n"
          "whole file has arrived; '-' is standard output. After a failure it is unchanged.\n",
          {kTimeoutOption},
          RunDownload,
          {{"REMOTE"}, {"LOCAL"}}};
}

}  // namespace NVORNQDX20
