// SPDX-License-Identifier: Apache-2.0
#include "verbs.h"

namespace NVORNQDX20 {
namespace {

const char* const kExitCodes =
    "Exit status:\n"
    "  0  done, or the same\n"
    "  1  different (diff), or with defects (validate)\n"
    "  2  wrong usage\n"
    "  3  partly done: something failed or was lost, the rest was delivered\n"
    "  4  a named folder or file, or standard output, cannot be used\n"
    "  5  nothing was collected\n"
    "  6  the transfer failed\n";

}  // namespace

const TProgram& TheProgram() {
  static const TProgram program = {
      "qdx",
      "Usage: qdx [VERB] [OPTION]...\n"
      "Describes and diagnoses this machine. Without a verb, 'summary' is run.\n",
      {SummaryVerb(), IdentityVerb(), CollectVerb(), ShowVerb(), ReportVerb(), DiffVerb(),
       ValidateVerb(), RedactVerb(), PluginsVerb(), MediaVerb(), UploadVerb(), DownloadVerb()},
      {{"log", "FILE", "Write a log to FILE, which is truncated first."},
       {"log-level", "LEVEL", "Log error, warning, status (the default), debug or verbose."},
       {"help", nullptr, "Print help for the verb, and exit.", 'h'},
       {"version", nullptr, "Print the version, and exit."}},
      kExitCodes};
  return program;
}

}  // namespace NVORNQDX20
