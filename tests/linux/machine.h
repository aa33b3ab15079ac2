// SPDX-License-Identifier: Apache-2.0
/// A made-up machine: a tree of files, described by the provider under test.
#ifndef TESTS_LINUX_MACHINE_H_
#define TESTS_LINUX_MACHINE_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/reference.h>
#include <qdxcore/registry.h>
#include <qdxdescribe/missing_values.h>
#include <qdxmodel/classes.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

namespace NVORNQDX20 {

inline boost::shared_ptr<ICIMNamespace> Describe(const TOptionsMap& options) {
  TOSSpecific::LoadNSPLibrary("linux");
  return TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider("linux")->GetNamespace(
      "ROOT/CIMv2", options);
}

inline std::vector<boost::shared_ptr<ICIMInstance>> InstancesOf(const ICIMNamespace& ns,
                                                                const std::string& className) {
  std::vector<boost::shared_ptr<ICIMInstance>> instances;
  ns.GetClass(className, {})->EnumerateInstances(TAddToVectorCallback(instances), false, {});
  return instances;
}

/// "(null)" for a null value.
inline std::string TextOf(const ICIMInstance& instance, const std::string& property) {
  const TCIMValue& value = instance.GetProperty(property, {})->GetValue();
  return value.IsNull() ? "(null)" : value.ToString(10);
}

/// Why values are null, by instance and property, those of several instances by class and property;
/// why a class has no instances, by its name.
inline std::map<std::string, std::string> ReasonsOf(const ICIMNamespace& ns) {
  std::map<std::string, std::string> reasons;
  for (const auto& missing : InstancesOf(ns, "VORNSG_UnavailableValue")) {
    const std::string className = TextOf(*missing, "ClassName");
    const std::string property = TextOf(*missing, "PropertyName");
    std::string owner = TextOf(*missing, "Instance");
    const bool isShared = owner.empty() && InstancesOf(ns, className).size() > 1;
    if (isShared || property.empty()) owner = className;
    reasons[owner + property] = TextOf(*missing, "Reason");
  }
  return reasons;
}

inline std::string LastKeyOf(const ICIMInstance& instance) {
  std::string key;
  for (const auto& property : NModel::PropertiesOf(*instance.GetClass({}))) {
    if (property.fIsKey) key = TextOf(instance, property.fDecl->GetName());
  }
  return key;
}

/// The last keys of both ends of all instances, as in "eth0 - eth0 192.0.2.7/24".
inline std::set<std::string> EndsOfTies(const ICIMNamespace& ns, const std::string& association) {
  std::set<std::string> ties;
  for (const auto& tie : InstancesOf(ns, association)) {
    std::string ends;
    for (const auto& property : NModel::PropertiesOf(*tie->GetClass({}))) {
      if (!property.fIsKey) continue;
      const TCIMReference reference = tie->GetProperty(property.fDecl->GetName(), {})->GetValue();
      const auto end = boost::dynamic_pointer_cast<ICIMInstance>(reference.GetCIMElement());
      ends += (ends.empty() ? "" : " - ") + (end ? LastKeyOf(*end) : "nothing");
    }
    ties.insert(ends);
  }
  return ties;
}

using TTexts = std::map<std::string, std::string>;

/// All values of the classes, named without "VORNSG_", each behind the last key of its instance and
/// its property: "eth0Speed"; and "Version" of the one operating system. In the place of a null
/// stands the reason for it.
inline TTexts ValuesOf(const ICIMNamespace& ns, const std::vector<std::string>& classes) {
  const auto reasons = NDescribe::ReadMissingReasons(ns);
  const auto reasonOf = [&reasons](const ICIMInstance& instance, const std::string& owner,
                                   const std::string& property) {
    const std::string& className = instance.GetClass({})->GetName({});
    auto found = reasons.find({className, owner, property});
    if (found == reasons.end()) found = reasons.find({className, "", property});
    return found == reasons.end() ? "" : found->second;
  };
  TTexts values = ReasonsOf(ns);
  for (const std::string& name : classes) {
    const auto properties = NModel::PropertiesOf(*ns.GetClass("VORNSG_" + name, {}));
    for (const auto& instance : InstancesOf(ns, "VORNSG_" + name)) {
      std::string owner;
      for (const auto& property : properties) {
        if (property.fIsKey) owner = TextOf(*instance, property.fDecl->GetName());
      }
      if (name == "OperatingSystem") owner.clear();
      for (const auto& property : properties) {
        const std::string& declared = property.fDecl->GetName();
        std::string text = TextOf(*instance, declared);
        const bool isMissing = text == "(null)" || (property.fIsKey && text.empty());
        const std::string reason = isMissing ? reasonOf(*instance, owner, declared) : "";
        values[owner + declared] = reason.empty() ? text : reason;
      }
    }
  }
  return values;
}

/// Parses lines of an owner, ": ", and texts of the form "name=text" with "; " between them.
inline TTexts ParseTexts(const std::string& lines, const std::string& afterOwner) {
  TTexts texts;
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) {
    const std::size_t colon = line.find(": ");
    for (std::size_t at = colon; at < line.size(); at = line.find("; ", at + 1)) {
      const std::size_t equals = line.find('=', at);
      texts[line.substr(0, colon) + afterOwner + line.substr(at + 2, equals - at - 2)] =
          line.substr(equals + 1, line.find("; ", equals) - equals - 1);
    }
  }
  return texts;
}

