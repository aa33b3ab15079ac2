// SPDX-License-Identifier: Apache-2.0
#include "embedded_text.h"

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

struct TPair {
  const char* fName;
  const char* fOne;
  const char* fOther;
  bool fAreSame;
};

class EmbeddedText : public ::testing::TestWithParam<TPair> {};

TEST_P(EmbeddedText, IsComparedByContent) {
  const std::string one = ContentOfEmbedded(GetParam().fOne);
  const std::string other = ContentOfEmbedded(GetParam().fOther);
  EXPECT_EQ(one == other, GetParam().fAreSame) << one << "\n" << other;
}

INSTANTIATE_TEST_SUITE_P(
    Text, EmbeddedText,
    ::testing::Values(
        TPair{"BlanksBetweenElements", "<A>\n <B/>\n</A>\n", "<?xml version='1.0'?><A><B/></A>",
              true},
        TPair{"OrderOfAttributes", "<A X=\"1\" Y='2'/>", "<A  Y=\"2\"\tX='1' ></A>", true},
        TPair{"Comments", "<A><!-- > --><B/></A>", "<A><B/></A>", true},
        TPair{"BlankValue", "<V> </V>", "<V></V>", false},
        TPair{"BlanksInValue", "<V>a b</V>", "<V>a  b</V>", false},
        TPair{"Attributes", "<A X='1'/>", "<A X='2'/>", false},
        TPair{"QuoteInValue", "<A X='\" Y=\"'/>", "<A X=\"\" Y=\"\"/>", false},
        TPair{"CutTag", "<A X='1", "<A X= '1", false}, TPair{"CutBehindName", "<A", "<A ", false},
        TPair{"DocumentType", "<!DOCTYPE a><A/>", " <!DOCTYPE a><A/>", false},
        TPair{"BlanksInMOF", "instance of A{X=1;};", "Instance  of a\n{ x = 1 ; // one\n};", true},
        TPair{"QuotesInMOF", "instance of A { X = \"a  \\\"b\"; };",
              "instance of A { X = \"a \\\"b\"; };", false},
        TPair{"CaseOfText", "instance of A { X = \"a\"; };", "instance of A { X = \"A\"; };",
              false},
        TPair{"PlainText", "//server/one", "//server/two", false},
        TPair{"CaseOfPlainText", "Fan 1", "fan  1", false},
        TPair{"QualifiersInMOF", "[X] class A{};", "[ X ] class A { };", true},
        TPair{"OpenQuote", "a \"b", "a  \"b", false}, TPair{"OpenComment", "a /*", "a  /*", false},
        TPair{"Empty", "", "<", false}),
    [](const auto& each) { return std::string(each.param.fName); });

}  // namespace
}  // namespace NVORNQDX20
