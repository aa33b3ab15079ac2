// SPDX-License-Identifier: Apache-2.0
#include "units.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

using boost::algorithm::ends_with;
using boost::algorithm::starts_with;

enum class EOrigin { kConfiguration, kRuntime, kTransient, kGenerated, kVendor };

struct TFolder {
  const char* fPath;
  EOrigin fOrigin;
};

/// Where systemd looks for units: those in the first folder count.
constexpr TFolder kFolders[] = {{"/etc/systemd/system.control", EOrigin::kVendor},
                                {"/run/systemd/system.control", EOrigin::kRuntime},
                                {"/run/systemd/transient", EOrigin::kTransient},
                                {"/run/systemd/generator.early", EOrigin::kGenerated},
                                {"/etc/systemd/system", EOrigin::kConfiguration},
                                {"/run/systemd/system", EOrigin::kRuntime},
                                {"/run/systemd/generator", EOrigin::kGenerated},
                                {"/usr/local/lib/systemd/system", EOrigin::kVendor},
                                {"/usr/lib/systemd/system", EOrigin::kVendor},
                                {"/lib/systemd/system", EOrigin::kVendor},
                                {"/run/systemd/generator.late", EOrigin::kGenerated}};

/// A link to a unit that makes another one start it, or that gives it another name.
struct TLink {
  EOrigin fOrigin;
  std::string fName;
  std::string fStarter;  ///< Empty for another name.
};

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Returns "getty@.service" for "getty@tty1.service"; empty for a unit that is no instance.
std::string TemplateOf(const std::string& name) {
  const std::size_t at = name.find('@');
  const std::size_t dot = name.rfind('.');
  if (at == std::string::npos || dot == std::string::npos || dot <= at + 1) return {};
  return name.substr(0, at + 1) + name.substr(dot);
}

bool IsRuntime(EOrigin origin) {
  return origin != EOrigin::kConfiguration && origin != EOrigin::kVendor;
}

bool IsListed(const std::string& name) {
  return ends_with(name, ".service") || ends_with(name, ".socket") || ends_with(name, ".timer");
}

/// Returns ".service" for "ssh.service".
std::string SuffixOf(const std::string& name) {
  return name.substr(std::min(name.rfind('.'), name.size()));
}

