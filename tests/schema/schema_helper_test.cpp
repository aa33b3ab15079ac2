// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/schema_helper.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/faulty_provider.h"
#include "support/log_capture.h"
#include "support/recording_namespace.h"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;
using THelper = TCIMSchemaHelper;

const TCIMValue kNoText(TCIMType::kCIMTypeString, 0);

/// A namespace with one computer system of these properties.
TNamespace MakeSystem(const TProperties& properties) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "VORNSG_ComputerSystem", {{"Id", 0U}}, properties);
  AddInstance(ns, "VORNSG_ComputerSystem", {{"Id", 1U}});
  return ns;
}

TEST(SchemaHelper, ReadsTheSingleInstanceOfAClass) {
  const TNamespace ns = MakeSystem({{"Name", "host"}, {"ProductName", "a product"}});
  AddClass(ns, "VORNSG_OperatingSystem", {{"Name", ""}},
           {{"Version", "12"}, {"OSType", static_cast<unsigned short>(36)}});
  EXPECT_QDX_STATUS(THelper::GetOperatingSystemName(ns), kQDXStatusNotFound);  // no instance
  AddInstance(ns, "VORNSG_OperatingSystem", {{"Name", "an OS"}});

  EXPECT_EQ(THelper::GetSystemName(ns), "host");
  EXPECT_EQ(THelper::GetSystemProductName(ns), "a product");
  EXPECT_EQ(THelper::GetOperatingSystemName(ns), "an OS");
  EXPECT_EQ(THelper::GetOperatingSystemVersion(ns), "12");
  EXPECT_EQ(THelper::GetOperatingSystemType(ns), 36);
  EXPECT_EQ(THelper::GetSystemCreationClassName(ns), "VORNSG_ComputerSystem");
  EXPECT_EQ(THelper::GetOperatingSystemCreationClassName(ns), "VORNSG_OperatingSystem");

  AddInstance(ns, "VORNSG_ComputerSystem", {{"Id", 2U}});
  EXPECT_QDX_STATUS(THelper::GetSystemName(ns), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(THelper::GetMTM(ns), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(THelper::GetSerialNumber(ns, {}), kQDXStatusNotFound);
}

TEST(SchemaHelper, CountsTheInstancesOfSubclasses) {
  const TNamespace ns = MakeSystem({{"Name", "host"}});
  const auto blade = ns->CreateClass("T_Blade", ns->GetClass("VORNSG_ComputerSystem", {}), {});
  blade->Commit({});
  AddInstance(ns, "T_Blade", {{"Id", 2U}});
  EXPECT_QDX_STATUS(THelper::GetSystemName(ns), kQDXStatusNotFound);
}

TEST(SchemaHelper, LetsTheValueFailAsValuesDo) {
  const TNamespace ns = MakeSystem({{"Name", 5U}, {"ProductName", kNoText}});
  EXPECT_QDX_STATUS(THelper::GetSystemName(ns), kQDXStatusTypeMismatch);
  EXPECT_QDX_STATUS(THelper::GetSystemProductName(ns), kQDXStatusValueIsNULL);
}

TEST(SchemaHelperMTM, IsFoundInTheProductName) {
  const struct {
    const char* fName;
    const char* fMTM;  // null where the name carries none
  } rows[] = {
      {"Model name -[47111AB]-", "47111AB"},
      {"-[47111AB]-", "47111AB"},
      {"-[47111AB]- and more   ", "47111AB"},
      {"-[4711]-", "4711xxx"},
      {"x -[4711]- y", "4711xxx"},
      {"-[4711   ]-", "4711xxx"},
      {"-[47111 2]-", "47111 2"},
      {"47111AB", "47111AB"},
      {"4711   x", nullptr},
      {"4711 AB  ", "4711 AB"},
      {"VORN Loftnode k318-[47121AB]", "47121AB"},
      {"VORN Loftnode k318-[4712   ]  ", "4712xxx"},
      {"VORN Loftnode k318-[47121AB]-", "47121AB"},
      {"VORN Loftnode k318-[4712]-", "4712xxx"},
      {"VORN Loftnode k318-[47-21AB]", nullptr},
      {"VORN Loftnode k319-[47121AB]", nullptr},
      {"-[47111AB]", nullptr},
      {"-[47111AB] -", nullptr},
      {"-[4711!AB]-", nullptr},
      {"-[47 1]-", nullptr},
      {"-[4711", nullptr},
      {"-[", nullptr},
      {"-[] -[47111AB]-", nullptr},
      {"47111A", nullptr},
      {"    ", nullptr},
      {"", nullptr},
  };
  for (const auto& row : rows) {
    const TNamespace ns = MakeSystem({{"ProductName", row.fName}});
    if (row.fMTM == nullptr) {
      EXPECT_QDX_STATUS(THelper::GetMTM(ns), kQDXStatusInvalidFormat) << row.fName;
      continue;
    }
    const TLogCapture log;
    EXPECT_EQ(THelper::GetMTM(ns), row.fMTM) << row.fName;
    EXPECT_EQ(log.Messages(), std::vector<std::string>{
                                  std::string("3 TCIMSchemaHelper- Detected MTM ") + row.fMTM});
    EXPECT_EQ(THelper::GetMachineType(ns) + THelper::GetModelNumber(ns), row.fMTM);
    EXPECT_EQ(THelper::GetMachineType(ns).size(), 4U);
    EXPECT_EQ(THelper::GetRawMTMString(ns), row.fName);
  }
}

TEST(SchemaHelperMTM, IsValidByItsFirstCharacters) {
  EXPECT_TRUE(THelper::IsValidMachineType("4711 and more"));
  EXPECT_FALSE(THelper::IsValidMachineType("471"));
  EXPECT_FALSE(THelper::IsValidMachineType("47\xe4g"));
  EXPECT_TRUE(THelper::IsValidMTM("4711 A ]-"));
  EXPECT_FALSE(THelper::IsValidMTM("47111A"));
  EXPECT_FALSE(THelper::IsValidMTM(" 7111AB"));
}

TEST(SchemaHelperSerial, HasSevenLettersOrDigits) {
  const auto read = [](const char* serial) {
    return THelper::GetSerialNumber(MakeSystem({{"SerialNumber", serial}}), {});
  };
  EXPECT_EQ(read("23A1234"), "23A1234");
  EXPECT_EQ(read("23A1234   "), "23A1234");
  for (const char* bad : {"23-1234", " 23A1234", "23A12345", "23A123", "23A123 ", ""}) {
    EXPECT_QDX_STATUS(read(bad), kQDXStatusInvalidFormat) << bad;
  }
  EXPECT_EQ(THelper::GetRawSerialNumberString(MakeSystem({{"SerialNumber", "x "}}), {}), "x ");
}

TEST(SchemaHelperRawTexts, SayWhatIsMissing) {
  const TNamespace two = MakeSystem({});
  AddInstance(two, "VORNSG_ComputerSystem", {{"Id", 2U}});
  const struct {
    TNamespace fNamespace;
    const char* fMessage;  // "%" stands for the property
  } rows[] = {
      {MakeNamespace(), "no computer system"},
      {two, "computer system instances != 1"},
      {MakeSystem({}), "didn't find % property"},
      {MakeSystem({{"ProductName", kNoText}, {"SerialNumber", kNoText}}), "% is NULL"},
      {MakeSystem({{"ProductName", 5U}, {"SerialNumber", 5U}}), "% wasn't a string"},
  };
  for (const auto& row : rows) {
    for (const std::string property : {"ProductName", "SerialNumber"}) {
      const TLogCapture log;
      EXPECT_QDX_STATUS(property == "ProductName"
                            ? THelper::GetRawMTMString(row.fNamespace)
                            : THelper::GetRawSerialNumberString(row.fNamespace, {}),
                        kQDXStatusNotFound);
      std::string message = std::string("3 TCIMSchemaHelper: ") + row.fMessage;
      const std::size_t mark = message.find('%');
      if (mark != std::string::npos) message.replace(mark, 1, property);
      EXPECT_EQ(log.Messages(), std::vector<std::string>{message});
    }
  }
}

TEST(SchemaHelper, PassesOptionsAndFaultsOn) {
  const TNamespace ns = MakeSystem({{"SerialNumber", "23A1234"}, {"ProductName", "47111AB"}});
  const auto recorder = boost::make_shared<TRecordingNamespace>(ns);
  THelper::GetSerialNumber(recorder, {{"from", "x"}});
  THelper::GetMTM(recorder);
  EXPECT_QDX_STATUS(THelper::GetDataSourceVersion(recorder, {{"from", "y"}}), kQDXStatusFail);
  EXPECT_EQ(recorder->Asked(),
            "VORNSG_ComputerSystem(x) VORNSG_ComputerSystem() VORNSG_QDXProduct(y) ");

  const TLogCapture log;
  const auto faults = boost::make_shared<TFaults>();
  const TNamespace faulty = MakeFaultyNamespace(ns, faults);
  for (const char* operation : {"ICIMNamespace::GetClass", "ICIMInstance::GetProperty"}) {
    faults->Throw(operation, kQDXStatusAccessDenied);
    EXPECT_QDX_STATUS(THelper::GetMTM(faulty), kQDXStatusAccessDenied);
    faults->AnswerNull(operation);
    EXPECT_QDX_STATUS(THelper::GetSystemName(faulty), kQDXStatusFail);  // an assertion
    faults->AnswerNull(operation);
    EXPECT_QDX_STATUS(THelper::GetMTM(faulty), kQDXStatusNotFound);
  }
}

TEST(SchemaHelperVersion, IsSplitAtItsDots) {
  const struct {
    const char *fVersion, *fMajor, *fMinor, *fBuild;
  } rows[] = {{"1.2.3", "1", "2.", "3"},
              {"1.23", "1", "23", "23"},
              {"12.3.4", "12", "3.4", "4"},
              {"1.", "1", "", ""},
              {".5", "", "5", "5"}};
  for (const auto& row : rows) {
    const TNamespace ns = MakeNamespace();
    AddClass(ns, "VORNSG_QDXProduct", {{"Id", 0U}}, {{"Version", row.fVersion}});
    AddInstance(ns, "VORNSG_QDXProduct", {{"Id", 1U}});
    EXPECT_EQ(THelper::GetDataSourceVersion(ns, {}), row.fVersion);
    EXPECT_EQ(THelper::GetDataSourceMajorVersion(ns, {}), row.fMajor);
    EXPECT_EQ(THelper::GetDataSourceMinorVersion(ns, {}), row.fMinor);
    EXPECT_EQ(THelper::GetDataSourceBuildVersion(ns), row.fBuild);
  }
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "VORNSG_QDXProduct", {{"Id", 0U}}, {{"Version", "12"}});
  AddInstance(ns, "VORNSG_QDXProduct", {{"Id", 1U}});
  EXPECT_QDX_STATUS(THelper::GetDataSourceMajorVersion(ns, {}), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(THelper::GetDataSourceMinorVersion(ns, {}), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(THelper::GetDataSourceBuildVersion(ns), kQDXStatusNotFound);
}

}  // namespace
}  // namespace NVORNQDX20
