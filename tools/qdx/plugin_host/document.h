// SPDX-License-Identifier: Apache-2.0
/// Documents: namespaces in a file, which plug-ins read and write.
#ifndef TOOLS_QDX_PLUGIN_HOST_DOCUMENT_H_
#define TOOLS_QDX_PLUGIN_HOST_DOCUMENT_H_

#include <qdxcore/interfaces.h>

#include <optional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "cli/failure.h"
#include "live_machine.h"

namespace NVORNQDX20 {

using TNamespaces = std::vector<boost::shared_ptr<ICIMNamespace>>;

/// The namespaces of a document, in its order; "-" is standard input. What the plug-in warned
/// of is told on standard error. Throws a TCommandFailure if it cannot be read.
TNamespaces ReadDocument(const std::string& file);

/// Writes namespaces into files by a consumer plug-in.
class TDocumentWriter {
 public:
  static const char* const kDefaultConsumer;

  /// Throws a TCommandFailure if the plug-in cannot be used.
  explicit TDocumentWriter(const std::string& consumer);

  /// Writes one document; "-" is standard output. With the document writer, a name that ends in
  /// ".gz" makes it a compressed one. Messages call the file `shownAs`; what the plug-in warned of
  /// is told on standard error.
  /// Answers the first namespace that was refused: then the file holds nothing of use, and may be
  /// emptied and written anew without it. Throws a TCommandFailure if the file cannot be written,
  /// without a line if the reader has gone.
  std::optional<TProviderFailure> Write(const std::vector<TMachineNamespace>& namespaces,
                                        const std::string& file, const std::string& shownAs);

  /// Whether the plug-in warned, because what it wrote is not all that it was given.
  bool HasWarned() const { return fHasWarned; }

 private:
  TExplainedException Blame(const TExplainedException& failure, const std::string& shownAs) const;

  const std::string fName;
  boost::shared_ptr<INamespaceConsumer> fConsumer;
  bool fHasWarned = false;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_PLUGIN_HOST_DOCUMENT_H_
