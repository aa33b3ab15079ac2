// SPDX-License-Identifier: Apache-2.0
/// How elements are handed out.
///
/// Within a namespace, elements hold each other by plain references, and the namespace owns those
/// that are committed. What goes outside is a shared_ptr to the element that owns the namespace
/// (and, while the element is not committed, the element). So nothing dangles while anyone outside
/// holds anything, and no cycle of owners can form.
#ifndef LIB_REPOSITORY_OWNERSHIP_H_
#define LIB_REPOSITORY_OWNERSHIP_H_

#include <utility>

#include <boost/shared_ptr.hpp>
#include <boost/smart_ptr/make_shared.hpp>

namespace NVORNQDX20::NRepository {

class TNamespace;

/// The element, together with its namespace. Each call makes an owner of its own.
template <typename TElement>
boost::shared_ptr<TElement> HoldWithNamespace(const boost::shared_ptr<TNamespace>& ns,
                                              const boost::shared_ptr<TElement>& element) {
  // A pair destroys its second member first: elements go before their namespace.
  using THold = std::pair<boost::shared_ptr<TNamespace>, boost::shared_ptr<TElement>>;
  return boost::shared_ptr<TElement>(boost::make_shared<THold>(ns, element), element.get());
}

}  // namespace NVORNQDX20::NRepository

#endif  // LIB_REPOSITORY_OWNERSHIP_H_
