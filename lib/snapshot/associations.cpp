// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/associations.h>

#include <qdxcore/reference.h>
#include <qdxmodel/attempt.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/property_reader.h>

#include <algorithm>
#include <set>
#include <utility>

namespace NVORNQDX20 {
namespace {

using TClass = boost::shared_ptr<ICIMClass>;
using TInstance = boost::shared_ptr<ICIMInstance>;

std::vector<TClass> AssociationClassesOf(const ICIMNamespace& ns) {
  std::vector<TClass> classes;
  ns.EnumerateClasses(
      [&classes](const TClass& root) {
        for (const TClass& each : NModel::WithSubclasses(root)) {
          if (each->IsAssociation({})) classes.push_back(each);
        }
        return true;
      },
      {});
  return classes;
}

/// Returns the positions of the reference properties in the reader.
std::vector<std::size_t> ReferencesOf(const NModel::TPropertyReader& reader) {
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < reader.GetProperties().size(); ++i) {
    if (reader.GetProperties()[i].fType == TCIMValue::TCIMType::kCIMTypeReference) {
      positions.push_back(i);
    }
  }
  return positions;
}

/// Returns null if there is none.
TInstance InstanceOf(const ICIMClass& cimClass, const TCIMReference& path) {
  TInstance instance;
  (void)TryUnlessOutOfMemory([&] { instance = cimClass.GetInstance(path, {}); });
  return instance;
}

TCIMReference PathOf(const ICIMInstance& instance) {
  const TClass cimClass = instance.GetClass({});
  TCIMReference path(nullptr, {});
  path.SetClass(cimClass);
  for (const auto& [decl, isKey] : NModel::PropertiesOf(*cimClass)) {
    if (isKey)
      path.AddKeyValue(decl->GetName(), instance.GetProperty(decl->GetName(), {})->GetValue());
  }
  return path;
}

}  // namespace

TInstance FindInstance(const ICIMNamespace& ns, const TCIMReference& path) {
  TClass named;
  (void)TryUnlessOutOfMemory([&] { named = ns.GetClass(path.GetClassName(), {}); });
  if (!named) return nullptr;
  for (const TClass& each : NModel::WithSubclasses(named)) {
    TInstance instance = InstanceOf(*each, path);
    if (instance) return instance;
  }
  return nullptr;
}

/// The instance to which references shall lead.
class TAssociationSearch::TTarget {
 public:
  explicit TTarget(const TFoundInstance& target)
      : fNamespace(target.fNamespace), fClass(target.fInstance->GetClass({})) {
    const TCIMReference path = PathOf(*target.fInstance);
    for (const auto& [name, value] : path.GetBody()->GetKeyBindings()) fKeys.emplace(name, value);
  }

  /// `ns` is the index of the namespace to which the reference leads.
  bool Is(const TCIMReference& reference, std::size_t ns) const {
    return ns == fNamespace && HasKeys(reference) && IsOfClass(reference);
  }

 private:
  bool HasKeys(const TCIMReference& reference) const {
    const auto& bindings = reference.GetBody()->GetKeyBindings();
    return bindings.size() == fKeys.size() &&
           std::all_of(bindings.begin(), bindings.end(), [this](const auto& binding) {
             const auto found = fKeys.find(binding.first);
             return found != fKeys.end() && found->second == binding.second;
           });
  }

  /// A reference that names a superclass leads here unless that class has such an instance itself.
  bool IsOfClass(const TCIMReference& reference) const {
    const std::string name = reference.GetClassName();
    if (NModel::EqualIgnoringCase(name, fClass->GetName({}))) return true;
    return IsOrDerivesFrom(fClass, name) && !InstanceOf(*reference.GetClass(), reference);
  }

  const std::size_t fNamespace;
  const TClass fClass;
  NModel::TNameMap<TCIMValue> fKeys;
};

