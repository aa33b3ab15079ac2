// SPDX-License-Identifier: Apache-2.0
/// The options that the plug-ins of this project and their callers share.
///
/// An option of the wrong type throws kQDXStatusTypeMismatch, a null one kQDXStatusValueIsNULL.
#ifndef QDXMODEL_OPTIONS_H_
#define QDXMODEL_OPTIONS_H_

#include <qdxcore/value.h>

#include <optional>
#include <string>
#include <vector>

namespace NVORNQDX20::NModel {

/// For a provider: the folder below which it reads all files (string).
inline constexpr const char* kRootOption = "root";
/// For a provider: the classes that the caller reads (array of strings).
inline constexpr const char* kClassesOption = "classes";
/// For a provider: the names of the parts that the caller wants, does not want, and wants besides
/// those that are described unless asked (arrays of strings).
inline constexpr const char* kOnlyOption = "only";
inline constexpr const char* kWithoutOption = "without";
inline constexpr const char* kWithOption = "with";
/// For a provider or a consumer: the document, "-" for standard input or output (string).
inline constexpr const char* kFileOption = "file";
/// For a consumer: whether another namespace for the same file follows (boolean).
inline constexpr const char* kMoreOption = "more";
/// For a consumer: whether old readers shall understand what it writes (boolean).
inline constexpr const char* kOldReadersOption = "oldreaders";

/// Returns "/" if the option is missing.
std::string RootOf(const TOptionsMap& options);
/// Returns nothing if the option is missing, which means all classes.
std::optional<std::vector<std::string>> ClassesOf(const TOptionsMap& options);

/// The caller's choice of parts.
class TPartChoice {
 public:
  explicit TPartChoice(const TOptionsMap& options);

  enum EVerdict {
    kChosen,
    kLeftOut,      ///< By an option.
    kNotAskedFor,  ///< No option says anything of a part that is described only on request.
  };
  EVerdict Of(const std::string& part, bool isOnRequest) const;

 private:
  std::optional<std::vector<std::string>> fOnly;
  std::vector<std::string> fWithout;
  std::vector<std::string> fWith;
};

/// Returns nothing if the option is missing.
std::optional<std::string> FileOf(const TOptionsMap& options);
/// Returns false if the option is missing.
bool HasMore(const TOptionsMap& options);
bool IsForOldReaders(const TOptionsMap& options);

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_OPTIONS_H_
