// SPDX-License-Identifier: Apache-2.0
#include <qdxredact/redactor.h>

#include <qdxcore/reference.h>
#include <qdxdescribe/missing_values.h>
#include <qdxmodel/classes.h>
#include <qdxredact/mark.h>

#include "support/class_builder.h"
#include "support/expect_status.h"

#include <gtest/gtest.h>

namespace {

using namespace NVORNQDX20;
using namespace NVORNQDX20::NRedact;
using NDescribe::TClassDeclaration;
using NDescribe::TPropertyDeclaration;
using TType = TCIMValue::TCIMType;

TPropertyDeclaration Secret(const char* name, const TCIMValue& initial, ESecret secret,
                            bool isKey = false) {
  TPropertyDeclaration property(name, initial);
  property.fSecret = secret;
  property.fIsKey = isKey;
  return property;
}

/// A host with ports, whose keys have secrets, and a link from each to the next.
TNamespace MakeMachine(const std::string& host = "web1") {
  const TNamespace ns = MakeRepositoryNamespace("root/cimv2");
  const TCIMValue number(TType(TType::kCIMTypeUint32), 0);
  TClassDeclaration port{"X_Port", "", {}};
  port.fProperties = {
      Secret("SystemName", kNoText, ESecret::kHostName, true),
      Secret("Number", number, ESecret::kSerial, true),
      Secret("Serial", kNoText, ESecret::kSerial),
      Secret("Code", number, ESecret::kSerial),
      Secret("Addresses", TCIMValue(TType(TType::kCIMTypeString), 4, {}), ESecret::kAddress),
      {"Caption", kNoText}};
  NDescribe::DeclareClass(*ns, port);
  TClassDeclaration link{"X_Link", "", {}, "", false, true};
  for (const char* const name : {"From", "To"}) {
    link.fProperties.emplace_back(name, TCIMValue(TType(TType::kCIMTypeReference), 0));
    link.fProperties.back().fReferencedClass = "X_Port";
    link.fProperties.back().fIsKey = true;
  }
  NDescribe::DeclareClass(*ns, link);
  for (const unsigned int i : {1U, 2U}) {
    const std::string serial = "KPX-00" + std::to_string(i);
    const std::vector<TCIMValue> addresses = {"10.1.2." + std::to_string(i)};
    AddInstance(ns, "X_Port",
                {{"SystemName", host},
                 {"Number", i},
                 {"Serial", serial},
                 {"Code", 7U},
                 {"Addresses", TCIMValue(TType(TType::kCIMTypeString), 4, addresses)},
                 {"Caption", serial + " of " + host + " at 10.1.2.1"}});
  }
  const std::string path = "X_Port.Number=\"1\",SystemName=\"" + host + "\"";
  const std::string other = "X_Port.Number=\"2\",SystemName=\"" + host + "\"";
  AddInstance(ns, "X_Link", {{"From", ReferenceTo(ns, path)}, {"To", ReferenceTo(ns, other)}});
  NDescribe::WriteMissingValues(*ns, {{"X_Port", host, "Speed", host + ": not known"}});
  return ns;
}

TNamespace Redacted(const TNamespace& ns, const TRedaction& redaction) {
  TRedactor redactor(redaction);
  redactor.Learn(*ns);
  const TNamespace redacted = redactor.Redact(ns);
  EXPECT_EQ(redactor.GetLost(), 0);
  return redacted;
}

std::vector<boost::shared_ptr<ICIMInstance>> InstancesOf(const TNamespace& ns, const char* name) {
  return NModel::InstancesOf(*ns->GetClass(name, {}));
}

std::string Text(const boost::shared_ptr<ICIMInstance>& instance, const char* property) {
  const TCIMValue value = instance->GetProperty(property, {})->GetValue();
  return value.IsNull() ? "null" : value.ToString(10);
}

/// All values of a class, a line for each instance.
std::string Dump(const TNamespace& ns, const char* name) {
  std::string text;
  for (const auto& instance : InstancesOf(ns, name)) {
    instance->EnumerateProperties(
        [&](const boost::shared_ptr<ICIMProperty>& property) {
          const TCIMValue value = property->GetValue();
          text += (value.IsNull() ? "null" : value.ToString(10)) + "|";
          return true;
        },
        {});
    text += "\n";
  }
  return text;
}

TEST(Redactor, KeepsRelations) {
  const TNamespace redacted = Redacted(MakeMachine(), {"key", {}, false});
  const auto ports = InstancesOf(redacted, "X_Port");
  ASSERT_EQ(ports.size(), 2);
  const std::string host = Text(ports[0], "SystemName");
  EXPECT_EQ(host.substr(0, 5), "host-");
  EXPECT_EQ(Text(ports[1], "SystemName"), host);
  EXPECT_NE(Text(ports[0], "Serial"), Text(ports[1], "Serial"));
  const std::string address = Text(ports[0], "Addresses").substr(2);
  EXPECT_EQ(Text(ports[0], "Caption"), Text(ports[0], "Serial") + " of " + host + " at " +
                                           address.substr(0, address.find(' ')));
  const auto links = InstancesOf(redacted, "X_Link");
  ASSERT_EQ(links.size(), 1);
  const TCIMReference from = links[0]->GetProperty("From", {})->GetValue();
  EXPECT_EQ(boost::dynamic_pointer_cast<ICIMInstance>(from.GetCIMElement()), ports[0]);
  const auto reasons = NDescribe::ReadMissingReasons(*redacted);
  EXPECT_EQ(reasons.count({"X_Port", host, "Speed"}), 1);
  EXPECT_EQ(reasons.at({"X_Port", host, "Speed"}), host + ": not known");
}

TEST(Redactor, HidesNumbers) {
  const TNamespace redacted = Redacted(MakeMachine(), {"key", {}, false});
  const auto ports = InstancesOf(redacted, "X_Port");
  EXPECT_EQ(Text(ports[0], "Code"), "null");
  EXPECT_NE(Text(ports[0], "Number"), "1");
  EXPECT_EQ(NDescribe::ReadMissingReasons(*redacted).at({"X_Port", "", "Code"}), "redacted");
  const TNamespace kept = Redacted(MakeMachine(), {"key", {ESecret::kSerial}, false});
  EXPECT_EQ(Text(InstancesOf(kept, "X_Port")[0], "Code"), "7");
  EXPECT_EQ(Text(InstancesOf(kept, "X_Port")[0], "Serial"), "KPX-001");
}

TEST(Redactor, IsTheSameWithTheSameKeyOnly) {
  const std::string once = Dump(Redacted(MakeMachine(), {"key", {}, false}), "X_Port");
  EXPECT_EQ(Dump(Redacted(MakeMachine(), {"key", {}, false}), "X_Port"), once);
  EXPECT_NE(Dump(Redacted(MakeMachine(), {"Key", {}, false}), "X_Port"), once);
  const std::string other = Dump(Redacted(MakeMachine("web2"), {"key", {}, false}), "X_Port");
  EXPECT_EQ(other.substr(other.find("serial-"), 15), once.substr(once.find("serial-"), 15));
}

TEST(Redactor, CanBeRepeated) {
  const TNamespace once = Redacted(MakeMachine(), {"key", {}, false});
  const TNamespace twice = Redacted(once, {"key", {}, false});
  EXPECT_EQ(InstancesOf(twice, "X_Port").size(), 2);
  EXPECT_EQ(Text(InstancesOf(twice, "X_Port")[1], "Addresses"),
            Text(InstancesOf(once, "X_Port")[1], "Addresses"));
  const TCIMReference to = InstancesOf(twice, "X_Link")[0]->GetProperty("To", {})->GetValue();
  EXPECT_TRUE(to.GetCIMElement());
}

TEST(Redactor, CopiesClassesThatReferToEachOther) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "X_A", {{"Key", kNoText}});
  const auto b = AddClass(ns, "X_B", {{"Key", kNoText}}, {{"A", NullReference(ns, "X_A")}});
  const auto other = MakeNamespace();
  AddClass(other, "X_Far", {{"Key", kNoText}}, {{"Self", NullReference(ns, "X_B")}});
  SetReferenceDefault(*b, "A", NullReference(ns, "X_B"));
  const TNamespace redacted = Redacted(ns, {"key", {}, true});
  EXPECT_EQ(redacted->GetClass("X_B", {})
                ->GetPropertyDecl("A", {})
                ->GetDefaultValue()
                .GetReferencedClass(),
            redacted->GetClass("X_B", {}));
  TRedactor redactor({"key", {}, true});
  EXPECT_EQ(redactor.Redact(other)->GetClass("X_Far", {})->GetName({}), "X_Far");
}

