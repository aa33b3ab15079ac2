// SPDX-License-Identifier: Apache-2.0
// Documents as other tools write them.
#include <algorithm>

#include "cimxml/documents.h"

namespace NVORNQDX20 {
namespace {

std::string Id(const std::string& value) {
  return "<PROPERTY NAME='Id' TYPE='uint32'><VALUE>" + value + "</VALUE></PROPERTY>";
}
const std::string kKey = "<QUALIFIER TYPE='boolean' NAME='Key'><VALUE>true</VALUE></QUALIFIER>";
const std::string kDeclared = Class(Tag("PROPERTY", "TYPE='uint32' NAME='Id'", kKey));
const std::string kBare = Tag("INSTANCE", "CLASSNAME='C'", Id("5"));

const std::string kNamespace =
    "<NAMESPACEPATH><HOST>h</HOST><LOCALNAMESPACEPATH><NAMESPACE NAME='root/cimv2'/>"
    "</LOCALNAMESPACEPATH></NAMESPACEPATH>";
const std::string kNumeric = "VALUETYPE='numeric'";
const std::string kName = Tag("INSTANCENAME", "CLASSNAME='C'", Binding("id", kNumeric, "5"));
const std::string kPath = "<INSTANCEPATH>" + kNamespace + kName + "</INSTANCEPATH>";
const std::string kLink = "<INSTANCE CLASSNAME='L'><PROPERTY.REFERENCE NAME='r'><VALUE.REFERENCE>" +
                          kPath + "</VALUE.REFERENCE></PROPERTY.REFERENCE></INSTANCE>";

std::string Response(const std::string& content) {
  return "<CIM><MESSAGE ID='1' PROTOCOLVERSION='1.0'><SIMPLERSP><IMETHODRESPONSE NAME='X'>"
         "<IRETURNVALUE>" +
         content +
         "</IRETURNVALUE><PARAMVALUE NAME='EndOfSequence'/>"
         "</IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>";
}

/// What a class and a key of it look like when they are written.
std::string Begin(const std::string& attributes) { return "<CLASS " + attributes + ">\n"; }
std::string Key(const std::string& name, const std::string& type) {
  return "<PROPERTY NAME='" + name + "' TYPE='" + type + "'>\n<QUALIFIER NAME='Key' ";
}

const struct {
  std::string fDocument;
  TNames fExpected;  ///< Stand in what is written of "root/cimv2", with ' for each ".
} kForeign[] = {
    // Keys that only the name has: in another case, without type, without name.
    {Document({kDeclared, Instance("", Binding("ID", "", "7"))}), {Id("7")}},
    {Document({kDeclared, Instance("", "<KEYVALUE>7</KEYVALUE>")}), {Id("7")}},
    // Any order.
    {Document({Class("", "NAME='D' SUPERCLASS='c'"), kDeclared}), {"SUPERCLASS='C'>"}},
    {Document({Class("<PROPERTY.REFERENCE NAME='r' REFERENCECLASS='C'/>", "NAME='A'"), kDeclared}),
     {"<PROPERTY.REFERENCE NAME='r' REFERENCECLASS='C'>"}},
    // Nothing declared: a class of all its instances, of references, of a subclass.
    {Document({Instance("<PROPERTY.ARRAY NAME='a' TYPE='uint8'/>",
                        Binding("k", "VALUETYPE='boolean'", "TRUE")),
               Instance(Property("string", ""), Binding("k", "VALUETYPE='boolean'", "FALSE"))}),
     {Begin("NAME='C'") + "<PROPERTY.ARRAY NAME='a' TYPE='uint8'>\n", Key("k", "boolean"),
      "<PROPERTY NAME='p' TYPE='string'>\n", Property("string", "")}},
    {"<CIM><DECLARATION><DECLGROUP>" + kNamespace + "<VALUE.OBJECT>" + kLink +
         "</VALUE.OBJECT></DECLGROUP></DECLARATION></CIM>",
     {Key("id", "uint64"), "REFERENCECLASS='C'>", "TYPE='uint64'>5</KEYVALUE>"}},
    {Document({Class("<PROPERTY NAME='p' TYPE='sint8' PROPAGATED='true' CLASSORIGIN='B'/>",
                     "NAME='D' SUPERCLASS='B'")}),
     {Begin("NAME='B'") + "</CLASS>",
      Begin("NAME='D' SUPERCLASS='B'") + "<PROPERTY NAME='p' TYPE='sint8'>"}},
    {Document({Class(
         "<QUALIFIER NAME='Q' TYPE='string' TOSUBCLASS='false'><VALUE.ARRAY/></QUALIFIER>")}),
     {"<QUALIFIER.DECLARATION NAME='Q' TYPE='string' ISARRAY='true' TOSUBCLASS='false'><SCOPE "
      "CLASS='true' ",
      "<QUALIFIER NAME='Q' TYPE='string' TOSUBCLASS='false'><VALUE.ARRAY></VALUE.ARRAY>"}},
    // A declaration that a subclass only repeats.
    {Document(
         {Class(Property("sint8", "1")),
          Class("<PROPERTY NAME='p' TYPE='sint8' PROPAGATED='true'/>", "NAME='D' SUPERCLASS='C'")}),
     {Begin("NAME='D' SUPERCLASS='C'") + "</CLASS>"}},
    // Keys without type: as large as it takes for all, whatever stands around them.
    {Document(
         {Instance("", Binding("k", kNumeric, " 5 ")), Instance("", Binding("k", kNumeric, "-3"))}),
     {Key("k", "sint64"), "TYPE='sint64'>5<", "TYPE='sint64'>-3<"}},
    {Document({Instance("", Binding("k", kNumeric, "1.5"))}), {Key("k", "real64")}},
    // Other frames around the objects.
    {Response("<VALUE.NAMEDINSTANCE>" + kName + kBare + "</VALUE.NAMEDINSTANCE>"),
     {Key("Id", "uint32"), Id("5")}},
    {"<CIM><DECLARATION><DECLGROUP.WITHPATH><VALUE.OBJECTWITHPATH>" + kPath + kBare +
         "</VALUE.OBJECTWITHPATH></DECLGROUP.WITHPATH><DECLGROUP><LOCALNAMESPACEPATH><NAMESPACE "
         "NAME='ROOT'/>"
         "<NAMESPACE NAME='CIMv2'/></LOCALNAMESPACEPATH><VALUE.OBJECT><CLASS "
         "NAME='E'/></VALUE.OBJECT>"
         "</DECLGROUP></DECLARATION></CIM>",
     {Key("Id", "uint32"), Id("5"), Begin("NAME='E'")}},
    // Other spellings.
    {"<!DOCTYPE CIM SYSTEM 'CIM.dtd' [<!-- none -->]>" +
         WithValue("string", " <!-- c --><![CDATA[<&]]>]]&gt;&#x41;<?pi?> "),
     {Property("string", " &lt;&amp;]]&gt;A ")}},
    {"<?xml version='1.0' encoding='ISO-8859-1'?>" + WithValue("string", "\xE4"),
     {Property("string", "\xC3\xA4")}},
    {WithValue("uint16", " 0xFFff\n"), {Property("uint16", "65535")}},
    {WithValue("real64", "+1.0E+3"), {Property("real64", "1000.0")}},
    // What strings are.
    {WithValue("char16", "x"), {Property("char16", "x")}},
    {Document({Instance(
         Tag("PROPERTY", "NAME='p' TYPE='string' EMBEDDEDOBJECT='object'", "<VALUE>&lt;x</VALUE>") +
         "<PROPERTY NAME='c' TYPE='char16'/>")}),
     {"<PROPERTY NAME='p' TYPE='string' EmbeddedObject='object'>\n",
      "<PROPERTY NAME='p' TYPE='string' EmbeddedObject='object'><VALUE>&lt;x</VALUE>",
      "<PROPERTY NAME='c' TYPE='char16'>\n"}},
    {Document({Class("<METHOD NAME='m'/>")}),
     {"<METHOD NAME='m' TYPE='uint32'>\n<QUALIFIER NAME='VORNSG_NoReturnValue' "}}};

TEST(CIMXMLDocumentOfAnotherTool, IsRead) {
  for (const auto& foreign : kForeign) {
    const TLogCapture log;
    const TDocumentFile file(foreign.fDocument);
    std::string written;
    EXPECT_NO_THROW(written = Written({Read(file.Path())})) << foreign.fDocument;
    std::replace(written.begin(), written.end(), '"', '\'');
    for (const std::string& expected : foreign.fExpected) {
      EXPECT_NE(written.find(expected), std::string::npos) << expected << " in\n" << written;
    }
    EXPECT_EQ(log.Messages(), TNames());
  }
}

TEST(CIMXMLDocumentOfAnotherTool, MayContradictItself) {
  const TLogCapture log;
  const std::string named = Instance(Id("8"), Binding("id", "", "7"));
  const TDocumentFile file(
      "<CIM><MESSAGE><MULTIRSP><SIMPLERSP><IMETHODRESPONSE><ERROR CODE='6'/>"
      "</IMETHODRESPONSE></SIMPLERSP><SIMPLERSP><IMETHODRESPONSE><IRETURNVALUE>" +
      kDeclared + "<VALUE.NAMEDINSTANCE>" + named + "</VALUE.NAMEDINSTANCE>\n" +
      Tag("INSTANCE", "CLASSNAME='C'", Id("8")) +
      "</IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MULTIRSP></MESSAGE></CIM>");
  EXPECT_NE(ReadAndWritten(file.Path()).find("TYPE=\"uint32\">8<"), std::string::npos);
  const std::string end = file.Path() + ", the first: ";
  EXPECT_EQ(log.Messages(),
            (TNames{"1 cimxml: 1 response is an error in " + end + "error \"6\"",
                    "1 cimxml: " + file.Path() +
                        ": line 2, column 1: instance C.Id=\"8\" is left out: another instance "
                        "has the same keys",
                    "1 cimxml: 1 instance has another class or other keys than its name in " + end +
                        "line 1"}));
}

}  // namespace
}  // namespace NVORNQDX20
