// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/recording_namespace.h"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

namespace NVORNQDX20 {
namespace {

class ObjectPath : public ::testing::Test {
 protected:
  ObjectPath() {
    AddClass(
        fNamespace, "C",
        {{"a", ""}, {"b", 0U}, {"c", false}, {"d", TCIMDateTime("20040315143000.000000+060")}});
    AddClass(fNamespace, "Link", {{"From", NullReference(fNamespace, "C")}, {"Id", 0U}});
    AddClass(fNamespace, "Far", {{"On", NullReference(fNamespace, "Link")}, {"z", ""}});
    const auto chain = fNamespace->CreateClass("Chain", nullptr, {});
    TCIMValue self(TCIMValue::TCIMType::kCIMTypeReference, 0);
    self.SetReferencedClass(chain);
    chain->CreatePropertyDecl("n", self, {})->Commit();
    chain->Commit({});
  }

  std::string RoundTrip(const std::string& path) const {
    return TCIMReference(fNamespace, path, TOptionsMap()).GetPath();
  }

  const TNamespace fNamespace = MakeNamespace();
};

TEST_F(ObjectPath, IsWrittenSortedAndQuoted) {
  const struct {
    const char* fRead;
    const char* fWritten;
  } rows[] = {
      {R"(C)", R"(C)"},
      {R"(C.b="7",a="x")", R"(C.a="x",b="7")"},
      {R"(C.a="1".b="2")", R"(C.a="1",b="2")"},
      {R"(C.a="disk \"a\"")", R"(C.a="disk \"a\"")"},
      {R"(C.a="x\y")", R"(C.a="x\\y")"},
      {R"(C.a="x\\y")", R"(C.a="x\\y")"},
      {R"(C.a="\\\"")", R"(C.a="\\\"")"},
      {R"(C.a="b=.,c")", R"(C.a="b=.,c")"},
      {R"(C.a="",c="true")", R"(C.a="",c="true")"},
      {R"(C.b="0x10")", R"(C.b="16")"},
      {R"(C.a="1",a="2")", R"(C.a="1")"},
      {R"(C.d="20040315143000.000000+060")", R"(C.d="20040315143000.000000+060")"},
      {R"(Link.From="C.a="k"")", R"(Link.From="C.a="k"")"},
      {R"(Link.Id="1",From="C.b="2",a="\""")", R"(Link.From="C.a="\"",b="2"",Id="1")"},
      {R"(Far.On="Link.From="C.a="k"",Id="3"",z="e")",
       R"(Far.On="Link.From="C.a="k"",Id="3"",z="e")"},
      // A nested path that is cut short runs to the end of the text.
      {R"(Link.From="C.a="k")", R"(Link.From="C.a="k"")"},
      {R"(Link.From="C)", R"(Link.From="C")"},
  };
  for (const auto& row : rows) {
    const std::string written = RoundTrip(row.fRead);
    EXPECT_EQ(written, row.fWritten) << row.fRead;
  }
}

TEST_F(ObjectPath, IsBoundToTheTypesOfTheClass) {
  const TCIMReference path(fNamespace, R"(Link.From="C.b="2"",Id="1")", TOptionsMap());
  std::vector<TCIMValue> values;
  path.EnumerateKeyBindings([&values](std::pair<std::string, TCIMValue> binding) {
    values.push_back(binding.second);
    return true;
  });
  ASSERT_EQ(values.size(), 2U);
  const TCIMReference nested = values[0];
  EXPECT_EQ(nested.GetClass(), fNamespace->GetClass("C", {}));
  EXPECT_EQ(nested.GetNamespace(), fNamespace);
  EXPECT_EQ(values[0].GetReferencedClass(), fNamespace->GetClass("C", {}));
  EXPECT_TRUE(values[1] == TCIMValue(1U));
}

TEST_F(ObjectPath, ThatIsBadIsLoggedAndRefused) {
  const struct {
    const char* fPath;
    const char* fReason;
  } rows[] = {
      {R"(C.a=1)", R"(opening '"')"},
      {R"(C.a=)", R"(opening '"')"},
      {R"(C.a="1)", R"(closing '"')"},
      {R"(C.a="1\")", R"(closing '"')"},
      {R"(C.a)", "property value"},
      {R"(C.)", "property value"},
      {R"(C.a="1",)", "property value"},
      {R"(C.a="1"x)", "'.' or ','"},
      {R"(C.a="1"x="2")", "'.' or ','"},
      {R"(Link.From="C.a="k"x")", "'.' or ','"},
      {R"(Link.From="C.a="k"" Id="1")", "'.' or ','"},
  };
  for (const auto& row : rows) {
    const TLogCapture log;
    EXPECT_QDX_STATUS(RoundTrip(row.fPath), kQDXStatusInvalidReference) << row.fPath;
    EXPECT_EQ(log.Messages(), std::vector<std::string>{std::string("0 Reference missing ") +
                                                       row.fReason + ", path=" + row.fPath});
  }
}

TEST_F(ObjectPath, FailsAsItsPartsDo) {
  EXPECT_QDX_STATUS(RoundTrip(R"(None.a="1")"), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(RoundTrip(R"(C.a,b="1")"), kQDXStatusNotFound);  // one name, up to the "="
  EXPECT_QDX_STATUS(RoundTrip(R"(C.d="never")"), kQDXStatusInvalidDateTime);
}

TEST_F(ObjectPath, KeepsWhatWasReadBeforeTheFault) {
  TCIMReference reference(fNamespace, TOptionsMap());
  EXPECT_QDX_STATUS(reference.SetPath(R"(C.a="1",b=2)"), kQDXStatusInvalidReference);
  EXPECT_EQ(reference.GetPath(), R"(C.a="1")");
}

TEST_F(ObjectPath, PassesItsOptionsToNestedLookups) {
  const auto recorder = boost::make_shared<TRecordingNamespace>(fNamespace);
  TCIMReference(recorder, R"(Link.From="C.a="k"")", {{"from", "x"}});
  EXPECT_EQ(recorder->Asked(), "Link(x) C(x) ");
  EXPECT_QDX_STATUS(TCIMReference(recorder, R"(None.a=1)", {}), kQDXStatusFail);  // an assertion
}

TEST_F(ObjectPath, IsBoundedInItsDepth) {
  std::string path = "Chain";
  for (int i = 0; i < 1000; ++i) path += R"(.n="Chain)";
  EXPECT_EQ(RoundTrip(path), path + std::string(1000, '"'));
  EXPECT_QDX_STATUS(RoundTrip(path + R"(.n="Chain)"), kQDXStatusInvalidReference);
}

TEST_F(ObjectPath, IsParsedFromTheQuoteOfANestedOne) {
  TCIMReference target(fNamespace, TOptionsMap());
  std::uint64_t position = 3;
  target.GetBody()->ParsePath(target.GetBody(), R"(xx="C.b="2"",y)", position);
  EXPECT_EQ(position, 11U);  // on the nested path's closing quote
  EXPECT_EQ(target.GetPath(), R"(C.b="2")");
}

}  // namespace
}  // namespace NVORNQDX20
