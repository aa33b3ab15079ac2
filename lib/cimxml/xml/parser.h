// SPDX-License-Identifier: Apache-2.0
/// Takes a document apart into its objects.
#ifndef LIB_CIMXML_XML_PARSER_H_
#define LIB_CIMXML_XML_PARSER_H_

#include <cstddef>

#include "element.h"
#include "input.h"

namespace NVORNQDX20::NCIMXML {

/// Who takes the objects, in the order of the document.
class IObjectSink {
 public:
  virtual ~IObjectSink();
  virtual void BeginGroup(const TElement& group) = 0;
  /// The path of the group, or one of its objects. `bytes` says how large it is.
  virtual void AddObject(TElement&& object, std::size_t bytes) = 0;
  virtual void EndGroup() = 0;
};

/// Reads to the end. What holds objects is gone through; each object is built as a tree, handed
/// over and forgotten. Throws TDefect, whose position is where the reading stands unless the sink
/// or the input gave one, and lets everything else pass that the sink throws.
void ParseDocument(TInput& input, IObjectSink& sink);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_PARSER_H_
