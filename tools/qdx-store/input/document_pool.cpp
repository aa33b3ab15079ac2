// SPDX-License-Identifier: Apache-2.0
#include "document_pool.h"

#include <qdxmodel/attempt.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <utility>

#include <unistd.h>

#include "opened_document.h"
#include "reading_worker.h"
#include "worker_launcher.h"

namespace NVORNQDX20::NStore {
namespace {

/// A document that a worker reads, unless it is known or cannot be read.
struct TStarted {
  TInputDocument fDocument;
  std::unique_ptr<TReadingWorker> fWorker;
};

std::size_t WorkersFor(const TInputLimits& limits) {
  if (limits.fWorkers != 0) return limits.fWorkers;
  constexpr long kMost = 16;
  return static_cast<std::size_t>(std::clamp(::sysconf(_SC_NPROCESSORS_ONLN), 1L, kMost));
}

TStarted Start(const std::string& file, const TInputRequest& request, const TInputLimits& limits,
               TWorkerLauncher& launcher) {
  TStarted started;
  started.fDocument.fFile = file;
  const auto failure = TryUnlessOutOfMemory([&] {
    const TOpenedDocument opened = OpenDocument(file, limits);
    started.fDocument.fDigest = opened.fDigest;
    if (request.fIsKnown && request.fIsKnown(opened.fDigest)) return;
    started.fWorker = std::make_unique<TReadingWorker>(opened.fFile, limits, launcher);
  });
  if (failure) started.fDocument.fFailure = failure->GetReason();
  return started;
}

TInputDocument Finish(TStarted&& started) {
  if (!started.fWorker) return std::move(started.fDocument);
  TFactsMessage message = started.fWorker->Finish();
  TInputDocument document = std::move(started.fDocument);
  document.fFacts = std::move(message.fFacts);
  document.fFailure = std::move(message.fFailure);
  if (document.fFacts) document.fFacts->fDigest = document.fDigest;
  return document;
}

}  // namespace

TDocumentPool::TDocumentPool(const TInputLimits& limits)
    : fLimits(limits), fLauncher(std::make_unique<TWorkerLauncher>(limits)) {}

TDocumentPool::~TDocumentPool() = default;

void TDocumentPool::Read(const TInputRequest& request,
                         const std::function<void(TInputDocument&&)>& take) {
  const std::size_t workers = WorkersFor(fLimits);
  std::deque<TStarted> started;
  auto next = request.fFiles.begin();
  const auto fill = [&] {
    while (started.size() < workers && next != request.fFiles.end()) {
      started.push_back(Start(*next++, request, fLimits, *fLauncher));
    }
  };
  for (fill(); !started.empty();) {
    TInputDocument document = Finish(std::move(started.front()));
    started.pop_front();
    fill();  // so that workers read while the document is used
    take(std::move(document));
  }
}

}  // namespace NVORNQDX20::NStore
