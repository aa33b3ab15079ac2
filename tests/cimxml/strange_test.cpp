// SPDX-License-Identifier: Apache-2.0
// What other tools write in documents that is unusual: it is taken, or its loss is reported.
#include <algorithm>

#include "cimxml/documents.h"
#include "support/expect_status.h"

namespace NVORNQDX20 {
namespace {

const std::string kKey = "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";
const std::string kKeyed =
    Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey) + "<PROPERTY NAME='p' TYPE='uint8'/>");

std::string Id(const std::string& value) {
  return "<PROPERTY NAME='Id' TYPE='uint32'><VALUE>" + value + "</VALUE></PROPERTY>";
}

std::string Named(const std::string& name, const std::string& key) {
  return Tag("INSTANCENAME", "CLASSNAME='" + name + "'", Binding("Id", "TYPE='uint32'", key));
}

std::string Whole(const std::string& key) { return Tag("INSTANCE", "CLASSNAME='C'", Id(key)); }

std::string Path(const std::string& host, const std::string& ns) {
  return "<NAMESPACEPATH><HOST>" + host + "</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME='" + ns +
         "'/></LOCALNAMESPACEPATH></NAMESPACEPATH>";
}

std::string Group(const std::string& content) {
  return "<CIM><DECLARATION><DECLGROUP>" + content + "</DECLGROUP></DECLARATION></CIM>";
}

std::string Message(const std::string& content) {
  return "<CIM><MESSAGE ID='1' PROTOCOLVERSION='1.0'>" + content + "</MESSAGE></CIM>";
}

std::string LinkTo(const std::string& host) {
  return "<VALUE.OBJECT><INSTANCE CLASSNAME='L'><PROPERTY.REFERENCE NAME='r'><VALUE.REFERENCE>"
         "<INSTANCEPATH>" +
         Path(host, "root/cimv2") + Named("C", "7") +
         "</INSTANCEPATH></VALUE.REFERENCE></PROPERTY.REFERENCE></INSTANCE></VALUE.OBJECT>";
}

const std::string kCall =
    "<IMETHODCALL NAME='X'><LOCALNAMESPACEPATH><NAMESPACE NAME='root'/>"
    "<NAMESPACE NAME='cimv2'/></LOCALNAMESPACEPATH>";

