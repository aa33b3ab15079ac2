// SPDX-License-Identifier: Apache-2.0
// What the failures of the repository say; commit_test.cpp has their statuses.
#include <qdxrepository/repository.h>

#include "support/class_builder.h"
#include "support/log_capture.h"

#include <functional>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

TEST(RepositoryFailure, NamesWhatItIsAboutAndLogsNothing) {
  const TNamespace ns = MakeNamespace();
  const auto key = ns->GetQualifierDecl("Key", {});
  const auto disk = AddClass(ns, "T_Disk", {{"Id", 1U}}, {{"Name", ""}});
  const auto sda = AddInstance(ns, "T_Disk", {{"Id", 7U}});
  const auto open = ns->CreateClass("T_Open", disk, {});
  const auto run = open->CreateMethodDecl("Run", TCIMType::kCIMTypeUint8, {});
  const auto force = run->CreateParameterDecl("Force", TCIMType::kCIMTypeBoolean);
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"namespace test has no class \"T_Dsik\"", [&] { ns->GetClass("T_Dsik", {}); }},
      {"class T_Disk has no property \"Nmae\"", [&] { sda->SetPropertyValue("Nmae", "a", {}); }},
      {"property Name of class T_Disk has no qualifier \"Key\"",
       [&] { disk->GetPropertyDecl("name", {})->GetQualifier("Key"); }},
      {"property Name of class T_Disk is string, not uint8[]",
       [&] { sda->SetPropertyValue("Name", TCIMValue(TCIMType::kCIMTypeUint8, 3), {}); }},
      {"property name of class T_Open is uint32, but overrides a string of class T_Disk",
       [&] { open->CreatePropertyDecl("name", 1U, {})->Commit(); }},
      {"qualifier Key of parameter Force of method Run of class T_Open is boolean, not string",
       [&] { force->AddQualifier(key, "yes"); }},
      {"a qualifier of class T_Open, Key, is not one that is declared in namespace test",
       [&] { open->AddQualifier(MakeNamespace()->GetQualifierDecl("Key", {}), true); }},
      {"property Any of class T_Open cannot be untyped",
       [&] { open->CreatePropertyDecl("Any", TCIMValue(), {}); }},
      {"class T_Disk is committed already", [&] { disk->CreatePropertyDecl("New", 1U, {}); }},
      {"instance T_Disk.Id=\"7\" is there already", [&] {
         AddInstance(ns, "T_Disk", {{"Id", 7U}});
       }}};
  const TLogCapture log;
  for (const auto& [reason, fail] : rows) {
    try {
      fail();
      ADD_FAILURE() << reason;
    } catch (const TExplainedException& e) {
      EXPECT_EQ(e.GetReason(), reason);
    }
  }
  EXPECT_TRUE(log.Messages().empty());
}

}  // namespace
}  // namespace NVORNQDX20
