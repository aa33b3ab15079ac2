// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>

#include <limits>
#include <numeric>

#include "cimxml/documents.h"

namespace NVORNQDX20 {
namespace {

using TType = TCIMValue::TCIMType;

template <typename... T>
std::vector<std::vector<TCIMValue>> Extremes() {
  return {{std::numeric_limits<T>::lowest(), T{0}, std::numeric_limits<T>::max()}...};
}

template <typename T>
std::vector<TCIMValue> Reals() {
  using L = std::numeric_limits<T>;
  return {T{0.1F}, T(-0.0), T(2), T(1) / 3, T(1e21F), L::max(), L::min(), L::denorm_min()};
}

/// What could get lost: each list holds values of one type.
std::vector<std::vector<TCIMValue>> Samples() {
  auto samples = Extremes<unsigned char, signed char, unsigned short, short, unsigned int, int,
                          unsigned long, long>();
  std::string ascii(0x7F - ' ' + 1, '\0');
  std::iota(ascii.begin(), ascii.end(), ' ');
  samples.insert(samples.end(),
                 {{true, false},
                  Reals<float>(),
                  Reals<double>(),
                  {"", " ", " a  b ", "\t\n\r\r\n", "]]><!--&amp;'", ascii, "\xC3\xA4\xE2\x82\xAC",
                   "\xF0\x9F\x98\x80\xEF\xBF\xBD", std::string(1 << 20, '<')},
                  {TCIMDateTime(2004, 3, 15, 14, 30, 0, 123456, -300),
                   TCIMDateTime(9999, 12, 31, 23, 59, 59, 999999, 999),
                   TCIMDateTime(99999999, 23, 59, 59, 999999), TCIMDateTime(0, 0, 0, 0, 0)}});
  return samples;
}

/// For each sample type a class, whose instances set one of a scalar and an array property.
TNamespace MakeAllTypes() {
  const TNamespace ns = MakeNamespace();
  for (std::vector<TCIMValue> values : Samples()) {
    const TType type = values.front().GetType();
    const std::string name = type.ToString();
    AddClass(ns, name, {{"id", 0U}},
             {{"a", TCIMValue(type | TType::kCIMTypeArray, 0U)}, {"b", TCIMValue(type, 0)}});
    unsigned int id = 0;
    for (const TCIMValue& value : values) AddInstance(ns, name, {{"id", ++id}, {"b", value}});
    AddInstance(ns, name, {{"id", ++id}, {"a", TCIMValue(type, 0, {})}});
    values.emplace_back(type, 0U);
    AddInstance(ns, name, {{"id", ++id}, {"a", TCIMValue(type, 9, values)}});
  }
  return ns;
}

std::vector<TCIMValue> ValuesIn(const TNamespace& ns) {
  std::vector<TCIMValue> values;
  const auto add = [&](const auto& each) { return values.push_back(each->GetValue()), true; };
  const auto addAll = [&](const auto& each) { return each->EnumerateProperties(add, {}), true; };
  for (const auto& sample : Samples()) {
    ns->GetClass(sample.front().GetType().ToString(), {})->EnumerateInstances(addAll, true, {});
  }
  return values;
}

TEST(CIMXMLDocument, GivesBackEachValue) {
  const TNamespace ns = MakeAllTypes();
  const std::string document = Written({ns});
  const TDocumentFile file(document);
  const auto expected = ValuesIn(ns);
  const auto values = ValuesIn(Read(file.Path(), "TEST"));
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_TRUE(values[i] == expected[i]) << i;
  }
  EXPECT_TRUE(ReadAndWritten(file.Path()) == document);
}

/// Two errors could cancel out in the text, so some of it is asked for.
TEST(CIMXMLDocument, GivesBackEachDeclarationAndReference) {
  EXPECT_EQ(ReadAndWritten(QDX_EVERYTHING), ReadWholeFile(QDX_EVERYTHING));
  const TNamespace ns = Read(QDX_EVERYTHING, "root/near");
  EXPECT_EQ(ns->GetQualifierDecl("List", {})->GetScope(), kScopeMethod);
  EXPECT_EQ(ns->GetQualifierDecl("List", {})->GetFlavor(),
            kFlavorOverridable | kFlavorToSubclass | kFlavorToInstance);
  const auto derived = ns->GetClass("A_Derived", {});
  const auto list = derived->GetSuperclass({})->GetPropertyDecl("Plain", {})->GetQualifier("List");
  EXPECT_EQ(list->GetValue().GetMaxArraySize(), 3U);  // though it is null
  std::vector<boost::shared_ptr<ICIMProperty>> values;
  derived->EnumerateStaticProperties(TAddToVectorCallback(values), {});
  derived->GetSuperclass({})->EnumerateStaticProperties(TAddToVectorCallback(values), {});
  ASSERT_EQ(values.size(), 2U);
  EXPECT_TRUE(values[0]->GetValue().IsNull() && values[1]->GetValue() == TCIMValue("static"));
  const auto link = ns->GetClass("Link", {});
  const TCIMReference to = link->GetPropertyDecl("To", {})->GetDefaultValue();
  EXPECT_EQ(to.GetPath(), "Target.Id=\"-3\"");
  EXPECT_EQ(to.GetNamespace(), Read(QDX_EVERYTHING, "far"));
}

/// The mark of a static value may be a declared qualifier, too.
TEST(CIMXMLDocument, HoldsAPropertyWithAStaticValueOnce) {
  for (const bool isDeclared : {false, true}) {
    const TNamespace ns = MakeNamespace();
    if (isDeclared) ns->CreateQualifierDecl("static", false, kScopeAny, 0, {})->Commit();
    const auto made = ns->CreateClass("C", nullptr, {});
    for (const TCIMValue& value : {TCIMValue(TType::kCIMTypeUint8, 0), TCIMValue(1)}) {
      const auto decl = made->CreatePropertyDecl(value.IsNull() ? "null" : "one", value, {});
      if (isDeclared) Qualify(ns, decl, "static", true);
      decl->Commit();
    }
    made->SetStaticPropertyValue("null", TCIMValue(static_cast<unsigned char>(2)), {});
    made->SetStaticPropertyValue("one", TCIMValue(2), {});
    made->Commit({});
    const TLogCapture log;
    const TDocumentFile file(Written({ns}));
    ASSERT_EQ(log.Messages().size(), 1U);
    EXPECT_NE(log.Messages()[0].find("C.one: the default of a static property"), std::string::npos);
    const std::string text = ReadWholeFile(file.Path());
    EXPECT_EQ(text.find("NAME=\"null\""), text.rfind("NAME=\"null\""));
    EXPECT_EQ(ReadAndWritten(file.Path()), text);
    std::vector<boost::shared_ptr<ICIMProperty>> values;
    Read(file.Path(), "test")
        ->GetClass("C", {})
        ->EnumerateStaticProperties(TAddToVectorCallback(values), {});
    ASSERT_EQ(values.size(), 2U);
    EXPECT_EQ(values[1]->GetValue(), TCIMValue(2));
  }
}

TEST(CIMXMLDocument, OmitsTheOwnNamespaceInAnyCase) {
  const TNamespace ns = MakeRepositoryNamespace("root/a"), same = MakeRepositoryNamespace("ROOT/A");
  AddClass(same, "C", {});
  TCIMReference reference(same, "C", {});
  AddClass(ns, "Link", {}, {{"r", TCIMValue(reference)}});
  EXPECT_EQ(Written({ns}).find("LOCALCLASSPATH"), std::string::npos);
}

std::string Between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t start = text.find(begin) + begin.size();
  return text.substr(start, text.find(end, start) - start);
}

