// SPDX-License-Identifier: Apache-2.0
#include "devices.h"

#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>
#include <qdxmodel/property_reader.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace NVORNQDX20 {
namespace {

/// Associations of a whole with its parts, by their names without the schema. The references of an
/// association are in the order of the names of their properties.
struct TPartRule {
  std::string_view fAssociation;
  std::size_t fPart;  // which reference is the part
};
constexpr TPartRule kPartRules[] = {
    {"AssociatedCacheMemory", 0},  {"AssociatedSensor", 0},   {"BasedOn", 1},
    {"PortImplementsEndpoint", 1}, {"ProcessorComponent", 1}, {"ProcessorCoreComponent", 1},
    {"ResidesOnExtent", 1}};

std::string_view WithoutSchema(std::string_view name) {
  const std::size_t underscore = name.find('_');
  return underscore == std::string_view::npos ? name : name.substr(underscore + 1);
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() &&
         NModel::EqualIgnoringCase(text.substr(text.size() - end.size()), end);
}

/// Returns whether the class or a superclass has a name that `matches`.
template <typename TMatches>
bool HasName(TClass cimClass, const TMatches& matches) {
  for (; cimClass; cimClass = NModel::SuperclassOf(*cimClass)) {
    if (matches(WithoutSchema(cimClass->GetName({})))) return true;
  }
  return false;
}

/// An association class with two references.
class TAssociation {
 public:
  /// Null if the class is none, or one of a collection with its members, which are no device.
  static std::optional<TAssociation> Make(const TClass& cimClass) {
    if (!cimClass->IsAssociation({})) return std::nullopt;
    if (HasName(cimClass, [](std::string_view name) {
          return NModel::EqualIgnoringCase(name.substr(0, 8), "MemberOf");
        })) {
      return std::nullopt;
    }
    TAssociation association(cimClass);
    if (association.fReferences.size() != 2) return std::nullopt;
    return association;
  }

  /// Returns which of the two references is a part of the other; none if the class does not say.
  std::optional<std::size_t> GetPart() const {
    for (const TPartRule& rule : kPartRules) {
      if (HasName(fClass, [&rule](std::string_view name) {
            return NModel::EqualIgnoringCase(name, rule.fAssociation);
          })) {
        return rule.fPart;
      }
    }
    return std::nullopt;
  }

  /// Calls `visit(const TCIMReference&, const TCIMReference&)`, but not for those with the machine.
  template <typename TVisit>
  void ForEach(const TVisit& visit) {
    NModel::TPropertyReader reader(*fClass);
    NModel::ForEachInstance(*fClass, [&](const ICIMInstance& instance) {
      reader.Begin(instance);
      reader.Read(fReferences[0], [&](const TCIMValue& one) {
        reader.Read(fReferences[1], [&](const TCIMValue& other) {
          const TCIMReference* const first = one.FindReference();
          const TCIMReference* const second = other.FindReference();
          if (first == nullptr || second == nullptr) return;
          if (!IsMachine(*first) && !IsMachine(*second)) visit(*first, *second);
        });
      });
    });
  }

 private:
  explicit TAssociation(const TClass& cimClass) : fClass(cimClass) {
    const NModel::TPropertyReader reader(*cimClass);
    const auto& properties = reader.GetProperties();
    for (std::size_t i = 0; i < properties.size(); ++i) {
      if (properties[i].fType == TCIMValue::TCIMType::kCIMTypeReference) fReferences.push_back(i);
    }
    std::sort(fReferences.begin(), fReferences.end(), [&](std::size_t a, std::size_t b) {
      return NModel::Folded(properties[a].fName) < NModel::Folded(properties[b].fName);
    });
  }

  bool IsMachine(const TCIMReference& path) {
    const TClass cimClass = path.GetClass();
    const auto [found, isNew] = fIsMachine.emplace(cimClass.get(), false);
    if (isNew) {
      found->second =
          HasName(cimClass, [](std::string_view name) { return EndsWith(name, "ComputerSystem"); });
    }
    return found->second;
  }

