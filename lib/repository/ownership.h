// SPDX-License-Identifier: Apache-2.0
/// Ownership of the elements that the repository returns.
///
/// Within a namespace, elements refer to each other by plain references, and the namespace owns the
/// committed ones. Callers get a shared_ptr to the element that owns the namespace (and the element
/// itself while it is not committed). So no reference dangles while a caller holds any element, and
/// there are no cycles of owners.
#ifndef LIB_REPOSITORY_OWNERSHIP_H_
#define LIB_REPOSITORY_OWNERSHIP_H_

#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/smart_ptr/make_shared.hpp>

namespace NVORNQDX20::NRepository {

class TNamespace;

/// Returns the element as an owner of its namespace. Each call creates a new owner.
template <typename TElement>
boost::shared_ptr<TElement> HoldWithNamespace(boost::shared_ptr<TNamespace> ns,
                                              boost::shared_ptr<TElement> element) {
  // A pair destroys its second member first, so that elements are destroyed before their namespace.
  using THold = std::pair<boost::shared_ptr<TNamespace>, boost::shared_ptr<TElement>>;
  TElement* const held = element.get();
  return boost::shared_ptr<TElement>(boost::make_shared<THold>(std::move(ns), std::move(element)),
                                     held);
}

/// Makes room for one more owner, so that push_back() cannot fail: an element that is registered by
/// name must not be destroyed because memory runs out.
template <typename TOwner>
void ReserveOne(std::vector<TOwner>& owners) {
  if (owners.size() == owners.capacity()) owners.reserve(2 * owners.size() + 1);
}

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_OWNERSHIP_H_
