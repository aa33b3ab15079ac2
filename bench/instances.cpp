// SPDX-License-Identifier: Apache-2.0
// Instances with ten properties of mixed types, beside rows of a hash table of the C++ library.
#include <qdxcore/copy.h>
#include <qdxcore/reference.h>

#include "support/class_builder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "operation.h"

namespace NBench {
namespace {

using namespace NVORNQDX20;

const std::string kClass = "CIM_Sensor";
const std::array<std::string, 10> kNames = {"DeviceID", "SystemName", "Enabled", "State",
                                            "Reading",  "Operations", "Scale",   "Installed",
                                            "Levels",   "Bus"};
constexpr std::size_t kMostLookUps = 100000;

std::string DeviceOf(std::size_t number) { return "sensor-" + std::to_string(number); }

TCIMValue Bus(const TNamespace& ns) {
  TCIMReference bus(ns, {});
  bus.SetClassName("CIM_Bus");
  bus.AddKeyValue("Id", 7U);
  return TCIMValue(bus);
}

TCIMValue Levels(std::uint32_t last) {
  return TCIMValue(TCIMValue::TCIMType::kCIMTypeUint32, 0, {1U, 2U, last});
}

/// A namespace with the classes.
TNamespace MakeClasses() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_Bus", {{"Id", 0U}});
  AddClass(ns, kClass, {{kNames[0], ""}, {kNames[1], ""}},
           {{kNames[2], false},
            {kNames[3], static_cast<std::uint16_t>(0)},
            {kNames[4], 0},
            {kNames[5], 0UL},
            {kNames[6], 0.0},
            {kNames[7], TCIMDateTime("20040315143000.000000+060")},
            {kNames[8], Levels(0)},
            {kNames[9], NullReference(ns, "CIM_Bus")}});
  return ns;
}

/// As a provider does: no value is made twice.
void AddSensors(const TNamespace& ns, std::size_t count) {
  const TCIMValue bus = Bus(ns);
  const TCIMDateTime installed("20040315143000.000000+060");
  const auto sensors = ns->GetClass(kClass, {});
  for (std::size_t i = 0; i < count; ++i) {
    const auto low = static_cast<std::uint32_t>(i);
    const auto sensor = sensors->CreateInstance({});
    sensor->SetPropertyValue(kNames[0], DeviceOf(i), {});
    sensor->SetPropertyValue(kNames[1], "server.example", {});
    sensor->SetPropertyValue(kNames[2], true, {});
    sensor->SetPropertyValue(kNames[3], static_cast<std::uint16_t>(low), {});
    sensor->SetPropertyValue(kNames[4], static_cast<std::int32_t>(low), {});
    sensor->SetPropertyValue(kNames[5], static_cast<std::uint64_t>(i), {});
    sensor->SetPropertyValue(kNames[6], 0.5, {});
    sensor->SetPropertyValue(kNames[7], installed, {});
    sensor->SetPropertyValue(kNames[8], Levels(low), {});
    sensor->SetPropertyValue(kNames[9], bus, {});
    sensor->Commit({});
  }
}

/// Is made once, since that takes longer than what is measured.
const TNamespace& Sensors(std::size_t count) {
  static std::map<std::size_t, TNamespace> made;
  TNamespace& ns = made[count];
  if (!ns) {
    ns = MakeClasses();
    AddSensors(ns, count);
  }
  return ns;
}

using TPoint = std::array<std::uint16_t, 9>;
using TCell = std::variant<std::monostate, bool, std::uint16_t, std::int32_t, std::uint64_t, double,
                           std::string, TPoint, std::vector<std::uint32_t>>;
using TRow = std::array<TCell, 10>;
/// Rows by the texts of their keys.
using TRows = std::unordered_map<std::string, std::unique_ptr<TRow>>;

std::string KeyOf(std::size_t number) { return DeviceOf(number) + ",server.example"; }

void AddRows(TRows& rows, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto low = static_cast<std::uint32_t>(i);
    rows.emplace(KeyOf(i),
                 std::make_unique<TRow>(
                     TRow{DeviceOf(i), std::string("server.example"), true,
                          static_cast<std::uint16_t>(low), static_cast<std::int32_t>(low),
                          static_cast<std::uint64_t>(i), 0.5, TPoint{2004, 3, 15, 14, 30, 0, 0, 60},
                          std::vector{1U, 2U, low}, std::string("CIM_Bus.Id=7")}));
  }
}

const TRows& Rows(std::size_t count) {
  static std::map<std::size_t, TRows> made;
  TRows& rows = made[count];
  if (rows.empty()) AddRows(rows, count);
  return rows;
}

TPrepare Build(std::size_t count) {
  return [count] { return Repeat([ns = MakeClasses(), count] { AddSensors(ns, count); }); };
}

