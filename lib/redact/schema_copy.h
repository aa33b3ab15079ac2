// SPDX-License-Identifier: Apache-2.0
/// Copies the classes of a namespace, which may refer to each other in circles.
#ifndef LIB_REDACT_SCHEMA_COPY_H_
#define LIB_REDACT_SCHEMA_COPY_H_

#include <qdxcore/interfaces.h>

#include <functional>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NRedact {

/// A class and its copy.
struct TCopiedClass {
  boost::shared_ptr<ICIMClass> fSource;
  boost::shared_ptr<ICIMClass> fTarget;
};

/// Returns all classes of the namespace, each after its superclass.
std::vector<boost::shared_ptr<ICIMClass>> ClassesOf(const ICIMNamespace& ns);

/// Makes the default of the copy of a property, which is no reference.
using TMapDefault = std::function<TCIMValue(const ICIMPropertyDecl&)>;

/// Copies the declarations of qualifiers and all classes without instances and static values, in
/// the order of ClassesOf(). A reference refers to its own class, until the caller sets another one
/// with SetReferenceDefault().
std::vector<TCopiedClass> CopySchema(const ICIMNamespace& source,
                                     const boost::shared_ptr<ICIMNamespace>& target,
                                     const TMapDefault& mapDefault);

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_SCHEMA_COPY_H_
