// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/schema_helper.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/faulty_provider.h"
#include "support/log_capture.h"

#include <array>

using namespace NVORNQDX20;

using THelper = TCIMSchemaHelper;

/// A namespace with one instance of a class that has these properties.
TNamespace MakeOne(const TProperties& properties,
                   const std::string& className = "VORNSG_ComputerSystem") {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, className, {{"Id", 0U}}, properties);
  AddInstance(ns, className, {{"Id", 1U}});
  return ns;
}

TEST(SchemaHelper, ReadsTheSingleInstanceOfAClass) {
  const TNamespace ns = MakeOne({{"Name", "host"}, {"ProductName", "47111AB"}});
  EXPECT_EQ(THelper::GetSystemName(ns), "host");
  EXPECT_EQ(THelper::GetSystemProductName(ns), "47111AB");
  EXPECT_EQ(THelper::GetSystemCreationClassName(ns), "VORNSG_ComputerSystem");
  const std::uint16_t type = 36;
  const char* const className = "VORNSG_OperatingSystem";
  AddClass(ns, className, {}, {{"Name", "an OS"}, {"Version", "12"}, {"OSType", type}});
  EXPECT_QDX_STATUS(THelper::GetOperatingSystemName(ns), kQDXStatusNotFound);  // no instance
  AddInstance(ns, className, {});
  EXPECT_EQ(THelper::GetOperatingSystemName(ns), "an OS");
  EXPECT_EQ(THelper::GetOperatingSystemVersion(ns), "12");
  EXPECT_EQ(THelper::GetOperatingSystemType(ns), type);
  EXPECT_EQ(THelper::GetOperatingSystemCreationClassName(ns), className);

  AddDerived(ns, "T_Blade", ns->GetClass("VORNSG_ComputerSystem", {}), {});
  AddInstance(ns, "T_Blade", {{"Id", 2U}});
  EXPECT_QDX_STATUS(THelper::GetSystemName(ns), kQDXStatusNotFound);  // a subclass counts
  EXPECT_QDX_STATUS(THelper::GetMTM(ns), kQDXStatusNotFound);
  const TNamespace bad = MakeOne({{"Name", 5U}, {"ProductName", kNoText}});
  EXPECT_QDX_STATUS(THelper::GetSystemName(bad), kQDXStatusTypeMismatch);
  EXPECT_QDX_STATUS(THelper::GetSystemProductName(bad), kQDXStatusValueIsNULL);
}

TEST(SchemaHelperMTM, IsFoundInTheProductName) {
  const std::pair<const char*, std::string> rows[] = {
      {"Model name -[47111AB]-", "47111AB"},
      {"-[47111AB]- and more   ", "47111AB"},
      {"x -[4711]- y", "4711xxx"},
      {"-[4711   ]-", "4711xxx"},
      {"-[47111 2]-", "47111 2"},
      {"4711 AB  ", "4711 AB"},
      {"VORN Loftnode k318-[47121AB]", "47121AB"},
      {"VORN Loftnode k318-[4712   ]  ", "4712xxx"},
  };
  for (const auto& [name, mtm] : rows) {
    const TNamespace ns = MakeOne({{"ProductName", name}});
    const TLogCapture log;
    EXPECT_EQ(THelper::GetMTM(ns), mtm) << name;
    EXPECT_EQ(log.Messages(), std::vector<std::string>{"3 TCIMSchemaHelper- Detected MTM " + mtm});
    EXPECT_EQ(THelper::GetMachineType(ns), mtm.substr(0, 4));
    EXPECT_EQ(THelper::GetModelNumber(ns), mtm.substr(4));
    EXPECT_EQ(THelper::GetRawMTMString(ns), name);
  }
  for (const char* name :
       {"4711   x", "VORN Loftnode k318-[47-21AB]", "VORN Loftnode k319-[47121AB]",
        "VORN Loftnode k318-[47121AB)", "-[47111AB]", "-[47111AB] -", "-[4711!AB]-", "-[47 1]-",
        "-[4711", "-[", "-[] -[47111AB]-", "47111A", "    ", ""}) {
    const TNamespace ns = MakeOne({{"ProductName", name}});
    EXPECT_QDX_STATUS(THelper::GetMTM(ns), kQDXStatusInvalidFormat) << name;
  }
}

TEST(SchemaHelperMTM, IsValidByItsFirstCharacters) {
  EXPECT_TRUE(THelper::IsValidMachineType("4711 and more") && THelper::IsValidMTM("4711 A ]-"));
  for (const char* bad : {"471", "47\xe4g"}) EXPECT_FALSE(THelper::IsValidMachineType(bad)) << bad;
  for (const char* bad : {"47111A", " 7111AB"}) EXPECT_FALSE(THelper::IsValidMTM(bad)) << bad;
}

