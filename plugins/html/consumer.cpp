// SPDX-License-Identifier: Apache-2.0
// The consumer "html": writes reports for people.
#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxmodel/options.h>
#include <qdxreport/report.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/write.h>

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace NVORNQDX20 {
namespace {

[[noreturn]] void FailToWrite(const std::string& file, int error) {
  LogErrorAndThrow(kQDXStatusFileSystemError, {"html: " + file + ": " + ErrorText(error)});
}

void Write(const std::string& page, const std::string& file) {
  if (file == "-") {
    if (!WriteAll(STDOUT_FILENO, page)) FailToWrite("standard output", errno);
    return;
  }
  // Only its owner may read what a machine tells.
  TDescriptor output(
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR));
  if (!output.IsOpen()) FailToWrite(file, output.GetError());
  if (!WriteAll(output.Get(), page) || !output.Close()) FailToWrite(file, errno);
}

/// Consumer "html": writes namespaces as one HTML page, see MakeReport().
///
/// Option "file" (string) is the file name, or "-" for standard output. An existing file is
/// truncated and keeps its mode. With option "more" (boolean) true, nothing is written yet: the
/// next call for the same file adds its namespace, and a call without it writes the page with all
/// of them. A call for another file forgets what waited.
class THTMLConsumer final : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    const auto file = NModel::FileOf(options);
    if (!file) {
      LogErrorAndThrow(kQDXStatusRequiredContextMissing, {"html: the option \"file\" is missing"});
    }
    const bool more = NModel::HasMore(options);
    auto waiting = std::exchange(fWaiting, {});
    if (fFile != *file) waiting.clear();
    waiting.push_back(std::move(ns));
    if (!more) return Write(MakeReport(waiting), *file);
    fFile = *file;
    fWaiting = std::move(waiting);
  }

 private:
  const std::string fName = "html";
  std::string fFile;
  std::vector<boost::shared_ptr<ICIMNamespace>> fWaiting;
};

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* html_CreateINamespaceConsumer() {
  return new THTMLConsumer;
}

}  // namespace NVORNQDX20
