// SPDX-License-Identifier: Apache-2.0
// Classes that a document does not declare, or that refer to each other: all of it is taken.
#include <algorithm>

#include "cimxml/documents.h"

namespace NVORNQDX20 {
namespace {

const std::string kKey = "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>";
const std::string kKeyed = Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey));

std::string Id(const std::string& value) {
  return "<PROPERTY NAME='Id' TYPE='uint32'><VALUE>" + value + "</VALUE></PROPERTY>";
}
std::string Name(const std::string& className, const std::string& keys) {
  return Tag("INSTANCENAME", "CLASSNAME='" + className + "'", keys);
}
std::string Reference(const std::string& name, const std::string& target) {
  return Tag("PROPERTY.REFERENCE", "NAME='" + name + "'",
             "<VALUE.REFERENCE>" + target + "</VALUE.REFERENCE>");
}
std::string Null(const std::string& name, const std::string& className) {
  return "<PROPERTY.REFERENCE NAME='" + name + "' REFERENCECLASS='" + className + "'/>";
}
std::string InstanceOf(const std::string& className, const std::string& properties) {
  return Tag("INSTANCE", "CLASSNAME='" + className + "'", properties);
}
std::string Declared(const std::string& name, const std::string& className) {
  return "<PROPERTY.REFERENCE NAME='" + name + "' REFERENCECLASS='" + className + "'>";
}

