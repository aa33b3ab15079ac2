// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/status.h>

#include <qdxcore/interfaces.h>

#include "support/expect_status.h"
#include "support/log_capture.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <unistd.h>

using namespace NVORNQDX20;

namespace {

// In the order of their values, with the enumerator's own text.
// clang-format off
#define CODE(name) {kQDXStatus##name, "kQDXStatus" #name}
const struct {
  EQDXStatusCode fCode;
  const char* fText;
} kCodes[] = {
    CODE(OK), CODE(NotImplemented), CODE(UnknownClass), CODE(Fail), CODE(OutOfMemory),
    CODE(NoMoreItems), CODE(ErrorCollectingClass), CODE(InvalidClass), CODE(InvalidProperty),
    CODE(InvalidSpecificationDocument), CODE(InvalidDataCollectionDocument), CODE(FileSystemError),
    CODE(DirectoryAlreadyExists), CODE(NotArray), CODE(TypeMismatch), CODE(NotFound),
    CODE(AlreadyExists), CODE(InvalidOpSequence), CODE(InvalidInstance), CODE(CorruptedContainer),
    CODE(InvalidPlugin), CODE(InvalidDateTime), CODE(NotAssociation), CODE(NotReference),
    CODE(InvalidReference), CODE(InvalidCIMName), CODE(FileNotFound), CODE(AccessDenied),
    CODE(NotOverridable), CODE(InvalidGzipFile), CODE(CorruptGzipFile), CODE(NotSupported),
    CODE(ValueIsNULL), CODE(INETNotFound), CODE(ConnectionFailed), CODE(LibCurlFailure),
    CODE(InvalidFormat), CODE(ContainerMismatch), CODE(RequiredContextMissing),
    {prqStatusEnd, "prqStatusEnd"}};
// clang-format on

TEST(Status, TranslatesEachCodeToItsOwnName) {
  ASSERT_EQ(std::size(kQDXErrorMessages), std::size(kCodes));
  for (std::size_t value = 0; value < std::size(kCodes); ++value) {
    EXPECT_EQ(kCodes[value].fCode, static_cast<int>(value)) << kCodes[value].fText;
    EXPECT_STREQ(TQDXException(kCodes[value].fCode).what(), kCodes[value].fText);
  }
}

class Assertion : public ::testing::Test {
 protected:
  void TearDown() override { ::unsetenv("QDX_BOOST_ASSERT"); }
  static void Choose(const char* setting) { ::setenv("QDX_BOOST_ASSERT", setting, 1); }
  static void UseNull() {
    const boost::shared_ptr<ICIMNamespace> null;
    null->GetClass("A", TOptionsMap());
  }
};

TEST_F(Assertion, ThrowsAndLogsExpressionPlaceAndFunction) {
  EXPECT_QDX_STATUS(UseNull(), kQDXStatusFail);  // needs no logger
  const TLogCapture log;
  EXPECT_QDX_STATUS(boost::assertion_failed("a < b", "int f()", "x.cpp", 12), kQDXStatusFail);
  Choose("throwboost");
  EXPECT_THROW(UseNull(), TBoostAssertException);
  EXPECT_EQ(StatusThrownBy([] { boost::assertion_failed_msg("a", "why", "g", "y.h", 3); }),
            "another exception: Boost assertion failure! y.h:3 [a (why)] func = g");
  ASSERT_EQ(log.Messages().size(), 3U);
  EXPECT_EQ(log.Messages()[0], "0 Boost assertion failure! x.cpp:12 [a < b] func = int f()");
}

TEST_F(Assertion, ReportsASettingThatItDoesNotKnow) {
  for (const char* setting : {"THROWBOOST", "", " trap"}) {
    Choose(setting);
    ::testing::internal::CaptureStderr();
    EXPECT_QDX_STATUS(UseNull(), kQDXStatusFail);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              std::string("Invalid setting for QDX_BOOST_ASSERT '") + setting +
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
  const auto fail = [] {
    std::atexit([] { std::cerr << "handled"; });
    UseNull();
  };
  EXPECT_EXIT(fail(), ::testing::ExitedWithCode(1),
              "\nBoost assertion failure! .*px != 0.* func = .*\nhandled$");
}

TEST_F(AssertionDeathTest, ReportsBeforeTheFaultOfATrap) {
  Choose("trap");
  const auto fail = [] {
    static char buffer[1024];
    std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
    boost::assertion_failed("e", "f", "x", 1);
    ::_exit(0);  // as the fault: what is in a buffer is lost
  };
  EXPECT_EXIT(fail(), ::testing::ExitedWithCode(0), "Forcing segmentation fault.\n\n$");
}

}  // namespace
