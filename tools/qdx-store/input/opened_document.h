// SPDX-License-Identifier: Apache-2.0
/// Opens a document, and computes what identifies its bytes.
#ifndef TOOLS_QDX_STORE_INPUT_OPENED_DOCUMENT_H_
#define TOOLS_QDX_STORE_INPUT_OPENED_DOCUMENT_H_

#include <qdxsystem/descriptor.h>

#include <string>

#include "document_pool.h"

namespace NVORNQDX20::NStore {

struct TOpenedDocument {
  TDescriptor fFile;    ///< At its start, and of its own: nobody else moves its position.
  std::string fDigest;  ///< SHA-256 in hexadecimal digits.
};

/// Opens a file, or standard input for "-". What is no regular file, such as a pipe, is read to its
/// end into a file without a name. Throws a TExplainedException, also for more bytes than allowed,
/// and for a pipe that takes too long.
TOpenedDocument OpenDocument(const std::string& file, const TInputLimits& limits);

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_OPENED_DOCUMENT_H_
