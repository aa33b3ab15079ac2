// SPDX-License-Identifier: Apache-2.0
/// The facts of one namespace, class by class.
#ifndef TOOLS_QDX_STORE_INPUT_CLASS_FACTS_H_
#define TOOLS_QDX_STORE_INPUT_CLASS_FACTS_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/missing_values.h>
#include <qdxmodel/names.h>
#include <qdxmodel/property_reader.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <qdxsnapshot/snapshot.h>

#include "document_facts.h"
#include "value_texts.h"

namespace NVORNQDX20::NStore {

/// Bounds what is made of a document.
class TFactsLimit {
 public:
  explicit TFactsLimit(std::size_t most) : fMost(most) {}

  /// Throws a TExplainedException if there are more than allowed.
  void Count();

 private:
  const std::size_t fMost;
  std::size_t fCount = 0;
};

class TNamespaceFacts {
 public:
  /// Adds to `facts`, which must outlive this object, as must the namespace and the limit.
  TNamespaceFacts(const ICIMNamespace& ns, const std::string& machine, TFactsLimit& limit,
                  TDocumentFacts& facts);

  /// Adds the instances of a class without its subclasses.
  void AddClass(const boost::shared_ptr<ICIMClass>& cimClass);
  /// Adds why values and instances are missing. Called after all classes were added.
  void AddReasons();

 private:
  /// What is known of a class that has facts.
  struct TClass {
    std::uint32_t fIndex;
    std::size_t fInstances = 0;
    std::vector<std::string> fObjects = {};
    /// The objects by the text of each of their keys, as reasons name them.
    std::multimap<std::string, std::string> fByKey = {};
  };
  /// What it takes to read the instances of a class.
  struct TReader;

  TClass& ClassNamed(const std::string& name);
  void AddInstance(const ICIMInstance& instance, TReader& reader);
  std::uint32_t AddObject(TReader& reader, const std::string& name, std::set<std::string> parts);
  void AddReason(TClass& its, const std::string& className, const std::string& key,
                 const std::string& property, const NDescribe::TReason& reason);
  const std::string& PartOf(const std::string& className);

  const ICIMNamespace& fNamespace;
  const std::string fName;
  const bool fHasArrayTypes;  // whether an array without the qualifier is a bag
  const NDescribe::TMissingReasons fReasons;
  const TValueTexts fTexts;
  TFactsLimit& fLimit;
  TDocumentFacts& fFacts;
  std::set<std::string, std::less<>> fExplained;  // classes with reasons, as they name them
  NModel::TNameMap<TClass> fClasses;
  NModel::TNameMap<std::string> fParts;  // of classes that were asked for
};

}  // namespace NVORNQDX20::NStore

#endif  // TOOLS_QDX_STORE_INPUT_CLASS_FACTS_H_
