// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include "support/expect_status.h"
#include "support/log_capture.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

class Assertion : public ::testing::Test {
 protected:
  void SetUp() override { ::unsetenv("QDX_BOOST_ASSERT"); }
  void TearDown() override { ::unsetenv("QDX_BOOST_ASSERT"); }

  static void UseNull() {
    const boost::shared_ptr<ICIMNamespace> null;
    null->GetClass("A", TOptionsMap());
  }

  static void Choose(const char* setting) { ::setenv("QDX_BOOST_ASSERT", setting, 1); }
};

TEST_F(Assertion, ThrowsAndLogsWhenNothingIsSet) {
  const TLogCapture log;
  EXPECT_QDX_STATUS(UseNull(), kQDXStatusFail);
  ASSERT_EQ(log.Messages().size(), 1U);
  const std::string message = log.Messages().front();
  EXPECT_EQ(message.find("0 Boost assertion failure! /"), 0U) << message;
  EXPECT_NE(message.find(" [px != 0] func = "), std::string::npos) << message;
}

TEST_F(Assertion, FormatsExpressionPlaceAndFunction) {
  const TLogCapture log;
  EXPECT_QDX_STATUS(boost::assertion_failed("a < b", "int f()", "x.cpp", 12), kQDXStatusFail);
  EXPECT_QDX_STATUS(boost::assertion_failed_msg("a", "why", "g", "y.h", 3), kQDXStatusFail);
  EXPECT_EQ(log.Messages(),
            (std::vector<std::string>{"0 Boost assertion failure! x.cpp:12 [a < b] func = int f()",
                                      "0 Boost assertion failure! y.h:3 [a (why)] func = g"}));
}

TEST_F(Assertion, NeedsNoLogger) { EXPECT_QDX_STATUS(UseNull(), kQDXStatusFail); }

TEST_F(Assertion, ThrowsItsOwnExceptionOnRequest) {
  const TLogCapture log;
  Choose("throwboost");
  try {
    UseNull();
    FAIL() << "nothing was thrown";
  } catch (const TBoostAssertException& e) {
    EXPECT_EQ(log.Messages(), std::vector<std::string>{std::string("0 ") + e.what()});
  }
}

TEST_F(Assertion, ReportsASettingThatItDoesNotKnow) {
  for (const std::string setting : {"THROWBOOST", "", " trap"}) {
    Choose(setting.c_str());
    ::testing::internal::CaptureStderr();
    EXPECT_QDX_STATUS(UseNull(), kQDXStatusFail);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Invalid setting for QDX_BOOST_ASSERT '" + setting +
                  "'. Valid values are {throwqdx, throwboost, trap, exit}.\n");
  }
}

TEST_F(Assertion, ReturnsFromATrap) {
  Choose("trap");
  ::testing::internal::CaptureStderr();
  boost::assertion_failed("e", "f", "x", 1);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "\nBoost assertion failure! x:1 [e] func = f\n\nForcing segmentation fault.\n\n");
}

using AssertionDeathTest = Assertion;

TEST_F(AssertionDeathTest, EndsTheProcessOnRequest) {
  Choose("exit");
  EXPECT_EXIT(UseNull(), ::testing::ExitedWithCode(1),
              "\nBoost assertion failure! .*px != 0.* func = .*\n$");
}

TEST_F(AssertionDeathTest, LetsTheFailedOperationFault) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer takes the signal";
#endif
  Choose("trap");
  EXPECT_EXIT(UseNull(), ::testing::KilledBySignal(SIGSEGV), "Forcing segmentation fault.");
}

}  // namespace
}  // namespace NVORNQDX20
