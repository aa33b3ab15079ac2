// SPDX-License-Identifier: Apache-2.0
// Documents: any input gives namespaces or a TQDXException, and namespaces that were read can be
// written as a document that reads and writes the same. A leading '+' stands for the elements that
// enclose objects.
#include <qdxcimxml/document_reader.h>
#include <qdxcimxml/document_writer.h>

#include <qdxcore/status.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

using namespace NVORNQDX20;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

class TMemoryFile {
 public:
  explicit TMemoryFile(const std::string& content) {
    Require(::write(fFile, content.data(), content.size()) == static_cast<ssize_t>(content.size()));
    ::lseek(fFile, 0, SEEK_SET);
  }
  ~TMemoryFile() { ::close(fFile); }
  TMemoryFile(const TMemoryFile&) = delete;
  TMemoryFile& operator=(const TMemoryFile&) = delete;

  int Descriptor() const { return fFile; }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(fFile); }
  std::string Content() const {
    std::string content(static_cast<std::size_t>(::lseek(fFile, 0, SEEK_END)), '\0');
    Require(::pread(fFile, content.data(), content.size(), 0) ==
            static_cast<ssize_t>(content.size()));
    return content;
  }

 private:
  const int fFile = ::memfd_create("fuzz", MFD_CLOEXEC);
};

std::string Written(TRepositoryProvider& namespaces) {
  const TMemoryFile file("");
  NCIMXML::TDocumentWriter writer(file.Path());
  namespaces.EnumerateNamespaceNames(
      [&](const std::string& name) {
        writer.AddNamespace(*namespaces.GetNamespace(name, {}));
        return true;
      },
      {});
  writer.Close();
  return file.Content();
}

boost::shared_ptr<TRepositoryProvider> Read(const std::string& content) {
  return NCIMXML::ReadDocument("fuzz", TMemoryFile(content).Descriptor());
}

/// Returns whether the document has references to other namespaces. Such a document does not come
/// back: a namespace that is only referred to is not written, nor is the one of a null reference.
bool RefersElsewhere(const std::string& document) {
  return document.find("<LOCALINSTANCEPATH>") != std::string::npos ||
         document.find("<LOCALCLASSPATH>") != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string content(reinterpret_cast<const char*>(data), size);
  if (!content.empty() && content[0] == '+') {
    content = "<CIM><DECLARATION><DECLGROUP.WITHNAME>" + content.substr(1) +
              "</DECLGROUP.WITHNAME></DECLARATION></CIM>";
  }
  boost::shared_ptr<TRepositoryProvider> namespaces;
  try {
    namespaces = Read(content);
  } catch (const TQDXException&) {
    return 0;
  }
  const std::string written = Written(*namespaces);
  const std::string again = Written(*Read(written));
  Require(RefersElsewhere(written) || again == written);
  return 0;
}
