// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_KernelModule: the modules that the running kernel has loaded.
#include <algorithm>
#include <string_view>

#include "classes/catalogue.h"

namespace NVORNQDX20 {
namespace {

const char* const kTable = "/proc/modules";

/// One line of the table, and the files of the module.
struct TModule : TFiles {
  TModule(const TFiles& files, std::string name)
      : TFiles(files.In("/sys/module/" + name)), fName(std::move(name)) {}

  std::string fName;
  TNumber fSize;
  TReading<std::uint32_t> fUseCount;
  std::vector<std::string> fUsers;
  std::string fState;
  std::string fTaint;
};

std::string_view TakeWord(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return word;
}

/// Parses "xt_nat 16384 1 nf_nat,nf_tables, Live 0x0000000000000000 (OE)". A list of no users is
/// "-"; a kernel that cannot unload modules has "-" for the number of users, too.
TReading<TModule> ParseModule(const TFiles& files, std::string_view line) {
  TModule module(files, PrintableText(TakeWord(line, ' ')));
  if (module.fName.empty() || module.fName.find('/') != std::string::npos) {
    return files.MissingFrom(kTable, "a line without a name");
  }
  const std::string source = kTable + (": " + module.fName);
  module.fSize = ToNumber(PrintableText(TakeWord(line, ' ')), source);
  const std::string count = PrintableText(TakeWord(line, ' '));
  module.fUseCount =
      count == "-" ? Missing("the kernel does not count") : ToNumber<std::uint32_t>(count, source);
  for (std::string_view users = TakeWord(line, ' '); !users.empty();) {
    std::string user = PrintableText(TakeWord(users, ','));
    if (!user.empty() && user != "-") module.fUsers.push_back(std::move(user));
  }
  module.fState = PrintableText(TakeWord(line, ' '));
  (void)TakeWord(line, ' ');  // the address, which only root sees
  module.fTaint = PrintableText(line);
  return module;
}

TInstances<TModule> ListModules(const THost& host) {
  const TText table = host.Read(kTable, TFiles::kMaxTableSize);
  if (!table) return Missing(table.GetReason());
  TInstances<TModule> modules;
  for (std::string_view lines = *table; !lines.empty() && modules.fAll.size() < kMaxEntries;) {
    TReading<TModule> module = ParseModule(host, TakeLine(lines));
    if (module) {
      modules.fAll.push_back(*std::move(module));
    } else {
      modules.Miss(module.GetReason());
    }
  }
  if (modules.fAll.empty()) modules.Miss(host.PathOf(kTable) + ": no module is loaded");
  return modules;
}

/// Most modules have none, and need none.
auto TextOrNone(const char* file) {
  return [file](const TModule& module) -> TText {
    TText text = module.ReadLine(file);
    return !text && module.IsAbsent(file) ? TText(std::string()) : text;
  };
}

}  // namespace

TClass KernelModuleClass() {
  return THostTable<TModule>{
      "VORNSG_KernelModule",
      "A module that is loaded into the running kernel.",
      ListModules,
      {{"Name", "The name of the module.", &TModule::fName, kKey},
       {"Size", "The memory that it takes.", &TModule::fSize, TUnit{"byte"}},
       {"UseCount", "How often it is in use just now.", &TModule::fUseCount, kGauge, kVolatile},
       {"UsedBy", "The modules that need it.", &TModule::fUsers},
       {"State", "\"Live\", \"Loading\" or \"Unloading\".", &TModule::fState},
       {"Taint",
        "Why it taints the kernel, a letter for each reason, as in \"(OE)\"; empty if it does not.",
        &TModule::fTaint},
       {"Version", "Its own version; empty if it has none.", TextOrNone("version")},
       {"SourceVersion", "A digest of what it was built from; empty if it has none.",
        TextOrNone("srcversion")}}};
}

}  // namespace NVORNQDX20
