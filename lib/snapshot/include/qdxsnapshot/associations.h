// SPDX-License-Identifier: Apache-2.0
/// Finds the instances that are associated with an instance, and the associations themselves.
#ifndef QDXSNAPSHOT_ASSOCIATIONS_H_
#define QDXSNAPSHOT_ASSOCIATIONS_H_

#include <qdxcore/interfaces.h>
#include <qdxmodel/names.h>

#include <cstddef>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

struct TFoundInstance {
  std::size_t fNamespace;  ///< The index of its namespace.
  boost::shared_ptr<ICIMInstance> fInstance;
};

/// Searches the associations of several namespaces, which may refer from one to another. Passes on
/// what they throw.
class TAssociationSearch {
 public:
  /// The namespaces must outlive the search.
  explicit TAssociationSearch(const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces);

  /// Finds the instances of association classes that refer to an instance.
  std::vector<TFoundInstance> FindReferences(const TFoundInstance& target) const;

  struct TAssociators {
    std::vector<TFoundInstance> fInstances;  ///< Each once.
    /// Paths with their namespaces, to which an association refers, without instance.
    std::vector<std::string> fMissing;
  };
  /// Finds what the other references of those instances lead to.
  TAssociators FindAssociators(const TFoundInstance& target) const;

 private:
  class TTarget;
  template <typename TVisit>
  void ForEachReference(const TFoundInstance& target, const TVisit& visit) const;
  std::size_t NamespaceOf(const TCIMReference& reference, std::size_t own) const;
  std::string NameOf(const TCIMReference& reference, std::size_t own) const;

  const std::vector<boost::shared_ptr<ICIMNamespace>>& fNamespaces;
  NModel::TNameMap<std::size_t> fPositions;
};

/// Returns the instance with the keys of the path, of its class or of one of the subclasses: a
/// reference can name the class that its property declares. Null if there is none.
boost::shared_ptr<ICIMInstance> FindInstance(const ICIMNamespace& ns, const TCIMReference& path);

/// Returns whether the class, or one of its superclasses, has this name.
bool IsOrDerivesFrom(const boost::shared_ptr<ICIMClass>& cimClass, const std::string& name);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_ASSOCIATIONS_H_
