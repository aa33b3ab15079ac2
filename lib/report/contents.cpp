// SPDX-License-Identifier: Apache-2.0
#include "contents.h"

#include <qdxdisplay/names.h>
#include <qdxdisplay/value_text.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <utility>

#include <qdxsnapshot/missing.h>

#include "escape.h"

namespace NVORNQDX20::NReport {
namespace {

std::string KeyOf(const std::string& ns, const std::string& path) {
  // Object paths begin with a class name, which has no colon; "root/other:Class.Key=1" leads out.
  const std::size_t colon = path.find(':');
  const bool leadsOut = colon < std::min(path.find('.'), path.find('"'));
  return leadsOut ? NModel::Folded(path.substr(0, colon)) + path.substr(colon)
                  : NModel::Folded(ns) + ":" + path;
}

bool IsReference(const TPropertySnapshot& property) {
  return property.fType.compare(0, 9, "reference") == 0;
}

/// Texts of which each is in the page once.
class TTexts {
 public:
  std::size_t Add(const std::string& text) {
    const auto [found, isNew] = fPositions.emplace(text, fTexts.size());
    if (isNew) fTexts.push_back(Visible(text));
    return found->second;
  }
  TJSON Take() { return std::move(fTexts); }

 private:
  TJSON fTexts = TJSON::array();
  std::unordered_map<std::string, std::size_t> fPositions;
};

/// Makes the JSON of the page.
class TContentsWriter {
 public:
  TContentsWriter(const std::vector<TReportedNamespace>& namespaces,
                  const TInstanceNumbers& numbers)
      : fNamespaces(namespaces), fNumbers(numbers) {}

  TJSON Write() {
    TJSON names = TJSON::array();
    TJSON classes = TJSON::array();
    TJSON missing = TJSON::array();
    for (const TReportedNamespace& ns : fNamespaces) {
      for (const TClassSnapshot& cimClass : ns.fClasses) {
        classes.push_back(Class(ns, names.size(), cimClass));
      }
      for (const auto& [where, reason] : ns.fReasons) {
        const auto& [cimClass, instance, property] = where;
        missing.push_back({names.size(), Visible(cimClass), Visible(instance), Visible(property),
                           fTexts.Add(reason), reason.IsError()});
      }
      names.push_back(Visible(ns.fName));
    }
    return {{"namespaces", std::move(names)},
            {"classes", std::move(classes)},
            {"missing", std::move(missing)},
            {"texts", fTexts.Take()}};
  }

 private:
  TJSON Class(const TReportedNamespace& ns, std::size_t nsNumber, const TClassSnapshot& cimClass) {
    TJSON json = {{"namespace", nsNumber},
                  {"name", Visible(cimClass.fName)},
                  {"label", Visible(ShortClassName(cimClass.fName))},
                  {"superclass", Visible(cimClass.fSuperclass)},
                  {"first", fNext},
                  {"count", cimClass.fInstances.size()}};
    fNext += cimClass.fInstances.size();
    const auto reason = ns.fReasons.find({cimClass.fName, "", ""});
    if (reason != ns.fReasons.end()) json["missing"] = fTexts.Add(reason->second);
    if (cimClass.fInstances.empty()) return json;
    std::vector<TInstanceReasons> reasons;
    reasons.reserve(cimClass.fInstances.size());
    for (const TInstanceSnapshot& instance : cimClass.fInstances) {
      reasons.emplace_back(ns.fReasons, cimClass, instance);
    }
    TJSON columns = TJSON::array();
    for (const std::size_t position : InOrderOfDeclaration(cimClass)) {
      columns.push_back(Column(ns, cimClass, position, reasons));
    }
    if (!IsAssociation(cimClass)) json["labels"] = Labels(cimClass);
    json["columns"] = std::move(columns);
    return json;
  }

  static bool IsAssociation(const TClassSnapshot& cimClass) {
    return std::any_of(
        cimClass.fProperties.begin(), cimClass.fProperties.end(),
        [](const TPropertySnapshot& each) { return each.fIsKey && IsReference(each); });
  }

  static TJSON Labels(const TClassSnapshot& cimClass) {
    TJSON labels = TJSON::array();
    for (const TInstanceSnapshot& instance : cimClass.fInstances) {
      labels.push_back(Visible(KeyLabel(instance.fPath)));
    }
    return labels;
  }