TPrepare BuildByHand(std::size_t count) {
  return [count] {
    return Repeat([rows = std::make_shared<TRows>(), count] { AddRows(*rows, count); });
  };
}

TPrepare Copy(std::size_t count) {
  return [count] {
    return Repeat([source = Sensors(count), target = MakeRepositoryNamespace("target")] {
      TCIMCopy::CopyClasses(source, target);
    });
  };
}

TPrepare CopyByHand(std::size_t count) {
  return [count] {
    return Repeat([&source = Rows(count), target = std::make_shared<TRows>()] {
      for (const auto& [key, row] : source) target->emplace(key, std::make_unique<TRow>(*row));
    });
  };
}

/// Numbers far from each other, so that the processor's cache is of no more use than elsewhere.
std::vector<std::size_t> SomeOf(std::size_t count) {
  std::vector<std::size_t> numbers(std::min(count, kMostLookUps));
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = i * 7368787 % count;
  return numbers;
}

TPrepare LookUp(std::size_t count) {
  return [count] {
    std::vector<std::string> paths;
    for (const std::size_t number : SomeOf(count)) {
      paths.push_back(kClass + ".DeviceID=\"" + DeviceOf(number) +
                      "\",SystemName=\"server.example\"");
    }
    return Repeat([ns = Sensors(count), paths, next = std::size_t{0}]() mutable {
      next = (next + 1) % paths.size();
      return TCIMReference(ns, paths[next], TOptionsMap()).GetCIMElement();
    });
  };
}

TPrepare LookUpByHand(std::size_t count) {
  return [count] {
    std::vector<std::string> keys;
    for (const std::size_t number : SomeOf(count)) keys.push_back(KeyOf(number));
    return Repeat([&rows = Rows(count), keys, next = std::size_t{0}]() mutable {
      next = (next + 1) % keys.size();
      return rows.find(std::string(keys[next]))->second.get();
    });
  };
}

TLoop ReadValues() {
  std::vector<boost::shared_ptr<ICIMInstance>> all;
  Sensors(1000)->GetClass(kClass, {})->EnumerateInstances(TAddToVectorCallback(all), false, {});
  return Repeat([all, next = std::size_t{0}]() mutable {
    next = (next + 1) % all.size();
    std::size_t nulls = 0;
    for (const std::string& name : kNames) {
      if (all[next]->GetProperty(name, {})->GetValue().IsNull()) ++nulls;
    }
    return nulls;
  });
}

TLoop ReadCells() {
  std::vector<const TRow*> all;
  all.reserve(1000);
  for (const auto& [key, row] : Rows(1000)) all.push_back(row.get());
  return Repeat([all, next = std::size_t{0}]() mutable {
    next = (next + 1) % all.size();
    std::size_t nulls = 0;
    for (const TCell& cell : *all[next]) {
      TCell copy(cell);
      Keep(copy);
      if (copy.index() == 0) ++nulls;
    }
    return nulls;
  });
}

/// The aims of copying are halves of what it took at first, so they differ.
void AddSize(TOperations& all, std::size_t count, const std::string& name, double copyAim) {
  for (const bool isCopy : {false, true}) {
    TOperation& filling = all.emplace_back();
    filling.fName = (isCopy ? "copy an instance, " : "build an instance, ") + name;
    filling.fOurs = isCopy ? Copy(count) : Build(count);
    filling.fLimitName = "std containers";
    filling.fLimit = isCopy ? CopyByHand(count) : BuildByHand(count);
    filling.fAim = isCopy ? copyAim : 2;
    filling.fInstances = count;
    filling.fIsPreparedEachTime = true;
  }
  all.push_back(
      {"look up by path, " + name, LookUp(count), "std::unordered_map", LookUpByHand(count), 2});
}

}  // namespace

TOperations InstanceOperations(bool isCounted) {
  TOperations all;
  AddSize(all, 1000, "1e3", 4.7);
  if (isCounted) {
    AddSize(all, 10000, "1e4", 0);
  } else {
    AddSize(all, 100000, "1e5", 3.0);
    AddSize(all, 1000000, "1e6", 2.3);
  }
  all.push_back({"read ten values", ReadValues, "std::variant", ReadCells, 12});

  TOperation& memory = all.emplace_back();
  memory.fName = "bytes of an instance";
  memory.fInstances = isCounted ? 1000 : 100000;
  memory.fOurs = Build(memory.fInstances);
  memory.fLimitName = "std containers";
  memory.fLimit = BuildByHand(memory.fInstances);
  memory.fAim = 1.57;
  memory.fIsPreparedEachTime = true;
  memory.fIsMemory = true;
  memory.fCountedRuns = 0;
  return all;
}

}  // namespace NBench
