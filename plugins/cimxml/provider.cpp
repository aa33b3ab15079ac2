// SPDX-License-Identifier: Apache-2.0
// The provider "cimxml": reads documents.
#include <qdxcimxml/document_reader.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/registry.h>
#include <qdxmodel/options.h>
#include <qdxrepository/repository.h>

#include <string>

#include <boost/make_shared.hpp>

namespace NVORNQDX20 {
namespace {

using TNamespaces = boost::shared_ptr<TRepositoryProvider>;

/// Provider "cimxml": the namespaces of a CIM-XML document, plain or compressed with gzip.
///
/// Option "file" (string) is the document's name, or "-" for standard input; without the option
/// there are no namespaces. Keeps the last document. Throws what TDocumentCache throws.
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
    return file ? fDocuments.Read(*file) : boost::make_shared<TRepositoryProvider>(fName);
  }

  const std::string fName = "cimxml";
  NCIMXML::TDocumentCache fDocuments;
};

[[maybe_unused]] const bool kRegistered = RegisterProvider<TCIMXMLProvider>();

}  // namespace
}  // namespace NVORNQDX20
