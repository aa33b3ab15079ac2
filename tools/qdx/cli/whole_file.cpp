// SPDX-License-Identifier: Apache-2.0
#include "whole_file.h"

#include <qdxmodel/attempt.h>
#include <qdxoutput/output_file.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/write.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>

#include <boost/algorithm/string/predicate.hpp>

#include "failure.h"
#include "new_file.h"
#include "output.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCompressed = ".gz";

[[noreturn]] void FailToWriteFile(const std::string& shownAs, const std::string& why) {
  throw TCommandFailure(kExitBadInput, "writing " + shownAs, {kQDXStatusFileSystemError, why});
}

void CompressInto(const std::string& path, const std::string& text, const std::string& shownAs) {
  const std::string service = "qdx";
  const auto failure = TryUnlessOutOfMemory([&] {
    TOutputFile output(path, service);
    output.Write(text);
    output.Close();
  });
  if (failure) {
    FailToWriteFile(shownAs, WithoutName(WithoutName(*failure, service), path).GetReason());
  }
}

void WriteInto(const std::string& path, const std::string& text, const std::string& shownAs) {
  if (boost::algorithm::ends_with(shownAs, kCompressed)) return CompressInto(path, text, shownAs);
  TDescriptor output(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  int error = output.GetError();
  if (output.IsOpen()) {
    error = WriteAll(output.Get(), text) ? 0 : errno;
    if (!output.Close() && error == 0) error = errno;
  }
  if (error != 0) FailToWriteFile(shownAs, ErrorText(error));
}

}  // namespace

bool IsReplaceable(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::status_known(status)) FailToWriteFile(path, ErrorText(error.value()));
  return !fs::exists(status) || fs::is_regular_file(status);
}

void WriteWholeFile(const std::string& text, const std::string& file) {
  if (file == "-") return WriteOutput(text);
  if (!IsReplaceable(file)) return WriteInto(file, text, file);
  const fs::path path = fs::absolute(FileToReplace(file));
  const bool isCompressed = boost::algorithm::ends_with(file, kCompressed);
  TNewFile newFile(path.parent_path().string(), isCompressed ? kCompressed : "", file);
  WriteInto(newFile.GetPath(), text, file);
  newFile.Publish(path.string());
  WriteFileName(file);
}

}  // namespace NVORNQDX20
