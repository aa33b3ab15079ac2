// SPDX-License-Identifier: Apache-2.0
// The verb redact.
#include <utility>

#include "input/document.h"
#include "input/document_file.h"
#include "input/redaction.h"
#include "input/worker_options.h"
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

std::string DocumentNamed(const std::string& file) {
  return "document " + (file == "-" ? "standard input" : file);
}

EExitCode RunRedact(const TArguments& arguments) {
  const std::string file = arguments.GetOperand(0);
  if (!arguments.Has("output")) FailOnUsage("redact needs option '--output'");
  TDocumentRedaction redaction(arguments);
  TPluginWriter writer(TPluginWriter::kDefaultConsumer, LimitsOf(arguments));
  bool incomplete = false;
  std::vector<TMachineNamespace> all;
  for (const auto& ns : OpenDocument(file, arguments, incomplete)) {
    all.push_back({{"", ns->GetName({})}, ns});
  }
  redaction.Learn(all, DocumentNamed(file));
  const auto redacted = redaction.Redact(all);
  WriteDocument(arguments.Get("output", ""), writer,
                [&](const std::string& path, const std::string& shownAs) {
                  const auto refusal = writer.Write(redacted, path, shownAs);
                  if (!refusal) return;
                  throw TCommandFailure(kExitBadInput, "writing document " + shownAs,
                                        refusal->fFailure);
                });
  const bool hasLost = redaction.ReportLoss();
  return incomplete || hasLost || writer.HasWarned() ? kExitPartlyDone : kExitDone;
}

}  // namespace

TVerb RedactVerb() {
  std::vector<TOptionSpec> options = {
      {"output", "FILE", "Write this file; '-' is standard output. Required.", 'o'}};
  const auto ofRedaction = RedactionOptions();
  options.insert(options.end(), ofRedaction.begin(), ofRedaction.end());
  options.push_back(
      {"memory", "MIB", "Let the document use so much memory (half of all by default)."});
  return {"redact",
          "Writes a document again, with pseudonyms for serial numbers, addresses and names.",
          "FILE is a CIM-XML document, '-' is standard input. What is secret is replaced by a\n"
          "pseudonym such as serial-3f9a2c10, the same for the same value everywhere in the\n"
          "document: in keys, references, reasons, and in other texts. The kinds are serial,\n"
          "host-name, address, user, command-line and mount-source.\n"
          "Without --key the pseudonyms are others in each run.\n",
          options,
          RunRedact,
          {{"FILE"}}};
}

}  // namespace NVORNQDX20
