// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/reference.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/faulty_provider.h"
#include "support/log_capture.h"

#include <random>

using namespace NVORNQDX20;

namespace {

class CIMReference : public ::testing::Test {
 protected:
  CIMReference() {
    AddClass(fNamespace, "C", {{"a", ""}, {"b", 0U}},
             {{"c", false}, {"d", TCIMDateTime(1, 2, 3, 4, 5)}});
    AddClass(fNamespace, "Link", {{"From", NullReference(fNamespace, "C")}, {"Id", 0U}});
    AddClass(fNamespace, "Far", {{"On", NullReference(fNamespace, "Link")}, {"z", ""}});
  }

  TCIMReference Reference(const TProperties& keys = {}) const {
    TCIMReference reference(fNamespace, TOptionsMap());
    reference.SetClassName("C");
    for (const auto& [name, value] : keys) reference.AddKeyValue(name, value);
    return reference;
  }

  std::string RoundTrip(const std::string& path) const {
    return TCIMReference(fNamespace, path, TOptionsMap()).GetPath();
  }

  const TNamespace fNamespace = MakeNamespace();
};

TEST_F(CIMReference, DemandsItsOrderOfUse) {
  TCIMReference reference(nullptr, TOptionsMap());
  EXPECT_QDX_STATUS(reference.SetClassName("C"), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.SetPath("C"), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.AddKeyValue("b", 1U), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.GetClass(), kQDXStatusInvalidReference);
  EXPECT_QDX_STATUS(reference.GetPath(), kQDXStatusFail);  // an assertion
  EXPECT_EQ(reference.GetCIMElement(), nullptr);

  reference.SetClass(fNamespace->GetClass("C", {}));  // needs no namespace
  EXPECT_EQ(reference.GetClassName(), "C");
  reference.SetNamespace(fNamespace);
  EXPECT_QDX_STATUS(reference.SetPath("C"), kQDXStatusInvalidOpSequence);
  reference.AddKeyValue("b", 1U);
  EXPECT_QDX_STATUS(reference.SetClass(nullptr), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.SetClassName("C"), kQDXStatusInvalidOpSequence);

  reference.Clear();
  reference.SetNamespace(fNamespace);
  reference.SetPath("C.b=\"2\"");
  EXPECT_EQ(reference.GetPath(), "C.b=\"2\"");
}

TEST_F(CIMReference, KeepsTheFirstValueOfAKeyAndRefusesOtherTypes) {
  const TLogCapture log;
  TCIMReference reference = Reference({{"b", 1U}, {"b", 2U}});
  EXPECT_QDX_STATUS(reference.AddKeyValue("b", "1"), kQDXStatusTypeMismatch);
  EXPECT_EQ(log.Messages().at(0), "0 Core: Declaration type: uint32 Value type: string");
  EXPECT_QDX_STATUS(reference.AddKeyValue("None", 1U), kQDXStatusNotFound);  // the provider's
  reference.AddKeyValue("c", true);                                          // declared, if no key
  EXPECT_EQ(reference.GetPath(), "C.b=\"1\",c=\"true\"");
}

TEST_F(CIMReference, VisitsKeysInByteOrderUntilToldToStop) {
  std::string visited;
  Reference({{"b", 1U}, {"a", "x"}, {"c", true}})
      .EnumerateKeyBindings([&visited](std::pair<std::string, TCIMValue> binding) {
        visited += binding.first + "=" + binding.second.ToString(10) + " ";
        return binding.first != "b";
      });
  EXPECT_EQ(visited, "a=x b=1 ");
  EXPECT_THROW(Reference({{"b", 1U}}).EnumerateKeyBindings({}), boost::bad_function_call);
  EXPECT_NO_THROW(Reference().EnumerateKeyBindings({}));
}

TEST_F(CIMReference, PassesItsOptionsOnAndAssertsWhatItIsAnswered) {
  std::string asked;
  const auto faults = boost::make_shared<TFaults>();
  faults->fWatch = [&asked](const std::string& call) {
    if (call.find("ICIMPropertyDecl") != 0) asked += call.substr(call.find("::") + 2) + " ";
  };
  const TNamespace ns = MakeFaultyNamespace(fNamespace, faults);
  TCIMReference reference(ns, {{"from", "x"}});
  reference.SetClassName("C");
  TCIMReference copy(reference);
  copy.Clear();
  copy.SetNamespace(ns);
  copy.SetPath("Link.From=\"C.b=\"1\"\"");
  copy.EnumerateKeyBindings([&](const auto& binding) {
    TCIMReference nested = binding.second;
    nested.Clear();
    nested.SetNamespace(ns);
    nested.SetClassName("C");
    return true;
  });
  TCIMReference assigned(nullptr, {});
  assigned = copy;
  EXPECT_QDX_STATUS(copy.GetCIMElement(), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(assigned.GetCIMElement(), kQDXStatusNotFound);
  // The namespace alone gets the options. A declaration serves the parser, then the new key.
  EXPECT_EQ(asked,
            "GetClass(C,x) GetClass(Link,x) GetPropertyDecl(From) "
            "GetClass(C,x) GetPropertyDecl(b) GetPropertyDecl(b) GetPropertyDecl(From) "
            "GetClass(C,x) GetInstance(" +
                faulty::AddressOf(copy) + ") GetInstance(" + faulty::AddressOf(assigned) + ") ");

  faults->Fail("ICIMClass::GetPropertyDecl", kQDXStatusOK);
  EXPECT_QDX_STATUS(reference.AddKeyValue("b", 1U), kQDXStatusFail);  // an assertion
  for (const int call : {1, 2}) faults->Fail("ICIMNamespace::GetClass", kQDXStatusOK, call);
  reference.SetClassName("C");  // what the namespace answers is stored, null included
  EXPECT_QDX_STATUS(reference.AddKeyValue("b", 1U), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.GetClassName(), kQDXStatusFail);
  EXPECT_QDX_STATUS(TCIMReference(ns, "C.b=1", {}), kQDXStatusFail);
}

TEST_F(CIMReference, FetchesTheInstanceOnceAndKeepsIt) {
  TCIMReference reference = Reference({{"a", "x"}, {"b", 1U}});
  EXPECT_QDX_STATUS(reference.GetCIMElement(), kQDXStatusNotFound);
  AddInstance(fNamespace, "C", {{"a", "x"}, {"b", 1U}});
  EXPECT_NE(boost::dynamic_pointer_cast<ICIMInstance>(reference.GetCIMElement()), nullptr);
  reference.AddKeyValue("c", true);  // names no instance, but the first answer is kept
  EXPECT_EQ(reference.GetCIMElement(), TCIMReference(reference).GetCIMElement());
  reference.Clear();
  reference.SetNamespace(fNamespace);
  reference.SetPath("C.a=\"x\",b=\"2\"");
  EXPECT_QDX_STATUS(reference.GetCIMElement(), kQDXStatusNotFound);
  EXPECT_EQ(Reference().GetCIMElement(), fNamespace->GetClass("C", {}));
}

TEST_F(CIMReference, ComparesClassObjectsAndKeys) {
  const TCIMReference ascending[] = {Reference(), Reference({{"a", ""}}),
                                     Reference({{"a", ""}, {"b", 1U}}), Reference({{"a", "x"}}),
                                     Reference({{"b", 0U}})};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      const TCIMReference &left = ascending[i], right(ascending[j]);
      EXPECT_EQ(left < right, i < j) << i << j;
      EXPECT_EQ(left == right, i == j) << i << j;
      EXPECT_TRUE((left != right) == (i != j) && (left > right) == (i > j)) << i << j;
      EXPECT_TRUE((left <= right) == (i <= j) && (left >= right) == (i >= j)) << i << j;
    }
  }
  TCIMReference other(nullptr, TOptionsMap());
  other.SetClass(AddClass(MakeNamespace(), "C", {}));
  EXPECT_FALSE(other == Reference());
  EXPECT_NE(other < Reference(), Reference() < other);
  EXPECT_TRUE(TCIMReference(nullptr, {}) == TCIMReference(fNamespace, {}));
}

