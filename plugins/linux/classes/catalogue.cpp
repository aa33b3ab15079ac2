// SPDX-License-Identifier: Apache-2.0
#include "catalogue.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <string_view>

/// All classes in the order in which they are described: after their superclass, and after the
/// classes that they refer to.
#define QDX_LINUX_CLASSES(CLASS) \
  CLASS(ComputerSystemClass)     \
  CLASS(OperatingSystemClass)    \
  CLASS(QDXProductClass)         \
  CLASS(SCSIDeviceClass)         \
  CLASS(LogicalDeviceClass)      \
  CLASS(SystemDeviceClass)       \
  CLASS(ProcessorClass)          \
  CLASS(DiskDriveClass)          \
  CLASS(EthernetPortClass)       \
  CLASS(PCIDeviceClass)          \
  CLASS(FileSystemClass)

namespace NVORNQDX20 {

#define QDX_DECLARE(FUNCTION) TClassDescription FUNCTION();
QDX_LINUX_CLASSES(QDX_DECLARE)
#undef QDX_DECLARE

namespace {

class TCatalogue {
 public:
  const std::vector<TClassDescription>& All() const { return fAll; }

  /// Returns whether a caller that asks for `wanted` needs the class.
  bool Needs(const std::string& wanted, const TClassSpec& cimClass) const {
    const TClassSpec* const spec = Find(wanted);
    if (spec == nullptr) return false;
    if (AreRelated(*spec, cimClass)) return true;
    return std::any_of(spec->fProperties.begin(), spec->fProperties.end(),
                       [&](const TPropertySpec& property) {
                         return property.fReferencedClass != nullptr &&
                                AreRelated(*Find(property.fReferencedClass), cimClass);
                       });
  }

 private:
  const TClassSpec* Find(std::string_view name) const {
    const auto found = std::find_if(fAll.begin(), fAll.end(), [&](const TClassDescription& each) {
      return NModel::EqualIgnoringCase(each.fDeclaration.fName, name);
    });
    return found == fAll.end() ? nullptr : &found->fDeclaration;
  }

  /// Returns whether one is the other or derives from it.
  bool AreRelated(const TClassSpec& one, const TClassSpec& other) const {
    return IsA(one, other) || IsA(other, one);
  }

  bool IsA(const TClassSpec& derived, const TClassSpec& base) const {
    if (NModel::EqualIgnoringCase(derived.fName, base.fName)) return true;
    return derived.fSuperclass != nullptr && IsA(*Find(derived.fSuperclass), base);
  }

#define QDX_CALL(FUNCTION) FUNCTION(),
  const std::vector<TClassDescription> fAll = {QDX_LINUX_CLASSES(QDX_CALL)};
#undef QDX_CALL
};

}  // namespace

void DescribeMachine(TNamespaceBuilder& builder, const THost& host,
                     const std::optional<std::vector<std::string>>& wanted) {
  const TCatalogue catalogue;
  for (const TClassDescription& each : catalogue.All()) {
    const auto needsIt = [&](const std::string& name) {
      return catalogue.Needs(name, each.fDeclaration);
    };
    if (wanted && std::none_of(wanted->begin(), wanted->end(), needsIt)) continue;
    const auto cimClass = builder.DeclareClass(each.fDeclaration);
    if (each.fAddInstances != nullptr) each.fAddInstances(builder, host, *cimClass);
  }
}

}  // namespace NVORNQDX20