  TClass fClass;
  std::vector<std::size_t> fReferences;
  std::unordered_map<const ICIMClass*, bool> fIsMachine;
};

/// Calls `visit(TAssociation&)` for each of a side.
template <typename TVisit>
void ForEachAssociation(const TSide& side, const TVisit& visit) {
  if (!side.fNamespace.fNamespace) return;
  side.fNamespace.fNamespace->EnumerateClasses(
      [&](const TClass& root) {
        for (const TClass& cimClass : NModel::WithSubclasses(root)) {
          auto association = TAssociation::Make(cimClass);
          if (association) visit(*association);
        }
        return true;
      },
      {});
}

/// Which instances belong to which: a forest, in which each device is a tree.
class TForest {
 public:
  /// Returns the head of the device.
  TIdentity HeadOf(TIdentity instance) {
    TIdentity head = instance;
    for (auto found = fAbove.find(head); found != fAbove.end(); found = fAbove.find(head)) {
      head = found->second;
    }
    // So that the next search is short.
    while (instance != head) instance = std::exchange(fAbove[instance], head);
    return head;
  }

  /// Puts a part below a whole, unless it is already part of something.
  bool Put(TIdentity part, TIdentity whole) {
    if (fAbove.count(part) != 0 || HeadOf(whole) == part) return false;
    fAbove[part] = whole;
    return true;
  }

 private:
  std::unordered_map<TIdentity, TIdentity> fAbove;
};

using TTie = std::pair<TIdentity, TIdentity>;

void PutTogether(const TSide& side, TAssociation& association, TForest& forest) {
  std::vector<TTie> ties;
  std::unordered_map<TIdentity, std::size_t> counts[2];
  association.ForEach([&](const TCIMReference& first, const TCIMReference& second) {
    const TTie tie(IdentityOf(side.fCanonical.TextOfPath(first)),
                   IdentityOf(side.fCanonical.TextOfPath(second)));
    ++counts[0][tie.first];
    ++counts[1][tie.second];
    ties.push_back(tie);
  });
  const std::optional<std::size_t> part = association.GetPart();
  for (const auto& [first, second] : ties) {
    const bool isOnly[] = {counts[0][first] == 1, counts[1][second] == 1};
    if (part) {
      if (isOnly[*part]) *part == 0 ? forest.Put(first, second) : forest.Put(second, first);
    } else if (isOnly[0] && isOnly[1]) {
      if (!forest.Put(second, first)) forest.Put(first, second);
    }
  }
}

class TDevices {
 public:
  TDevices(const std::vector<const TSide*>& sides, TFindings& findings)
      : fSides(sides), fFindings(findings) {}

  void Find() {
    for (std::size_t i = 0; i < fFindings.fDifferences.size(); ++i) Note(i);
    if (fOwners.empty()) return;
    for (const TSide* const side : fSides) {
      ForEachAssociation(*side, [&](TAssociation& each) { PutTogether(*side, each, fForest); });
    }
    for (std::size_t i = 0; i < fFindings.fDifferences.size(); ++i) SetHead(i);
    NameHeads();
    for (std::size_t i = 0; i < fFindings.fDifferences.size(); ++i) SetDevice(i);
  }

 private:
  const TTrace* TraceOf(std::size_t difference) const {
    const std::size_t trace = fFindings.fTraceOf[difference];
    return trace == TFindings::kNoTrace ? nullptr : &fFindings.fTraces[trace];
  }

  /// Remembers how others find this difference.
  void Note(std::size_t index) {
    const TTrace* const trace = TraceOf(index);
    if (trace == nullptr) return;
    const TDifference& difference = fFindings.fDifferences[index];
    fOwners.emplace(trace->fInstance, index);
    if (trace->fExplained != 0) return;
    for (const TIdentity name : trace->fNames) {
      if (difference.fElement == TDifference::kInstance) fNamed.emplace(name, index);
      if (difference.fElement != TDifference::kValue) continue;
      fValues.emplace(ValueOf(name, NModel::Folded(difference.fProperty)), index);
    }
  }