using ObjectPath = CIMReference;

TEST_F(ObjectPath, IsWrittenSortedAndQuoted) {
  const std::pair<const char*, const char*> rows[] = {
      {R"(C)", R"(C)"},
      {R"(C.b="7",a="x")", R"(C.a="x",b="7")"},
      {R"(C.a="1".b="2")", R"(C.a="1",b="2")"},
      {R"(C.a="disk \"a\"")", R"(C.a="disk \"a\"")"},
      {R"(C.a="x\y\\z\\\"")", R"(C.a="x\\y\\z\\\"")"},
      {R"(C.a="b=.,c")", R"(C.a="b=.,c")"},
      {R"(C.b="0x10",c="true")", R"(C.b="16",c="true")"},
      {R"(C.a="1",a="2")", R"(C.a="1")"},
      {R"(C.d="20040315143000.000000+060")", R"(C.d="20040315143000.000000+060")"},
      {R"(Link.Id="1",From="C.b="2",a="\""")", R"(Link.From="C.a="\"",b="2"",Id="1")"},
      {R"(Far.On="Link.From="C.a="k"",Id="3"",z="e")",
       R"(Far.On="Link.From="C.a="k"",Id="3"",z="e")"},
      // A nested path that is cut short runs to the end of the text.
      {R"(Link.From="C.a="k")", R"(Link.From="C.a="k"")"},
      {R"(Link.From="C)", R"(Link.From="C")"},
  };
  for (const auto& [read, written] : rows) EXPECT_EQ(RoundTrip(read), written) << read;

  const TCIMReference link(fNamespace, R"(Link.From="C.b="1"")", {});
  link.EnumerateKeyBindings([this](const auto& binding) {
    EXPECT_EQ(binding.second.GetReferencedClass(), fNamespace->GetClass("C", {}));
    return true;
  });
}

