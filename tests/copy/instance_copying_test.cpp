// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/instance_copying.h>

#include <qdxcore/copy.h>

#include "support/class_builder.h"
#include "support/faulty_provider.h"
#include "support/log_capture.h"

#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

/// How the classes of a target differ from those of the source.
enum EVariant {
  kSame,
  kOtherCase,  ///< In the names of one class and its key.
  kMore,       ///< A property more, at the end.
  kOtherOrder,
  kOtherType,
  kMissing,
  kAbstract,
  kOtherKey,  ///< Of a class that is referred to.
  kOtherTarget
};

/// "All" has a property of each type and of arrays of it, "Sub" overrides some.
TNamespace MakeClasses(EVariant variant) {
  const TNamespace ns = MakeNamespace();
  const TCIMValue id = variant == kOtherKey ? TCIMValue(std::uint8_t{0}) : TCIMValue(0U);
  AddClass(ns, variant == kOtherCase ? "T_DISK" : "T_Disk",
           {{variant == kOtherCase ? "name" : "Name", ""}, {"Id", id}});
  AddClass(ns, "T_Link", {{"Disk", NullReference(ns, "T_Disk")}}, {{"Note", kNoText}});
  AddClass(ns, "T_Stranger", {{"Name", ""}, {"Id", 0U}});
  TProperties others;
  for (unsigned type = TCIMType::kCIMTypeBoolean; type <= TCIMType::kCIMTypeReference; ++type) {
    if (type == TCIMType::kCIMTypeChar) continue;
    TCIMValue scalar(type, 0U);
    if (scalar.IsReference()) {
      scalar = NullReference(ns, variant == kOtherTarget ? "T_Stranger" : "T_Link");
    }
    others.emplace_back("Scalar" + std::to_string(type), scalar);
    others.emplace_back("Array" + std::to_string(type),
                        TCIMValue(type | TCIMType::kCIMTypeArray, 0U));
  }
  if (variant == kOtherOrder) std::swap(others[3], others[7]);
  if (variant == kOtherType) others[5].second = TCIMValue(0.5F);
  if (variant == kMissing) others.erase(others.begin() + 9);
  if (variant == kMore) others.emplace_back("More", 7U);
  AddClass(ns, "T_All", {{"Key", std::uint64_t{0}}}, others, nullptr, false, variant == kAbstract);
  const auto sub = ns->CreateClass("T_Sub", ns->GetClass("T_All", {}), {});
  for (const char* name : {"scalar6", "Scalar13"}) {
    TCIMValue value = name[0] == 's' ? TCIMValue(66U) : TCIMValue("overridden");
    if (variant == kOtherType && name[0] == 's') continue;
    Qualify(ns, sub->CreatePropertyDecl(name, value, {}), "Override", name)->Commit();
  }
  sub->Commit({});
  return ns;
}

class TRandom {
 public:
  TRandom(unsigned seed, const TNamespace& ns, const TNamespace& other)
      : fDice(seed), fNamespace(ns), fOther(other) {}

  unsigned Below(unsigned end) { return static_cast<unsigned>(fDice() % end); }

  TCIMValue Value(TCIMType type) {
    const TCIMType element = type & ~static_cast<unsigned>(TCIMType::kCIMTypeArray);
    if (type == element) return Scalar(type);
    if (Below(5) == 0) return TCIMValue(element, Below(3) + 1);
    std::vector<TCIMValue> elements;
    while (Below(4) != 0) elements.push_back(Scalar(element));
    return TCIMValue(element, Below(3), elements);
  }

 private:
  template <typename T>
  TCIMValue Number() {
    const T some[] = {T{0}, T{1}, std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest(),
                      static_cast<T>(Below(200))};
    return TCIMValue(some[Below(5)]);
  }

