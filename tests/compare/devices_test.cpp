// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "compare/support.h"

namespace NVORNQDX20 {
namespace {

/// A machine with disks; each is tied to the machine, to its medium, and to its partitions.
class TMachine {
 public:
  explicit TMachine(const std::string& name) : fName(name) {
    for (const char* each : {"X_ComputerSystem", "X_Drive", "X_Medium", "X_Partition"}) {
      AddClass(fNamespace, each, {{"ID", kNoText}, {"SystemName", kNoText}},
               {{"Size", kNoText}, {"Owner", kNoText}});
    }
    AddLinks("X_SystemDevice", "X_ComputerSystem", "X_Drive");
    AddLinks("X_MediaPresent", "X_Drive", "X_Medium");
    AddLinks("X_BasedOn", "X_Medium", "X_Partition");
    AddClass(fNamespace, "VORNSG_UnavailableValue",
             {{"ClassName", kNoText}, {"Instance", kNoText}, {"PropertyName", kNoText}},
             {{"Reason", kNoText}});
    Add("X_ComputerSystem", name, "");
  }

  void AddDisk(const std::string& id, const std::string& size, int partitions) {
    Add("X_Drive", id, size);
    Add("X_Medium", id, size);
    Link("X_SystemDevice", Path("X_ComputerSystem", fName), Path("X_Drive", id));
    Link("X_MediaPresent", Path("X_Drive", id), Path("X_Medium", id));
    for (int i = 1; i <= partitions; ++i) {
      const std::string partition = id + std::to_string(i);
      Add("X_Partition", partition, size);
      Link("X_BasedOn", Path("X_Medium", id), Path("X_Partition", partition));
    }
  }

  void Add(const std::string& className, const std::string& id, const std::string& size) {
    TProperties values = {{"ID", id}, {"SystemName", fName}, {"Owner", "/srv/" + fName + "/x"}};
    if (!size.empty()) values.emplace_back("Size", size);
    AddInstance(fNamespace, className, values);
  }

  void Explain(const std::string& className, const std::string& id, const std::string& property) {
    AddInstance(fNamespace, "VORNSG_UnavailableValue",
                {{"ClassName", className},
                 {"Instance", id},
                 {"PropertyName", property},
                 {"Reason", "none"}});
  }

  const TNamespace& Get() const { return fNamespace; }

 private:
  std::string Path(const std::string& className, const std::string& id) const {
    return className + ".ID=\"" + id + "\",SystemName=\"" + fName + "\"";
  }
  void AddLinks(const std::string& name, const std::string& one, const std::string& other) {
    AddClass(fNamespace, name,
             {{"Antecedent", NullReference(fNamespace, one)},
              {"Dependent", NullReference(fNamespace, other)}},
             {}, nullptr, true);
  }
  void Link(const std::string& name, const std::string& one, const std::string& other) {
    AddInstance(fNamespace, name,
                {{"Antecedent", ReferenceTo(fNamespace, one)},
                 {"Dependent", ReferenceTo(fNamespace, other)}});
  }

