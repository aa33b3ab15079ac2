// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/status.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

TEST(Status, TranslatesEachCodeToItsOwnName) {
  // One from each end and those whose neighbours are easily confused.
  const struct {
    EQDXStatusCode fCode;
    int fValue;
    const char* fText;
  } codes[] = {
      {kQDXStatusOK, 0, "kQDXStatusOK"},
      {kQDXStatusErrorCollectingClass, 6, "kQDXStatusErrorCollectingClass"},
      {kQDXStatusInvalidSpecificationDocument, 9, "kQDXStatusInvalidSpecificationDocument"},
      {kQDXStatusInvalidDataCollectionDocument, 10, "kQDXStatusInvalidDataCollectionDocument"},
      {kQDXStatusDirectoryAlreadyExists, 12, "kQDXStatusDirectoryAlreadyExists"},
      {kQDXStatusTypeMismatch, 14, "kQDXStatusTypeMismatch"},
      {kQDXStatusInvalidDateTime, 21, "kQDXStatusInvalidDateTime"},
      {kQDXStatusInvalidReference, 24, "kQDXStatusInvalidReference"},
      {kQDXStatusNotSupported, 31, "kQDXStatusNotSupported"},
      {kQDXStatusValueIsNULL, 32, "kQDXStatusValueIsNULL"},
      {kQDXStatusInvalidFormat, 36, "kQDXStatusInvalidFormat"},
      {kQDXStatusRequiredContextMissing, 38, "kQDXStatusRequiredContextMissing"},
      {prqStatusEnd, 39, "prqStatusEnd"},
  };
  for (const auto& code : codes) {
    EXPECT_EQ(code.fCode, code.fValue) << code.fText;
    EXPECT_STREQ(TQDXException(code.fCode).what(), code.fText);
  }
  EXPECT_EQ(std::size(kQDXErrorMessages), 40U);
}

TEST(Status, KeepsTheTextWhenTheExceptionIsGone) {
  const char* text = TQDXException(kQDXStatusFail).what();
  EXPECT_EQ(text, TQDXException(kQDXStatusFail).what());
}

}  // namespace
}  // namespace NVORNQDX20