/// `expected` are lines such as "eth0: Speed=1000; FullDuplex=true".
inline void ExpectValues(const TTexts& values, const std::string& expected) {
  for (const auto& [name, value] : ParseTexts(expected, "")) {
    const auto found = values.find(name);
    EXPECT_EQ(found == values.end() ? "(no such property)" : found->second, value) << name;
  }
}

/// A machine of files, which are read again whenever something is asked about it.
class TMachine : public TTempDir {
 public:
  boost::shared_ptr<ICIMNamespace> Namespace() const {
    return Describe({{"root", Path().string()}});
  }
  /// Writes short files, given as lines such as "sys/block/sda: size=8; queue/rotational=0".
  void WriteFiles(const std::string& lines) const {
    for (const auto& [file, text] : ParseTexts(lines, "/")) Write(file, text + "\n");
  }
  /// Of the only instance of the class.
  std::string Value(const std::string& className, const std::string& property) const {
    return TextOf(*InstancesOf(*Namespace(), className).at(0), property);
  }
};

/// Expects that a user who may not read a file, or not enter a folder, is told so about values or
/// the instances of classes. `rows` are lines such as "proc: mounts=VORNSG_FileSystem; 1/stat=...",
/// with names of ReasonsOf() that have a comma between them.
inline void ExpectDenied(const TMachine& machine, const std::string& rows) {
  namespace fs = std::filesystem;
  fs::permissions(machine.Path(), fs::perms::all);
  const uid_t user = ::geteuid();
  for (const auto& [file, names] : ParseTexts(rows, "/")) {
    const auto path = machine.Path() / file;
    const auto before = fs::status(path).permissions();
    fs::permissions(path, fs::perms::none);
    if (::seteuid(user == 0 ? 65534 : user) != 0) GTEST_SKIP() << "root may read anything";
    TTexts reasons = ReasonsOf(*machine.Namespace());
    ASSERT_EQ(::seteuid(user), 0);
    fs::permissions(path, before);
    std::istringstream stream(names);
    for (std::string name; std::getline(stream, name, ',');) {
      EXPECT_NE(reasons[name].find("Permission denied"), std::string::npos)
          << name << " without " << file << ": '" << reasons[name] << "'";
    }
  }
}

}  // namespace NVORNQDX20

#endif  // TESTS_LINUX_MACHINE_H_
