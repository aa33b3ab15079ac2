// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/catalogue.h>

#include <qdxcore/status.h>
#include <qdxdescribe/provider.h>
#include <qdxmodel/classes.h>

#include "support/expect_status.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace NVORNQDX20::NDescribe {
namespace {

std::string& Made() {
  static std::string names;
  return names;
}

TRow<TOnly> Key() { return {"Id", "", Constant("1"), kKey}; }

TTable<TOnly> Named(const char* name, const TTable<TOnly>::TRows& rows) {
  Made() += std::string(name) + " ";
  return {name, "", kOnly, rows};
}

TTable<TOnly> Base() { return Named("T_Base", {Key()}); }

std::vector<TCatalogueEntry<TRequest>> Entries() {
  const TPart disks{"disks"};
  return {
      {"T_Base", "", {}, []() -> TClassOf<TRequest> { return Base(); }},
      {"T_Disk", "T_Base", disks,
       []() -> TClassOf<TRequest> { return Named("T_Disk", {}).DerivedFrom(Base()); }},
      {"T_Fan", "", {"fans", true}, []() -> TClassOf<TRequest> { return Named("T_Fan", {Key()}); }},
      {"T_On", "", disks, []() -> TClassOf<TRequest> {
         return Named("T_On", {{"Disk", "", Constant(TInstanceName{"T_Disk", "1"}), kKey,
                                TRefersTo{"T_Disk"}}});
       }}};
}

TOptionsMap Asked(const char* option, const char* name) {
  return {{option, TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 0, {TCIMValue(name)})}};
}

TEST(Catalogue, MakesOnlyWhatIsWantedAndOnce) {
  Made().clear();
  const auto provider =
      MakeCatalogueProvider("test", "root/test", Entries(), EClassCheck::kByTests);
  std::string parts;
  dynamic_cast<const IPartsOfProvider&>(*provider).EnumerateParts(
      [&parts](const std::string& name, bool isOnRequest) {
        parts += name + (isOnRequest ? "? " : " ");
        return true;
      });
  EXPECT_EQ(parts, "disks fans? ");
  EXPECT_EQ(Made(), "");
  struct TCase {
    TOptionsMap fOptions;
    std::string fMade;
  };
  // A subclass makes its superclass's table anew, for the rows.
  const TCase rows[] = {{Asked("classes", "T_None"), ""},
                        {Asked("classes", "t_fan"), "T_Fan "},
                        {Asked("classes", "T_On"), "T_On T_Disk T_Base T_Base "},
                        {Asked("classes", "T_Base"), ""},
                        {{}, ""}};
  for (const auto& [options, made] : rows) {
    Made().clear();
    const auto ns = provider->GetNamespace("root/test", options);
    EXPECT_EQ(Made(), made);
  }
}

TEST(Catalogue, DescribesWhatTheSameClassesDescribe) {
  std::vector<TClassOf<TRequest>> classes;
  for (const auto& entry : Entries()) classes.push_back(entry.fMake().InPart(entry.fPart));
  const auto eager = MakeProvider("test", "root/test", classes);
  for (const TOptionsMap& options :
       {TOptionsMap{}, Asked("classes", "T_Base"), Asked("classes", "T_On"), Asked("only", "fans"),
        Asked("without", "disks"), Asked("with", "fans")}) {
    const auto lazy = MakeCatalogueProvider("test", "root/test", Entries());
    std::string described[2];
    for (int i = 0; i < 2; ++i) {
      const auto ns = (i == 0 ? eager : lazy)->GetNamespace("root/test", options);
      std::vector<boost::shared_ptr<ICIMClass>> roots;
      ns->EnumerateClasses(TAddToVectorCallback(roots), {});
      for (const auto& root : roots) {
        for (const auto& each : NModel::WithSubclasses(root)) {
          described[i] +=
              each->GetName({}) + ":" + std::to_string(NModel::InstancesOf(*each).size()) + " ";
        }
      }
    }
    EXPECT_EQ(described[0], described[1]);
    EXPECT_NE(described[0], "");
  }
}

TEST(Catalogue, RefusesWhatAnEntryDoesNotSay) {
  const auto make = []() -> TClassOf<TRequest> { return Named("T_Sub", {}).DerivedFrom(Base()); };
  for (const auto& [name, superclass] : {std::pair{"T_Other", "T_Base"}, {"T_Sub", ""}}) {
    const std::vector<TCatalogueEntry<TRequest>> entries = {Entries()[0],
                                                            {name, superclass, {}, make}};
    EXPECT_QDX_STATUS(MakeCatalogueProvider("test", "root/test", entries), kQDXStatusInvalidClass);
    EXPECT_NO_THROW(MakeCatalogueProvider("test", "root/test", entries, EClassCheck::kByTests));
  }
}

TEST(Rows, OfAVectorStayInIt) {
  const TTable<TOnly>::TRows rows = {Key()};
  for (const char* name : {"T_A", "T_B"}) {
    const TClassOf<TRequest> made = TTable<TOnly>(name, "", kOnly, rows);
    ASSERT_EQ(made.fColumns, std::vector<std::string>{"Id"});
    EXPECT_EQ(made.fDeclaration.fProperties[0].fName, "Id");
    const auto ns = Describe<TRequest>(TDescriber("p", "n"), {made}, {});
    EXPECT_EQ(NModel::InstancesOf(*ns->GetClass(name, {})).size(), 1U);
  }
}

}  // namespace
}  // namespace NVORNQDX20::NDescribe