const struct {
  const char* fName;
  std::string fDocument;
  TNames fWarnings;
  TNames fRead;  ///< Appear in what is written, with ' for each ".
} kStrange[] = {
    // What would be lost without a word.
    {"SecondInstance",
     Document({kKeyed, Whole("7") + Whole("8")}),
     {"3:116 an instance of class \"C\" is ignored: it follows another object in "
      "<VALUE.NAMEDOBJECT>"},
     {Id("7")}},
    {"OtherPartsOfANamedObject",
     Document({kKeyed, Named("C", "7") + Named("C", "8") + Whole("7") + Property("uint8", "1")}),
     {"3:134 <INSTANCENAME> is ignored: it follows another name in <VALUE.NAMEDOBJECT>",
      "3:344 <PROPERTY> is ignored: it does not belong into <VALUE.NAMEDOBJECT>"},
     {Id("7")}},
    {"ValuesAmongDeclarations",
     Group("<VALUE>1</VALUE><VALUE.ARRAY/><CLASSNAME NAME='C'/><OBJECTPATH><CLASSNAME NAME='C'/>"
           "</OBJECTPATH>" +
           kKeyed),
     {"1:30 <VALUE> is left out: it is no object of a namespace",
      "1:46 <VALUE.ARRAY> is left out: it is no object of a namespace",
      "1:60 <CLASSNAME> is left out: it is no object of a namespace",
      "1:81 <OBJECTPATH> is left out: it names a class, which is no object of a namespace"},
     {"<CLASS NAME='C'>"}},
    {"SecondValue",
     Document(
         {Class(Tag("PROPERTY", "NAME='p' TYPE='uint8'", "<VALUE>1</VALUE><VALUE>2</VALUE>"))}),
     {"2:84 a second value of <PROPERTY> \"p\" is ignored"},
     {"<VALUE>1</VALUE></PROPERTY>\n</CLASS>"}},
    {"StrayText",
     "<CIM>one" + Document({Class("two")})
                      .substr(std::string("<CIM CIMVERSION='2.0' "
                                          "DTDVERSION='2.4'>")
                                  .size()),
     {"1:6 text in <CIM> is ignored: \"one\"", "2:20 text in <CLASS> is ignored: \"two\""},
     {"<CLASS NAME='C'>"}},
    {"PropertyGivenTwice",
     Document({kKeyed, Tag("INSTANCE", "CLASSNAME='C'",
                           Id("7") + Property("uint8", "1") + Property("uint8", "2"))}),
     {"3:164 property \"p\" is given twice; the last value is taken"},
     {Property("uint8", "2")}},
    {"KeyGivenTwice",
     Document({kKeyed, Named("C", "7") + Tag("INSTANCE", "CLASSNAME='C'", Id("8") + Id("7"))}),
     {"3:219 property \"Id\" is given twice; the last value is taken",
      "1 cimxml: 1 instance has another class or other keys than its name in FILE, the first: line "
      "3"},
     {Binding("Id", "VALUETYPE='numeric' TYPE='uint32'", "7"), Id("7")}},
    {"PropertyDeclaredTwice",
     Document({Class(Property("uint8", "1") + Property("string", "x"))}),
     {"2:95 property \"p\" of class \"C\" is declared twice; the first declaration is taken"},
     {"<VALUE>1</VALUE></PROPERTY>\n</CLASS>"}},
    {"KindsOfText",
     Document({Class("<PROPERTY NAME='n' TYPE='uint8' EmbeddedObject='object'/><PROPERTY NAME='p' "
                     "TYPE='string' EmbeddedObject='char16'/>"),
               Tag("INSTANCE", "CLASSNAME='C'",
                   "<PROPERTY NAME='p' TYPE='string' EmbeddedObject='instance'/>"
                   "<PROPERTY NAME='p' TYPE='char16'/>")}),
     {"2:36 EmbeddedObject=\"object\" of <PROPERTY> \"n\" is ignored",
      "2:93 EmbeddedObject=\"char16\" of <PROPERTY> \"p\" is ignored",
      "3:104 property \"p\" is given twice; the last value is taken",
      "1 cimxml: 1 value is an embedded object of another kind than declared in FILE, the first: "
      "line 3, PROPERTY \"p\""},
     {"<PROPERTY NAME='p' TYPE='string'>"}},
    {"ClassesOfParameters",
     Document({Class("<METHOD NAME='m' TYPE='uint8'><PARAMETER.REFERENCE NAME='a' "
                     "REFERENCECLASS='b c'/><PARAMETER.REFERENCE NAME='d' REFERENCECLASS=''/>"
                     "<PARAMETER NAME='n' TYPE='uint8' REFERENCECLASS='C'/></METHOD>")}),
     {"2:66 the referenced class of <PARAMETER.REFERENCE> \"a\" of <METHOD> \"m\" of class \"C\" "
      "is "
      "left out: \"b c\" is no CIM name"},
     {"<PARAMETER.REFERENCE NAME='a'>", "<PARAMETER.REFERENCE NAME='d'>",
      "<PARAMETER NAME='n' TYPE='uint8'>"}},
    {"EmptyNumber",
     WithValue("uint8", " "),
     {"3:119 an empty value of <PROPERTY> \"p\" is no uint8; it is read as null"},
     {"<PROPERTY NAME='p' TYPE='uint8'/>"}},
    {"ForeignHost",
     Group(Path("here", "root/cimv2") + LinkTo("there") + LinkTo("HERE")),
     {"1 cimxml: 1 reference lost its host, which no object of FILE has, the first: line 1, "
      "host \"there\""},
     {"<KEYBINDING NAME='Id'>"}},
    // Namespaces.
    {"NoInventedNamespace",
     "<CIM><DECLARATION><DECLGROUP.WITHNAME><VALUE.OBJECTWITHLOCALPATH><LOCALCLASSPATH>"
     "<LOCALNAMESPACEPATH><NAMESPACE NAME='other'/></LOCALNAMESPACEPATH><CLASSNAME NAME='C'/>"
     "</LOCALCLASSPATH><CLASS NAME='C'/></VALUE.OBJECTWITHLOCALPATH></DECLGROUP.WITHNAME>"
     "</DECLARATION></CIM>",
     {},
     {"<DECLGROUP.WITHNAME><LOCALNAMESPACEPATH><NAMESPACE NAME='other'/></LOCALNAMESPACEPATH>"}},
    {"NamespaceWithEmptyParts",
     Group(Path("h", "/root//x:y/")),
     {},
     {"<NAMESPACE NAME='root'/><NAMESPACE NAME='x:y'/></LOCALNAMESPACEPATH>"}},
    {"NamespaceWithoutName",
     Group(Path("h", "//") + "<VALUE.OBJECT><CLASS NAME='C'/>"
                             "</VALUE.OBJECT>"),
     {"1:59 <NAMESPACEPATH> is left out: a namespace without name; the objects after it are read "
      "into root/cimv2"},
     {"<NAMESPACE NAME='root'/><NAMESPACE NAME='cimv2'/>", "<CLASS NAME='C'>"}},
    // Spellings.
    {"FlagsInCapitals",
     Document(
         {Class("<QUALIFIER NAME='Q' TYPE='string' TOSUBCLASS='FALSE'/>"), "<CLASS NAME='D'/>"}),
     {},
     {"<QUALIFIER.DECLARATION NAME='Q' TYPE='string' TOSUBCLASS='false'>"}},
    {"NegativeHexadecimal", WithValue("sint16", "-0x7F"), {}, {Property("sint16", "-127")}},
    {"StaticInLowerCase",
     Document({Class(Property("uint8", "1") +
                     Tag("PROPERTY", "NAME='p' TYPE='uint8' PROPAGATED='True'",
                         "<QUALIFIER NAME='static' TYPE='boolean'><VALUE>TRUE</VALUE></QUALIFIER>"
                         "<VALUE>2</VALUE>"))}),
     {},
     {"<QUALIFIER NAME='Static' TYPE='boolean'><VALUE>TRUE</VALUE></QUALIFIER>\n<VALUE>2<"}},
    {"EuroInISO885915",
     "<?xml version='1.0' encoding='ISO-8859-15'?>" + WithValue("string", "\xA4"),
     {},
     {Property("string", "\xE2\x82\xAC")}},
    {"EuroInWindows1252",
     "<?xml version='1.0' encoding='windows-1252'?>" + WithValue("string", "\x80"),
     {},
     {Property("string", "\xE2\x82\xAC")}},
    {"ArrayOfReferences",
     Document({kKeyed,
               "<INSTANCE CLASSNAME='L'><PROPERTY.REFARRAY NAME='r'><VALUE.REFARRAY>"
               "<VALUE.REFERENCE>" +
                   Named("C", "7") +
                   "</VALUE.REFERENCE><VALUE.NULL/>"
                   "</VALUE.REFARRAY></PROPERTY.REFARRAY></INSTANCE>"}),
     {},
     {"<INSTANCE CLASSNAME='L'>"}},
    // Date-times that cannot be held: the text is the reason, and is found by the key.
    {"WildcardDateTime",
     Document({Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey) +
                     "<PROPERTY NAME='p' TYPE='datetime'/>"),
               Tag("INSTANCE", "CLASSNAME='C'",
                   Id("7") + Property("datetime", "2004031514****.******+060")),
               Tag("INSTANCE", "CLASSNAME='C'",
                   Id("8") + Property("datetime", "2004031515****.******+060"))}),
     {},
     {"<PROPERTY NAME='Instance' TYPE='string'><VALUE>7</VALUE></PROPERTY>\n"
      "<PROPERTY NAME='PropertyName' TYPE='string'><VALUE>p</VALUE></PROPERTY>\n"
      "<PROPERTY NAME='Reason' TYPE='string'><VALUE>the document says "
      "&quot;2004031514****.******+060&quot;</VALUE>",
      "<VALUE>8</VALUE>", "&quot;2004031515****.******+060&quot;</VALUE>"}},
    {"WildcardsInAnArray",
     Document(
         {Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey) +
                "<PROPERTY.ARRAY NAME='p' TYPE='datetime'/>"),
          Tag("INSTANCE", "CLASSNAME='C'",
              Id("7") + Tag("PROPERTY.ARRAY", "NAME='p' TYPE='datetime'",
                            "<VALUE.ARRAY><VALUE>2004031514****.******+060</VALUE><VALUE.NULL/>"
                            "<VALUE>20040315140000.000000+060</VALUE>"
                            "<VALUE>2005031514****.******+060</VALUE></VALUE.ARRAY>"))}),
     {},
     {"<VALUE>the document says [0] &quot;2004031514****.******+060&quot;, "
      "[3] &quot;2005031514****.******+060&quot;</VALUE>"}},
    {"WildcardsOfAClass",
     Document({Class(Tag("PROPERTY.ARRAY", "NAME='p' TYPE='datetime'",
                         "<VALUE.ARRAY><VALUE>2004031514****.******+060</VALUE>"
                         "<VALUE>2005031514****.******+060</VALUE></VALUE.ARRAY>"))}),
     {"1 cimxml: 2 date-times that cannot be held were read as null from FILE, the first: line 2, "
      "PROPERTY.ARRAY \"p\""},
     {}},
    {"WildcardsWithoutKeys",
     Document({Class("<PROPERTY NAME='p' TYPE='datetime'/>"),
               Instance(Property("datetime", "2004031514****.******+060")),
               Instance(Property("datetime", "2004031515****.******+060"))}),
     {"1 cimxml: 1 date-time that cannot be held was read as null from FILE, the first: line 4, "
      "PROPERTY \"p\""},
     {"&quot;2004031514****.******+060&quot;</VALUE>"}},
    // Messages of all kinds.
    {"Request",
     Message("<SIMPLEREQ>" + kCall + "<IPARAMVALUE NAME='NewInstance'>" + Whole("7") +
             "</IPARAMVALUE></IMETHODCALL></SIMPLEREQ>"),
     {},
     {Id("7")}},
    {"ResponseOfAMethod",
     Message("<SIMPLERSP><METHODRESPONSE NAME='X'><RETURNVALUE PARAMTYPE='uint32'><VALUE>0</VALUE>"
             "</RETURNVALUE><PARAMVALUE NAME='Job' PARAMTYPE='reference'><VALUE.REFERENCE>" +
             Named("C", "7") + "</VALUE.REFERENCE></PARAMVALUE><PARAMVALUE NAME='Made'>" +
             Tag("INSTANCE", "CLASSNAME='D'", Id("8")) +
             "</PARAMVALUE></METHODRESPONSE></SIMPLERSP>"),
     {},
     {Id("7"), Id("8")}},
    {"Indication",
     Message("<SIMPLEEXPREQ><EXPMETHODCALL NAME='ExportIndication'>"
             "<EXPPARAMVALUE NAME='NewIndication'>" +
             Whole("7") + "</EXPPARAMVALUE></EXPMETHODCALL></SIMPLEEXPREQ>"),
     {},
     {Id("7")}},
    {"NamesAndThenTheWhole",
     Message("<SIMPLERSP><IMETHODRESPONSE NAME='X'><IRETURNVALUE><OBJECTPATH><INSTANCEPATH>" +
             Path("h", "root/cimv2") + Named("C", "7") + "</INSTANCEPATH></OBJECTPATH>" +
             Named("C", "8") + Tag("INSTANCE", "CLASSNAME='C'", Id("8") + Property("uint8", "2")) +
             "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP>"),
     {},
     {Id("7"), Property("uint8", "2")}}};

