// SPDX-License-Identifier: Apache-2.0
/// Questions about a class that several of the interfaces' operations answer together.
///
/// What a provider throws passes out, unless it just means "no".
#ifndef QDXMODEL_CLASSES_H_
#define QDXMODEL_CLASSES_H_

#include <qdxcore/interfaces.h>

#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NModel {

/// Null for a root class.
boost::shared_ptr<ICIMClass> SuperclassOf(const ICIMClass& cimClass);

/// The class, and all that derive from it, each after its superclass.
std::vector<boost::shared_ptr<ICIMClass>> WithSubclasses(
    const boost::shared_ptr<ICIMClass>& cimClass);

/// Calls `visit(const ICIMInstance&)` for the instances of just this class, one by one: a provider
/// need not hold them all at a time.
template <typename TVisit>
void ForEachInstance(const ICIMClass& cimClass, TVisit&& visit) {
  cimClass.EnumerateInstances(
      [&visit](const boost::shared_ptr<ICIMInstance>& instance) {
        visit(*instance);
        return true;
      },
      false, {});
}

/// The instances of just this class.
std::vector<boost::shared_ptr<ICIMInstance>> InstancesOf(const ICIMClass& cimClass);

/// What the class declares itself, in the order of declaration. What the superclass gives as the
/// same object is inherited.
std::vector<boost::shared_ptr<ICIMPropertyDecl>> OwnPropertyDeclsOf(const ICIMClass& cimClass);

struct TClassProperty {
  boost::shared_ptr<ICIMPropertyDecl> fDecl;  ///< The one closest to the class.
  /// Whether it, or one that it overrides, has the qualifier Key: a key remains one below the class
  /// that makes it one, whether or not an overriding declaration repeats the qualifier.
  bool fIsKey = false;
};

/// The properties of a class, the inherited ones too, whether or not the class enumerates those. In
/// the order in which the class enumerates them; what only a superclass does comes after it.
std::vector<TClassProperty> PropertiesOf(const ICIMClass& cimClass);

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_CLASSES_H_
