// SPDX-License-Identifier: Apache-2.0
#include "facts.h"

#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxdescribe/numbers.h>
#include <qdxmodel/classes.h>

#include <limits>
#include <type_traits>
#include <utility>

namespace NVORNQDX20::NSummary {
namespace {

template <typename T, typename TFrom>
std::optional<T> Converted(TFrom from) {
  constexpr bool isReal = std::is_floating_point_v<TFrom>;
  if constexpr (std::is_same_v<TFrom, bool> || (isReal && !std::is_floating_point_v<T>)) {
    return std::nullopt;
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(from);
  } else {
    // All integers of CIM fit into one of these two.
    if constexpr (std::is_signed_v<TFrom> && std::is_unsigned_v<T>) {
      if (from < 0) return std::nullopt;
    } else if constexpr (std::is_unsigned_v<TFrom> && std::is_signed_v<T>) {
      if (from > static_cast<std::make_unsigned_t<T>>(std::numeric_limits<T>::max())) {
        return std::nullopt;
      }
    }
    return static_cast<T>(from);
  }
}

boost::shared_ptr<ICIMClass> FindClass(const ICIMNamespace& ns, const char* name) {
  try {
    return ns.GetClass(name, {});
  } catch (const TQDXException& failure) {
    if (failure.GetStatusCode() != kQDXStatusNotFound) throw;
    return nullptr;
  }
}

}  // namespace

template <typename T>
std::optional<T> TFacts::NumberOf(const std::string& property) const {
  std::optional<T> number;
  Visit(property, [&number](const TCIMValue& value) {
    if (NModel::IsArray(value.GetType())) return;
    NModel::VisitScalar(value, [&number](const auto& native) {
      using TNative = std::decay_t<decltype(native)>;
      if constexpr (std::is_arithmetic_v<TNative>) number = Converted<T>(native);
    });
  });
  return number;
}

std::string TFacts::Text(const std::string& property) const {
  std::string text;
  Visit(property, [&text](const TCIMValue& value) {
    if (!NModel::IsArray(value.GetType())) text = value.ToString(10);
  });
  return text;
}

TNumber TFacts::Number(const std::string& property) const {
  return NumberOf<std::uint64_t>(property);
}

std::optional<std::int64_t> TFacts::Integer(const std::string& property) const {
  return NumberOf<std::int64_t>(property);
}

std::optional<double> TFacts::Real(const std::string& property) const {
  return NumberOf<double>(property);
}

std::optional<bool> TFacts::Flag(const std::string& property) const {
  std::optional<bool> flag;
  Visit(property, [&flag](const TCIMValue& value) {
    if (value.GetType() == TCIMValue::TCIMType::kCIMTypeBoolean) flag = static_cast<bool>(value);
  });
  return flag;
}

std::vector<std::string> TFacts::Texts(const std::string& property) const {
  std::vector<std::string> texts;
  Visit(property, [&texts](const TCIMValue& value) {
    if (!NModel::IsArray(value.GetType())) return;
    const std::vector<TCIMValue>& elements = value;
    for (const TCIMValue& element : elements) {
      if (!element.IsNull()) texts.push_back(element.ToString(10));
    }
  });
  return texts;
}

std::string TFacts::DeviceIn(const std::string& reference) const {
  std::string device;
  Visit(reference, [&device](const TCIMValue& value) {
    if (value.GetType() != TCIMValue::TCIMType::kCIMTypeReference) return;
    const TCIMReference path = value;
    path.EnumerateKeyBindings([&device](const std::pair<std::string, TCIMValue>& binding) {
      if (!NModel::EqualIgnoringCase(binding.first, "DeviceID")) return true;
      device = binding.second.ToString(10);
      return false;
    });
  });
  return device;
}

void ForEach(const ICIMNamespace& ns, const char* className, const TVisitFacts& visit) {
  const auto root = FindClass(ns, className);
  if (!root) return;
  for (const auto& cimClass : NModel::WithSubclasses(root)) {
    NModel::TPropertyReader reader(*cimClass);
    TFacts::TIndexes indexes;
    for (const auto& property : reader.GetProperties()) {
      indexes.emplace(property.fName, indexes.size());
    }
    NModel::ForEachInstance(*cimClass, [&](const ICIMInstance& instance) {
      reader.Begin(instance);
      visit(TFacts(reader, indexes));
    });
  }
}

TNumber Times(const TNumber& number, std::uint64_t factor) {
  if (!number || *number > std::numeric_limits<std::uint64_t>::max() / factor) return std::nullopt;
  return *number * factor;
}

}  // namespace NVORNQDX20::NSummary
