// SPDX-License-Identifier: Apache-2.0
/// The contents of namespaces in a form, written class by class: a whole server takes ten times the
/// memory as plain data.
#ifndef TOOLS_QDX_FORMAT_CONTENTS_FORMAT_H_
#define TOOLS_QDX_FORMAT_CONTENTS_FORMAT_H_

#include <qdxdescribe/missing_values.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <qdxsnapshot/record.h>
#include <qdxsnapshot/snapshot.h>

namespace NVORNQDX20 {

/// What a text for people leaves out, so that its last line can say so.
struct TOmitted {
  std::size_t fKeys = 0;
  std::size_t fMissing = 0;       ///< Values.
  std::size_t fEmpty = 0;         ///< Texts and arrays.
  std::size_t fAssociations = 0;  ///< Instances.
  std::size_t fExplanations = 0;
  std::size_t fEmptyClasses = 0;
  std::size_t fColumns = 0;

  /// Returns one line, with the option that shows it all; empty if nothing is left out.
  std::string Line() const;
};

struct TContentsStyle {
  EDepth fDepth = kValues;
  std::vector<std::string> fProperties;  ///< The only ones to show, in this order; empty for all.
  bool fIsRaw = false;                   ///< Values without units and names.
  bool fShowsAll = false;                ///< Also keys and whole object paths.
  bool fShowsMissing = true;  ///< Also values that are missing, with the reasons, and empty ones.
};

struct TShownClass {
  const TClassSnapshot& fClass;  ///< Without instances.
  const NDescribe::TMissingReasons& fReasons;
  std::size_t fCount;   ///< Of the instances that are shown.
  std::string fReason;  ///< Why instances are missing; empty if none is, or without a reason.
};

/// A form. All operations throw what WriteOutput() throws.
class IContentsFormat {
 public:
  virtual ~IContentsFormat();
  /// `provider` is empty for a document.
  virtual void BeginNamespace(const std::string& name, const std::string& provider) = 0;
  /// The class lives until EndClass().
  virtual void BeginClass(const TShownClass& cimClass) = 0;
  /// May be called several times for a class. Not called for less depth than that of instances.
  virtual void AddInstances(const std::vector<TInstanceSnapshot>& instances) = 0;
  virtual void EndClass() = 0;
  virtual void EndNamespace() = 0;
  virtual void End(const TOmitted& omitted) = 0;
};

/// `omitted` is where what the form leaves out is counted; it must outlive the form.
std::unique_ptr<IContentsFormat> MakeTextFormat(const TContentsStyle& style, TOmitted& omitted);
std::unique_ptr<IContentsFormat> MakeTableFormat(const TContentsStyle& style, TOmitted& omitted);
std::unique_ptr<IContentsFormat> MakeJSONFormat(const TContentsStyle& style);
/// REQUIRES: the depth is that of values.
std::unique_ptr<IContentsFormat> MakeJSONLinesFormat(const TContentsStyle& style,
                                                     const TCollectionRecord& record);
/// One table with a line of names: those of the style, or else "Class" and the names of
/// `properties`.
std::unique_ptr<IContentsFormat> MakeCSVFormat(const TContentsStyle& style,
                                               const std::vector<std::string>& properties);

/// Returns the indexes of the properties to show: those that the style names, in its order, or else
/// all in the order of the class.
std::vector<std::size_t> PropertiesToShow(const TClassSnapshot& cimClass,
                                          const TContentsStyle& style);

/// The same for programs: without the style's order, by name.
std::vector<std::size_t> ColumnsForPrograms(const TClassSnapshot& cimClass,
                                            const TContentsStyle& style);

/// Returns "CLASS  (2 instances)", or "(1 of 2 instances)" if not all are shown.
std::string CountedName(const TShownClass& cimClass);

/// Returns the value as the style has it.
std::string ShownText(const TClassSnapshot& cimClass, const TInstanceSnapshot& instance,
                      std::size_t property, const TContentsStyle& style);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_FORMAT_CONTENTS_FORMAT_H_
