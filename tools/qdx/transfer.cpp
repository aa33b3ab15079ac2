// SPDX-License-Identifier: Apache-2.0
// The verbs upload and download.
#include <qdxcore/os_specific.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include <unistd.h>

#include "failure.h"
#include "new_file.h"
#include "output.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

[[noreturn]] void FailOnFile(const std::string& tried, const std::string& file,
                             const std::string& why) {
  throw TCommandFailure(kExitBadInput, FailureLine(tried, file, {kQDXStatusFileSystemError, why}));
}

/// The core's messages name the operation that they come from, which tells an operator nothing.
std::string WithoutOrigin(const std::string& message) {
  const std::string origin = "TOSSpecific|FTPFile: ";
  return message.compare(0, origin.size(), origin) == 0 ? message.substr(origin.size()) : message;
}

void Transfer(const std::string& tried, const std::string& on,
              const std::function<void()>& operation) {
  auto failure = Try(operation);
  if (!failure) return;
  failure->fWhy = WithoutOrigin(failure->fWhy);
  throw TCommandFailure(kExitTransferFailed, FailureLine(tried, on, *failure));
}

/// The name becomes part of a URL, in which other characters have a meaning of their own.
void CheckRemoteName(const std::string& name) {
  const auto isPlain = [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-';
  };
  if (name.empty() || !std::all_of(name.begin(), name.end(), isPlain) ||
      name.find("..") != std::string::npos) {
    throw TCommandFailure(kExitUsage, "the name '" + name +
                                          "' is not of letters, digits, '.', '_' and '-', "
                                          "or has '..' in it");
  }
}

void CheckSource(const std::string& file) {
  if (::access(file.c_str(), R_OK) != 0) {
    FailOnFile("reading", file, std::generic_category().message(errno));
  }
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) FailOnFile("reading", file, "it is a folder");
}

EExitCode RunUpload(const TArguments& arguments) {
  const std::string operand = arguments.Operand(0);
  const std::string name = arguments.Operand(1);
  CheckRemoteName(name);
  const std::string file = operand == "-" ? "/dev/stdin" : operand;
  CheckSource(file);
  Transfer("uploading " + operand, name + ".xml.gz", [&] { TOSSpecific::FTPFile(file, name); });
  return kExitDone;
}

void Download(const std::string& remote, const std::string& file) {
  Transfer("downloading", remote, [&] { TOSSpecific::FTPFileFromVORN(file, remote); });
}

/// By way of a nameless file, so that a failed download writes nothing.
void DownloadToOutput(const std::string& remote) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  if (!file) FailOnFile("opening", "temporary file", std::generic_category().message(errno));
  Download(remote, "/proc/self/fd/" + std::to_string(::fileno(file.get())));
  char buffer[65536];
  std::size_t count = 0;
  while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
    WriteOutput(std::string(buffer, count));
  }
  if (std::ferror(file.get()) != 0) FailOnFile("reading", "temporary file", "it failed");
}

/// Only a whole file takes the place of what was there, and never that of a device.
void DownloadToFile(const std::string& remote, const std::filesystem::path& local) {
  std::error_code ignored;
  if (std::filesystem::exists(local, ignored) &&
      !std::filesystem::is_regular_file(local, ignored)) {
    FailOnFile("writing", local, "it is no regular file");
  }
  const std::string folder = local.has_parent_path() ? local.parent_path().string() : ".";
  TNewFile file(folder, ".part", local);
  Download(remote, file.GetPath());
  file.Publish(local);
}

EExitCode RunDownload(const TArguments& arguments) {
  const std::string remote = arguments.Operand(0);
  const std::string local = arguments.Operand(1);
  local == "-" ? DownloadToOutput(remote) : DownloadToFile(remote, local);
  return kExitDone;
}

}  // namespace

TVerb UploadVerb() {
  return {"upload",
          "Sends collected data to the maker's service.",
          "FILE, an .xml.gz document or '-' for standard input, is sent by anonymous FTP and\n"
          "becomes NAME.xml.gz there. NAME is of letters, digits, '.', '_' and '-'.\n",
          {},
          RunUpload,
          {{"FILE"}, {"NAME"}}};
}

TVerb DownloadVerb() {
  return {"download",
          "Fetches a file from the maker's service.",
          "REMOTE is a path there, fetched by anonymous FTP and written as it would stand in a\n"
          "URL: a blank is '%20'. LOCAL is replaced when all has arrived, or '-' for standard\n"
          "output; after a failure it is what it was.\n",
          {},
          RunDownload,
          {{"REMOTE"}, {"LOCAL"}}};
}

}  // namespace NVORNQDX20
