// SPDX-License-Identifier: Apache-2.0
/// What a worker sends: facts, or why there are none.
#ifndef TOOLS_QDX_STORE_INPUT_FACTS_MESSAGE_H_
#define TOOLS_QDX_STORE_INPUT_FACTS_MESSAGE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "document_facts.h"

namespace NVORNQDX20::NStore {

struct TFactsMessage {
  std::optional<TDocumentFacts> fFacts;
  std::string fFailure;  ///< Set if there are no facts.
};

std::string EncodeFacts(const TFactsMessage& message);

/// Returns nothing for bytes that EncodeFacts cannot have made of facts as they are documented, and
/// for more facts, or other elements of one kind, than `most`. The worker is not trusted.
std::optional<TFactsMessage> DecodeFacts(std::string_view bytes, std::size_t most);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_FACTS_MESSAGE_H_
