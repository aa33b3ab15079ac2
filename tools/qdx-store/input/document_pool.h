// SPDX-License-Identifier: Apache-2.0
/// Reads documents in workers, the next ones while the caller uses the last one.
#ifndef TOOLS_QDX_STORE_INPUT_DOCUMENT_POOL_H_
#define TOOLS_QDX_STORE_INPUT_DOCUMENT_POOL_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document_facts.h"

namespace NVORNQDX20::NStore {

/// What one document may need: against those that are made to exhaust the machine.
struct TInputLimits {
  std::uint64_t fBytes = std::uint64_t{256} << 20U;  ///< Of the file.
  std::uint64_t fMemory = std::uint64_t{1} << 30U;   ///< Of the worker.
  std::chrono::seconds fTime{60};       ///< Of the worker, and until a pipe has a writer.
  std::chrono::seconds fPipeTime{600};  ///< To the end of a pipe: its writer may be collecting.
  std::size_t fFacts = 1'000'000;
  std::size_t fWorkers = 0;  ///< At the same time; 0 for one for each processor.
};

/// A document, or why it cannot be used.
struct TInputDocument {
  std::string fFile;    ///< As given; "-" is standard input.
  std::string fDigest;  ///< SHA-256 of its bytes; empty if it cannot be read.
  std::optional<TDocumentFacts> fFacts;
  std::string fFailure;  ///< Set if there are no facts, and the document is not a known one.
};

struct TInputRequest {
  std::vector<std::string> fFiles;
  /// Called with the digest before a document is read: true leaves it out, and it arrives without
  /// facts and without failure. Documents with the same bytes can be read at the same time, before
  /// one of them is known.
  std::function<bool(const std::string& digest)> fIsKnown = nullptr;
};

class TWorkerLauncher;

/// To be made before a database is opened: see TWorkerLauncher.
class TDocumentPool {
 public:
  explicit TDocumentPool(const TInputLimits& limits = {});
  ~TDocumentPool();

  /// Calls `take` for each document in the order of the files. A document that cannot be used stops
  /// nothing. What `take` throws is passed on, after killing the workers.
  void Read(const TInputRequest& request, const std::function<void(TInputDocument&&)>& take);

 private:
  const TInputLimits fLimits;
  std::unique_ptr<TWorkerLauncher> fLauncher;
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_DOCUMENT_POOL_H_
