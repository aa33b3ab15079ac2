// SPDX-License-Identifier: Apache-2.0
// The command, from documents to answers.
#include <gtest/gtest.h>

#include <array>
#include <ctime>

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "cimxml/documents.h"
#include "store/input/host.h"
#include "support/run_program.h"

namespace NVORNQDX20 {
namespace {

using TJSON = nlohmann::json;

class StoreVerbs : public ::testing::Test {
 protected:
  /// Three hosts of a model on two days; the third one has another disk since the second day.
  void SetUp() override {
    std::vector<std::string> words = {QDX_STORE, "add", Store()};
    for (const char* const day : {"01", "02"}) {
      for (const std::string name : {"web1", "web2", "web3"}) {
        const bool isOdd = name == "web3" && std::string(day) == "02";
        const TTestHost host{name, "202611" + std::string(day) + "120000.000000+000"};
        const TNamespace ns = MakeHost(host, {{"ProductName", "R1"}, {"UUID", UUIDOf(name)}});
        DeclareDisks(ns);
        AddDisk(ns, name, "sda",
                {{"Model", isOdd ? "\xc2\x9b"
                                   "31mNEW, \"1\""
                                 : "Old"}});
        if (isOdd) AddDisk(ns, name, "sdb", {{"Model", "Old"}});
        words.push_back((fFolder.Path() / (name + "-" + day + ".xml")).string());
        Write(words.back(), {ns, MakeRecord(host)});
      }
    }
    const TProgramRun run = RunProgram(words);
    ASSERT_EQ(run.fExitCode, 0) << run.fErrors;
  }

  std::string Store() const { return (fFolder.Path() / "store").string(); }
  static std::string UUIDOf(const std::string& name) {
    return "4c4c4544-0000-1000-8000-00000000000" + name.substr(3);
  }

  TProgramRun Ask(std::vector<std::string> words) const {
    words.insert(words.begin() + 1, Store());
    words.insert(words.begin(), QDX_STORE);
    return RunProgram(words);
  }

  TJSON JSONOf(std::vector<std::string> words) const {
    words.emplace_back("--json");
    const TProgramRun run = Ask(words);
    EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
    return TJSON::parse(run.fOutput);
  }

