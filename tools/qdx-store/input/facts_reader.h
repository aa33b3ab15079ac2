// SPDX-License-Identifier: Apache-2.0
/// From the namespaces of a document to facts.
#ifndef TOOLS_QDX_STORE_INPUT_FACTS_READER_H_
#define TOOLS_QDX_STORE_INPUT_FACTS_READER_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "document_facts.h"

namespace NVORNQDX20::NStore {

struct TFactsSource {
  std::vector<boost::shared_ptr<ICIMNamespace>> fNamespaces;
  std::vector<std::string> fWarnings;  ///< Of the reader of the document.
  /// The time of a document that does not say when it was collected.
  std::optional<std::int64_t> fTimeOfOthers;
  std::size_t fMostFacts;  ///< Also of all the rest that is counted.
};

/// Returns everything but the digest. Throws a TExplainedException for a document that describes no
/// host, that does not say when it was collected, or that has more facts than allowed; passes on
/// what the namespaces throw.
TDocumentFacts ReadFacts(const TFactsSource& source);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_FACTS_READER_H_
