// SPDX-License-Identifier: Apache-2.0
/// Documents: namespaces in a file, which the plug-ins "cimxml" read and write.
#ifndef QDX_DOCUMENT_H_
#define QDX_DOCUMENT_H_

#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

using TNamespaces = std::vector<boost::shared_ptr<ICIMNamespace>>;

/// The namespaces of a document, in its order; "-" is standard input. Throws a TCommandFailure if
/// it cannot be read.
TNamespaces ReadDocument(const std::string& file);

/// Writes documents.
class TDocumentWriter {
 public:
  /// Throws a TCommandFailure if the plug-in cannot be used.
  TDocumentWriter();

  /// Writes one document, compressed if the name ends in ".gz"; "-" is standard output. Messages
  /// call the file `shownAs`; what the plug-in had to change on the way is told on standard error.
  /// Throws a TCommandFailure if it cannot be written, without a line if the reader has gone.
  void Write(const TNamespaces& namespaces, const std::string& file, const std::string& shownAs);

 private:
  void Consume(const TNamespaces& namespaces, const std::string& file);

  boost::shared_ptr<INamespaceConsumer> fConsumer;
};

}  // namespace NVORNQDX20

#endif  // QDX_DOCUMENT_H_