  const std::string fName;
  const TNamespace fNamespace = MakeNamespace();
};

/// "SIGN CLASS ID [in DEVICE] [after CAUSE]", without the name of the machine.
std::string Grouped(const TMachine& a, const TMachine& b, const TComparisonOptions& options = {}) {
  static const char* const kSigns[] = {"- ", "+ ", "~ ", "? "};
  const auto shortOf = [](const std::string& path) {
    const std::string name = path.substr(0, path.find('.'));
    const std::size_t id = path.find(".ID=\"");
    return id == std::string::npos
               ? name
               : name + " " + path.substr(id + 5, path.find('"', id + 5) - id - 5);
  };
  std::string text;
  for (const auto& each : Compare(Compared({a.Get()}), Compared({b.Get()}), options)) {
    text += kSigns[each.fChange] + shortOf(each.fOwner);
    if (!each.fProperty.empty()) text += " " + each.fProperty;
    if (each.fDevice != each.fOwner) text += " in " + shortOf(each.fDevice);
    if (!each.fFollows.empty()) text += " after " + shortOf(each.fFollows);
    text += "\n";
  }
  return text;
}

TEST(Devices, HaveWhatIsTiedToThemAloneAndTheirParts) {
  TMachine a("web1"), b("web1");
  a.AddDisk("sda", "5", 2);
  a.AddDisk("sdb", "5", 2);
  b.AddDisk("sda", "6", 2);
  b.AddDisk("sdb", "5", 2);
  b.Add("X_Partition", "free", "1");
  EXPECT_EQ(Grouped(a, b),
            "~ X_Drive sda Size\n"
            "~ X_Medium sda Size in X_Drive sda\n"
            "+ X_Partition free\n"
            "~ X_Partition sda1 Size in X_Drive sda\n"
            "~ X_Partition sda2 Size in X_Drive sda\n");
}

TEST(Devices, AreNamedByTheirHeadsAlsoIfThoseDoNotDiffer) {
  TMachine a("web1"), b("web1");
  a.AddDisk("sda", "5", 1);
  b.AddDisk("sda", "5", 1);
  a.AddDisk("sdb", "5", 1);
  b.AddDisk("sdb", "5", 2);
  EXPECT_EQ(Grouped(a, b),
            "+ X_BasedOn sdb in X_Drive sdb after X_Partition sdb2\n"
            "+ X_Partition sdb2 in X_Drive sdb\n");
}

TEST(Devices, HaveTheConsequencesBelowThem) {
  TMachine a("web1"), b("web1");
  a.AddDisk("sda", "5", 1);
  b.AddDisk("sda", "", 1);
  b.Explain("X_Drive", "sda", "Size");
  b.Explain("X_Drive", "sda", "Owner");  // whose value is the same
  b.AddDisk("sdb", "", 0);
  b.Explain("X_Drive", "sdb", "SIZE");
  const std::string text = Grouped(a, b);
  for (const char* line : {"+ VORNSG_UnavailableValue in X_Drive sda after X_Drive sda\n",
                           "+ VORNSG_UnavailableValue in X_Drive sdb after X_Drive sdb\n",
                           "+ X_Drive sdb\n", "+ X_Medium sdb in X_Drive sdb\n",
                           "+ X_SystemDevice web1 in X_Drive sdb after X_Drive sdb\n",
                           "+ X_MediaPresent sdb in X_Drive sdb after X_Medium sdb\n",
                           "+ VORNSG_UnavailableValue\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "is not in\n" << text;
  }
}

TEST(Devices, HaveTheReasonsThatAreGivenForTheClassWhenTheyCome) {
  TMachine a("web1"), b("web1");
  a.Add("X_Drive", "sda", "");
  a.Explain("X_Drive", "sda", "Size");
  for (const char* id : {"sda", "sdb"}) b.Add("X_Drive", id, "");
  b.Explain("X_Drive", "", "Size");
  const char* const came = "+ VORNSG_UnavailableValue in X_Drive sdb after X_Drive sdb\n";
  EXPECT_EQ(Grouped(a, b), std::string(came) + "+ X_Drive sdb\n");
}

TEST(MachineNames, CountAsEqualIfAskedFor) {
  TMachine a("web1"), b("db2.example.org");
  a.AddDisk("sda", "5", 1);
  b.AddDisk("sda", "6", 1);
  TComparisonOptions options;
  EXPECT_EQ(Grouped(a, b, options).find("~"), std::string::npos);
  options.fMachineOfA = FindMachineName(Compared({a.Get()}));
  options.fMachineOfB = FindMachineName(Compared({b.Get()}));
  EXPECT_EQ(options.fMachineOfA, "web1");
  EXPECT_EQ(options.fMachineOfB, "db2.example.org");
  EXPECT_EQ(Grouped(a, b, options),
            "~ X_Drive sda Size\n"
            "~ X_Medium sda Size in X_Drive sda\n"
            "~ X_Partition sda1 Size in X_Drive sda\n");
}

TEST(MachineNames, CanBeInKeysByChance) {
  TMachine a("backup"), b("web");
  a.AddDisk("backup", "5", 1);
  b.AddDisk("backup", "6", 1);
  a.Add("X_Drive", "peer web", "1");
  b.Add("X_Drive", "peer backup", "1");
  TComparisonOptions options;
  options.fMachineOfA = "backup";
  options.fMachineOfB = "web";
  const std::string text = Grouped(a, b, options);
  for (const std::string line : {"~ X_Drive backup Size\n", "~ X_Partition backup1 Size",
                                 "- X_Drive peer web", "+ X_Drive peer backup"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << " is not in\n" << text;
  }
  EXPECT_EQ(text.find("- X_Drive backup"), std::string::npos) << text;
}

TEST(MachineNames, AreWholeWords) {
  struct TRow {
    const char* fInA;
    const char* fInB;
    bool fAreEqual;
  };
  const TRow rows[] = {{"web1", "web2", true},
                       {"WEB1.example.org", "web2.example.org", true},
                       {"/dev/web1-vg/root", "/dev/web2-vg/root", true},
                       {"web1 and web1", "web2 and web2", true},
                       {"web10", "web20", false},
                       {"myweb1", "myweb2", false},
                       {"web_web1", "web_web2", false},
                       {"web1", "web1", true},
                       {"/web1 of web1", "/web1 of web2", true},
                       {"web2", "web1", false}};
  for (const TRow& row : rows) {
    TMachine a("web1"), b("web2");
    a.Add("X_Drive", "sda", row.fInA);
    b.Add("X_Drive", "sda", row.fInB);
    TComparisonOptions options;
    options.fMachineOfA = "web1";
    options.fMachineOfB = "web2";
    EXPECT_EQ(Grouped(a, b, options).empty(), row.fAreEqual) << row.fInA;
  }
}

}  // namespace
}  // namespace NVORNQDX20