/// The defaults of a class are written from their values.
TEST(CIMXMLDocument, WritesAReferenceOfAnInstanceAsThatOfItsClass) {
  const TNamespace ns = MakeNamespace();
  const TNamespace far = MakeRepositoryNamespace("far");
  AddClass(ns, "T", {{"Name", ""}, {"Id", ""}});
  AddClass(ns, "N", {{"Name", ""}, {"Count", 0U}});
  AddClass(far, "T", {}, {{"Id", ""}});
  AddClass(ns, "L", {{"To", NullReference(ns, "T")}});
  const TCIMValue references[] = {ReferenceTo(ns, "T.Name=\"a<b>&c\",Id=\"\x01\""),
                                  ReferenceTo(ns, "T.Id=\"only\""),
                                  ReferenceTo(ns, "T"),
                                  ReferenceTo(ns, "N.Name=\"n\",Count=\"7\""),
                                  ReferenceTo(far, "T.Id=\"far\""),
                                  ReferenceTo(ns, "L.To=\"T.Id=\"deep\"\"")};
  int count = 0;
  for (const TCIMValue& each : references) {
    const std::string name = "R" + std::to_string(count++);
    AddClass(ns, name, {{"Key", each}}, {{"One", each}});
    AddInstance(ns, name, {{"Key", each}, {"One", each}});
  }
  const TLogCapture log;
  const std::string document = Written({ns});
  ASSERT_EQ(log.Messages().size(), 1U);
  EXPECT_NE(log.Messages()[0].find("cimxml: 4 characters "), std::string::npos);
  while (count-- != 0) {
    const std::string name = "\"R" + std::to_string(count) + "\"";
    SCOPED_TRACE(name);
    const std::string inClass = Between(document, "<CLASS NAME=" + name, "</CLASS>");
    const std::string start = "<VALUE.REFERENCE>";
    const std::string value = start + Between(inClass, start, "</PROPERTY.REFERENCE>");
    const std::string inName = Between(document, "<INSTANCENAME CLASSNAME=" + name, "<INSTANCE ");
    EXPECT_EQ(inName, "><KEYBINDING NAME=\"Key\">" + value + "</KEYBINDING></INSTANCENAME>\n");
    const std::string instance = Between(document, "<INSTANCE CLASSNAME=" + name, "</INSTANCE>");
    EXPECT_EQ(Between(instance, "NAME=\"Key\">", "</PROPERTY.REFERENCE>\n"), value);
    EXPECT_EQ(Between(instance, "NAME=\"One\">", "</PROPERTY.REFERENCE>\n"), value);
  }
}

