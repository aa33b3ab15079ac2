// SPDX-License-Identifier: Apache-2.0
/// Instances from their elements.
#ifndef LIB_CIMXML_READING_INSTANCE_READER_H_
#define LIB_CIMXML_READING_INSTANCE_READER_H_

#include "namespace_builder.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// The INSTANCE of an object, which may be one itself.
const TElement& InstanceOf(const TElement& object);

/// Adds the instance. Its keys come from its name, but for those that are among its properties and
/// not null there; a property that contradicts the name holds, and is counted. If there is an
/// instance with these keys already, that one stays, and this one is counted.
void ReadInstance(TNamespaceBuilder& ns, const TElement& object);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_INSTANCE_READER_H_
