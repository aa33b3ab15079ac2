// SPDX-License-Identifier: Apache-2.0
/// Conditions that choose instances by their values: "FileSystemType=ext4".
#ifndef TOOLS_QDX_FORMAT_CONDITION_H_
#define TOOLS_QDX_FORMAT_CONDITION_H_

#include <optional>
#include <string>

#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

class TCondition {
 public:
  /// Reads a name, one of = != < <= > >= ~ and a value. Throws a TCommandFailure for another text.
  explicit TCondition(const std::string& text);

  const std::string& GetProperty() const { return fProperty; }

  /// Returns whether the instance matches; not if its class lacks the property. Texts are equal in
  /// any case, and equal to the bare value, the value as people read it, or the name of a number.
  /// "~" finds a part of one of these. Numbers are compared as such, in the unit that the condition
  /// names ("Size>100GB"), or else bare. A missing value equals nothing but an empty text, and is
  /// neither less nor greater. Of an array one element has to match, for "!=" each.
  /// REQUIRES: the instance has values. Throws a TCommandFailure if a number is compared with
  /// something else.
  bool Matches(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance) const;

 private:
  enum EOperator { kEqual, kNotEqual, kLess, kLessOrEqual, kGreater, kGreaterOrEqual, kContains };

  bool IsEqual(const TJSON& value, const TPropertySnapshot& property,
               const std::string& unit) const;
  bool Contains(const TJSON& value, const TPropertySnapshot& property) const;
  bool IsInOrder(const TJSON& value, const TPropertySnapshot& property,
                 const std::string& unit) const;
  bool MatchesElement(const TJSON& value, const TPropertySnapshot& property,
                      const std::string& unit) const;

  std::string fProperty;
  EOperator fOperator = kEqual;
  std::string fValue;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_FORMAT_CONDITION_H_
