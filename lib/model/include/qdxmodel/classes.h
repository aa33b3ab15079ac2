// SPDX-License-Identifier: Apache-2.0
/// Queries about a class that combine several operations of the interfaces.
///
/// Exceptions of the provider are passed on, unless they only mean "no".
#ifndef QDXMODEL_CLASSES_H_
#define QDXMODEL_CLASSES_H_

#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NModel {

/// Returns whether the declaration has a qualifier with this name that is true.
bool IsQualified(const ICIMPropertyDecl& decl, const std::string& qualifier);

/// Returns null for a root class.
boost::shared_ptr<ICIMClass> SuperclassOf(const ICIMClass& cimClass);

/// Returns the class and all its subclasses, each after its superclass.
std::vector<boost::shared_ptr<ICIMClass>> WithSubclasses(
    const boost::shared_ptr<ICIMClass>& cimClass);

/// Calls `visit(const ICIMInstance&)` for the instances of this class without its subclasses, one
/// by one, so that a provider need not hold all of them at the same time.
template <typename TVisit>
void ForEachInstance(const ICIMClass& cimClass, TVisit&& visit) {
  cimClass.EnumerateInstances(
      [&visit](const boost::shared_ptr<ICIMInstance>& instance) {
        visit(*instance);
        return true;
      },
      false, {});
}

/// Returns the instances of this class without its subclasses.
std::vector<boost::shared_ptr<ICIMInstance>> InstancesOf(const ICIMClass& cimClass);

/// Returns the class's own declarations in their order. A declaration that the superclass returns
/// as the same object is inherited.
std::vector<boost::shared_ptr<ICIMPropertyDecl>> OwnPropertyDeclsOf(const ICIMClass& cimClass);

struct TClassProperty {
  boost::shared_ptr<ICIMPropertyDecl> fDecl;  ///< The nearest declaration.
  /// Whether this declaration, or one that it overrides, has the qualifier Key: a key remains a key
  /// in subclasses, whether or not an overriding declaration repeats the qualifier.
  bool fIsKey = false;
};

/// Returns the properties of a class including inherited ones, whether or not the class enumerates
/// those: in the order of the class's enumeration, then those that only a superclass enumerates.
std::vector<TClassProperty> PropertiesOf(const ICIMClass& cimClass);

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_CLASSES_H_