  static TIdentity ValueOf(TIdentity name, const std::string& property) {
    return IdentityOf(property, std::to_string(name));
  }

  void SetHead(std::size_t index) {
    const TTrace* const trace = TraceOf(index);
    if (trace == nullptr) return;
    TDifference& difference = fFindings.fDifferences[index];
    const std::size_t cause = CauseOf(difference, *trace);
    const bool follows = fFindings.fTraceOf[cause] != fFindings.fTraceOf[index];
    if (follows) difference.fFollows = fFindings.fDifferences[cause].fOwner;
    const bool isTie = !follows && !trace->fEnds.empty();
    const TTrace& ofCause = fFindings.fTraces[fFindings.fTraceOf[cause]];
    const TIdentity head = fForest.HeadOf(isTie ? trace->fEnds.back() : ofCause.fInstance);
    fHeads.resize(fFindings.fDifferences.size());
    fHeads[index] = head;
    const auto owner = fOwners.find(head);
    if (owner != fOwners.end()) {
      fPaths[head] = fFindings.fDifferences[owner->second].fOwner;
    } else {
      fPaths.emplace(head, "");
      fHasUnnamed = true;
    }
  }

  /// Returns the difference that this one follows from; itself if there is none.
  std::size_t CauseOf(const TDifference& difference, const TTrace& trace) const {
    const std::size_t self = fOwners.at(trace.fInstance);
    if (difference.fElement != TDifference::kInstance) return self;
    // The last end is the part: the first one is often the machine.
    for (auto end = trace.fEnds.rbegin(); end != trace.fEnds.rend(); ++end) {
      const auto found = fOwners.find(*end);
      if (found == fOwners.end() || found->second == self) continue;
      const TDifference& other = fFindings.fDifferences[found->second];
      if (other.fElement == TDifference::kInstance && other.fChange == difference.fChange) {
        return found->second;
      }
    }
    return trace.fExplained != 0 ? Explained(trace).value_or(self) : self;
  }

  /// The instance that came or went, or its value that changed.
  std::optional<std::size_t> Explained(const TTrace& trace) const {
    const auto value = fValues.find(ValueOf(trace.fExplained, trace.fExplainedProperty));
    if (value != fValues.end()) return value->second;
    const auto instance = fNamed.find(trace.fExplained);
    return instance != fNamed.end() ? std::optional(instance->second) : std::nullopt;
  }

  /// Heads without a difference are found in the associations.
  void NameHeads() {
    if (!fHasUnnamed) return;
    for (const TSide* const side : fSides) {
      const auto name = [&](const TCIMReference& path) {
        const auto found = fPaths.find(IdentityOf(side->fCanonical.TextOfPath(path)));
        if (found != fPaths.end() && found->second.empty()) found->second = path.GetPath();
      };
      ForEachAssociation(*side, [&](TAssociation& each) {
        each.ForEach([&](const TCIMReference& first, const TCIMReference& second) {
          name(first);
          name(second);
        });
      });
    }
  }

  void SetDevice(std::size_t index) {
    if (TraceOf(index) == nullptr) return;
    TDifference& difference = fFindings.fDifferences[index];
    const std::string& path = fPaths[fHeads[index]];
    const std::string& own = difference.fFollows.empty() ? difference.fOwner : difference.fFollows;
    difference.fDevice = path.empty() ? own : path;
  }

  const std::vector<const TSide*>& fSides;
  TFindings& fFindings;
  TForest fForest;
  std::unordered_map<TIdentity, std::size_t> fOwners;  // a difference of each instance
  std::unordered_map<TIdentity, std::size_t> fNamed;   // instances that came or went, by names
  std::unordered_map<TIdentity, std::size_t> fValues;  // values that changed
  std::vector<TIdentity> fHeads;                       // by difference
  std::unordered_map<TIdentity, std::string> fPaths;   // of the heads
  bool fHasUnnamed = false;
};

}  // namespace

void FindDevices(const std::vector<const TSide*>& sides, TFindings& findings) {
  TDevices(sides, findings).Find();
}

}  // namespace NVORNQDX20