  TJSON Column(const TReportedNamespace& ns, const TClassSnapshot& cimClass, std::size_t position,
               const std::vector<TInstanceReasons>& reasons) {
    const TPropertySnapshot& property = cimClass.fProperties[position];
    TJSON column = {{"name", Visible(property.fName)}, {"type", property.fType}};
    if (property.fIsKey) column["key"] = true;
    if (!property.fDescription.empty()) column["about"] = fTexts.Add(property.fDescription);
    TJSON cells = TJSON::array();
    for (std::size_t i = 0; i < cimClass.fInstances.size(); ++i) {
      const NDescribe::TReason* const reason = reasons[i].Find(position);
      if (reason != nullptr) {
        cells.push_back({{"missing", fTexts.Add(*reason)}});
      } else {
        cells.push_back(Cell(ns, cimClass, cimClass.fInstances[i], position));
      }
    }
    const bool isSame = std::all_of(cells.begin(), cells.end(),
                                    [&cells](const TJSON& cell) { return cell == cells.front(); });
    if (isSame) {
      column["same"] = std::move(cells.front());
    } else {
      column["cells"] = std::move(cells);
    }
    return column;
  }

  TJSON Cell(const TReportedNamespace& ns, const TClassSnapshot& cimClass,
             const TInstanceSnapshot& instance, std::size_t position) const {
    const TPropertySnapshot& property = cimClass.fProperties[position];
    const TJSON& value = instance.fValues[position];
    if (value.is_null() || value.is_boolean()) return value;
    if (IsReference(property)) return Reference(ns, value);
    std::string shown = TextForPeople(cimClass, instance, position);
    // In a cell of its own, no text can be taken for another value but the empty one.
    if (value.is_string() && value != "" && shown == PlainText(value)) shown = value;
    const std::string text = Visible(shown);
    const std::optional<double> number = NumberOf(property, value);
    if (!number) return text;
    // Most numbers are their own text.
    if (value.is_number() && value.dump() == text) return value;
    return {{"text", text}, {"number", *number}};
  }

  /// The number to sort by. JSON has 64-bit integers as strings.
  static std::optional<double> NumberOf(const TPropertySnapshot& property, const TJSON& value) {
    if (value.is_number()) return value.get<double>();
    if (!value.is_string() || property.fType.find("int64") == std::string::npos) {
      return std::nullopt;
    }
    return std::strtod(value.get_ref<const std::string&>().c_str(), nullptr);
  }

  TJSON Reference(const TReportedNamespace& ns, const TJSON& value) const {
    if (value.is_array()) {
      TJSON list = TJSON::array();
      for (const TJSON& element : value) list.push_back(Reference(ns, element));
      return {{"list", std::move(list)}};
    }
    if (!value.is_string()) return value;
    const auto number = fNumbers.Find(ns.fName, value.get_ref<const std::string&>());
    if (number) return {{"instance", *number}};
    return Visible(value.get_ref<const std::string&>());
  }

  const std::vector<TReportedNamespace>& fNamespaces;
  const TInstanceNumbers& fNumbers;
  TTexts fTexts;
  std::size_t fNext = 0;
};

}  // namespace

TReportedNamespace ReadNamespace(const ICIMNamespace& ns) {
  TReportedNamespace read{ns.GetName({}), {}, NDescribe::ReadMissingReasons(ns)};
  TSnapshotReader(ns, kValues, read.fClasses).ReadAll();
  const auto isOfReasons = [](const TClassSnapshot& cimClass) {
    return NModel::EqualIgnoringCase(cimClass.fName, NDescribe::kMissingValueClass);
  };
  auto& classes = read.fClasses;
  classes.erase(std::remove_if(classes.begin(), classes.end(), isOfReasons), classes.end());
  SortSnapshot(classes);
  return read;
}

TInstanceNumbers::TInstanceNumbers(const std::vector<TReportedNamespace>& namespaces) {
  for (const TReportedNamespace& ns : namespaces) {
    for (const TClassSnapshot& cimClass : ns.fClasses) {
      for (const TInstanceSnapshot& instance : cimClass.fInstances) {
        fNumbers.emplace(KeyOf(ns.fName, instance.fPath), fCount++);
      }
    }
  }
}

std::optional<std::size_t> TInstanceNumbers::Find(const std::string& ns,
                                                  const std::string& path) const {
  const auto found = fNumbers.find(KeyOf(ns, path));
  if (found == fNumbers.end()) return std::nullopt;
  return found->second;
}

TJSON ContentsAsJSON(const std::vector<TReportedNamespace>& namespaces,
                     const TInstanceNumbers& numbers) {
  return TContentsWriter(namespaces, numbers).Write();
}

}  // namespace NVORNQDX20::NReport
