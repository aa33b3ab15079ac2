// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/status.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

// In the order of their values. The text is the enumerator's own, as the compiler spells it.
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

TEST(Status, KeepsTheTextWhenTheExceptionIsGone) {
  const char* text = TQDXException(kQDXStatusFail).what();
  EXPECT_EQ(text, TQDXException(kQDXStatusFail).what());
}

}  // namespace
}  // namespace NVORNQDX20
