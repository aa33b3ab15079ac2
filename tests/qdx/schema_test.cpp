// SPDX-License-Identifier: Apache-2.0
// What "qdx show" says of declarations, and where associations lead.
#include <nlohmann/json.hpp>

#include "qdx/installation.h"

namespace {

/// A base class with a key and a method, a subclass that overrides and adds, and an association.
const char* const kDocument = R"xml(<?xml version="1.0"?>
<CIM CIMVERSION="2.0" DTDVERSION="2.0"><DECLARATION><DECLGROUP>
<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="t"/></LOCALNAMESPACEPATH>
<QUALIFIER.DECLARATION NAME="Key" TYPE="boolean" OVERRIDABLE="false"><SCOPE PROPERTY="true"
 REFERENCE="true"/><VALUE>FALSE</VALUE></QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Note" TYPE="string" TOSUBCLASS="false" TRANSLATABLE="true"><SCOPE
 CLASS="true" ASSOCIATION="true" REFERENCE="true" PROPERTY="true" METHOD="true" PARAMETER="true"
 INDICATION="true"/></QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Values" TYPE="string" ISARRAY="true"><SCOPE PROPERTY="true"/>
</QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Association" TYPE="boolean"><SCOPE ASSOCIATION="true"/>
</QUALIFIER.DECLARATION>
<VALUE.OBJECT><CLASS NAME="T_Base">
<QUALIFIER NAME="Note" TYPE="string"><VALUE>a "b" \ &#9;c&#10;&#x202e;d</VALUE></QUALIFIER>
<PROPERTY NAME="Id" TYPE="string"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER></PROPERTY>
<PROPERTY NAME="Size" TYPE="uint64"><VALUE>5</VALUE></PROPERTY>
<METHOD NAME="Reset" TYPE="uint32">
<PARAMETER NAME="Force" TYPE="boolean"><QUALIFIER NAME="Note" TYPE="string"><VALUE>now</VALUE></QUALIFIER></PARAMETER>
<PARAMETER.ARRAY NAME="Names" TYPE="string"/>
<PARAMETER.REFARRAY NAME="Ref" REFERENCECLASS="T_Link"/></METHOD>
</CLASS></VALUE.OBJECT>
<VALUE.OBJECT><CLASS NAME="T_Sub" SUPERCLASS="T_Base">
<PROPERTY NAME="Size" TYPE="uint64"><VALUE>7</VALUE></PROPERTY>
<PROPERTY NAME="Ratio" TYPE="real32"><VALUE>2</VALUE></PROPERTY>
<PROPERTY NAME="Far" TYPE="real64"><VALUE>1e21</VALUE></PROPERTY>
<PROPERTY NAME="Lost" TYPE="real64"><VALUE>NaN</VALUE></PROPERTY>
<PROPERTY NAME="Since" TYPE="datetime"><VALUE>20040315143000.000000+060</VALUE></PROPERTY>
<PROPERTY.ARRAY NAME="Four" TYPE="sint8" ARRAYSIZE="4"><VALUE.ARRAY><VALUE>-1</VALUE><VALUE>2</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>
<PROPERTY.ARRAY NAME="None" TYPE="string"><VALUE.ARRAY/></PROPERTY.ARRAY>
<PROPERTY.ARRAY NAME="Letters" TYPE="char16"><VALUE.ARRAY><VALUE>'</VALUE><VALUE>&#9;</VALUE><VALUE>ab</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>
<PROPERTY NAME="Id" TYPE="string" PROPAGATED="true"><QUALIFIER NAME="Static" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER><VALUE>own</VALUE></PROPERTY>
<PROPERTY NAME="Part" TYPE="string" EmbeddedObject="instance"/>
<PROPERTY NAME="Kind" TYPE="uint8"><QUALIFIER NAME="Values" TYPE="string"><VALUE.ARRAY><VALUE>a, b</VALUE><VALUE/></VALUE.ARRAY></QUALIFIER></PROPERTY>
</CLASS></VALUE.OBJECT>
<VALUE.OBJECT><CLASS NAME="T_Link">
<QUALIFIER NAME="Note" TYPE="string"><VALUE>link</VALUE></QUALIFIER>
<QUALIFIER NAME="Association" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER>
<PROPERTY.REFERENCE NAME="From" REFERENCECLASS="T_Base"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER></PROPERTY.REFERENCE>
<PROPERTY.REFERENCE NAME="To" REFERENCECLASS="T_Base"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>TRUE</VALUE></QUALIFIER></PROPERTY.REFERENCE>
</CLASS></VALUE.OBJECT>
INSTANCES</DECLGROUP></DECLARATION></CIM>)xml";

