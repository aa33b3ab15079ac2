// SPDX-License-Identifier: Apache-2.0
// Documents that are wrong, by accident or on purpose.
#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include <cstdio>

#include <zlib.h>

#include "cimxml/documents.h"

namespace NVORNQDX20 {
namespace {

/// Reads what must be refused: "2:68 reason" where the one message is "cimxml: FILE: line 2, column
/// 68: reason", "reason" where it names no place.
std::string Refusal(const std::string& content, EQDXStatusCode status) {
  const TDocumentFile file(content);
  const TLogCapture log;
  EXPECT_QDX_STATUS(NamesIn(file.Path()), status);
  EXPECT_EQ(log.Messages().size(), 1U);
  std::string rest = log.Messages().back().substr(("0 cimxml: " + file.Path() + ": ").size());
  unsigned int line = 0, column = 0;
  int end = 0;
  std::sscanf(rest.c_str(), "line %u, column %u:%n", &line, &column, &end);
  if (end == 0) return rest;
  return std::to_string(line) + ":" + std::to_string(column) +
         rest.substr(static_cast<std::size_t>(end));
}

std::string Repeated(const std::string& text, int count) {
  std::string repeated;
  for (int i = 0; i < count; ++i) repeated += text;
  return repeated;
}

TNames Chain(int length) {
  TNames classes;
  for (int i = 0; i < length; ++i) {
    classes.push_back(
        Class("", "NAME='C" + std::to_string(i) + "' SUPERCLASS='C" + std::to_string(i + 1) + "'"));
  }
  return classes;
}

std::string ReferenceTo(const std::string& className) {
  return Tag("PROPERTY.REFERENCE", "NAME='p' REFERENCECLASS='" + className + "'");
}

std::string WithInstance(const std::string& properties) {
  return Document({Class(Property("uint8", "1")), Instance(properties)});
}

const struct {
  std::string fDocument;
  const char* fReason;
} kBad[] = {
    {"", "1:1 no element found"},
    {"<CIM>\n  <DECLARATION>", "2:16 no element found"},
    {WithValue("string", "\x01"), "3:127 not well-formed (invalid token)"},
    {"<html/>", "1:1 unknown element \"html\""},
    {"<CLASS/>", "1:1 no CIM-XML document"},
    {"<CIM>\n<CLASS NAME='C'/></CIM>", "2:1 <CLASS> holds nothing of a namespace"},
    {Document({"<CLASSNAME/>"}), "2:1 <VALUE.NAMEDOBJECT> has neither class nor instance"},
    // Entities: nested ones, one from elsewhere, one that nothing declares.
    {"<!DOCTYPE CIM [<!ENTITY a 'a'><!ENTITY b '&a;'>]><CIM>&b;</CIM>", "1:27 declares an entity"},
    {"<!DOCTYPE CIM [<!ENTITY x SYSTEM '/etc/passwd'>]><CIM>&x;</CIM>", "1:47 declares an entity"},
    {"<!DOCTYPE CIM SYSTEM 'x.dtd'><CIM>&x;</CIM>", "1:35 unknown entity \"x\""},
    {"<!DOCTYPE CIM SYSTEM 'x.dtd'><CIM CIMVERSION='&amp;&#65;&x;'/>", "1:30 unknown entity \"x\""},
    {"<!DOCTYPE CIM [<!ATTLIST CIM CIMVERSION CDATA 'x'>]><CIM/>", "1:47 declares an attribute"},
    // What grows without end.
    {Document({Repeated("<VALUE.REFERENCE>", 300)}), "2:4304 elements nested deeper than 256"},
    {Document({Class("", std::string(3 << 20, 'n'))}),
     "2:20 a tag or a comment is longer than 1 MiB"},
    {Document({Repeated("<VALUE/>", 1 << 22)}),
     "2:29826172 an object needs more than 512 MiB of memory"},
    {Document(Chain(120)), "101:20 classes nested deeper than 100"},
    // Contents.
    {Document({Class("<FOO/>")}), "2:36 unknown element \"FOO\""},
    {Document({Class("<PROPERTY TYPE='uint8'/>")}), "2:36 <PROPERTY> has no NAME"},
    {WithValue("int", "1"), "2:36 \"int\" is no type"},
    {Document({Class("<PROPERTY.ARRAY NAME='p' TYPE='uint8' ARRAYSIZE='4294967296'/>")}),
     "2:36 \"4294967296\" is no size of an array"},
    {Document({Class("", "NAME='a b'")}), "2:20 class \"a b\": \"a b\" is no CIM name"},
    {WithValue("uint8", "256"), "3:119 \"256\" is no uint8"},
    {WithValue("sint16", "0x-1"), "3:120 \"0x-1\" is no sint16"},
    {WithValue("sint64", "1 2"), "3:120 \"1 2\" is no sint64"},
    {WithValue("real32", "1e39"), "3:120 \"1e39\" is no real32"},
    {WithValue("boolean", "1"), "3:121 \"1\" is no boolean"},
    {WithValue("datetime", "20040315143000,000000+060"),
     "3:122 \"20040315143000,000000+060\" is no datetime"},
    {Document({Class(""), Class("", "NAME='c'")}), "3:20 class \"c\" is declared twice"},
    {Document({Class("", "NAME='C' SUPERCLASS='c'")}),
     "2:20 class \"c\" needs itself to be declared first"},
    {Document({Class(ReferenceTo("D")), Class(ReferenceTo("C"), "NAME='D'")}),
     "3:36 class \"C\" needs class \"D\", which needs it, to be declared first"},
    {Document({Class("", "NAME='C' SUPERCLASS='D'"), Class("", "NAME='D' SUPERCLASS='C'")}),
     "3:20 class \"C\" needs class \"D\", which needs it, to be declared first"},
    {WithInstance(Tag("PROPERTY", "NAME='q' TYPE='uint8'")),
     "3:87 class \"C\" has no property \"q\""},
    {WithInstance(Property("sint8", "1")), "3:87 property \"p\" is declared with another type"},
    {Document({Instance("", Binding("k", "TYPE='datetime'", "********000000.000000:000"))}),
     "2:69 a key cannot be null"},
    {"<CIM><MESSAGE><SIMPLERSP><IMETHODRESPONSE><ERROR CODE='6' DESCRIPTION='no'/>"
     "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>",
     "1:43 a response with error \"6\", \"no\""}};

TEST(BadCIMXMLDocument, IsRefusedWithPlaceAndReason) {
  for (const auto& bad : kBad) {
    EXPECT_EQ(Refusal(bad.fDocument, kQDXStatusInvalidDataCollectionDocument), bad.fReason)
        << bad.fDocument.substr(0, 300);
  }
}

/// Returns n of an element, each with a number in place of "#".
std::string Numbered(const std::string& element, int count) {
  std::string numbered;
  for (int i = 0; i < count; ++i) {
    std::string one = element;
    for (std::size_t at = one.find('#'); at != std::string::npos; at = one.find('#')) {
      one.replace(at, 1, std::to_string(i));
    }
    numbered += one;
  }
  return numbered;
}

TEST(CIMXMLDocument, IsReadUpToTheLimits) {
  const struct {
    std::string (*fMake)(int count);
    int fMost;
    const char* fReason;
  } kLimits[] = {
      {[](int n) { return Document({Class("", "NAME='C' " + Numbered("a#='' ", n - 1))}); }, 32,
       "2:20 more than 32 attributes"},
      {[](int n) { return Document({Class(Numbered("<PROPERTY NAME='p#' TYPE='uint8'/>", n))}); },
       10000, "2:20 a class has more than 10000 members"},
      {[](int n) {
         return Document({Instance(Numbered("<PROPERTY NAME='p#' TYPE='uint8'/>", n))});
       },
       10000, "2:1 a class has more than 10000 members"},
      {[](int n) {
         TNames classes = Chain(n);
         classes.push_back(Class("", "NAME='C" + std::to_string(n) + "'"));
         return Document({classes.rbegin(), classes.rend()});  // each after its superclass
       },
       99, "102:20 more than 99 superclasses"},
      {[](int n) {
         return "<CIM><DECLARATION>" +
                Numbered(
                    "<DECLGROUP><LOCALNAMESPACEPATH><NAMESPACE NAME='n#'/>"
                    "</LOCALNAMESPACEPATH></DECLGROUP>",
                    n) +
                "</DECLARATION></CIM>";
       },
       1000, "1:87965 more than 1000 namespaces"}};
  for (const auto& [make, most, reason] : kLimits) {
    const TDocumentFile file(make(most));
    EXPECT_NO_THROW(NamesIn(file.Path())) << reason;
    EXPECT_EQ(Refusal(make(most + 1), kQDXStatusInvalidDataCollectionDocument), reason);
  }
}

/// The values of the other instances, and of the last one the elements and two copies of its array.
TEST(BadCIMXMLDocument, NeedsTooMuchMemoryWithAllThatIsHeld) {
  const std::string array = "<PROPERTY.ARRAY NAME='a' TYPE='uint8'>";
  const std::string properties =
      array + "</PROPERTY.ARRAY>" + Numbered("<PROPERTY NAME='p#' TYPE='uint8'/>", 9990);
  TNames objects(1300, Instance(""));
  objects.insert(objects.begin(), Class(properties));
  objects.push_back(Instance(array + "<VALUE.ARRAY>" + Repeated("<VALUE>1</VALUE>", 950000) +
                             "</VALUE.ARRAY></PROPERTY.ARRAY>"));
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, " the document needs more than 768 MiB of memory",
                      Refusal(Document(objects), kQDXStatusInvalidDataCollectionDocument));
}

std::string Compressed(const std::string& text) {
  const TTempDir folder;
  const std::string file = (folder.Path() / "d.gz").string();
  const gzFile output = ::gzopen(file.c_str(), "wb");
  ::gzwrite(output, text.data(), static_cast<unsigned int>(text.size()));
  ::gzclose(output);
  return ReadWholeFile(file);
}

TEST(BadGzipFile, IsRefusedWithItsStatus) {
  const std::string whole = Compressed(Document({}));
  const auto changed = [&](std::size_t at) {
    std::string bytes = whole;
    bytes[at] = static_cast<char>(bytes[at] ^ 0x55);
    return bytes;
  };
  const struct {
    std::string fBytes;
    EQDXStatusCode fStatus;
    const char* fReason;
  } kCases[] = {
      {changed(2), kQDXStatusInvalidGzipFile, "gzip: unknown compression method, after 4 bytes"},
      {changed(whole.size() - 8), kQDXStatusCorruptGzipFile,
       "gzip: incorrect data check, after 85 bytes"},
      {whole.substr(0, 9), kQDXStatusCorruptGzipFile,
       "gzip: the file ends too early, after 9 bytes"},
      {whole + "xx", kQDXStatusCorruptGzipFile, "gzip: incorrect header check, after 91 bytes"},
      {Compressed(Document({std::string(65 << 20, ' ')})), kQDXStatusInvalidDataCollectionDocument,
       "2:67108792 more than 500 times its compressed size"}};
  for (const auto& c : kCases) {
    EXPECT_EQ(Refusal(c.fBytes, c.fStatus), c.fReason);
  }
}

TEST(GzipFile, MayHaveSeveralMembersAndAnyName) {
  const std::string text = Document({});
  const TDocumentFile file(Compressed(text.substr(0, 40)) + Compressed(text.substr(40)));
  EXPECT_EQ(NamesIn(file.Path()), TNames{"root/cimv2"});
}

}  // namespace
}  // namespace NVORNQDX20