TEST(Redactor, GuessesOnlyIfAsked) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_UnitaryComputerSystem", {{"Name", kNoText}},
           {{"Version", kNoText}, {"Other", kNoText}, {"SerialNumber", kNoText}});
  AddInstance(ns, "CIM_UnitaryComputerSystem",
              {{"Name", "web1"},
               {"Version", "1.2.3.4"},
               {"Other", "10.2.3.4"},
               {"SerialNumber", "KPX1234"}});
  EXPECT_FALSE(TellsSecrets(*ns));
  EXPECT_TRUE(TellsSecrets(*MakeMachine()));
  EXPECT_EQ(Dump(Redacted(ns, {"key", {}, false}), "CIM_UnitaryComputerSystem"),
            Dump(ns, "CIM_UnitaryComputerSystem"));
  const auto guessed =
      InstancesOf(Redacted(ns, {"key", {}, true}), "CIM_UnitaryComputerSystem").front();
  EXPECT_EQ(Text(guessed, "Name").substr(0, 5), "host-");
  EXPECT_EQ(Text(guessed, "Version"), "1.2.3.4");
  EXPECT_GE(Text(guessed, "Other"), "240.");
  EXPECT_EQ(Text(guessed, "SerialNumber").substr(0, 7), "serial-");
}

TEST(Redactor, MarksWhatItDid) {
  const TNamespace ns = MakeRepositoryNamespace("root/qdx");
  Mark(*ns, {"secret key", {ESecret::kSerial, ESecret::kUser}, true}, false);
  EXPECT_EQ(Dump(ns, kRedactionClass),
            "VORNSG:Redaction|{ address, command line, host name, mount source }|"
            "{ serial, user }|true|false|\n");
  Mark(*ns, {"secret key", {ESecret::kUser, ESecret::kAddress}, false}, true);
  EXPECT_EQ(Dump(ns, kRedactionClass),
            "VORNSG:Redaction|{ address, command line, host name, mount source, serial }|"
            "{ user }|true|true|\n");
}

TEST(Secret, HasAName) {
  for (const ESecret each : AllSecrets()) EXPECT_EQ(SecretOf(NDescribe::SecretName(each)), each);
  EXPECT_EQ(SecretOf("Host-Name"), ESecret::kHostName);
  EXPECT_EQ(SecretOf("password"), std::nullopt);
}

}  // namespace
