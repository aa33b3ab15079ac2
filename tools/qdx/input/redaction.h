// SPDX-License-Identifier: Apache-2.0
/// Redacts what becomes a document.
#ifndef TOOLS_QDX_INPUT_REDACTION_H_
#define TOOLS_QDX_INPUT_REDACTION_H_

#include <qdxredact/redactor.h>

#include <string>
#include <vector>

#include "machine.h"

namespace NVORNQDX20 {

/// The options --key, --keep and --guess.
std::vector<TOptionSpec> RedactionOptions();

class TDocumentRedaction {
 public:
  /// Takes the options, and reads the key; without one, makes one of random bytes. Throws a
  /// TCommandFailure for an unknown kind of secret, or a key that is not usable.
  explicit TDocumentRedaction(const TArguments& arguments);

  /// Learns the secrets of all namespaces of a document. Throws a TCommandFailure, which names what
  /// is redacted, if one does not tell what is secret, unless --guess is given.
  void Learn(const std::vector<TMachineNamespace>& all, const std::string& what);

  /// Returns redacted namespaces, and marks the record of the collection; one without a record gets
  /// one. REQUIRES: they have been learned, but for texts of the record.
  std::vector<TMachineNamespace> Redact(const std::vector<TMachineNamespace>& all);
  std::string Redact(const std::string& text) { return fRedactor.Redact(text); }

  /// Returns whether instances were left out, since others have the same keys; prints how many.
  bool ReportLoss() const;

 private:
  const NRedact::TRedaction fRedaction;
  const bool fHasKey;
  NRedact::TRedactor fRedactor;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_REDACTION_H_