TEST_F(ObjectPath, GivesTheKeysFromWhichItWasMade) {
  std::mt19937 random(1);
  for (int i = 0; i < 2000; ++i) {
    std::string text;
    for (auto length = random() % 40; length > 0; --length) text += "\"\\\\x,.= y"[random() % 9];
    const TCIMReference made = Reference({{"b", 7U}, {"a", text}});
    const TCIMReference read(fNamespace, made.GetPath(), {});
    EXPECT_TRUE(read == made) << text;
    EXPECT_EQ(*read.GetBody()->GetKeyBindings().at("a").FindString(), text);
  }
}

TEST_F(ObjectPath, EndsAValueAtTheFirstQuoteThatIsNotEscaped) {
  // How it is written, and what it is. Bytes that resemble a quote or a backslash, too.
  const std::pair<std::string, std::string> parts[] = {
      {R"(\")", "\""},  {R"(\\)", "\\"},  {R"(\y)", R"(\y)"},
      {"y", "y"},       {"!", "!"},       {"#", "#"},
      {"[", "["},       {"]", "]"},       {"\xA2", "\xA2"},
      {"\xDC", "\xDC"}, {"\x01", "\x01"}, {std::string(1, '\0'), std::string(1, '\0')}};
  const TLogCapture log;
  std::mt19937 random(1);
  for (int i = 0; i < 5000; ++i) {
    std::string written;
    std::string text;
    const std::size_t first = i % 2 == 0 ? 0 : 3;  // every other has no escapes
    for (auto length = random() % 20; length > 0; --length) {
      const auto& part = parts[first + random() % (std::size(parts) - first)];
      written += part.first;
      text += part.second;
    }
    const std::string path = "C.a=\"" + written + "\"" + (random() % 2 == 0 ? ",b=\"7\"" : "");
    const TCIMReference read(fNamespace, path, {});
    EXPECT_EQ(*read.GetBody()->GetKeyBindings().at("a").FindString(), text) << path;
    EXPECT_QDX_STATUS(RoundTrip("C.a=\"" + written), kQDXStatusInvalidReference) << path;
  }
}

TEST_F(ObjectPath, LeavesThePositionWhereItEnds) {
  const std::tuple<std::string, std::uint64_t, std::uint64_t> rows[] = {
      {R"(C.b="1")", 0, 7},       // at the end
      {R"(C)", 0, 1},             // at the end
      {R"(="C.b="1"",x)", 1, 9},  // nested: on the closing quote
      {R"(="C.b="1")", 1, 9},     // nested: at the end for want of one
      {R"(="C)", 1, 3}};
  for (auto [path, position, end] : rows) {
    TCIMReference target(fNamespace, {});
    TCIMReference(fNamespace, {}).GetBody()->ParsePath(target.GetBody(), path, position);
    EXPECT_EQ(position, end) << path;
    EXPECT_EQ(target.GetPath(), path.find('b') == std::string::npos ? "C" : R"(C.b="1")");
  }
}

TEST_F(ObjectPath, ThatIsBadIsLoggedAndRefused) {
  const std::pair<std::string, std::string> rows[] = {
      {R"(C.a=)", R"(opening '"')"},     {R"(C.a="1)", R"(closing '"')"},
      {R"(C.a="1\")", R"(closing '"')"}, {R"(C.a)", "property value"},
      {R"(C.a="1"x="2")", "'.' or ','"}, {R"(Link.From="C.a="k"x")", "'.' or ','"},
  };
  for (const auto& row : rows) {
    const std::string& path = row.first;
    const TLogCapture log;
    EXPECT_QDX_STATUS(RoundTrip(path), kQDXStatusInvalidReference) << path;
    EXPECT_EQ(log.Messages().at(0), "0 Reference missing " + row.second + ", path=" + path);
  }
}

TEST_F(ObjectPath, FailsAsItsPartsDoAndKeepsWhatWasReadBefore) {
  EXPECT_QDX_STATUS(RoundTrip(R"(None.a="1")"), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(RoundTrip(R"(C.a,b="1")"), kQDXStatusNotFound);  // one name, up to the "="
  TCIMReference reference(fNamespace, TOptionsMap());
  EXPECT_QDX_STATUS(reference.SetPath(R"(C.a="1",d="never")"), kQDXStatusInvalidDateTime);
  EXPECT_EQ(reference.GetPath(), R"(C.a="1")");
}

TEST_F(ObjectPath, IsBoundedInItsDepth) {
  const auto chain = fNamespace->CreateClass("Chain", nullptr, {});
  TCIMValue self(TCIMValue::TCIMType::kCIMTypeReference, 0);
  self.SetReferencedClass(chain);
  chain->CreatePropertyDecl("n", self, {})->Commit();
  chain->Commit({});
  std::string path = "Chain";
  for (int i = 0; i < 1000; ++i) path += R"(.n="Chain)";
  EXPECT_EQ(RoundTrip(path), path + std::string(1000, '"'));
  EXPECT_QDX_STATUS(RoundTrip(path + R"(.n="Chain)"), kQDXStatusInvalidReference);
}

}  // namespace
