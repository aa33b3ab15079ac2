// SPDX-License-Identifier: Apache-2.0
/// Writes XML text with the necessary escaping.
#ifndef LIB_CIMXML_XML_XML_WRITER_H_
#define LIB_CIMXML_XML_XML_WRITER_H_

#include <qdxoutput/output_file.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace NVORNQDX20::NCIMXML {

/// A part of a document that is written many times.
struct TPreparedXML {
  std::string fText;
  std::size_t fReplaced = 0;
};

/// Each byte that is not UTF-8, or belongs to a character that XML does not allow, becomes U+FFFD
/// and is counted. All other characters are escaped such that a reader does not normalise them.
class TXMLWriter {
 public:
  explicit TXMLWriter(TOutputFile& output) : fOutput(&output) {}
  /// Appends to the text instead. Both must outlive the writer.
  explicit TXMLWriter(TPreparedXML& prepared) : fPrepared(&prepared) {}

  /// Writes markup unchanged.
  TXMLWriter& Markup(std::string_view markup) {
    if (fOutput != nullptr) {
      fOutput->Write(markup);
    } else {
      fPrepared->fText += markup;
    }
    return *this;
  }
  /// Writes the content of an element.
  TXMLWriter& Text(std::string_view text);
  /// Writes ` NAME="value"` within a start tag.
  TXMLWriter& Attribute(std::string_view name, std::string_view value);
  /// Writes a part again.
  TXMLWriter& Prepared(const TPreparedXML& part) {
    Replaced() += part.fReplaced;
    return Markup(part.fText);
  }

  std::size_t GetReplaced() const { return fReplaced; }
  void SetReplaced(std::size_t count) { fReplaced = count; }

 private:
  void WriteCharacter(std::string_view& text);
  std::size_t& Replaced() { return fPrepared == nullptr ? fReplaced : fPrepared->fReplaced; }

  TOutputFile* fOutput = nullptr;
  TPreparedXML* fPrepared = nullptr;  // if there is no output
  std::size_t fReplaced = 0;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_XML_WRITER_H_
