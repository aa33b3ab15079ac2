// SPDX-License-Identifier: Apache-2.0
#include "document_file.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "cli/new_file.h"
#include "cli/output.h"
#include "cli/whole_file.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

/// For devices and pipes, which a file cannot replace: they get what is complete. That is nothing
/// if the consumer sends the data elsewhere, and the operator gives /dev/null.
void WriteDocumentInto(const std::string& file, const std::string& suffix,
                       const TWriteDocument& write) {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  const TNewFile newFile(error ? "/tmp" : folder.string(), suffix, file);
  write(newFile.GetPath(), file);
  CopyToFile(newFile.GetPath(), file);
}

}  // namespace

void WriteDocument(const std::string& file, const TPluginWriter& writer,
                   const TWriteDocument& write) {
  if (file == "-") {
    write(file, "standard output");
    writer.RequireContents(file, "standard output");
    return CopyToOutput(writer.GetOutput());
  }
  // Consumers may select the format by the suffix.
  const std::size_t dot = std::min(file.rfind('.'), file.size());
  const std::string suffix = file.find('/', dot) == std::string::npos ? file.substr(dot) : "";
  if (!IsReplaceable(file)) return WriteDocumentInto(file, suffix, write);
  const fs::path path = fs::absolute(FileToReplace(file));
  TNewFile newFile(path.parent_path().string(), suffix, file);
  write(newFile.GetPath(), file);
  writer.RequireContents(newFile.GetPath(), file);
  newFile.Publish(path.string());
  WriteFileName(file);
}

}  // namespace NVORNQDX20
