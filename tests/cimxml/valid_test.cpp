// SPDX-License-Identifier: Apache-2.0
// Asks another program whether documents have the elements and attributes of CIM-XML.
#include <qdxcore/reference_parameter.h>
#include <qdxcore/status.h>

#include <array>
#include <cstdio>
#include <memory>

#include "cimxml/documents.h"

namespace NVORNQDX20 {
namespace {

std::string OutputOf(const std::string& command) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "re"),
                                                             &::pclose);
  std::string output;
  std::array<char, 4096> buffer{};
  while (std::fgets(buffer.data(), buffer.size(), pipe.get()) != nullptr) output += buffer.data();
  return output;
}

/// Returns nothing if the document is valid.
std::string FaultsOf(const std::string& document) {
  const TDocumentFile file(document);
  return OutputOf("xmllint --noout --dtdvalid '" QDX_DOCUMENT_DTD "' '" + file.Path() + "' 2>&1");
}

class CIMXMLDocumentValidity : public ::testing::Test {
  void SetUp() override {
    if (OutputOf("command -v xmllint").empty()) GTEST_SKIP() << "needs xmllint";
  }
};

/// A class whose elements have each type that a declaration can have.
TNamespace MakeAllDeclarations() {
  using TType = TCIMValue::TCIMType;
  const TNamespace ns = MakeNamespace();
  const auto target = AddClass(ns, "Target", {{"Id", 0U}});
  const auto cimClass = ns->CreateClass("All", nullptr, {});
  const auto method = cimClass->CreateMethodDecl("Nothing", TType::kCIMTypeNone, {});
  for (unsigned int type = TType::kCIMTypeBoolean; type <= TType::kCIMTypeReference; ++type) {
    if (type == TType::kCIMTypeChar) continue;
    const std::string name = TType(type).ToString();
    TCIMValue null(TType(type), 0);
    if (type == TType::kCIMTypeReference) null.SetReferencedClass(target);
    cimClass->CreatePropertyDecl(name, null, {})->Commit();
    cimClass->SetStaticPropertyValue(name, null, {});
    for (const TType each : {TType(type), TType(type | TType::kCIMTypeArray)}) {
      const auto parameter = method->CreateParameterDecl(name + (each == type ? "" : "s"), each);
      if (type == TType::kCIMTypeReference) SetReferencedClassName(*parameter, "Later");
      parameter->Commit();
    }
    if (type == TType::kCIMTypeReference) continue;
    const TCIMValue array(TType(type), 2);
    cimClass->CreatePropertyDecl(name + "s", array, {})->Commit();
    for (const auto& value : {null, array}) {
      const std::string qualifier = "Q" + name + (value.IsArray() ? "s" : "");
      ns->CreateQualifierDecl(qualifier, value, kScopeAny, kFlavorTranslatable, {})->Commit();
      Qualify(ns, cimClass, qualifier, value);
    }
    cimClass->CreateMethodDecl("Get" + name, TType(type), {});
  }
  cimClass->Commit({});
  AddInstance(ns, "All", {});
  return ns;
}

TEST_F(CIMXMLDocumentValidity, HoldsForAllThatIsWritten) {
  EXPECT_EQ(FaultsOf(ReadAndWritten(QDX_EVERYTHING)), "");
  EXPECT_EQ(FaultsOf(Written({MakeAllDeclarations()})), "");
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "C", {{"b", true}, {"d", TCIMDateTime(1, 2, 3, 4, 5)}, {"r", 0.5}, {"s", "<"}});
  AddInstance(ns, "C", {});
  EXPECT_EQ(FaultsOf(Written({ns})), "");
}

TEST(CIMXMLDocument, GivesBackADeclarationOfEachType) {
  const TDocumentFile file(Written({MakeAllDeclarations()}));
  EXPECT_EQ(ReadAndWritten(file.Path()), ReadWholeFile(file.Path()));
}

TEST_F(CIMXMLDocumentValidity, IsCheckedIndeed) {
  EXPECT_NE(FaultsOf(Document({Class("<METHOD NAME='m'/><PROPERTY NAME='p' TYPE='string'/>")})),
            "");
  EXPECT_NE(FaultsOf(Document({Class("<PROPERTY NAME='p' TYPE='reference'/>")})), "");
}

}  // namespace
}  // namespace NVORNQDX20
