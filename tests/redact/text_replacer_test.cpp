// SPDX-License-Identifier: Apache-2.0
#include "text_replacer.h"

#include <gtest/gtest.h>

namespace {

using namespace NVORNQDX20::NRedact;

struct TReplaced {
  const char* fName;
  const char* fText;
  const char* fResult;
};
class TextReplacer : public ::testing::TestWithParam<TReplaced> {
 protected:
  TextReplacer() {
    fReplacer.Add({"S-100200", "<serial>"});
    fReplacer.Add({"S-1002003", "<longer>"});
    fReplacer.Add({"bob", "<bob>", EBeside::kNoWord});
    fReplacer.Add({"x", "<never>"});
    fReplacer.Add({"10.0.0.5", "<v4>", EBeside::kNoIPv4});
    fReplacer.Add({"2001:db9::5", "<v6>", EBeside::kNoHexadecimal});
    fReplacer.Add({"aa:bb:cc", "dd:ee:ff"});
    fReplacer.Add({"Jane", "<jane>", EBeside::kAnything,
                   [](const std::string& found) { return "<other " + found + ">"; }});
  }
  TTextReplacer fReplacer;
};

TEST_P(TextReplacer, Replaces) {
  EXPECT_EQ(fReplacer.Replace(GetParam().fText), GetParam().fResult);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, TextReplacer,
    ::testing::Values(
        TReplaced{"Nothing", "", ""}, TReplaced{"Others", "x y S-10020", "x y S-10020"},
        TReplaced{"Everywhere", "S-100200,aS-100200b", "<serial>,a<serial>b"},
        TReplaced{"TheLongest", "S-1002003", "<longer>"},
        TReplaced{"Words", "/home/bob/.x bob_1 bobby rob bobö BOB",
                  "/home/<bob>/.x <bob>_1 bobby rob bobö <BOB>"},
        TReplaced{"IPv4",
                  "10.0.0.5:22 10.0.0.55 110.0.0.5 10.0.0.5. 10.0.0.5.1 1.10.0.0.5 a10.0.0.5",
                  "<v4>:22 10.0.0.55 110.0.0.5 <v4>. 10.0.0.5.1 1.10.0.0.5 a<v4>"},
        TReplaced{"IPv6",
                  "[2001:DB9::5]:22 2001:db9::5%eth0 2001:db9::55 2001:db9::5:1 1:2001:db9::5",
                  "[<V6>]:22 <v6>%eth0 2001:db9::55 2001:db9::5:1 1:2001:db9::5"},
        TReplaced{"CapitalsOfDigits", "AA:BB:CC aa:bb:cc", "DD:EE:FF dd:ee:ff"},
        TReplaced{"AnotherCase", "Jane JANE", "<jane> <other JANE>"}),
    [](const auto& each) { return std::string(each.param.fName); });

}  // namespace
