// SPDX-License-Identifier: Apache-2.0
#include "verbs.h"

namespace NVORNQDX20::NStore {

const TProgram& TheProgram() {
  static const TProgram program = {
      "qdx-store",
      "Usage: qdx-store VERB [OPTION]... DB [OPERAND]...\n"
      "Keeps what the documents of many hosts show, and when it changed. DB is a file, or a\n"
      "database of PostgreSQL: postgresql://USER@HOST/NAME.\n",
      {AddVerb(), HostsVerb(), OddVerb(), HistoryVerb(), RemoveVerb(), PruneVerb()},
      {{"help", nullptr, "Print help for the verb, and exit.", 'h'},
       {"version", nullptr, "Print the version, and exit."}},
      "Exit status:\n"
      "  0  done\n"
      "  2  wrong usage\n"
      "  3  partly done: some documents could not be stored, all others are\n"
      "  4  the store, all documents, or standard output cannot be used\n"
      "  5  an unexpected failure\n"};
  return program;
}

}  // namespace NVORNQDX20::NStore
