// SPDX-License-Identifier: Apache-2.0
/// Classes that a document uses without declaring them.
#ifndef LIB_CIMXML_READING_CLASS_SYNTHESIS_H_
#define LIB_CIMXML_READING_CLASS_SYNTHESIS_H_

#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include "namespace_builder.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// A committed root class with the properties that its uses have, in the order in which they first
/// appear; those that name an instance are its keys. A use is an object, or the name of one.
boost::shared_ptr<ICIMClass> SynthesizeClass(TNamespaceBuilder& ns, const std::string& name,
                                             const std::vector<const TElement*>& uses);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_CLASS_SYNTHESIS_H_
