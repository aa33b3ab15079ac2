// SPDX-License-Identifier: Apache-2.0
/// Splits a document into its objects.
#ifndef LIB_CIMXML_XML_PARSER_H_
#define LIB_CIMXML_XML_PARSER_H_

#include <cstddef>

#include "element.h"
#include "input.h"

namespace NVORNQDX20::NCIMXML {

/// Receives the objects in the order of the document.
class IObjectSink {
 public:
  virtual ~IObjectSink();
  /// Begins an element that holds objects, or other such elements; `isGroup` if it can name a
  /// namespace for them.
  virtual void BeginContainer(const TElement& container, bool isGroup) = 0;
  /// Passes an element that has text, which must not have any.
  virtual void AddStrayText(const TElement& holder) = 0;
  /// Returns the memory that is left for the next object, in bytes.
  virtual std::size_t GetRoom() const = 0;
  /// `object` is the path of the group or one of its objects; `bytes` is its size in memory.
  virtual void AddObject(TElement&& object, std::size_t bytes) = 0;
};

/// Reads the whole document. Builds each object as a tree, passes it to the sink and drops it.
/// Throws TDocumentError with the current position, unless the sink or the input has set one;
/// passes on other exceptions of the sink.
void ParseDocument(TInput& input, IObjectSink& sink, const TReadingLimits& limits);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_PARSER_H_
