// SPDX-License-Identifier: Apache-2.0
// The queries of docs/fleet.md, about the fleet of examples/fleet, in both kinds of store.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "store/postgresql_server.h"
#include "support/run_program.h"
#include "support/temp_dir.h"

namespace {

/// In the order of the page.
const std::vector<std::string> kAnswers = {
    "web12|2026-01-02T03:00:12.000Z\n",
    "2.28|1\n2.31|11\n",
    "web09|/dev/sda|\n",
    "SSD-480E2|11|5281143791616\n",
    "web02|eth0|1000000000\n",
    "web06|eth0\n",
    "6.1.0-18-amd64|1\n6.1.0-31-amd64|11\n",
    "web06|VORNSG_BasedOn|VORNSG_StorageExtent /dev/sda, VORNSG_DiskPartition /dev/sda1\n"
    "web06|VORNSG_DiskDrive|/dev/sda\n"
    "web06|VORNSG_DiskPartition|/dev/sda1\n"
    "web06|VORNSG_MediaPresent|VORNSG_DiskDrive /dev/sda, VORNSG_StorageExtent /dev/sda\n"
    "web06|VORNSG_ResidesOnExtent|VORNSG_DiskPartition /dev/sda1, VORNSG_FileSystem /\n"
    "web06|VORNSG_StorageExtent|/dev/sda\n"
    "web06|VORNSG_SystemDevice|VORNSG_ComputerSystem, VORNSG_DiskDrive /dev/sda\n"
    "web06|VORNSG_SystemDevice|VORNSG_ComputerSystem, VORNSG_DiskPartition /dev/sda1\n"
    "web06|VORNSG_SystemDevice|VORNSG_ComputerSystem, VORNSG_StorageExtent /dev/sda\n",
    "VORNSG_PhysicalMemory|no SMBIOS table: /sys/firmware/dmi does not exist|12\n",
    "00000000000000000000000000000010|web10\n00000000000000000000000000000010|web11\n"};

std::vector<std::string> QueriesOfPage() {
  const std::string page = ReadWholeFile(QDX_SOURCES "/docs/fleet.md");
  const std::string begin = "```sql\n";
  std::vector<std::string> queries;
  for (std::size_t at = page.find(begin); at != page.npos; at = page.find(begin, at)) {
    at += begin.size();
    queries.push_back(page.substr(at, page.find("\n```", at) - at));
  }
  return queries;
}

/// The commands of the page in a folder with the examples, all but the first, which installs.
struct TTranscript {
  std::string fCommands;
  std::string fOutput;
};

TTranscript TranscriptOfPage() {
  const std::string page = ReadWholeFile(QDX_SOURCES "/docs/fleet.md");
  const std::size_t begin = page.find("\n", page.find("```text\n$ ") + 8) + 1;
  std::istringstream lines(page.substr(begin, page.find("```", begin) - begin));
  TTranscript transcript;
  for (std::string line; std::getline(lines, line);) {
    const bool isCommand = line.compare(0, 2, "$ ") == 0;
    (isCommand ? transcript.fCommands : transcript.fOutput) +=
        line.substr(isCommand ? 2 : 0) + "\n";
  }
  return transcript;
}

class FleetPage : public testing::Test {
 protected:
  void SetUp() override {
    const std::string documents = (fFolder.Path() / "documents").string();
    ::setenv("QDX", QDX, 1);
    const TProgramRun run =
        RunProgram({"/bin/sh", QDX_SOURCES "/examples/fleet/collect", documents});
    ASSERT_EQ(run.fExitCode, 0) << run.fErrors;
    for (const auto& file : std::filesystem::directory_iterator(documents)) {
      fDocuments.push_back(file.path().string());
    }
  }

  void Add(const std::string& store) const {
    std::vector<std::string> command = {QDX_STORE, "add", store};
    command.insert(command.end(), fDocuments.begin(), fDocuments.end());
    EXPECT_EQ(RunProgram(command).fOutput, std::to_string(fDocuments.size()) + " added\n");
  }

  const TTempDir fFolder;
  std::vector<std::string> fDocuments;
};

TEST_F(FleetPage, HasCommandsAndQueriesThatAFileAnswers) {
  if (!std::filesystem::exists("/usr/bin/sqlite3")) GTEST_SKIP() << "sqlite3 is not installed";
  const std::string store = (fFolder.Path() / "fleet.db").string();
  Add(store);
  std::vector<std::string> answers;
  for (const std::string& query : QueriesOfPage()) {
    answers.push_back(RunProgram({"/usr/bin/sqlite3", store, query}).fOutput);
  }
  EXPECT_EQ(answers, kAnswers);

  const std::string folders = std::filesystem::path(QDX).parent_path().string() + ":/usr/bin:/bin";
  ::setenv("PATH", folders.c_str(), 1);
  const TTranscript transcript = TranscriptOfPage();
  std::filesystem::create_directory(fFolder.Path() / "home");
  std::filesystem::create_directory_symlink(QDX_SOURCES "/examples",
                                            fFolder.Path() / "home/examples");
  const TProgramRun run = RunProgram(
      {"/bin/sh", "-c",
       "cd " + (fFolder.Path() / "home").string() + " && exec 2>&1\n" + transcript.fCommands});
  EXPECT_EQ(run.fOutput, transcript.fOutput);
}

TEST_F(FleetPage, HasQueriesThatAServerAnswersAlsoInPartitions) {
  TPostgreSQLServer& server = TPostgreSQLServer::Get();
  if (!server.WhyNot().empty()) GTEST_SKIP() << server.WhyNot();
  const std::string last = fDocuments.back();
  fDocuments.pop_back();
  const std::string store = server.NewDatabase();
  Add(store);
  // As on the page; a second time is refused and loses nothing, and so is what another view uses.
  const auto partition = [&] {
    return RunProgram({"/usr/bin/psql", "-X", "-q", "-f",
                       QDX_SOURCES "/packaging/postgresql/partition.sql", store});
  };
  server.Query(server.LastDatabase(),
               "CREATE SCHEMA other; CREATE VIEW other.facts AS SELECT * FROM fact; "
               "CREATE ROLE asking; GRANT SELECT ON fact TO asking");
  EXPECT_EQ(partition().fExitCode, 3);
  EXPECT_EQ(server.Query(server.LastDatabase(), "DROP VIEW other.facts"), "");
  const TProgramRun run = partition();
  EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
  EXPECT_EQ(partition().fExitCode, 3);
  EXPECT_EQ(
      server.Query(server.LastDatabase(), "SELECT has_table_privilege('asking', 'fact', 'SELECT')"),
      "t\n");
  EXPECT_EQ(server.Query(server.LastDatabase(),
                         "SELECT count(*) > 1 FROM (SELECT DISTINCT tableoid FROM fact) AS used"),
            "t\n");
  EXPECT_EQ(RunProgram({QDX_STORE, "add", store, last}).fOutput, "1 added\n");
  std::vector<std::string> answers;
  for (const std::string& query : QueriesOfPage()) {
    answers.push_back(server.Query(server.LastDatabase(), query));
  }
  EXPECT_EQ(answers, kAnswers);
}

}  // namespace
