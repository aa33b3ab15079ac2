// SPDX-License-Identifier: Apache-2.0
/// The class that a parameter of type reference, or array of references, refers to.
///
/// An interface of its own, so that plug-ins that were built before it existed still work: their
/// parameters have no such functions. Callers use the two functions below, which find the interface
/// by dynamic_cast.
///
/// A class is given by its name: it may be declared later, be a subclass of the method's class, or
/// be missing in the namespace.
#ifndef QDXCORE_REFERENCE_PARAMETER_H_
#define QDXCORE_REFERENCE_PARAMETER_H_

#include <qdxcore/interfaces.h>

#include <string>

namespace NVORNQDX20 {

/// What the declaration of a parameter that knows its referenced class also is.
class IReferenceParameterDecl {
 public:
  /// Returns an empty text if no class is known.
  virtual std::string GetReferencedClassName() const = 0;
  /// Called before Commit(). An empty text removes the name.
  virtual void SetReferencedClassName(const std::string& name) = 0;

 protected:
  ~IReferenceParameterDecl() = default;  // never deleted through this interface
};

/// Returns the name of the class that a parameter refers to; empty if it has or knows none.
inline std::string GetReferencedClassName(const ICIMParameterDecl& parameter) {
  using TType = TCIMValue::TCIMType;
  const TType type = parameter.GetType() & ~static_cast<unsigned int>(TType::kCIMTypeArray);
  if (type != TType::kCIMTypeReference) return {};
  const auto* const reference = dynamic_cast<const IReferenceParameterDecl*>(&parameter);
  return reference == nullptr ? std::string() : reference->GetReferencedClassName();
}

/// Sets the name of the class that a parameter refers to. Does nothing if its provider does not
/// keep one.
inline void SetReferencedClassName(ICIMParameterDecl& parameter, const std::string& name) {
  auto* const reference = dynamic_cast<IReferenceParameterDecl*>(&parameter);
  if (reference != nullptr) reference->SetReferencedClassName(name);
}

}  // namespace NVORNQDX20

#endif  // QDXCORE_REFERENCE_PARAMETER_H_