TAssociationSearch::TAssociationSearch(
    const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces)
    : fNamespaces(namespaces) {
  for (std::size_t i = 0; i < namespaces.size(); ++i) {
    fPositions.try_emplace(namespaces[i]->GetName({}), i);
  }
}

/// Returns the index of the namespace to which a reference in the namespace `own` leads; the number
/// of namespaces for an unknown one.
std::size_t TAssociationSearch::NamespaceOf(const TCIMReference& reference, std::size_t own) const {
  const auto ns = reference.GetNamespace();
  if (!ns || ns == fNamespaces[own]) return own;
  const auto found = fPositions.find(ns->GetName({}));
  return found == fPositions.end() ? fNamespaces.size() : found->second;
}

std::string TAssociationSearch::NameOf(const TCIMReference& reference, std::size_t own) const {
  const auto ns = reference.GetNamespace();
  return (ns ? *ns : *fNamespaces[own]).GetName({});
}

/// Calls `visit(association, ns, others)` for each instance that refers to the target; `others` are
/// the references in it that do not lead to the target, and all but one of those that do.
template <typename TVisit>
void TAssociationSearch::ForEachReference(const TFoundInstance& wanted, const TVisit& visit) const {
  const TTarget target(wanted);
  for (std::size_t ns = 0; ns < fNamespaces.size(); ++ns) {
    for (const TClass& cimClass : AssociationClassesOf(*fNamespaces[ns])) {
      NModel::TPropertyReader reader(*cimClass);
      const std::vector<std::size_t> references = ReferencesOf(reader);
      const auto leadsToTarget = [&](std::size_t position) {
        bool leads = false;
        reader.Read(position, [&](const TCIMValue& value) {
          const TCIMReference* const reference = value.FindReference();
          leads = reference != nullptr && target.Is(*reference, NamespaceOf(*reference, ns));
        });
        return leads;
      };
      cimClass->EnumerateInstances(
          [&](const TInstance& association) {
            reader.Begin(*association);
            const auto found = std::find_if(references.begin(), references.end(), leadsToTarget);
            if (found == references.end()) return true;
            std::vector<TCIMValue> others;
            for (const std::size_t position : references) {
              if (position == *found) continue;
              reader.Read(position, [&others](const TCIMValue& value) {
                if (!value.IsNull()) others.push_back(value);
              });
            }
            visit(association, ns, others);
            return true;
          },
          false, {});
    }
  }
}

std::vector<TFoundInstance> TAssociationSearch::FindReferences(const TFoundInstance& target) const {
  std::vector<TFoundInstance> found;
  ForEachReference(target, [&found](const TInstance& association, std::size_t ns, const auto&) {
    found.push_back({ns, association});
  });
  return found;
}

TAssociationSearch::TAssociators TAssociationSearch::FindAssociators(
    const TFoundInstance& target) const {
  TAssociators found;
  std::set<std::pair<std::size_t, std::string>> seen;
  ForEachReference(target, [&](const TInstance&, std::size_t own, const auto& others) {
    for (const TCIMValue& other : others) {
      const TCIMReference& reference = *other.FindReference();
      const std::size_t ns = NamespaceOf(reference, own);
      const TInstance instance =
          ns < fNamespaces.size() ? FindInstance(*fNamespaces[ns], reference) : nullptr;
      const std::string path = instance ? PathOf(*instance).GetPath() : reference.GetPath();
      if (!seen.emplace(ns, path).second) continue;
      if (instance) {
        found.fInstances.push_back({ns, instance});
      } else {
        found.fMissing.push_back(NameOf(reference, own) + ':' + path);
      }
    }
  });
  return found;
}

bool IsOrDerivesFrom(const TClass& cimClass, const std::string& name) {
  TClass each = cimClass;
  while (each && !NModel::EqualIgnoringCase(each->GetName({}), name)) {
    each = NModel::SuperclassOf(*each);
  }
  return each != nullptr;
}

}  // namespace NVORNQDX20