  TCIMValue Scalar(TCIMType type) {
    if (Below(6) == 0) {
      if (type != TCIMType::kCIMTypeReference || Below(2) == 0) return TCIMValue(type, 0U);
      return NullReference(Below(2) == 0 ? fOther : fNamespace, "T_Link");
    }
    switch (static_cast<TCIMType::ECIMType>(type)) {
      case TCIMType::kCIMTypeBoolean:
        return TCIMValue(Below(2) == 0);
      case TCIMType::kCIMTypeUint8:
        return Number<unsigned char>();
      case TCIMType::kCIMTypeSint8:
        return Number<signed char>();
      case TCIMType::kCIMTypeUint16:
        return Number<unsigned short>();
      case TCIMType::kCIMTypeSint16:
        return Number<short>();
      case TCIMType::kCIMTypeUint32:
        return Number<unsigned int>();
      case TCIMType::kCIMTypeSint32:
        return Number<int>();
      case TCIMType::kCIMTypeUint64:
        return Number<unsigned long>();
      case TCIMType::kCIMTypeSint64:
        return Number<long>();
      case TCIMType::kCIMTypeReal32:
        return Number<float>();
      case TCIMType::kCIMTypeReal64:
        return Number<double>();
      case TCIMType::kCIMTypeDateTime: {
        const TCIMDateTime some[] = {TCIMDateTime(), TCIMDateTime(123456789, 23, 0, 1, 999999),
                                     TCIMDateTime(2020, 2, 29, 23, 59, 59, 123456, -60)};
        return TCIMValue(some[Below(3)]);
      }
      case TCIMType::kCIMTypeReference:
        return Reference();
      default:
        return TCIMValue(std::string(Below(3) == 0 ? Below(40) : 13 + Below(3), 'x') + '\0' + "\"");
    }
  }

  /// To a class or an instance, of this namespace or the other one, with or without options.
  TCIMValue Reference() {
    const TNamespace& ns = Below(4) == 0 ? fOther : fNamespace;
    TOptionsMap options;
    if (Below(6) == 0) options.emplace("option", true);
    TCIMReference disk(ns, options);
    disk.SetClassName("T_Disk");
    if (Below(5) != 0) disk.AddKeyValue("Id", Number<unsigned int>());
    if (Below(5) != 0) disk.AddKeyValue("Name", TCIMValue(std::string(Below(30), 'n')));
    if (Below(3) == 0) return TCIMValue(disk);
    TCIMReference link(fNamespace, {});
    link.SetClassName("T_Link");
    link.AddKeyValue("Disk", TCIMValue(disk));
    return TCIMValue(link);
  }

  std::mt19937 fDice;
  const TNamespace fNamespace;
  const TNamespace fOther;
};

/// All that a caller can find out about a value of the namespace.
std::string Text(const TNamespace& ns, const TCIMValue& value) {
  std::string text =
      std::to_string(value.GetType()) + "/" + std::to_string(value.GetMaxArraySize());
  const auto classText = [&](const boost::shared_ptr<ICIMClass>& cimClass) {
    if (!cimClass) return std::string(" no class");
    const std::string& name = cimClass->GetName({});
    return " " + name + (cimClass == ns->GetClass(name, {}) ? " of it" : " of another");
  };
  if (value.IsReference()) text += classText(value.GetReferencedClass());
  if (value.IsNull()) return text + " null";
  if (value.IsArray()) {
    const std::vector<TCIMValue>& elements = value;
    for (const TCIMValue& each : elements) text += "\n    " + Text(ns, each);
  } else if (const TCIMReference* const reference = value.FindReference()) {
    text +=
        classText(reference->GetClass()) + (reference->GetNamespace() == ns ? " in" : " not in");
    text += " " + std::to_string(reference->GetBody()->GetOptions().size());
    for (const auto& [name, key] : reference->GetBody()->GetKeyBindings()) {
      text += "\n    " + name + "=" + Text(ns, key);
    }
  } else if (value.GetType() == TCIMType::kCIMTypeDateTime &&
             static_cast<TCIMDateTime>(value).IsNull()) {
    text += " a date-time without content";
  } else {
    text += " " + value.ToString(10);
  }
  return text;
}

std::string Text(const TNamespace& ns) {
  std::string text;
  for (const char* name : {"T_Disk", "T_All", "T_Sub"}) {
    ns->GetClass(name, {})->EnumerateInstances(
        [&](const auto& instance) {
          text += std::string(name) + "\n";
          instance->EnumerateProperties(
              [&](const auto& property) {
                text += "  " + property->GetDecl()->GetName() + ": ";
                text += Text(ns, property->GetValue()) + "\n";
                return true;
              },
              {});
          return true;
        },
        false, {});
  }
  return text;
}

