// SPDX-License-Identifier: Apache-2.0
#include <cli/failure.h>

#include <new>

#include <gtest/gtest.h>
#include <boost/assert.hpp>

#include "support/log_capture.h"

namespace NVORNQDX20 {
namespace {

TEST(Try, TakesTheReasonWhereItIs) {
  const std::tuple<std::function<void()>, EQDXStatusCode, std::string> rows[] = {
      {[] { throw TExplainedException(kQDXStatusNotFound, "said"); }, kQDXStatusNotFound, "said"},
      {[] { throw TQDXException(kQDXStatusAccessDenied); }, kQDXStatusAccessDenied,
       "permission denied"},
      {[] {
         LogMessage(ILogger::kLogError, {"first"});
         LogMessage(ILogger::kLogError, {"last"});
         LogMessage(ILogger::kLogWarning, {"no error"});
         throw TQDXException(kQDXStatusAccessDenied);
       },
       kQDXStatusAccessDenied, "last"},
      {[] { boost::assertion_failed("a < b", "f", "x.cpp", 1); }, kQDXStatusFail,
       "Boost assertion failure! x.cpp:1 [a < b] func = f"},
      {[] { throw std::bad_alloc(); }, kQDXStatusOutOfMemory, "out of memory"},
      {[] { throw std::runtime_error("other"); }, kQDXStatusFail, "other"},
      {[] { throw 1; }, kQDXStatusFail, "it failed and gave no reason"}};
  // One from before the call is no reason, and the threshold does not matter.
  const TLogCapture log(static_cast<ILogger::EQDXLogSeverity>(-1));
  LogMessage(ILogger::kLogError, {"earlier"});
  for (const auto& [call, status, reason] : rows) {
    const auto failure = Try(call);
    ASSERT_TRUE(failure) << reason;
    EXPECT_EQ(failure->GetStatusCode(), status) << reason;
    EXPECT_EQ(failure->GetReason(), reason);
  }
  EXPECT_FALSE(Try([] {}));
  EXPECT_THROW((void)Try([] { FailOnUsage("x"); }), TCommandFailure);
}

TEST(WithoutName, CutsTheFirstOne) {
  const auto cut = [](const std::string& reason) {
    return WithoutName({kQDXStatusFail, reason}, "a.xml").GetReason();
  };
  EXPECT_EQ(cut("a.xml: line 3"), "line 3");
  EXPECT_EQ(cut("b/a.xml: line 3"), "b/a.xml: line 3");
}

}  // namespace
}  // namespace NVORNQDX20