TEST(CIMXMLDocument, DoesNotDependOnTheOrderOfDeclarations) {
  const auto make = [](const TNames& names) {
    const TNamespace ns = MakeRepositoryNamespace("n");
    for (const std::string& name : names) {
      ns->CreateQualifierDecl(name, true, 0, 0, {})->Commit();
      const auto root = AddClass(ns, name, {});
      for (const auto& derived : names) ns->CreateClass(name + derived, root, {})->Commit({});
    }
    return Written({ns});
  };
  EXPECT_EQ(make({"b", "a", "c"}), make({"c", "b", "a"}));
}

TEST(CIMXMLDocument, ReplacesAndCountsWhatXMLCannotHold) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "C", {{"s", ""}});  // a key, which stands there twice but counts once
  const std::string r = "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> kCases[] = {{std::string("\0a\x1F", 3), r + "a" + r},
                                                        {"\xFFz\xC3z", r + "z" + r + "z"},
                                                        {"\xEF\xBF\xBFz", r + r + r + "z"},
                                                        {"\xE2\x82\xAC", "\xE2\x82\xAC"}};
  std::string bad, good;
  for (const auto& [text, replaced] : kCases) {
    bad += text;
    good += replaced;
  }
  AddInstance(ns, "C", {{"s", bad}});
  const TLogCapture log;
  const TDocumentFile file("");
  Write(file.Path(), {ns});
  EXPECT_NE(ReadWholeFile(file.Path()).find("<VALUE>" + good + "<"), std::string::npos);
  EXPECT_EQ(log.Messages(),
            TNames{"1 cimxml: 7 characters that XML cannot hold were replaced in " + file.Path()});
}

}  // namespace
}  // namespace NVORNQDX20
