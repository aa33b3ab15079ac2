// SPDX-License-Identifier: Apache-2.0
/// What the records of an image are made of, and what its writer keeps of the classes.
#ifndef LIB_PLUGIN_HOST_IMAGE_OUTPUT_H_
#define LIB_PLUGIN_HOST_IMAGE_OUTPUT_H_

#include <qdxcore/value.h>
#include <qdxcore/values.h>
#include <qdxmodel/names.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace NVORNQDX20::NPluginHost {

void PutNumber(std::string& out, std::uint64_t number);
void PutText(std::string& out, std::string_view text);
/// REQUIRES: the value is a number or a date-time, and not null.
void PutScalar(std::string& out, const TCIMValue& value);

/// The content of a text or a number.
void PutPlain(std::string& out, const TPlainValue& value, TCIMValue::TCIMType type);

/// Returns whether the value is null, or a date-time that is.
bool IsNull(const TCIMValue& value);
/// Returns whether the content at this position is one, neither null nor left out.
bool IsPresent(const std::string& out, std::size_t content);

/// Values that are left out for one reason.
struct TLosses {
  const char* fOne;
  const char* fMany;
  std::size_t fCount = 0;
  std::string fFirst = {};

  void Add(const std::string& where) {
    if (fCount++ == 0) fFirst = where;
  }
};

struct TMember {
  std::string fName;
  TCIMValue::TCIMType fType;
  bool fIsKey;
};

/// A class that is written, or is being written while what it needs is written before it.
struct TWrittenClass {
  std::optional<std::uint64_t> fNumber = {};
  std::vector<TMember> fMembers = {};  // by position
  NModel::TNameMap<std::size_t> fPositions = {};

  void Add(const TMember& member) {
    const auto [found, isNew] = fPositions.emplace(member.fName, fMembers.size());
    if (isNew) fMembers.push_back(member);
  }
};

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_IMAGE_OUTPUT_H_