TEST(SchemaHelperSerial, HasSevenLettersOrDigits) {
  const auto read = [](const char* serial) {
    return THelper::GetSerialNumber(MakeOne({{"SerialNumber", serial}}), {});
  };
  EXPECT_EQ(read("23z1234   "), "23z1234");
  for (const char* bad : {"23-1234", " 23A1234", "23A12345", "23A123 ", ""}) {
    EXPECT_QDX_STATUS(read(bad), kQDXStatusInvalidFormat) << bad;
  }
  EXPECT_EQ(THelper::GetRawSerialNumberString(MakeOne({{"SerialNumber", "x "}}), {}), "x ");
}

TEST(SchemaHelperRawTexts, SayWhatIsMissing) {
  const TNamespace two = MakeOne({});
  AddInstance(two, "VORNSG_ComputerSystem", {{"Id", 2U}});
  const std::pair<TNamespace, std::string> rows[] = {
      {MakeNamespace(), "no computer system"},
      {two, "computer system instances != 1"},
      {MakeOne({}), "didn't find ProductName property"},
      {MakeOne({{"ProductName", kNoText}}), "ProductName is NULL"},
      {MakeOne({{"ProductName", 5U}}), "ProductName wasn't a string"}};
  for (const auto& row : rows) {
    const TNamespace& ns = row.first;
    const TLogCapture log;
    EXPECT_QDX_STATUS(THelper::GetRawMTMString(ns), kQDXStatusNotFound);
    EXPECT_QDX_STATUS(THelper::GetRawSerialNumberString(ns, {}), kQDXStatusNotFound);
    EXPECT_EQ(log.Messages().at(0), "3 TCIMSchemaHelper: " + row.second);
  }
}

TEST(SchemaHelper, PassesOptionsAndFaultsOn) {
  const TNamespace ns = MakeOne({{"SerialNumber", "23A1234"}, {"ProductName", "47111AB"}});
  const auto faults = boost::make_shared<TFaults>();
  const TNamespace faulty = MakeFaultyNamespace(ns, faults);
  std::string asked;
  faults->fWatch = [&asked](const std::string& call) {
    if (call.find("ICIMProperty::") != 0) asked += call.substr(call.find("::") + 2) + " ";
  };
  AddClass(ns, "VORNSG_QDXProduct", {}, {{"Version", "1.2.3"}});
  AddInstance(ns, "VORNSG_QDXProduct", {});
  EXPECT_EQ(THelper::GetSerialNumber(faulty, {{"from", "x"}}), "23A1234");
  EXPECT_EQ(THelper::GetDataSourceVersion(faulty, {{"from", "x"}}), "1.2.3");
  EXPECT_EQ(asked,
            "GetClass(VORNSG_ComputerSystem,x) EnumerateInstances(1,x) GetProperty(SerialNumber,x) "
            "GetClass(VORNSG_QDXProduct,x) EnumerateInstances(1) GetProperty(Version,x) ");
  faults->Fail("ICIMClass::EnumerateInstances", kQDXStatusFail);
  EXPECT_QDX_STATUS(THelper::GetSerialNumber(faulty, {}), kQDXStatusFail);
  for (const char* operation : {"ICIMNamespace::GetClass", "ICIMInstance::GetProperty"}) {
    const TLogCapture log;
    faults->Fail(operation, kQDXStatusAccessDenied);
    EXPECT_QDX_STATUS(THelper::GetMTM(faulty), kQDXStatusAccessDenied);
    EXPECT_TRUE(log.Messages().empty());  // said where it happened
    faults->Fail(operation, kQDXStatusOK);
    EXPECT_QDX_STATUS(THelper::GetMTM(faulty), kQDXStatusNotFound);
    faults->Fail(operation, kQDXStatusOK);
    EXPECT_QDX_STATUS(THelper::GetSystemName(faulty), kQDXStatusFail);  // an assertion
  }
}

TEST(SchemaHelperVersion, IsSplitAtItsDots) {
  // Version; major, minor and build number.
  const std::array<const char*, 4> rows[] = {{"1.2.3", "1", "2.", "3"},
                                             {"1.23", "1", "23", "23"},
                                             {"12.3.4", "12", "3.4", "4"},
                                             {"1.", "1", "", ""}};
  for (const auto& [version, major, minor, build] : rows) {
    const TNamespace ns = MakeOne({{"Version", version}}, "VORNSG_QDXProduct");
    EXPECT_EQ(THelper::GetDataSourceMajorVersion(ns, {}), major);
    EXPECT_EQ(THelper::GetDataSourceMinorVersion(ns, {}), minor);
    EXPECT_EQ(THelper::GetDataSourceBuildVersion(ns), build);
  }
  const TNamespace ns = MakeOne({{"Version", "12"}}, "VORNSG_QDXProduct");
  EXPECT_QDX_STATUS(THelper::GetDataSourceMajorVersion(ns, {}), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(THelper::GetDataSourceMinorVersion(ns, {}), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(THelper::GetDataSourceBuildVersion(ns), kQDXStatusNotFound);
}
