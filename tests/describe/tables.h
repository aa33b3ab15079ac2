// SPDX-License-Identifier: Apache-2.0
/// Small tables, and the text of their instances.
#ifndef TESTS_DESCRIBE_TABLES_H_
#define TESTS_DESCRIBE_TABLES_H_

#include <qdxdescribe/missing_values.h>
#include <qdxdescribe/provider.h>
#include <qdxmodel/classes.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace NVORNQDX20::NDescribe {

using TNumber = TReading<std::uint32_t>;

inline TTable<TOnly> Table(const char* name, const TTable<TOnly>::TRows& rows) {
  return {name, "", kOnly, rows};
}

inline TRow<TOnly> Key(const char* value) { return {"Id", "", Constant(value), kKey}; }

inline std::string TextOf(const ICIMInstance& instance) {
  std::ostringstream text;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(*instance.GetClass({}))) {
    const auto property = instance.GetProperty(decl->GetName(), {});
    const TCIMValue& value = property->GetValue();
    text << decl->GetName() << '=' << (value.IsNull() ? "null" : value.ToString(10)) << ' ';
  }
  return text.str();
}

inline std::vector<std::string> InstancesOf(const ICIMNamespace& ns, const std::string& className) {
  std::vector<std::string> texts;
  for (const auto& each : NModel::InstancesOf(*ns.GetClass(className, {}))) {
    texts.push_back(TextOf(*each));
  }
  return texts;
}

}  // namespace NVORNQDX20::NDescribe

#endif  // TESTS_DESCRIBE_TABLES_H_
