// SPDX-License-Identifier: Apache-2.0
#include "array_sizes.h"

#include <qdxmodel/property_reader.h>

#include <cstddef>
#include <string>
#include <vector>

namespace NVORNQDX20::NCIMXML {
namespace {

/// Returns whether each value that an instance of exactly this class has is null or of the size.
bool HaveInstancesSize(const ICIMClass& cimClass, const std::string& property, unsigned int size) {
  NModel::TPropertyReader reader(cimClass);
  const std::size_t position = reader.PositionOf(property);
  if (position == reader.GetProperties().size()) return true;  // an odd provider
  bool isFixed = true;
  cimClass.EnumerateInstances(
      [&](const boost::shared_ptr<ICIMInstance>& instance) {
        reader.Begin(*instance);
        reader.Read(position, [&](const TCIMValue& value) {
          if (value.IsNull() || !value.IsArray()) return;
          const std::vector<TCIMValue>& elements = value;
          isFixed = elements.size() == size;
        });
        return isFixed;
      },
      false, {});
  return isFixed;
}

}  // namespace

unsigned int TArraySizes::SizeOf(const TCIMValue& value) {
  const unsigned int size = value.IsArray() ? value.GetMaxArraySize() : 0;
  if (size == 0 || value.IsNull()) return size;
  const std::vector<TCIMValue>& elements = value;
  return elements.size() == size ? size : 0;
}

unsigned int TArraySizes::Declare(const ICIMClass& cimClass,
                                  const boost::shared_ptr<ICIMPropertyDecl>& decl) {
  const unsigned int size = SizeOf(decl->GetDefaultValue());
  if (size == 0) return 0;
  const std::string& name = decl->GetName();
  bool isFixed = HaveInstancesSize(cimClass, name, size);
  if (isFixed) {
    cimClass.EnumerateSubclasses(
        [&](const boost::shared_ptr<ICIMClass>& subclass) {
          isFixed = HaveInstancesSize(*subclass, name, size);
          return isFixed;
        },
        true, {});
  }
  if (!isFixed) return 0;
  fSizes[decl.get()] = {decl, size};
  return size;
}

unsigned int TArraySizes::Declared(const ICIMPropertyDecl& decl) const {
  const auto found = fSizes.find(&decl);
  return found == fSizes.end() ? 0 : found->second.fSize;
}

}  // namespace NVORNQDX20::NCIMXML