bool Contains(const std::vector<std::string>& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

class TReader {
 public:
  TReader(const THost& host, TServiceUnits& units) : fHost(host), fUnits(units) {}

  void ReadUnits() {
    for (const TFolder& folder : kFolders) ReadFolder(folder);
    for (const auto& [name, place] : fPlaces) AddUnit(name, place);
    for (TServiceUnit& unit : fUnits.fAll) FollowAlias(unit);
  }

  bool Has(const std::string& unit) const { return fPlaces.count(unit) != 0; }

 private:
  struct TPlace {
    const TFolder* fFolder;
    TText fTarget;  // of a symbolic link
  };

  void ReadFolder(const TFolder& folder) {
    const TFiles files = fHost.In(folder.fPath);
    const auto names = files.List();
    if (!names) {
      if (files.IsAbsent("")) return;
      Add(fUnits.fReason, names.GetReason());
      return LackLinks(names.GetReason());
    }
    // Since /lib became a link to /usr/lib, both are the same folder.
    if (starts_with(folder.fPath, "/lib/") && fHost.ReadLink("/lib")) return;
    for (const std::string& name : *names) {
      for (const char* suffix : {".wants", ".requires", ".upholds"}) {
        if (ends_with(name, suffix)) ReadStarter(folder, files.In(name), name);
      }
      if (ends_with(name, ".d")) ReadDropIns(files.In(name), name.substr(0, name.size() - 2));
      if (IsListed(name) && PrintableText(name) == name) ReadName(folder, files, name);
    }
  }

  void ReadStarter(const TFolder& folder, const TFiles& files, const std::string& name) {
    const std::string starter = name.substr(0, name.rfind('.'));
    const auto links = files.List();
    if (!links) return LackLinks(links.GetReason());
    for (const std::string& link : *links) {
      if (!IsListed(link) || !files.ReadLink(link)) continue;
      const std::string unit = TemplateOf(link);
      fLinks[link].push_back({folder.fOrigin, link, starter});
      if (!unit.empty()) fLinks[unit].push_back({folder.fOrigin, link, starter});
    }
  }

  /// Settings of a unit in files of their own: those of a name in the first folder count.
  void ReadDropIns(const TFiles& files, const std::string& unit) {
    if (!IsListed(unit)) return;
    const auto names = files.List();
    if (!names) return LackDropIns(unit, names.GetReason());
    for (const std::string& name : *names) {
      if (ends_with(name, ".conf")) fDropIns[unit].emplace(name, files.PathOf(name));
    }
  }

  void ReadName(const TFolder& folder, const TFiles& files, const std::string& name) {
    if (fPlaces.size() == kMaxEntries) return;
    TText target = files.ReadLink(name);
    const std::string leadsTo = target ? BaseName(*target) : name;
    // A link of the same name enables nothing; one of an instance to its template enables that.
    const std::string& linked = leadsTo == TemplateOf(name) ? name : leadsTo;
    if (linked != name || leadsTo != name) fLinks[linked].push_back({folder.fOrigin, name, ""});
    fPlaces.emplace(name, TPlace{&folder, std::move(target)});
  }

  void AddUnit(const std::string& name, const TPlace& place) {
    TServiceUnit unit;
    unit.fName = name;
    unit.fPath = place.fFolder->fPath + ("/" + name);
    const auto links = fLinks.find(name);
    std::set<std::string> starters;
    if (links != fLinks.end()) {
      for (const TLink& link : links->second) starters.insert(link.fStarter);
    }
    starters.erase("");
    unit.fStartedBy = std::vector<std::string>(starters.begin(), starters.end());
    unit.fState = StateOf(unit, place);
    if (!fNoLinks.empty()) {
      unit.fStartedBy = Missing(fNoLinks);
      if (DependsOnLinks(*unit.fState)) unit.fState = Missing(fNoLinks);
    }
    const auto obstacle = fNoDropIns.find(name);
    if (obstacle != fNoDropIns.end()) unit.fSettings = Missing(obstacle->second);
    unit.fDescription = unit.fSettings.map(
        [](const TUnitSettings& settings) { return settings.Get("Unit", "Description"); });
    fUnits.fAll.push_back(std::move(unit));
  }

  /// A link that cannot be read could enable the unit.
  static bool DependsOnLinks(const std::string& state) {
    for (const char* other : {"disabled", "static", "indirect", "linked", "linked-runtime"}) {
      if (state == other) return true;
    }
    return state == "enabled-runtime";
  }

  /// Reads the settings of a unit that has some, and finds out whether it is enabled.
  std::string StateOf(TServiceUnit& unit, const TPlace& place) {
    const bool isRuntime = IsRuntime(place.fFolder->fOrigin);
    std::string masked = isRuntime ? "masked-runtime" : "masked";
    if (place.fTarget) {
      if (ends_with(*place.fTarget, "/dev/null")) return masked;
      const std::string leadsTo = BaseName(*place.fTarget);
      if (leadsTo != unit.fName && leadsTo != TemplateOf(unit.fName)) unit.fAliasOf = leadsTo;
      if (fPlaces.count(unit.fAliasOf) != 0) return "alias";
    }
    const TText file =
        fSize < kMaxSize ? fHost.Read(unit.fPath)
                         : fHost.MissingFrom(unit.fPath, {"too many unit files", TReason::kError});
    if (!file) {
      AddReason(unit.fName, file.GetReason());
      unit.fSettings = Missing(file.GetReason());
      return "bad";
    }
    if (file->empty()) return masked;
    fSize += file->size();
    TUnitSettings settings;
    settings.Add(*file);
    AddDropIns(unit.fName, settings);
    unit.fSettings = std::move(settings);
    if (!unit.fAliasOf.empty()) return "alias";
    if (place.fFolder->fOrigin == EOrigin::kGenerated) return "generated";
    if (place.fFolder->fOrigin == EOrigin::kTransient) return "transient";
    std::string state =
        EnabledState(unit, [&unit](const TLink& link) { return IsKnown(unit, link); });
    if (!state.empty()) return state;
    if (place.fTarget && place.fFolder->fOrigin != EOrigin::kVendor) {
      return isRuntime ? "linked-runtime" : "linked";
    }
    return StateOfDisabled(unit);
  }

  void AddDropIns(const std::string& unit, TUnitSettings& settings) {
    for (const auto& [name, path] : fDropIns[unit]) {
      if (fSize >= kMaxSize) break;
      const TText dropIn = fHost.Read(path);
      if (dropIn) {
        fSize += dropIn->size();
        settings.Add(*dropIn);
      } else if (!ends_with(fHost.ReadLink(path).ValueOr(""), "/dev/null")) {  // masked
        LackDropIns(unit, dropIn.GetReason());
      }
    }
  }

  /// Returns whether the unit itself wants to be enabled by that link.
  static bool IsKnown(const TServiceUnit& unit, const TLink& link) {
    if (link.fName == unit.fName) return true;
    if (Contains(unit.fSettings->GetWords("Install", "Alias"), link.fName)) return true;
    const std::string instance = unit.fSettings->Get("Install", "DefaultInstance");
    const std::size_t at = unit.fName.find('@');
    if (instance.empty() || at == std::string::npos) return false;
    return link.fName == unit.fName.substr(0, at + 1) + instance + unit.fName.substr(at + 1);
  }

  /// Empty if none of the links that count is there.
  template <typename TCounts>
  std::string EnabledState(const TServiceUnit& unit, const TCounts& counts) const {
    const auto links = fLinks.find(unit.fName);
    if (links == fLinks.end()) return {};
    std::string state;
    for (const TLink& link : links->second) {
      if (!counts(link)) continue;
      if (link.fOrigin == EOrigin::kConfiguration) return "enabled";
      if (IsRuntime(link.fOrigin)) state = "enabled-runtime";
      // What the distribution starts by itself is not switched on by anybody; but an instance is.
      const bool isInstance = !TemplateOf(unit.fName).empty();
      if (link.fOrigin == EOrigin::kVendor && isInstance && state.empty()) state = "static";
    }
    return state;
  }

  std::string StateOfDisabled(const TServiceUnit& unit) const {
    // Under another name, it may be in use.
    const std::string other = EnabledState(unit, [](const TLink&) { return true; });
    if (!other.empty()) return "indirect";
    for (const char* rule : {"WantedBy", "RequiredBy", "UpheldBy", "Alias"}) {
      if (!unit.fSettings->GetWords("Install", rule).empty()) return "disabled";
    }
    return unit.fSettings->GetWords("Install", "Also").empty() ? "static" : "indirect";
  }

  const TServiceUnit* Find(const std::string& name) const {
    const auto place = std::lower_bound(
        fUnits.fAll.begin(), fUnits.fAll.end(), name,
        [](const TServiceUnit& each, const std::string& wanted) { return each.fName < wanted; });
    return place != fUnits.fAll.end() && place->fName == name ? &*place : nullptr;
  }

  /// Gives another name of a unit what the unit itself says. A loop of names leads nowhere.
  void FollowAlias(TServiceUnit& unit) {
    constexpr int kLongestChain = 16;
    const TServiceUnit* aliased = Find(unit.fAliasOf);
    if (aliased == nullptr) return;
    for (int i = 0; i < kLongestChain && Find(aliased->fAliasOf) != nullptr; ++i) {
      aliased = Find(aliased->fAliasOf);
    }
    if (Find(aliased->fAliasOf) != nullptr) {
      const TReason reason(unit.fPath + ": leads to itself", TReason::kError);
      unit.fState = "bad";
      unit.fSettings = Missing(reason);
      unit.fDescription = Missing(reason);
      return AddReason(unit.fName, reason);
    }
    unit.fAliasOf = aliased->fName;
    unit.fDescription = aliased->fDescription;
    unit.fSettings = aliased->fSettings;
  }

  static void Add(TReason& all, const TReason& reason) {
    constexpr std::size_t kLongest = 500;
    if (all.size() < kLongest) all.Add(reason);
  }
  /// What is wrong with one unit says nothing about those of another suffix.
  void AddReason(const std::string& unit, const TReason& reason) {
    Add(fUnits.fReasons[SuffixOf(unit)], reason);
  }
  void LackLinks(const TReason& reason) {
    if (reason.IsError() && fNoLinks.empty()) fNoLinks = reason;
  }
  void LackDropIns(const std::string& unit, const TReason& reason) {
    if (!reason.IsError()) return;  // a link that leads nowhere
    AddReason(unit, reason);
    fNoDropIns.emplace(unit, reason);
  }

  /// Some twenty thousand unit files of the usual size.
  static constexpr std::size_t kMaxSize = 16U << 20U;

  const THost& fHost;
  TServiceUnits& fUnits;
  std::size_t fSize = 0;                             // of the files that were read
  std::map<std::string, TPlace> fPlaces;             // by name, which orders fUnits.fAll
  std::map<std::string, std::vector<TLink>> fLinks;  // by the unit that they lead to
  std::map<std::string, std::map<std::string, std::string>> fDropIns;
  TReason fNoLinks;                           // why some links are not known
  std::map<std::string, TReason> fNoDropIns;  // why settings are not known, by the unit
};

const char* const kScripts = "/etc/init.d";

/// The scripts that a link such as "S01cron" starts at some run level.
struct TStartedScripts {
  explicit TStartedScripts(const THost& host) {
    for (const char* level : {"2", "3", "4", "5", "S"}) {
      const auto links = host.List("/etc/rc" + std::string(level) + ".d");
      if (links.GetReason().IsError()) fReason.Add(links.GetReason());
      for (const std::string& link : links.ValueOr({})) {
        if (link.size() > 3 && link.front() == 'S') fNames.insert(link.substr(3));
      }
    }
  }

  TText StateOf(const std::string& script) const {
    if (fNames.count(script) != 0) return "enabled";
    return fReason.empty() ? TText("disabled") : Missing(fReason);
  }

  std::set<std::string> fNames;
  TReason fReason;  // why there may be more
};

/// Returns what the script says about itself in a comment for tools (Linux Standard Base).
std::string DescriptionIn(const std::string& script) {
  constexpr std::string_view kBeginning = "# Short-Description:";
  const std::size_t begin = script.find(kBeginning);
  if (begin == std::string::npos) return {};
  std::string_view rest = std::string_view(script).substr(begin + kBeginning.size());
  return PrintableText(TakeLine(rest));
}

/// Parts of the start-up itself, which lie among the scripts.
bool IsService(const std::string& script) {
  for (const char* other : {"README", "functions", "skeleton", "rc", "rcS", "rc.local", "halt",
                            "killall", "single", "reboot"}) {
    if (script == other) return false;
  }
  return PrintableText(script) == script && !ends_with(script, "~");
}

/// Adds the scripts that no unit replaces.
void AddScripts(const THost& host, const TReader& reader, TServiceUnits& units) {
  const auto scripts = host.List(kScripts);
  if (scripts.GetReason().IsError()) units.fReasons[".service"].Add(scripts.GetReason());
  if (!scripts) return;
  const TStartedScripts started(host);
  for (const std::string& script : *scripts) {
    const std::string name =
        ends_with(script, ".sh") ? script.substr(0, script.size() - 3) : script;
    if (!IsService(script) || reader.Has(name + ".service")) continue;
    TServiceUnit unit;
    unit.fName = script;
    unit.fPath = kScripts + ("/" + script);
    unit.fState = started.StateOf(script);
    unit.fDescription = host.Read(unit.fPath).map(DescriptionIn);
    unit.fIsScript = true;
    units.fAll.push_back(std::move(unit));
  }
}

}  // namespace

bool TServiceUnit::HasSuffix(const std::string& suffix) const { return ends_with(fName, suffix); }

TReason TServiceUnits::ReasonFor(const std::string& suffix) const {
  TReason reason = fReason;
  const auto own = fReasons.find(suffix);
  if (own != fReasons.end()) reason.Add(own->second);
  return reason;
}

TServiceUnits::TServiceUnits(const THost& host) {
  TReader reader(host, *this);
  reader.ReadUnits();
  AddScripts(host, reader, *this);
  if (!fAll.empty() || !fReason.empty() || !fReasons.empty()) return;
  fReason = host.In("/usr/lib/systemd/system").List().GetReason();
  if (fReason.empty()) fReason = "/usr/lib/systemd/system: no services";
}

}  // namespace NVORNQDX20
