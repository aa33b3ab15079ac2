// SPDX-License-Identifier: Apache-2.0
/// XML text, with what must be quoted quoted.
#ifndef LIB_CIMXML_XML_XML_WRITER_H_
#define LIB_CIMXML_XML_XML_WRITER_H_

#include <cstddef>
#include <string_view>

#include "output.h"

namespace NVORNQDX20::NCIMXML {

/// The bytes of characters that XML cannot hold, and those that are not UTF-8, become U+FFFD each
/// and are counted. All others come back from a reader as they are, whatever it normalises.
class TXMLWriter {
 public:
  explicit TXMLWriter(TOutput& output) : fOutput(output) {}

  /// Mark-up, as it stands.
  TXMLWriter& Markup(std::string_view markup) {
    fOutput.Write(markup);
    return *this;
  }
  /// The content of an element.
  TXMLWriter& Text(std::string_view text);
  /// ` NAME="value"`, within a start tag.
  TXMLWriter& Attribute(std::string_view name, std::string_view value);

  std::size_t Replaced() const { return fReplaced; }
  void SetReplaced(std::size_t count) { fReplaced = count; }

 private:
  void WriteCharacter(std::string_view& text);

  TOutput& fOutput;
  std::size_t fReplaced = 0;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_XML_WRITER_H_
