// SPDX-License-Identifier: Apache-2.0
/// Status codes, the exceptions that carry them, and the assertion handler.
///
/// The library reports every failure by throwing a TQDXException; there is no other error channel.
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

/// The status codes. Values and order are part of the binary contract: a new code before the end
/// marker requires a new major version.
enum EQDXStatusCode : std::int32_t {
  kQDXStatusOK = 0,
  kQDXStatusNotImplemented,
  kQDXStatusUnknownClass,
  kQDXStatusFail,  ///< No other code fits; also a failed assertion.
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
  kQDXStatusInvalidOpSequence,  ///< The operation is not allowed in this state of the object.
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
  prqStatusEnd  ///< The number of codes; never used as a status.
};

/// The text of each code, at the index of its value: the enumerator's name.
/// Initialised when the library is loaded; constant.
extern QDXCORE_EXPORT const std::string kQDXErrorMessages[prqStatusEnd + 1];

/// A status code as an object, which converts implicitly from and to the enumeration.
class QDXCORE_EXPORT TQDXStatusCode {
 public:
  TQDXStatusCode(EQDXStatusCode code) noexcept : fCode(code) {}
  operator EQDXStatusCode() const noexcept { return fCode; }

  /// Returns the enumerator's name. REQUIRES: the code is one of EQDXStatusCode.
  const std::string& TranslateStatusCode() const noexcept;

 private:
  EQDXStatusCode fCode;
};

/// The exception with which the library and plug-ins report failures.
class QDXCORE_EXPORT TQDXException : public std::exception {
 public:
  explicit TQDXException(TQDXStatusCode code) noexcept : fCode(code) {}
  TQDXException(const TQDXException&) noexcept = default;
  TQDXException& operator=(const TQDXException&) noexcept = default;
  ~TQDXException() override;

  /// Returns the name of the code, for example "kQDXStatusNotFound". Valid while the library is
  /// loaded.
  const char* what() const noexcept override;

  TQDXStatusCode GetStatusCode() const noexcept { return fCode; }

 private:
  TQDXStatusCode fCode;
};

/// A TQDXException with a reason in words:
///
///   throw TExplainedException(kQDXStatusNotFound, "class CIM_Fan has no property \"Sped\"");
///
/// LogErrorAndThrow() in <qdxcore/logger.h> logs the reason as well. A plain throw does not log:
/// use it where "not found" may be an expected result for the caller.
class QDXCORE_EXPORT TExplainedException : public TQDXException {
 public:
  TExplainedException(TQDXStatusCode code, std::string reason)
      : TQDXException(code), fReason(std::move(reason)) {}
  TExplainedException(const TExplainedException&) = default;
  TExplainedException& operator=(const TExplainedException&) = default;
  ~TExplainedException() override;

  /// Returns the reason, one line of text. what() is still the name of the code.
  const std::string& GetReason() const noexcept { return fReason; }

 private:
  std::string fReason;
};

/// Thrown for a failed assertion if QDX_BOOST_ASSERT is "throwboost"; what() is the message.
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
/// error if there is a logger. Then the environment variable QDX_BOOST_ASSERT, read again at every
/// failure, selects the effect:
///   "throwqdx"   throws TQDXException with kQDXStatusFail; the default if the variable is not set
///   "throwboost" throws TBoostAssertException
///   "trap"       prints to standard error and returns: the failed operation continues and crashes
///   "exit"       prints to standard error and calls exit(1), so that exit handlers run
/// Any other value is reported to standard error and treated as "throwqdx".
QDXCORE_EXPORT void assertion_failed(char const* expr, char const* function, char const* file,
                                     long line);

/// The same for assertions with a text of their own, which follows the expression in the message.
QDXCORE_EXPORT void assertion_failed_msg(char const* expr, char const* msg, char const* function,
                                         char const* file, long line);

}  // namespace boost

#endif  // QDXCORE_STATUS_H_
