// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/status.h>

#include <iterator>

namespace NVORNQDX20 {

const std::string kQDXErrorMessages[] = {
    "kQDXStatusOK",
    "kQDXStatusNotImplemented",
    "kQDXStatusUnknownClass",
    "kQDXStatusFail",
    "kQDXStatusOutOfMemory",
    "kQDXStatusNoMoreItems",
    "kQDXStatusErrorCollectingClass",
    "kQDXStatusInvalidClass",
    "kQDXStatusInvalidProperty",
    "kQDXStatusInvalidSpecificationDocument",
    "kQDXStatusInvalidDataCollectionDocument",
    "kQDXStatusFileSystemError",
    "kQDXStatusDirectoryAlreadyExists",
    "kQDXStatusNotArray",
    "kQDXStatusTypeMismatch",
    "kQDXStatusNotFound",
    "kQDXStatusAlreadyExists",
    "kQDXStatusInvalidOpSequence",
    "kQDXStatusInvalidInstance",
    "kQDXStatusCorruptedContainer",
    "kQDXStatusInvalidPlugin",
    "kQDXStatusInvalidDateTime",
    "kQDXStatusNotAssociation",
    "kQDXStatusNotReference",
    "kQDXStatusInvalidReference",
    "kQDXStatusInvalidCIMName",
    "kQDXStatusFileNotFound",
    "kQDXStatusAccessDenied",
    "kQDXStatusNotOverridable",
    "kQDXStatusInvalidGzipFile",
    "kQDXStatusCorruptGzipFile",
    "kQDXStatusNotSupported",
    "kQDXStatusValueIsNULL",
    "kQDXStatusINETNotFound",
    "kQDXStatusConnectionFailed",
    "kQDXStatusLibCurlFailure",
    "kQDXStatusInvalidFormat",
    "kQDXStatusContainerMismatch",
    "kQDXStatusRequiredContextMissing",
    "prqStatusEnd",  // spelled like the enumerator
};
static_assert(std::size(kQDXErrorMessages) == prqStatusEnd + 1);

const std::string& TQDXStatusCode::TranslateStatusCode() const noexcept {
  return kQDXErrorMessages[fCode];
}

TQDXException::~TQDXException() = default;

const char* TQDXException::what() const noexcept { return fCode.TranslateStatusCode().c_str(); }

TExplainedException::~TExplainedException() = default;

TBoostAssertException::~TBoostAssertException() = default;

const char* TBoostAssertException::what() const noexcept { return fMessage.c_str(); }

}  // namespace NVORNQDX20