/// What `copy` throws and logs.
template <typename TCopy>
std::string Outcome(const TCopy& copy) {
  const TLogCapture log;
  std::string text;
  try {
    text = copy() == nullptr ? "null" : "copied";
  } catch (const TExplainedException& e) {
    text = e.GetReason();
  } catch (const TQDXException& e) {
    text = e.what();
  }
  for (const std::string& line : log.Messages()) text += "\n" + line;
  return text;
}

/// Instances with random values, or none, of the same kinds for each seed.
TNamespace MakeSource(const TNamespace& other, bool isRead) {
  const TNamespace source = MakeClasses(kSame);
  TRandom random(17, source, other);
  source->GetClass("T_All", {})->SetStaticPropertyValue("Scalar13", TCIMValue("static"), {});
  AddInstance(source, "T_Disk", {{"Id", 1U}, {"Name", "sda"}});
  for (unsigned i = 0; i < 80; ++i) {
    const auto cimClass = source->GetClass(i % 2 == 0 ? "T_All" : "T_Sub", {});
    const auto instance = cimClass->CreateInstance({});
    cimClass->EnumeratePropertyDecls(
        [&](const auto& decl) {
          const std::string& name = decl->GetName();
          if (name == "Key") instance->SetPropertyValue(name, std::uint64_t{i}, {});
          if (name == "Key" || random.Below(4) == 0) return true;
          const TCIMValue value = random.Value(decl->GetType());
          instance->SetPropertyValue(name, value, {});
          if (isRead) {
            EXPECT_EQ(Text(source, instance->GetProperty(name, {})->GetValue()),
                      Text(source, value));
          }
          return true;
        },
        {});
    instance->Commit({});
  }
  return source;
}

TEST(InstanceCopying, GivesWhatTheOperationsGive) {
  for (const EVariant variant : {kSame, kOtherCase, kMore, kOtherOrder, kOtherType, kMissing,
                                 kAbstract, kOtherKey, kOtherTarget}) {
    SCOPED_TRACE(variant);
    // To read a value changes how it is stored.
    const TNamespace other = MakeClasses(kSame), read = MakeSource(other, true);
    const TNamespace source = MakeSource(other, false);
    const TNamespace target = MakeClasses(variant), plain = MakeClasses(variant);
    auto& itself = dynamic_cast<ICopiesInstances&>(*target);
    int copies = 0;
    for (const char* name : {"T_Disk", "T_All", "T_Sub", "T_All"}) {  // some a second time
      std::vector<boost::shared_ptr<ICIMInstance>> instances;
      source->GetClass(name, {})->EnumerateInstances(TAddToVectorCallback(instances), false, {});
      for (const auto& instance : instances) {
        const auto foreign = faulty::Wrap(boost::make_shared<TFaults>(), instance);
        EXPECT_EQ(itself.CopyInstance(*foreign), nullptr);
        const std::string outcome =
            Outcome([&] { return TCIMCopy::CopyInstance(instance, target); });
        EXPECT_EQ(outcome, Outcome([&] { return TCIMCopy::CopyInstance(foreign, plain); }));
        copies += outcome == "copied" ? 1 : 0;
      }
    }
    EXPECT_EQ(Text(target), Text(plain));
    EXPECT_EQ(Text(source), Text(read));
    EXPECT_GE(copies, variant == kSame ? 25 : 1);
  }
}

TEST(InstanceCopying, IsDoneWhereTheClassesAreTheSame) {
  const TNamespace source = MakeClasses(kSame);
  const auto disk = AddInstance(source, "T_All", {{"Key", std::uint64_t{1}}});
  const std::pair<EVariant, bool> rows[] = {{kSame, true},        {kMore, true},
                                            {kOtherOrder, false}, {kOtherType, false},
                                            {kMissing, false},    {kAbstract, false}};
  for (const auto& [variant, isDone] : rows) {
    const TNamespace target = MakeClasses(variant);
    const auto copy = dynamic_cast<ICopiesInstances&>(*target).CopyInstance(*disk);
    EXPECT_EQ(copy != nullptr, isDone) << variant;
    EXPECT_TRUE(!copy || copy->GetClass({}) == target->GetClass("T_All", {}));
  }
}

}  // namespace
}  // namespace NVORNQDX20
