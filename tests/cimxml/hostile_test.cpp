// SPDX-License-Identifier: Apache-2.0
// Documents that are wrong, by accident or on purpose.
#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include <cstdint>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zlib.h>

#include <qdxsystem/descriptor.h>

#include "cimxml/documents.h"

namespace NVORNQDX20 {
namespace {

/// Reads what must be refused, and returns its one message as Placed() has it.
std::string Refusal(const std::string& content, EQDXStatusCode status) {
  const TDocumentFile file(content);
  const TLogCapture log;
  EXPECT_QDX_STATUS(NamesIn(file.Path()), status);
  EXPECT_EQ(log.Messages().size(), 1U);
  return log.Messages().empty() ? "" : Placed(log.Messages().back(), file.Path());
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

const struct {
  std::string fDocument;
  const char* fReason;
} kBad[] = {
    {"", "1:1 the file is empty"},
    {"<CIM>\n  <DECLARATION>", "2:16 the document ends too early"},
    {WithValue("string", "\x01"), "3:127 not well-formed (invalid token)"},
    {"<html/>", "1:1 no CIM-XML document: it begins with element \"html\""},
    {"<CLASS/>", "1:1 no CIM-XML document: it begins with element \"CLASS\""},
    {"<CIM>\n<CLASS NAME='C'/></CIM>", "2:1 <CLASS> holds nothing of a namespace"},
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
    {Document({Class("<FOO/>")}), "2:36 unknown element \"FOO\""},
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
       10000, "2:20 class \"C\" is left out: a class has more than 10000 members"},
      {[](int n) {
         return Document({Instance(Numbered("<PROPERTY NAME='p#' TYPE='uint8'/>", n))});
       },
       10000,
       "2:1 class \"C\", which is not declared, is left out: a class has more than 10000 members"},
      {[](int n) {
         TNames classes = Chain(n);
         classes.push_back(Class("", "NAME='C" + std::to_string(n) + "'"));
         return Document({classes.rbegin(), classes.rend()});  // each after its superclass
       },
       99, "102:20 class \"C0\" is left out: more than 99 superclasses"},
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
    EXPECT_EQ(WarningsOf(make(most)), TNames()) << reason;
    const TDocumentFile file(make(most + 1));
    const TLogCapture log;
    StatusThrownBy([&] { NamesIn(file.Path()); });
    EXPECT_EQ(Placed(log.Messages().at(0), file.Path()), reason);
  }
}

/// Reads with a limit; returns the reason without its place.
std::string RefusalOf(const std::string& content, std::uint64_t memory) {
  const TDocumentFile file(content);
  const TDescriptor descriptor(::open(file.Path().c_str(), O_RDONLY | O_CLOEXEC));
  const TLogCapture log;
  EXPECT_QDX_STATUS(NCIMXML::ReadDocument("d", descriptor.Get(), {memory, "raise it"}),
                    kQDXStatusInvalidDataCollectionDocument);
  const std::string message = log.Messages().at(0);
  return message.substr(message.rfind(": ") + 2);
}

TEST(BadCIMXMLDocument, NeedsTooMuchMemory) {
  constexpr std::uint64_t kMiB = 1 << 20;
  const std::string array = "<PROPERTY.ARRAY NAME='a' TYPE='uint8'>";
  const std::string properties =
      array + "</PROPERTY.ARRAY>" + Numbered("<PROPERTY NAME='p#' TYPE='uint8'/>", 990);
  // The values of the other instances, and of the last one the elements and two copies of its
  // array.
  TNames objects(130, Instance(""));
  objects.insert(objects.begin(), Class(properties));
  objects.push_back(Instance(array + "<VALUE.ARRAY>" + Repeated("<VALUE>1</VALUE>", 95000) +
                             "</VALUE.ARRAY></PROPERTY.ARRAY>"));
  const std::string reference = "<VALUE.REFERENCE>" +
                                Tag("INSTANCENAME", "CLASSNAME='C'", Binding("k", "", "x")) +
                                "</VALUE.REFERENCE>";
  const std::string reason = " of memory; raise it";
  EXPECT_EQ(RefusalOf(Document(objects), 33 * kMiB),
            "the document needs more than 33 MiB" + reason);
  EXPECT_EQ(RefusalOf(Document({Repeated("<VALUE/>", 1 << 16)}), 9 * kMiB),
            "an object needs more than two thirds of 9 MiB" + reason);
  const std::string group =
      "<DECLGROUP><NAMESPACEPATH><HOST>#</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME='n'/>"
      "</LOCALNAMESPACEPATH></NAMESPACEPATH></DECLGROUP>";
  EXPECT_EQ(RefusalOf("<CIM><DECLARATION>" + Numbered(group, 5000) + "</DECLARATION></CIM>", kMiB),
            "the document needs more than 1 MiB" + reason);
  EXPECT_EQ(RefusalOf(Document({"<INSTANCE CLASSNAME='L'><PROPERTY.REFARRAY NAME='r'>"
                                "<VALUE.REFARRAY>" +
                                Repeated(reference, 9000) +
                                "</VALUE.REFARRAY></PROPERTY.REFARRAY></INSTANCE>"}),
                      9 * kMiB),
            "the document needs more than 9 MiB" + reason);
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
      {"\xFD\x37zXZ", kQDXStatusInvalidDataCollectionDocument,
       "1:1 it is compressed with xz, and only gzip is understood: unpack it first"},
      {Compressed(Document({std::string(65 << 20, ' ')})), kQDXStatusInvalidDataCollectionDocument,
       "2:67108792 more than 500 times its compressed size"}};
  for (const auto& c : kCases) {
    EXPECT_EQ(Refusal(c.fBytes, c.fStatus), c.fReason);
  }
}

TEST(GzipFile, IsToldFromOthersByBytesThatComeOneByOne) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
  const TDescriptor reading(ends[0]);
  TDescriptor writing(ends[1]);
  for (const char byte : std::string("\xFD\x37zXZ")) ASSERT_EQ(::write(writing.Get(), &byte, 1), 1);
  (void)writing.Close();
  const TLogCapture log;
  EXPECT_QDX_STATUS(NCIMXML::ReadDocument("d", reading.Get()),
                    kQDXStatusInvalidDataCollectionDocument);
  ASSERT_EQ(log.Messages().size(), 1U);
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "it is compressed with xz", log.Messages()[0]);
}

TEST(GzipFile, MayHaveSeveralMembersAndPaddingAndAnyName) {
  const std::string text = Document({});
  const std::string padding(1 << 17, '\0');
  const TDocumentFile file(Compressed(text.substr(0, 40)) + padding + Compressed(text.substr(40)) +
                           padding);
  EXPECT_EQ(NamesIn(file.Path()), TNames{"root/cimv2"});
}

}  // namespace
}  // namespace NVORNQDX20