const struct {
  const char* fName;
  std::string fDocument;
  TNames fRead;  ///< Appear in what is written of "root/cimv2", with ' for each ".
} kTaken[] = {
    {"SuperclassFromWhatItsSubclassLacks",
     Document({Class(Property("uint8", "1"), "NAME='D' SUPERCLASS='B'"),
               Name("D", Binding("Id", "TYPE='uint32'", "7")) +
                   InstanceOf("D", Property("uint8", "3") + Id("7"))}),
     {"<CLASS NAME='B'>\n<PROPERTY NAME='Id' TYPE='uint32'>\n<QUALIFIER NAME='Key'",
      "<CLASS NAME='D' SUPERCLASS='B'>\n<PROPERTY NAME='p'", Id("7"), Property("uint8", "3")}},
    {"SuperclassWithoutKeysIfASubclassHasThem",
     Document({Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey), "NAME='D' SUPERCLASS='B'"),
               Name("E", Binding("k", "TYPE='uint32'", "7")) + InstanceOf("E", ""),
               Class("", "NAME='E' SUPERCLASS='B'")}),
     {"<CLASS NAME='B'>\n<PROPERTY NAME='k' TYPE='uint32'>\n</PROPERTY>",
      "<CLASS NAME='D' SUPERCLASS='B'>\n<PROPERTY NAME='Id' TYPE='uint32'>\n<QUALIFIER"}},
    {"ReferenceBeforeTheInstancesOfItsClass",
     Document({InstanceOf("L", Reference("r", Name("C", Binding("Id", "VALUETYPE='numeric'", "7") +
                                                            Binding("x", "", "y")))),
               Name("C", Binding("Id", "VALUETYPE='numeric'", "7")) + InstanceOf("C", Id("7")),
               Name("C", Binding("Id", "VALUETYPE='numeric'", "8")) + InstanceOf("C", Id("8"))}),
     {Id("7"), Id("8"), "<KEYBINDING NAME='x'>"}},
    {"KeysFromReferencesIfNoInstanceHasAName",
     Document({InstanceOf("L", Reference("r", Name("C", Binding("Id", "TYPE='uint32'", "7")))),
               InstanceOf("C", Id("7") + Property("uint8", "1")), InstanceOf("C", Id("8"))}),
     {"<PROPERTY NAME='Id' TYPE='uint32'>\n<QUALIFIER NAME='Key'", Id("7"), Id("8")}},
    {"ClassesThatReferToEachOther",
     Document({Class(Null("r", "D")), Class(Null("s", "C"), "NAME='D'")}),
     {Declared("r", "D"), Declared("s", "C")}},
    {"ReferenceToTheOwnSubclass",
     Document({Class(Null("r", "D")), Class("", "NAME='D' SUPERCLASS='C'")}),
     {Declared("r", "D"), "<CLASS NAME='D' SUPERCLASS='C'>"}},
    {"ReferenceInADefault",
     Document({Class(Reference("r", Name("D", Binding("Id", "TYPE='uint32'", "7")))),
               InstanceOf("C", ""),
               Class(Tag("PROPERTY", "NAME='Id' TYPE='uint32'", kKey), "NAME='D'")}),
     {Declared("r", "D"), "<KEYBINDING NAME='Id'>"}},
    {"ClassOfAReferenceWithValue",
     Document({Name("D", Binding("k", "", "b")) + InstanceOf("D", ""),
               InstanceOf("L", Tag("PROPERTY.REFERENCE", "NAME='r' REFERENCECLASS='E'",
                                   "<VALUE.REFERENCE>" + Name("D", Binding("k", "", "b")) +
                                       "</VALUE.REFERENCE>"))}),
     {Declared("r", "E"), "<CLASS NAME='E'>", "<INSTANCE CLASSNAME='L'>"}},
    {"KeyWithAReferenceAsDefault",
     Document({kKeyed,
               Class(Tag("PROPERTY.REFERENCE", "NAME='r' REFERENCECLASS='C'",
                         kKey + "<VALUE.REFERENCE>" +
                             Name("C", Binding("Id", "TYPE='uint32'", "7")) + "</VALUE.REFERENCE>"),
                     "NAME='A'"),
               InstanceOf("A", "")}),
     {"<INSTANCE CLASSNAME='A'>"}},
    {"InstancesThatReferToEachOther",
     Document({InstanceOf("A", Reference("to", Name("B", Binding("k", "", "b")))),
               Name("B", Binding("k", "", "b")) +
                   InstanceOf("B", Reference("from", "<CLASSNAME NAME='A'/>"))}),
     {Declared("to", "B"), Declared("from", "A")}},
    {"KeysThatAreReferencesToEachOther",
     Document({Name("A", Tag("KEYBINDING", "NAME='to'",
                             "<VALUE.REFERENCE>" +
                                 Name("B", Tag("KEYBINDING", "NAME='from'",
                                               "<VALUE.REFERENCE><CLASSNAME "
                                               "NAME='A'/></VALUE.REFERENCE>")) +
                                 "</VALUE.REFERENCE>")) +
               InstanceOf("A", "")}),
     {Declared("to", "B"), Declared("from", "A"), "<KEYBINDING NAME='from'>"}},
    {"ReferenceByAnotherKey",
     Document({kKeyed, InstanceOf("L", Reference("r", Name("C", Binding("Other", "", "x"))))}),
     {"<INSTANCENAME CLASSNAME='C'><KEYBINDING NAME='Other'>"
      "<KEYVALUE VALUETYPE='string' TYPE='string'>x<"}}};

TEST(CIMXMLDocumentWithUndeclaredClasses, IsReadWhole) {
  for (const auto& taken : kTaken) {
    EXPECT_EQ(WarningsOf(taken.fDocument), TNames()) << taken.fName;
    const TDocumentFile file(taken.fDocument);
    const TLogCapture log;
    std::string written = ReadAndWritten(file.Path());
    const TDocumentFile copy(written);
    EXPECT_EQ(ReadAndWritten(copy.Path()), written) << taken.fName;
    std::replace(written.begin(), written.end(), '"', '\'');
    for (const std::string& expected : taken.fRead) {
      EXPECT_NE(written.find(expected), std::string::npos)
          << taken.fName << ": " << expected << " in\n"
          << written;
    }
  }
}

}  // namespace
}  // namespace NVORNQDX20
