// SPDX-License-Identifier: Apache-2.0
// Documents of which a part cannot be taken: it is named, and the rest is read.
#include <algorithm>

#include "cimxml/documents.h"

namespace NVORNQDX20 {
namespace {

const std::string kKey = "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";
const std::string kKeyed =
    Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey) + "<PROPERTY NAME='p' TYPE='uint8'/>");

std::string Id(const std::string& value) {
  return "<PROPERTY NAME='Id' TYPE='uint32'><VALUE>" + value + "</VALUE></PROPERTY>";
}

std::string WithInstance(const std::string& properties) {
  return Document({Class(Property("uint8", "1")), Instance(properties)});
}

/// The same with an instance that has no fault after the one that has.
std::string WithGood(const std::string& bad) {
  return Document({kKeyed, bad, Instance(Id("7"), Binding("Id", "", "7"))});
}

struct TPartial {
  const char* fName;
  std::string fDocument;
  TNames fWarnings;
  TNames fRead;  ///< Appear in what is written of "root/cimv2", with ' for each ".
};

std::string LeftOut(const std::string& place, const std::string& object,
                    const std::string& reason) {
  return place + " " + object + " is left out: " + reason;
}

const std::string kOfC = "an instance of class \"C\"";
const std::string kGood = Id("7");

