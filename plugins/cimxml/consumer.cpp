// SPDX-License-Identifier: Apache-2.0
// The consumer "cimxml": writes documents.
#include <qdxcimxml/document_writer.h>
#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxmodel/options.h>

#include <memory>
#include <string>
#include <utility>

namespace NVORNQDX20 {
namespace {

using NCIMXML::TDocumentWriter;

std::string RequiredFileOf(const TOptionsMap& options) {
  const auto file = NModel::FileOf(options);
  if (file) return *file;
  LogErrorAndThrow(kQDXStatusRequiredContextMissing, {"cimxml: the option \"file\" is missing"});
}

/// Consumer "cimxml": writes namespaces as a CIM-XML document.
///
/// Option "file" (string) is the file name, or "-" for standard output; see TDocumentWriter. With
/// option "more" (boolean) true, the document stays open and the next call for the same file adds
/// its namespace; a call without it completes the document. A failure, a call for another file, and
/// the destructor leave an open document incomplete. Option "oldreaders" (boolean) true begins a
/// document for old readers; see EReaders.
class TCIMXMLConsumer final : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    const std::string file = RequiredFileOf(options);
    const bool more = NModel::HasMore(options);
    std::unique_ptr<TDocumentWriter> document = std::move(fOpen);
    if (!document || document->GetFile() != file) {
      document.reset();  // closed first: the new file may be the same one
      document = std::make_unique<TDocumentWriter>(
          file, NModel::IsForOldReaders(options) ? NCIMXML::kOldReaders : NCIMXML::kCurrentReaders);
    }
    document->AddNamespace(*ns);
    if (more) {
      fOpen = std::move(document);
    } else {
      document->Close();
    }
  }

 private:
  const std::string fName = "cimxml";
  std::unique_ptr<TDocumentWriter> fOpen;
};

}  // namespace

extern "C" QDXCORE_EXPORT INamespaceConsumer* cimxml_CreateINamespaceConsumer() {
  return new TCIMXMLConsumer;
}

}  // namespace NVORNQDX20
