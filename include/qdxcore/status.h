// SPDX-License-Identifier: Apache-2.0
/// Status codes, the one exception that carries them, and the assertion handler.
///
/// Every failure of the library is a thrown TQDXException; there is no other error channel.
///
///   try {
///     namespaceToRead->GetClass("CIM_Fan", {});
///   } catch (const TQDXException& e) {
///     if (e.GetStatusCode() == kQDXStatusNotFound) ...;  // e.what() is "kQDXStatusNotFound"
///   }
#ifndef QDXCORE_STATUS_H_
#define QDXCORE_STATUS_H_

#include <qdxcore/config.h>

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace NVORNQDX20 {

/// The codes. Values and order are part of the binary contract; append nothing before the end
/// marker without a new major version.
enum EQDXStatusCode : std::int32_t {
  kQDXStatusOK = 0,
  kQDXStatusNotImplemented,
  kQDXStatusUnknownClass,
  kQDXStatusFail,  ///< No closer code fits; also a failed internal assertion.
  kQDXStatusOutOfMemory,
  kQDXStatusNoMoreItems,
  kQDXStatusErrorCollectingClass,
  kQDXStatusInvalidClass,
  kQDXStatusInvalidProperty,
  kQDXStatusInvalidSpecificationDocument,
  kQDXStatusInvalidDataCollectionDocument,
  kQDXStatusFileSystemError,
  kQDXStatusDirectoryAlreadyExists,
  kQDXStatusNotArray,
  kQDXStatusTypeMismatch,
  kQDXStatusNotFound,
  kQDXStatusAlreadyExists,
  kQDXStatusInvalidOpSequence,  ///< The operation is right, but not now: see the class's rules.
  kQDXStatusInvalidInstance,
  kQDXStatusCorruptedContainer,
  kQDXStatusInvalidPlugin,
  kQDXStatusInvalidDateTime,
  kQDXStatusNotAssociation,
  kQDXStatusNotReference,
  kQDXStatusInvalidReference,
  kQDXStatusInvalidCIMName,
  kQDXStatusFileNotFound,
  kQDXStatusAccessDenied,
  kQDXStatusNotOverridable,
  kQDXStatusInvalidGzipFile,
  kQDXStatusCorruptGzipFile,
  kQDXStatusNotSupported,
  kQDXStatusValueIsNULL,
  kQDXStatusINETNotFound,
  kQDXStatusConnectionFailed,
  kQDXStatusLibCurlFailure,
  kQDXStatusInvalidFormat,
  kQDXStatusContainerMismatch,
  kQDXStatusRequiredContextMissing,
  prqStatusEnd  ///< How many codes there are; never the status of anything.
};

/// The text of each code, its enumerator's own name, at the index of its value.
/// Filled when the library is loaded, never changed.
extern QDXCORE_EXPORT const std::string kQDXErrorMessages[prqStatusEnd + 1];

/// A status code as a value: made from the enumeration implicitly, and back.
class QDXCORE_EXPORT TQDXStatusCode {
 public:
  TQDXStatusCode(EQDXStatusCode code) noexcept : fCode(code) {}
  operator EQDXStatusCode() const noexcept { return fCode; }

  /// The enumerator's name. Not range-checked: the code must be one of EQDXStatusCode.
  const std::string& TranslateStatusCode() const noexcept;

 private:
  EQDXStatusCode fCode;
};

/// The exception of the library, and the one that plug-ins report their failures with.
class QDXCORE_EXPORT TQDXException : public std::exception {
 public:
  explicit TQDXException(TQDXStatusCode code) noexcept : fCode(code) {}
  TQDXException(const TQDXException&) noexcept = default;
  TQDXException& operator=(const TQDXException&) noexcept = default;
  ~TQDXException() override;

  /// The name of the code, for example "kQDXStatusNotFound"; valid as long as the library is.
  const char* what() const noexcept override;

  TQDXStatusCode GetStatusCode() const noexcept { return fCode; }

 private:
  TQDXStatusCode fCode;
};

/// One that says what it is about, where the code alone would leave its reader guessing:
///
///   throw TExplainedException(kQDXStatusNotFound, "class CIM_Fan has no property \"Sped\"");
///
/// LogErrorAndThrow() in <qdxcore/logger.h> logs the reason as well. A plain throw, which logs
/// nothing, is for who cannot know whether it is a failure or just the answer to a question.
class QDXCORE_EXPORT TExplainedException : public TQDXException {
 public:
  TExplainedException(TQDXStatusCode code, std::string reason)
      : TQDXException(code), fReason(std::move(reason)) {}
  TExplainedException(const TExplainedException&) = default;
  TExplainedException& operator=(const TExplainedException&) = default;
  ~TExplainedException() override;

  /// In one line; what() is the name of the code, as always.
  const std::string& GetReason() const noexcept { return fReason; }

 private:
  std::string fReason;
};

/// Thrown for a failed assertion when QDX_BOOST_ASSERT is "throwboost"; what() is the message.
class QDXCORE_EXPORT TBoostAssertException : public std::exception {
 public:
  explicit TBoostAssertException(const std::string& message) : fMessage(message) {}
  TBoostAssertException(const TBoostAssertException&) = default;
  TBoostAssertException& operator=(const TBoostAssertException&) = default;
  ~TBoostAssertException() override;

  const char* what() const noexcept override;

 private:
  std::string fMessage;
};

}  // namespace NVORNQDX20

namespace boost {

/// Boost calls this when an assertion fails, for example when a null shared_ptr is dereferenced.
///
/// The message is "Boost assertion failure! FILE:LINE [EXPR] func = FUNCTION"; it is logged as an
/// error if there is a logger. Then the environment variable QDX_BOOST_ASSERT, read anew at every
/// failure, decides:
///   "throwqdx"   throw TQDXException with kQDXStatusFail; also when the variable is not set
///   "throwboost" throw TBoostAssertException
///   "trap"       report on standard error and return: the failed operation goes on and crashes
///   "exit"       report on standard error and exit(1), so that exit handlers run
/// Anything else is reported on standard error and treated as "throwqdx".
QDXCORE_EXPORT void assertion_failed(char const* expr, char const* function, char const* file,
                                     long line);

/// The same for assertions that carry a text of their own; the text follows the expression.
QDXCORE_EXPORT void assertion_failed_msg(char const* expr, char const* msg, char const* function,
                                         char const* file, long line);

}  // namespace boost

#endif  // QDXCORE_STATUS_H_