 private:
  const TTempDir fFolder;
};

TEST_F(StoreVerbs, ShowsTablesThatDoNotControlTheTerminal) {
  EXPECT_EQ(Ask({"odd"}).fOutput,
            "Host  Model  Object         Property  Value         Usual     Hosts\n"
            "web3  R1     DiskDrive sda  Model     ?31mNEW, \"1\"  Old       2 of 3\n"
            "web3  R1     DiskDrive sdb  -         has it        lacks it  2 of 3\n");
  EXPECT_EQ(Ask({"history", "web3"}).fOutput,
            "Time                  Change   Object         Property  Old  New\n"
            "2026-11-02T12:00:00Z  changed  DiskDrive sda  Model     Old  ?31mNEW, \"1\"\n"
            "2026-11-02T12:00:00Z  added    DiskDrive sdb  -         -    -\n"
            "(3 changes in 2 documents from 2026-11-01T12:00:00Z to 2026-11-02T12:00:00Z)\n");
  EXPECT_EQ(Ask({"history", "web1"}).fOutput,
            "(0 changes in 2 documents from 2026-11-01T12:00:00Z to 2026-11-02T12:00:00Z)\n");
}

TEST_F(StoreVerbs, WritesForPrograms) {
  EXPECT_EQ(Ask({"odd", "disk", "--csv"}).fOutput,
            "host,manufacturer,model,namespace,class,object,property,difference,value,usual,"
            "usualHosts,judgedHosts\r\n"
            "web3,,R1,root/cimv2,VORNSG_DiskDrive,sda,Model,value,\"\xc2\x9b"
            "31mNEW, \"\"1\"\"\",Old,2,3\r\n"
            "web3,,R1,root/cimv2,VORNSG_DiskDrive,sdb,,additional,,,2,3\r\n");
  const TJSON odd = JSONOf({"odd"});
  EXPECT_EQ(odd["models"], TJSON::parse(R"([{"manufacturer": null, "model": "R1",
    "isJudged": true, "hosts": ["web1", "web2", "web3"]}])"));
  EXPECT_EQ(odd["odd"][1]["usual"], nullptr);
  EXPECT_EQ(odd["odd"][1]["value"], "");
  EXPECT_EQ(odd["odd"][1]["difference"], "additional");
  const TJSON history = JSONOf({"history", UUIDOf("web3")});
  EXPECT_EQ(history["host"], "web3");
  EXPECT_EQ(history["changes"].size(), 3U);
  EXPECT_EQ(history["changes"][1], TJSON::parse(R"({"time": "2026-11-02T12:00:00Z",
    "after": "2026-11-01T12:00:00Z", "change": "added", "namespace": "root/cimv2",
    "class": "VORNSG_DiskDrive", "object": "sdb", "property": "DeviceID", "old": null,
    "new": "sdb", "reason": null})"));
  const TJSON hosts = JSONOf({"hosts"});
  ASSERT_EQ(hosts["hosts"].size(), 3U);
  EXPECT_EQ(hosts["hosts"][0]["host"], "web1");
  EXPECT_EQ(hosts["hosts"][0]["documents"], 2);
  EXPECT_EQ(hosts["hosts"][0]["lastSeen"], "2026-11-02T12:00:00Z");
}

TEST_F(StoreVerbs, ListsChangesBetweenTimes) {
  const auto count = [this](std::vector<std::string> words) {
    words.insert(words.begin(), {"history", "web3"});
    return JSONOf(words)["changes"].size();
  };
  EXPECT_EQ(count({"--since", "2026-11-02"}), 3U);
  EXPECT_EQ(count({"--since", "2026-11-02T12:00:01"}), 0U);
  EXPECT_EQ(count({"--until", "2026-11-02"}), 3U);
  EXPECT_EQ(count({"--until", "2026-11-01"}), 0U);
  EXPECT_EQ(count({"--since", "2026-11-02", "--until", "2026-11"}), 3U);
  EXPECT_EQ(count({"ComputerSystem"}), 0U);
  EXPECT_EQ(count({"disk"}), 3U);
}

TEST_F(StoreVerbs, RefuseWhatIsWrong) {
  const struct {
    std::vector<std::string> fWords;
    int fExitCode;
    const char* fReason;
  } rows[] = {
      {{"history", "web"}, 4, "it can be web1 (4c4c4544-0000-1000-8000-000000000001), web2 ("},
      {{"history", "nobody"}, 4, "finding host \"nobody\": the store has no host"},
      {{"history"}, 2, "HOST"},
      {{"history", ""}, 2, "empty"},
      {{"history", "web1", "dick"}, 4, "did you mean \"disk\"?"},
      {{"history", "web1", "--since", "soon"}, 2, "--since is 'soon', not a time"},
      {{"remove", "web1"}, 2, "'--since' or '--until' is missing"},
      {{"remove", "web", "--since", "2026"}, 4, "it can be web1"},
      {{"remove", "web1", "--until", "12"}, 2, "--until is '12', not a time"},
      {{"history", "web1", "--since", "2026-02", "--until", "2026-01"}, 2, "no time is both after"},
      {{"history", "web1", "--since", "7d", "--until", "7d"}, 2, "no time is both after"},
      {{"odd", "nonsense"}, 4, "the store has no such class"},
      {{"odd", "--json", "--csv"}, 2, "contradicts"},
      {{"hosts", "--silent-after", "x"}, 2, "--silent-after is 'x', not a number of days"},
      {{"hosts", "--silent-after", "7h"}, 2, "--silent-after is '7h', not"},
      {{"prune", "--readings", "-1d"}, 2, "--readings is '-1d', not a number of days, as in 30d"},
      {{"prune", "--readings", "100001"}, 2, "--readings is '100001', not"},
      {{"prune", "--readings", "99999999999999999999"}, 2, "not a number of days"},
      {{"prune", "--readings", "7dd"}, 2, "not a number of days"},
      {{"prune", "web1"}, 2, "web1"}};
  for (const auto& [words, exitCode, reason] : rows) {
    const TProgramRun run = Ask(words);
    EXPECT_EQ(run.fExitCode, exitCode) << run.fErrors;
    EXPECT_NE(run.fErrors.find(reason), std::string::npos) << run.fErrors;
    EXPECT_EQ(run.fOutput, "");
  }
}

TEST_F(StoreVerbs, RemarkOnHosts) {
  const std::string hosts = Ask({"hosts", "--silent-after", "0"}).fOutput;
  EXPECT_NE(hosts.find("web1  R1       2026-11-01T12:00:00Z  2026-11-02T12:00:00Z  2          "
                       "silent for "),
            std::string::npos)
      << hosts;
  EXPECT_EQ(Ask({"hosts", "--silent-after", "100000d"}).fOutput.find("silent"), std::string::npos);
  const TTestHost wrongClock{"web4", "21901101120000.000000+000"};
  const std::string document = Store() + ".xml";
  Write(document, {MakeHost(wrongClock), MakeRecord(wrongClock)});
  EXPECT_EQ(Ask({"add", document}).fExitCode, 0);
  EXPECT_NE(Ask({"hosts"}).fOutput.find("2190-11-01T12:00:00Z  1          last document from the"),
            std::string::npos);
  const TJSON host = JSONOf({"hosts"})["hosts"][3];
  EXPECT_EQ(host["isFromFuture"], true);
  EXPECT_EQ(host["isSilent"], false);
  EXPECT_EQ(JSONOf({"hosts"})["hosts"][0]["isFromFuture"], false);
}

TEST_F(StoreVerbs, TellProgramsWhatFailed) {
  const std::string longName(300'000, 'n');
  const TTestHost failed{longName, "20261101120000.000000+000", {"disks"}, {"root/x", "root/y"}};
  const std::string document = Store() + ".xml";
  Write(document, {MakeHost(failed, {{"UUID", UUIDOf("web4")}}), MakeRecord(failed)});
  EXPECT_EQ(Ask({"add", document}).fExitCode, 0);
  const std::string hosts = Ask({"hosts", "--silent-after", "100000", "--csv"}).fOutput;
  EXPECT_EQ(hosts.substr(0, hosts.find('\n')),
            "host,uuid,machineId,serialNumber,manufacturer,model,firstSeen,lastSeen,documents,"
            "daysOfSilence,isSilent,isFromFuture,hasAllPermissions,isComplete,partsLeftOut,"
            "sharesMachineIdWith,problems,alternating\r");
  EXPECT_NE(hosts.find("\r\n" + longName + "," + UUIDOf("web4") + ","), std::string::npos);
  const std::string end = ",false,false,true,false,disks,,p: it crashed; p: it crashed,\r\n";
  EXPECT_NE(hosts.find(end), std::string::npos) << hosts.substr(hosts.size() - 100);
  const std::string table = Ask({"hosts"}).fOutput;
  EXPECT_NE(table.find("\n" + longName.substr(0, 252) + "...  "), std::string::npos);
}

TEST_F(StoreVerbs, PruneReadingsOlderThanSoManyDays) {
  const auto add = [this](int hours) {
    const std::time_t time = std::time(nullptr) - hours * 3600;
    std::tm clock{};
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y%m%d%H%M%S.000000+000", ::gmtime_r(&time, &clock));
    const TTestHost host{"web1", text.data()};
    const TNamespace ns = MakeHost(host, {{"UUID", UUIDOf("web1")}});
    DeclareDisks(ns);
    AddDisk(ns, "web1", "sda", {{"Model", "Old"}, {"Hours", Number(hours)}});
    const std::string document = Store() + ".xml";
    Write(document, {ns, MakeRecord(host)});
    EXPECT_EQ(Ask({"add", document}).fExitCode, 0);
  };
  for (const int hours : {1, 23, 25, 24 * 7 - 1, 24 * 7 + 1, 24 * 30 - 1, 24 * 30 + 1}) add(hours);
  const struct {
    std::vector<std::string> fOptions;
    const char* fOutput;
  } rows[] = {{{"--readings", "100000"}, "0 readings removed\n"},
              {{}, "1 reading removed\n"},
              {{"--readings=30d"}, "0 readings removed\n"},
              {{"--readings", "7"}, "2 readings removed\n"},
              {{"--readings", "1d"}, "2 readings removed\n"},
              {{"--readings", "0"}, "2 readings removed\n"}};
  for (const auto& [options, output] : rows) {
    std::vector<std::string> words = {"prune"};
    words.insert(words.end(), options.begin(), options.end());
    const TProgramRun run = Ask(words);
    EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
    EXPECT_EQ(run.fOutput, output);
  }
  EXPECT_EQ(RunProgram({QDX_STORE, "prune", Store() + "-none"}).fExitCode, 4);
}

TEST_F(StoreVerbs, RemoveWhatAWrongClockHasHidden) {
  const std::string before = Ask({"hosts", "--csv"}).fOutput;
  const TTestHost wrongClock{"web3", "21901101120000.000000+000"};
  const TNamespace ns = MakeHost(wrongClock, {{"ProductName", "R1"}, {"UUID", UUIDOf("web3")}});
  const std::string document = Store() + ".xml";
  Write(document, {ns, MakeRecord(wrongClock)});
  EXPECT_NE(Ask({"add", document}).fErrors.find("'qdx-store remove'"), std::string::npos);
  EXPECT_NE(Ask({"hosts", "--csv"}).fOutput, before);
  EXPECT_EQ(Ask({"remove", "web3", "--since", "2190-12"}).fOutput, "0 documents of web3 removed\n");
  const std::string digest = RunProgram({"/usr/bin/sha256sum", document}).fOutput.substr(0, 64);
  EXPECT_EQ(Ask({"remove", "web3", "--since", "2190", "--until", "2190"}).fOutput,
            "2190-11-01T12:00:00Z " + digest + "\n1 document of web3 removed\n");
  EXPECT_EQ(Ask({"hosts", "--csv"}).fOutput, before);
  // The whole host.
  EXPECT_NE(Ask({"remove", "web1", "--until", "9999"}).fOutput.find("2 documents of web1 removed"),
            std::string::npos);
  EXPECT_EQ(JSONOf({"hosts"})["hosts"].size(), 2U);
}

TEST_F(StoreVerbs, ReportAStoreThatHasLostRows) {
  if (::access("/usr/bin/sqlite3", X_OK) != 0) GTEST_SKIP() << "sqlite3 is not installed";
  for (const char* const loss : {"UPDATE string SET value = '[]'", "DELETE FROM class"}) {
    ASSERT_EQ(RunProgram({"/usr/bin/sqlite3", Store(), loss}).fExitCode, 0);
    const TProgramRun run = Ask({"odd"});
    EXPECT_EQ(run.fExitCode, 4);
    EXPECT_NE(run.fErrors.find("using store " + Store() + ": it has lost "), std::string::npos)
        << run.fErrors;
  }
}

}  // namespace
}  // namespace NVORNQDX20
