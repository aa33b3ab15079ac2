// SPDX-License-Identifier: Apache-2.0
/// For consumers that write a file only when they have all of its namespaces.
#ifndef QDXMODEL_WAITING_NAMESPACES_H_
#define QDXMODEL_WAITING_NAMESPACES_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/value.h>

#include <optional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NModel {

class TWaitingNamespaces {
 public:
  struct TComplete {
    std::string fFile;
    std::vector<boost::shared_ptr<ICIMNamespace>> fNamespaces;
  };

  /// Adds the namespace of a call of Consume(), with its options. Returns all namespaces of the
  /// file, unless "more" says that others follow. A call for another file forgets what waited.
  /// Throws kQDXStatusRequiredContextMissing without a file; the message begins with the service.
  std::optional<TComplete> Add(boost::shared_ptr<ICIMNamespace> ns, const TOptionsMap& options,
                               const std::string& service);

 private:
  TComplete fWaiting;
};

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_WAITING_NAMESPACES_H_