const TPartial kPartial[] = {
    {"NoObject",
     Document({"<CLASSNAME/>", kKeyed}),
     {LeftOut("2:1", "<VALUE.NAMEDOBJECT>", "it has neither class nor instance")},
     {"<CLASS NAME='C'>"}},
    {"PropertyWithoutName",
     Document({Class("<PROPERTY TYPE='uint8'/>"), Class("", "NAME='D'")}),
     {LeftOut("2:36", "<PROPERTY> of class \"C\"", "<PROPERTY> has no NAME")},
     {"<CLASS NAME='C'>", "<CLASS NAME='D'>"}},
    {"UnknownType",
     WithValue("int", "1"),
     {LeftOut("3:87", kOfC, "\"int\" is no type"),
      LeftOut("2:36", "<PROPERTY> \"p\" of class \"C\"", "\"int\" is no type")},
     {}},
    {"SizeOfArray",
     Document({Class("<PROPERTY.ARRAY NAME='p' TYPE='uint8' ARRAYSIZE='4294967296'/>")}),
     {LeftOut("2:36", "the value of <PROPERTY.ARRAY> \"p\" of class \"C\"",
              "\"4294967296\" is no size of an array")},
     {"<PROPERTY.ARRAY NAME='p' TYPE='uint8'>"}},
    {"PartsOfAKeyedClass",
     Document({Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey + kKey + "<VALUE>x</VALUE>") +
                     "<PROPERTY NAME='p' TYPE='nope'/><METHOD NAME='M'><PARAMETER NAME='a'/>"
                     "</METHOD><METHOD NAME='m'/><QUALIFIER TYPE='string'/><HOST>h</HOST>"),
               Instance(kGood), Instance(Id("8"))}),
     {LeftOut("2:206", "the value of <PROPERTY> \"Id\" of class \"C\"", "\"x\" is no uint32"),
      LeftOut("2:138", "<QUALIFIER> \"Key\" of <PROPERTY> \"Id\" of class \"C\"",
              "qualifier Key of property Id of class C is there already"),
      LeftOut("2:233", "<PROPERTY> \"p\" of class \"C\"", "\"nope\" is no type"),
      LeftOut("2:282", "<PARAMETER> \"a\" of <METHOD> \"M\" of class \"C\"",
              "<PARAMETER> has no TYPE"),
      LeftOut("2:312", "<METHOD> \"m\" of class \"C\"", "method m of class C is there already"),
      LeftOut("2:330", "<QUALIFIER> of class \"C\"", "<QUALIFIER> has no NAME"),
      LeftOut("2:356", "<HOST> of class \"C\"", "<HOST> does not belong into <CLASS>")},
     {"<PROPERTY NAME='Id' TYPE='uint32'>\n<QUALIFIER NAME='Key'", "<METHOD NAME='M' ", kGood,
      Id("8")}},
    {"BadName",
     Document({Class("", "NAME='a b'")}),
     {LeftOut("2:20", "class \"a b\"", "\"a b\" is no CIM name")},
     {}},
    {"Uint8", WithValue("uint8", "256"), {LeftOut("3:119", kOfC, "\"256\" is no uint8")}, {}},
    {"Hexadecimal",
     WithValue("sint16", "0x-1"),
     {LeftOut("3:120", kOfC, "\"0x-1\" is no sint16")},
     {}},
    {"Sint64", WithValue("sint64", "1 2"), {LeftOut("3:120", kOfC, "\"1 2\" is no sint64")}, {}},
    {"Real32", WithValue("real32", "1e39"), {LeftOut("3:120", kOfC, "\"1e39\" is no real32")}, {}},
    {"Boolean", WithValue("boolean", "1"), {LeftOut("3:121", kOfC, "\"1\" is no boolean")}, {}},
    {"DateTime",
     WithValue("datetime", "20040315143000,000000+060"),
     {LeftOut("3:122", kOfC, "\"20040315143000,000000+060\" is no datetime")},
     {}},
    {"DeclaredTwice",
     Document({Class(Property("uint8", "1")), Class("", "NAME='c'")}),
     {LeftOut("3:20", "class \"c\"", "it is declared twice")},
     {"<PROPERTY NAME='p'"}},
    {"OwnSuperclass",
     Document({Class("", "NAME='C' SUPERCLASS='c'"), Class("", "NAME='E'")}),
     {LeftOut("2:20", "class \"C\"", "it is derived from itself")},
     {"<CLASS NAME='E'>"}},
    {"CircleOfSuperclasses",
     Document({Class("", "NAME='C' SUPERCLASS='D'"), Class("", "NAME='D' SUPERCLASS='C'")}),
     {LeftOut("2:20", "class \"C\"", "it is derived from itself")},
     {"<CLASS NAME='D' SUPERCLASS='C'>"}},
    {"ContradictsSuperclass",
     Document({kKeyed, Class(Property("string", ""), "NAME='D' SUPERCLASS='C'")}),
     {LeftOut("3:51", "<PROPERTY> \"p\" of class \"D\"",
              "property p of class D is string, but overrides a uint8 of class C")},
     {"<CLASS NAME='D' SUPERCLASS='C'>"}},
    {"UnknownProperty",
     WithInstance(Tag("PROPERTY", "NAME='q' TYPE='uint8'")),
     {LeftOut("3:87", kOfC, "class \"C\" has no property \"q\"")},
     {}},
    {"OtherType",
     WithInstance(Property("sint8", "1")),
     {LeftOut("3:87", kOfC, "property \"p\" is declared with another type")},
     {}},
    {"WithoutKey",
     WithGood(Instance(Property("uint8", "1"))),
     {LeftOut("3:63", kOfC, "an instance lacks its key, property Id of class C")},
     {kGood}},
    {"SameKey",
     WithGood(Instance(Id("7"), Binding("Id", "", "7"))),
     {LeftOut("4:121", "instance C.Id=\"7\"", "another instance has the same keys")},
     {kGood}},
    {"NullKey",
     Document({Instance("", Binding("k", "TYPE='datetime'", "********000000.000000:000")),
               Instance("", Binding("k", "TYPE='datetime'", "20040315143000.000000+060"))}),
     {LeftOut("2:69", "instance C.k=\"********000000.000000:000\"", "a key cannot be null")},
     {"20040315143000.000000+060"}},
    {"KeyOfAnUndeclaredClass",
     Document({Instance(Id("x"), Binding("Id", "TYPE='uint32'", "6")),
               Instance(Property("uint8", "x"), Binding("Id", "TYPE='uint32'", "7")),
               Instance("<PROPERTY TYPE='uint32'/>", Binding("Id", "TYPE='uint32'", "8")),
               Instance(Property("string", "good"), Binding("Id", "TYPE='uint32'", "9"))}),
     {LeftOut("2:192", "instance C.Id=\"6\"", "\"x\" is no uint32"),
      LeftOut("3:158", "instance C.Id=\"7\"", "property \"p\" is declared with another type"),
      LeftOut("4:158", "instance C.Id=\"8\"", "<PROPERTY> has no NAME")},
     {"<PROPERTY NAME='Id' TYPE='uint32'>\n<QUALIFIER NAME='Key'", Property("string", "good")}},
    {"SubclassOfWhatIsMissing",
     Document({Class("<PROPERTY NAME='p' TYPE='uint8'><QUALIFIER TYPE='boolean'/></PROPERTY>",
                     "NAME='D' SUPERCLASS='C'"),
               Tag("INSTANCE", "CLASSNAME='D'", Property("uint8", "3"))}),
     {LeftOut("2:83", "<QUALIFIER> of <PROPERTY> \"p\" of class \"D\"", "<QUALIFIER> has no NAME")},
     {"<CLASS NAME='D' SUPERCLASS='C'>", Property("uint8", "3")}},
    {"ReferenceToABadName",
     Document(
         {Class("<PROPERTY.REFERENCE NAME='r' REFERENCECLASS='a b'/>"), Class("", "NAME='D'")}),
     {LeftOut("2:36", "class \"a b\", which is not declared,", "\"a b\" is no CIM name"),
      LeftOut("2:36", "the value of property \"r\" of class \"C\"", "class \"a b\" is missing")},
     {"<PROPERTY.REFERENCE NAME='r' REFERENCECLASS='C'>", "<CLASS NAME='D'>"}},
    {"SubclassOfWhatIsLeftOut",
     Document({Class("", "NAME='C' SUPERCLASS='C'"), Class("", "NAME='D' SUPERCLASS='C'"),
               Tag("INSTANCE", "CLASSNAME='D'", Property("uint8", "3"))}),
     {LeftOut("2:20", "class \"C\"", "it is derived from itself")},
     {"<CLASS NAME='D' SUPERCLASS='C'>", Property("uint8", "3")}}};

TEST(CIMXMLDocumentWithFaults, IsReadWithoutThem) {
  for (const TPartial& partial : kPartial) {
    EXPECT_EQ(WarningsOf(partial.fDocument), partial.fWarnings) << partial.fName;
    ExpectRead(partial.fDocument, partial.fRead, partial.fName);
  }
}

TEST(CIMXMLDocumentWithFaults, NamesTheFirstAndCountsTheOthers) {
  TNames objects{kKeyed};
  for (int i = 0; i < 23; ++i) objects.push_back(Instance(""));
  const TNames warnings = WarningsOf(Document(objects));
  ASSERT_EQ(warnings.size(), 21U);
  EXPECT_EQ(warnings.back(), "3 more objects are left out");
}

}  // namespace
}  // namespace NVORNQDX20
