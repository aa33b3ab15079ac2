// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cli/failure.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "format/time_text.h"
#include "input/document_pool.h"
#include "opened_store.h"
#include "storage/store.h"
#include "verbs.h"

namespace NVORNQDX20::NStore {
namespace {

const char* const kStandardInput = "-";

std::string ShownAs(const std::string& file) {
  return file == kStandardInput ? "standard input" : file;
}

/// Adds documents one by one, and counts them. A store that does not exist yet is made for the
/// first document that can be stored.
class TAdding {
 public:
  TAdding(std::string store, std::size_t files) : fLocation(std::move(store)), fFiles(files) {
    Open(EAccess::kOptional);
  }

  bool IsKnown(const std::string& digest) {
    if (!fStore) return false;
    try {
      return fStore->Has(digest);
    } catch (const TDatabaseError& error) {
      Abandon(error);
    }
  }

  void Add(const TInputDocument& document) {
    const auto failure = document.fFailure.empty()
                             ? Store(document)
                             : TExplainedException(kQDXStatusFail, document.fFailure);
    if (failure) {
      ++fFailed;
      PrintFailure("adding " + ShownAs(document.fFile), *failure);
    }
    if (fFiles > 1) {
      fProgress.Show(std::to_string(++fDone) + " of " + std::to_string(fFiles) + " documents");
    }
  }

  EExitCode Finish() {
    if (fAdded > 0) fStore->UpdateStatistics();
    fProgress.Show("");
    WriteOutput(Counts() + "\n");
    if (fFailed == 0) return kExitDone;
    return fFailed < fFiles ? kExitPartlyDone : kExitBadInput;
  }

 private:
  void Open(EAccess access) {
    fDatabase = OpenStoreOf(fLocation, access);
    if (fDatabase) fStore.emplace(*fDatabase);
  }

  /// Returns why the document is not stored, if so.
  std::optional<TExplainedException> Store(const TInputDocument& document) {
    if (!document.fFacts) {
      ++fKnown;
      return {};
    }
    try {
      TStore::Check(*document.fFacts);
      if (!fStore) Open(EAccess::kCreating);
      const TStore::TAdded added = fStore->Add(*document.fFacts);
      ++(added.fIsNew ? fAdded : fKnown);
      if (added.fIsNew) WarnOfFuture(document);
      for (const std::string& warning : added.fWarnings) Warn(document, warning);
      return {};
    } catch (const TDatabaseError& error) {
      // Also after other writers: the next documents would wait as long.
      if (error.GetKind() != TDatabaseError::kRefused) Abandon(error);
      return error;
    } catch (const TExplainedException& failure) {
      return failure;
    }
  }

  static void Warn(const TInputDocument& document, const std::string& warning) {
    PrintError("warning: " + ShownAs(document.fFile) + ": " + warning);
  }

  /// Its facts seem newer than those of all documents until then.
  static void WarnOfFuture(const TInputDocument& document) {
    const std::chrono::microseconds time(document.fFacts->fTime);
    if (!IsInFuture(std::chrono::duration_cast<std::chrono::milliseconds>(time).count())) return;
    Warn(document,
         "its time is in the future: was the clock of its host wrong?"
         " 'qdx-store remove' takes it out again");
  }

  /// The store cannot be used any more.
  [[noreturn]] void Abandon(const TDatabaseError& error) const {
    PrintError(Counts() + ", then the store failed");
    FailOnStore(fDatabase->GetLocation(), error);
  }

  std::string Counts() const {
    std::string counts = std::to_string(fAdded) + " added";
    if (fKnown > 0) counts += ", " + std::to_string(fKnown) + " stored before";
    if (fFailed > 0) counts += ", " + std::to_string(fFailed) + " failed";
    return counts;
  }

  const std::string fLocation;
  std::unique_ptr<TDatabase> fDatabase;
  std::optional<TStore> fStore;
  const std::size_t fFiles;
  std::size_t fDone = 0;
  std::size_t fAdded = 0;
  std::size_t fKnown = 0;
  std::size_t fFailed = 0;
  TProgressLine fProgress;
};

EExitCode Add(const TArguments& arguments) {
  TInputRequest request;
  request.fFiles.assign(arguments.fOperands.begin() + 1, arguments.fOperands.end());
  if (std::count(request.fFiles.begin(), request.fFiles.end(), kStandardInput) > 1) {
    FailOnUsage("only one of the files can be standard input");
  }
  TDocumentPool pool;
  TAdding adding(arguments.GetOperand(0), request.fFiles.size());
  request.fIsKnown = [&](const std::string& digest) { return adding.IsKnown(digest); };
  pool.Read(request, [&](TInputDocument&& document) { adding.Add(document); });
  return adding.Finish();
}

}  // namespace

TVerb AddVerb() {
  return {"add",
          "Stores documents.",
          "FILE is a document of any host, in any order; '-' is standard input. A store that does\n"
          "not exist is made for the first document. A document that is stored already changes\n"
          "nothing. One that cannot be read is named, and the others are stored.\n",
          {},
          Add,
          {{"DB"}, {"FILE", TOperandSpec::kRepeated}}};
}

}  // namespace NVORNQDX20::NStore