std::string Name(const std::string& path) {
  const std::size_t dot = path.find('.');
  return "<INSTANCENAME CLASSNAME=\"" + path.substr(0, dot) +
         "\"><KEYBINDING NAME=\"Id\"><KEYVALUE>" + path.substr(dot + 1) +
         "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

std::string Instance(const std::string& path) {
  const std::size_t dot = path.find('.');
  return "<VALUE.OBJECT><INSTANCE CLASSNAME=\"" + path.substr(0, dot) +
         "\"><PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>" + path.substr(dot + 1) +
         "</VALUE></PROPERTY></INSTANCE></VALUE.OBJECT>\n";
}

std::string Reference(const std::string& name, const std::string& path) {
  return "<PROPERTY.REFERENCE NAME=\"" + name + "\" REFERENCECLASS=\"T_Base\"><VALUE.REFERENCE>" +
         Name(path) + "</VALUE.REFERENCE></PROPERTY.REFERENCE>";
}

std::string Link(const std::string& from, const std::string& to) {
  return "<VALUE.OBJECT><INSTANCE CLASSNAME=\"T_Link\">" + Reference("From", from) +
         Reference("To", to) + "</INSTANCE></VALUE.OBJECT>\n";
}

/// The command, and the document with these links:
/// base b -> subs s and t; s -> s, by the name of the superclass once; t -> nowhere.
class QDXSchema : public ::testing::Test {
 protected:
  QDXSchema() {
    std::string text = kDocument;
    const std::string mark = "INSTANCES";
    text.replace(text.rfind(mark), mark.size(),
                 Instance("T_Base.b") + Instance("T_Sub.s") + Instance("T_Sub.t") +
                     Link("T_Base.b", "T_Sub.s") + Link("T_Base.b", "T_Sub.t") +
                     Link("T_Sub.s", "T_Base.s") + Link("T_Sub.t", "T_Sub.none"));
    fDocument = fFolder.Write("t.xml", text).string();
  }

  TProgramRun Show(std::vector<std::string> words) const {
    words.insert(words.begin(), {"show", fDocument});
    return fInstallation.Run(words);
  }

  const TInstallation fInstallation;
  const TTempDir fFolder;
  std::string fDocument;
};

TEST_F(QDXSchema, ShowsWhatAClassDeclaresAndInherits) {
  EXPECT_EQ(Show({"T_Sub", "--schema"}).fOutput, R"(root/t
  T_Sub  (subclass of T_Base)
    string Id = own  (key, static, overrides T_Base)
      Key  true
    uint64 Size = 7  (overrides T_Base)
    real32 Ratio = 2.0
    real64 Far = 1e+21
    real64 Lost = NaN
    datetime Since = 20040315143000.000000+060
    sint8[4] Four = { -1, 2 }
    string[] None = { }
    char16[] Letters = { ', ?, ab }
    string Part  (embedded instance)
    uint8 Kind
      Values  { "a, b", "" }
    uint32 Reset()  (from T_Base)
      boolean Force
        Note  now
      string[] Names
      T_Link reference[] Ref
)");
  const auto json = nlohmann::json::parse(Show({"t_sub", "--schema", "--json"}).fOutput);
  const auto& shown = json["namespaces"][0]["classes"][0];
  EXPECT_EQ(shown["superclass"], "T_Base");
  EXPECT_EQ(shown["properties"][1],
            nlohmann::json::parse(R"({"property": "Size", "type": "uint64", "key": false,
                "default": "7", "declaredIn": "T_Sub", "overrides": "T_Base", "qualifiers": {}})"));
  EXPECT_EQ(shown["methods"][0]["parameters"][0], nlohmann::json::parse(R"({"parameter": "Force",
                "type": "boolean", "qualifiers": {"Note": "now"}})"));
}

TEST_F(QDXSchema, WritesMOF) {
  EXPECT_EQ(Show({"--mof"}).fOutput, R"(#pragma namespace ("root/t")

Qualifier Association : boolean,
    Scope(association),
    Flavor(EnableOverride, ToSubclass);

Qualifier Key : boolean = false,
    Scope(reference, property),
    Flavor(DisableOverride, ToSubclass);

Qualifier Note : string,
    Scope(any),
    Flavor(EnableOverride, Restricted, Translatable);

Qualifier Values : string[],
    Scope(property),
    Flavor(EnableOverride, ToSubclass);

[Note ("a \"b\" \\ \tc\n" "\x202Ed")]
class T_Base {
  [Key]
  string Id;
  uint64 Size = 5;
  uint32 Reset(
    [Note ("now")]
    boolean Force,
    string Names[],
    T_Link REF Ref_ /* Ref */[]);
};

class T_Sub : T_Base {
  [Key]
  string Id = "own" /* static */;
  uint64 Size = 7;
  real32 Ratio = 2.0;
  real64 Far = 1.0e+21;
  real64 Lost = null /* nan */;
  datetime Since = "20040315143000.000000+060";
  sint8 Four[4] = {-1, 2};
  string None[] /* = an empty array */;
  char16 Letters[] = {'\'', '\t', null /* no character */};
  string /* embedded instance */ Part;
  [Values {"a, b", ""}]
  uint8 Kind;
};

[Association,
 Note ("link")]
class T_Link {
  [Key]
  T_Base REF From;
  [Key]
  T_Base REF To;
};
)");
  EXPECT_PRED_FORMAT2(::testing::IsNotSubstring, "Qualifier",
                      Show({"T_Base", "--schema", "--mof"}).fOutput);
}

TEST_F(QDXSchema, ShowsTheTreeOfClasses) {
  EXPECT_EQ(Show({"--tree"}).fOutput,
            "root/t\n  T_Base  (1 instance)\n    T_Sub  (2 instances)\n  T_Link  (4 instances)\n");
  EXPECT_EQ(Show({"--tree", "root/t:T_Sub"}).fOutput, "root/t\n  T_Sub  (2 instances)\n");
}

TEST_F(QDXSchema, WalksAssociations) {
  struct TRow {
    std::vector<std::string> fWords;
    int fExitCode;
    std::string fOutput;
  };
  const std::string sub = "  T_Sub  (1 instance)\n";
  const std::string s = "    T_Sub.Id=\"s\"\n";
  const std::string base = "  T_Base  (1 instance)\n    T_Base.Id=\"b\"\n";
  const TRow rows[] = {{{"T_Base.Id=\"b\"", "--associators"},
                        0,
                        "  T_Sub  (2 instances)\n" + s + "    T_Sub.Id=\"t\"\n"},
                       {{"T_Base.Id=\"b\"", "--associators", "T_Base"},
                        0,
                        "  T_Sub  (2 instances)\n" + s + "    T_Sub.Id=\"t\"\n"},
                       {{"T_Sub.Id=\"s\"", "--associators"}, 0, base + sub + s},
                       {{"T_Base.Id=\"s\"", "--associators"}, 0, base + sub + s},
                       {{"T_Sub.Id=\"s\"", "T_Sub", "--associators"}, 0, sub + s},
                       {{"T_Sub.Id=\"s\"", "--associators", "T_Link"}, 0, ""},
                       {{"T_Sub.Id=\"t\"", "--associators"}, 3, base},
                       {{"root/t:T_Sub.Id=\"t\"", "--references"},
                        0,
                        "  T_Link  (2 instances)\n"
                        "    T_Link.From=\"T_Base.Id=\"b\"\",To=\"T_Sub.Id=\"t\"\"\n"
                        "    T_Link.From=\"T_Sub.Id=\"t\"\",To=\"T_Sub.Id=\"none\"\"\n"}};
  for (TRow row : rows) {
    row.fWords.emplace_back("--depth=2");
    const TProgramRun run = Show(row.fWords);
    EXPECT_EQ(run.fOutput, "root/t\n" + row.fOutput) << run.fErrors;
    EXPECT_EQ(run.fExitCode, row.fExitCode);
    EXPECT_EQ(run.fErrors, row.fExitCode == 0 ? "" : "qdx: no instance root/t:T_Sub.Id=\"none\"\n");
  }
}

TEST_F(QDXSchema, ShowsTheLiveMachine) {
  fInstallation.AddPlugin(TESTS "sample_provider.so", "libsample.nsp.so");
  const std::vector<std::string> words{"show", "--provider=sample", "Sample_Many"};
  const auto show = [&](const std::string& option) {
    auto all = words;
    all.push_back(option);
    return fInstallation.Run(all).fOutput;
  };
  EXPECT_EQ(show("--tree"), "root/sample  (provider sample)\n  Sample_Many  (2 instances)\n");
  EXPECT_PRED_FORMAT2(::testing::IsSubstring, "\n    uint32 Number = 0  (key)\n", show("--schema"));
}

TEST_F(QDXSchema, RefusesWhatContradictsItself) {
  const std::tuple<std::vector<std::string>, int, std::string> rows[] = {
      {{"--associators"}, 2, "need the object path of an instance"},
      {{"T_Base", "--references"}, 2, "need the object path of an instance"},
      {{"T_Base.Id=\"b\"", "--schema"}, 2, "need a class, not an object path"},
      {{"T_Base.Id=\"b\"", "T_Sub"}, 2, "operand CLASS needs the option"},
      {{"--schema", "--tree"}, 2, "option '--schema' cannot be used with '--tree'"},
      {{"--mof", "--json"}, 2, "option '--mof' cannot be used with '--json'"},
      {{"--tree", "--depth=1"}, 2, "option '--tree' cannot be used with '--depth'"},
      {{"T_None", "--mof"}, 4, "looking for T_None: no such class or instance"},
      {{"T_Base.Id=\"b\"", "--associators", "T_None"}, 4, "looking for T_None: no such class"}};
  for (const auto& [words, exitCode, error] : rows) {
    const TProgramRun run = Show(words);
    EXPECT_EQ(run.fExitCode, exitCode) << run.fErrors;
    EXPECT_PRED_FORMAT2(::testing::IsSubstring, error, run.fErrors);
  }
}

}  // namespace