TEST(StrangeCIMXMLDocument, IsReadAndItsLossesAreReported) {
  for (const auto& strange : kStrange) {
    TNames warnings = WarningsOf(strange.fDocument);
    for (std::string& warning : warnings) {
      const std::size_t file = warning.find("/tmp/");
      if (file != std::string::npos) {
        warning.replace(file, warning.find("d.xml") + 5 - file, "FILE");
      }
    }
    EXPECT_EQ(warnings, strange.fWarnings) << strange.fName;
    ExpectRead(strange.fDocument, strange.fRead, strange.fName);
  }
}

/// What a reader keeps of one object for the next one, such as memory and the order of properties.
TEST(StrangeCIMXMLDocument, ReadsEachInstanceAsIfItWereAlone) {
  const std::string longText(5000, 'x');
  const auto text = [](const std::string& name, const std::string& value) {
    return Tag("PROPERTY", "NAME='" + name + "' TYPE='string'", "<VALUE>" + value + "</VALUE>");
  };
  const TNames bodies = {
      "",
      "<PROPERTY NAME='p' TYPE='uint8'/>" + text("s", ""),
      text("s", longText) + Property("uint8", "7"),
      Property("uint8", "1") + text("t", "a") + text("s", "a longer text than fits in itself"),
      Tag("PROPERTY",
          "NAME='S' TYPE='string' EmbeddedObject='object' PROPAGATED='true' "
          "CLASSORIGIN='" +
              longText + "'",
          "<QUALIFIER NAME='Key' TYPE='boolean'/><VALUE>&lt;</VALUE>"),
      Tag("PROPERTY.ARRAY", "NAME='a' TYPE='uint16'",
          "<VALUE.ARRAY><VALUE>1</VALUE><VALUE.NULL/><VALUE>2</VALUE></VALUE.ARRAY>"),
      "<PROPERTY.ARRAY NAME='A' TYPE='uint16'/>" + text("T", "b")};
  const std::string cimClass =
      Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey) +
            "<PROPERTY NAME='p' TYPE='uint8'><VALUE>9</VALUE></PROPERTY>"
            "<PROPERTY NAME='s' TYPE='string'/><PROPERTY NAME='t' TYPE='string'/>"
            "<PROPERTY.ARRAY NAME='a' TYPE='uint16'/>");
  const auto object = [&bodies](std::size_t body, const std::string& id) {
    const std::string name = body % 2 == 0 ? Named("C", id) : "";
    return name + Tag("INSTANCE", "CLASSNAME='C'", Id(id) + bodies[body]);
  };
  const auto read = [&](const TNames& objects) {
    const TDocumentFile file(Document(objects));
    const std::string written = ReadAndWritten(file.Path());
    const std::size_t start = written.find("<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"uint32\">2<");
    return written.substr(start, written.find("</INSTANCE>", start) - start);
  };
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    const std::string alone = read({cimClass, object(i, "2")});
    EXPECT_NE(alone.find("NAME=\"Id\""), std::string::npos) << alone;
    for (std::size_t j = 0; j < bodies.size(); ++j) {
      EXPECT_EQ(read({cimClass, object(j, "1"), object(i, "2")}), alone) << j << " before " << i;
      EXPECT_EQ(read({object(j, "1"), object(i, "2"), cimClass}), alone)
          << j << " waits with " << i;
    }
  }
}

TEST(StrangeCIMXMLDocument, IsRefusedIfItHasNoObjects) {
  const std::string get = Message("<SIMPLEREQ>" + kCall + "<IPARAMVALUE NAME='InstanceName'>" +
                                  Named("C", "7") + "</IPARAMVALUE></IMETHODCALL></SIMPLEREQ>");
  const std::string result = Message(
      "<SIMPLERSP><METHODRESPONSE NAME='X'><RETURNVALUE><VALUE>0</VALUE></RETURNVALUE>"
      "</METHODRESPONSE></SIMPLERSP>");
  const std::pair<std::string, std::string> kCases[] = {
      {get, "1:55 a request, not a response"}, {result, "1:55 a response without objects"}};
  for (const auto& [document, reason] : kCases) {
    const TDocumentFile file(document);
    const TLogCapture log;
    EXPECT_QDX_STATUS(NamesIn(file.Path()), kQDXStatusInvalidDataCollectionDocument);
    EXPECT_EQ(Placed(log.Messages().at(0), file.Path()), reason);
  }
}

}  // namespace
}  // namespace NVORNQDX20
