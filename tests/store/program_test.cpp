// SPDX-License-Identifier: Apache-2.0
// The command itself: several writers, and what goes wrong around them.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cimxml/documents.h"
#include "postgresql_server.h"
#include "store/input/host.h"
#include "support/run_program.h"
#include "support/temp_dir.h"

using namespace NVORNQDX20;

namespace {

const int kFacts = 300;

/// A program that runs while the test goes on.
class TRunningProgram {
 public:
  explicit TRunningProgram(const std::vector<std::string>& argv) : fProcess(::fork()) {
    if (fProcess != 0) return;
    std::vector<char*> words;
    for (const std::string& word : argv) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::alarm(120);
    ::execv(words[0], words.data());
    ::_exit(127);
  }

  void Kill() const { ::kill(fProcess, SIGKILL); }
  int Wait() const {
    int status = 0;
    ::waitpid(fProcess, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  const pid_t fProcess;
};

class StoreProgram : public ::testing::Test {
 protected:
  /// Writes the document of this host and day.
  std::string DocumentOf(const std::string& host, int day) const {
    const TTestHost made = {host, "2026112" + std::to_string(day) + "120000.000000+000"};
    const TNamespace ns = MakeHost(made, {{"UUID", "uuid-of-" + host}});
    DeclareDisks(ns);
    for (int i = 0; i < kFacts; ++i) {
      AddDisk(ns, host, "/dev/" + std::to_string(i), {{"Model", std::to_string(i % 7 + day)}});
    }
    const std::string file = (fFolder.Path() / (host + std::to_string(day) + ".xml")).string();
    Write(file, {ns, MakeRecord(made)});
    return file;
  }

  std::vector<std::string> Documents() const {
    std::vector<std::string> files;
    for (const char* host : {"a", "b", "c", "d"}) {
      for (int day = 1; day < 4; ++day) files.push_back(DocumentOf(host, day));
    }
    return files;
  }

  static std::vector<std::string> Add(const std::string& store,
                                      const std::vector<std::string>& files) {
    std::vector<std::string> command = {QDX_STORE, "add", store};
    command.insert(command.end(), files.begin(), files.end());
    return command;
  }

  static std::string Query(const std::string& file, const std::string& sql) {
    return RunProgram({"/usr/bin/sqlite3", file, sql}).fOutput;
  }
  static bool HasSQLite() { return ::access("/usr/bin/sqlite3", X_OK) == 0; }

  std::string StoreFile() const { return (fFolder.Path() / "fleet.db").string(); }

  const TTempDir fFolder;
};

const char* const kContents =
    "SELECT (SELECT COUNT(*) FROM documents), (SELECT COUNT(*) FROM facts),"
    " (SELECT COUNT(*) FROM changes)";
/// Of four machines with two facts each; each disk has its name, and a model in three spans.
const char* const kAllContents = "12|4808|2400\n";

TEST_F(StoreProgram, NamesABadDocumentAndStoresTheOthers) {
  if (!HasSQLite()) GTEST_SKIP() << "sqlite3 is not installed";
  std::vector<std::string> files = Documents();
  files.insert(files.begin() + 5, fFolder.Write("bad\x1b[31m.xml", "<CIM").string());
  files.push_back("/nonexistent.xml");
  const TProgramRun run = RunProgram(Add(StoreFile(), files));
  EXPECT_EQ(run.fExitCode, 3);
  EXPECT_EQ(run.fOutput, "12 added, 2 failed\n");
  EXPECT_NE(run.fErrors.find("qdx-store: adding " + fFolder.Path().string() + "/bad?[31m.xml: "),
            std::string::npos);
  EXPECT_EQ(Query(StoreFile(), kContents), kAllContents);
}

TEST_F(StoreProgram, MakesAStoreForTheFirstGoodDocumentOnly) {
  const std::string nobody = (fFolder.Path() / "nobody.xml").string();
  const TTestHost made = {"localhost", "20261121120000.000000+000"};
  Write(nobody, {MakeHost(made), MakeRecord(made)});
  const TProgramRun bad = RunProgram({"/bin/sh", "-c", "\"$0\" \"$@\" </dev/null", QDX_STORE, "add",
                                      StoreFile(), "/nonexistent.xml", nobody, "-"});
  EXPECT_EQ(bad.fExitCode, 4);
  EXPECT_EQ(bad.fOutput, "0 added, 3 failed\n");
  EXPECT_NE(bad.fErrors.find("qdx-store: adding standard input: "), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(StoreFile()));
  const TProgramRun good = RunProgram(Add(StoreFile(), {nobody, DocumentOf("a", 1)}));
  EXPECT_EQ(good.fOutput, "1 added, 1 failed\n");
  EXPECT_EQ(RunProgram({QDX_STORE, "hosts", StoreFile()}).fExitCode, 0);
}

TEST_F(StoreProgram, RefusesWhatIsNoStoreOrTwiceStandardInput) {
  const TProgramRun url = RunProgram(Add("mysql://u:secret@h/n", {"-"}));
  EXPECT_EQ(url.fExitCode, 2);
  EXPECT_NE(url.fErrors.find("a file or postgresql://USER@HOST/NAME, not mysql://"),
            std::string::npos);
  EXPECT_EQ(url.fErrors.find("secret"), std::string::npos);
  EXPECT_EQ(RunProgram(Add(StoreFile(), {"-", "-"})).fExitCode, 2);
}

/// Another writer has begun, and ends after a while.
TEST_F(StoreProgram, TellsThatItWaitsForAnotherWriter) {
  const std::string document = DocumentOf("a", 1);
  const auto expectWait = [&](const std::string& store, const std::string& shell,
                              const std::string& locks) {
    EXPECT_EQ(RunProgram(Add(store, {DocumentOf("b", 1)})).fErrors, "");
    const std::string isLocked = (fFolder.Path() / "locked").string();
    std::thread writer([&] {
      RunProgram({"/bin/sh", "-c",
                  "(echo \"" + locks + "\"; touch '" + isLocked + "'; sleep 3) | " + shell});
    });
    while (!std::filesystem::exists(isLocked)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const TProgramRun run = RunProgram(Add(store, {document}));
    writer.join();
    std::filesystem::remove(isLocked);
    EXPECT_EQ(run.fOutput, "1 added\n");
    EXPECT_EQ(run.fErrors, "qdx-store: waiting for another program that has locked store " + store +
                               ", at most 60 s\n");
  };
  if (HasSQLite()) expectWait(StoreFile(), "sqlite3 '" + StoreFile() + "'", "BEGIN IMMEDIATE;");
  TPostgreSQLServer& server = TPostgreSQLServer::Get();
  if (!server.WhyNot().empty()) GTEST_SKIP() << server.WhyNot();
  const std::string store = server.NewDatabase();
  expectWait(store, "psql -q '" + store + "'", "BEGIN; SELECT pg_advisory_xact_lock(7366225, 0);");
}

TEST_F(StoreProgram, TakesTurnsWithOtherWritersOfAFile) {
  if (!HasSQLite()) GTEST_SKIP() << "sqlite3 is not installed";
  const std::vector<std::string> files = Documents();
  const std::vector<std::string> reversed(files.rbegin(), files.rend());
  const TRunningProgram first(Add(StoreFile(), files));
  const TRunningProgram second(Add(StoreFile(), reversed));
  EXPECT_EQ(first.Wait(), 0);
  EXPECT_EQ(second.Wait(), 0);
  EXPECT_EQ(Query(StoreFile(), kContents), kAllContents);
}

TEST_F(StoreProgram, WritesBesideOtherWritersOfAServer) {
  TPostgreSQLServer& server = TPostgreSQLServer::Get();
  if (!server.WhyNot().empty()) GTEST_SKIP() << server.WhyNot();
  const std::string store = server.NewDatabase();
  const std::vector<std::string> files = Documents();
  const std::vector<std::string> reversed(files.rbegin(), files.rend());
  const TRunningProgram first(Add(store, files));
  const TRunningProgram second(Add(store, reversed));
  const TRunningProgram third(Add(store, files));
  EXPECT_EQ(first.Wait(), 0);
  EXPECT_EQ(second.Wait(), 0);
  EXPECT_EQ(third.Wait(), 0);
  EXPECT_EQ(server.Query(server.LastDatabase(), kContents), kAllContents);
}

TEST_F(StoreProgram, LeavesNothingHalfWhenItIsKilled) {
  if (!HasSQLite()) GTEST_SKIP() << "sqlite3 is not installed";
  const std::vector<std::string> files = Documents();
  for (int attempt = 0; attempt < 8; ++attempt) {
    const TRunningProgram program(Add(StoreFile(), files));
    std::this_thread::sleep_for(std::chrono::milliseconds(15 * attempt));
    program.Kill();
    program.Wait();
    if (!std::filesystem::exists(StoreFile())) continue;
    EXPECT_EQ(Query(StoreFile(), "PRAGMA integrity_check"), "ok\n");
  }
  EXPECT_EQ(RunProgram(Add(StoreFile(), files)).fExitCode, 0);
  EXPECT_EQ(Query(StoreFile(), kContents), kAllContents);
}

TEST_F(StoreProgram, ReportsAFullDisk) {
  if (!HasSQLite()) GTEST_SKIP() << "sqlite3 is not installed";
  const std::string disk = (fFolder.Path() / "disk").string();
  std::filesystem::create_directory(disk);
  if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=400k") != 0) {
    GTEST_SKIP() << "a small file system cannot be mounted: not root";
  }
  const std::string store = disk + "/fleet.db";
  const TProgramRun run = RunProgram(Add(store, Documents()));
  const std::string intact = Query(store, "PRAGMA integrity_check");
  ::umount(disk.c_str());
  EXPECT_EQ(run.fExitCode, 4);
  EXPECT_NE(run.fErrors.find("full"), std::string::npos) << run.fErrors;
  EXPECT_EQ(intact, "ok\n");
}

TEST_F(StoreProgram, ReadsAStoreOnAReadOnlyDisk) {
  const std::string disk = (fFolder.Path() / "disk").string();
  std::filesystem::create_directory(disk);
  if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=10m") != 0) {
    GTEST_SKIP() << "a file system cannot be mounted: not root";
  }
  // Of the name of a file nothing is taken for a parameter.
  const std::string store = disk + "/a=\"b\"%3F?#.db";
  EXPECT_EQ(RunProgram(Add(StoreFile(), {DocumentOf("a", 1)})).fExitCode, 0);
  std::filesystem::copy_file(StoreFile(), store);
  ::mount(nullptr, disk.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr);
  const TProgramRun hosts = RunProgram({QDX_STORE, "hosts", store, "--csv"});
  const TProgramRun add = RunProgram(Add(store, {DocumentOf("b", 1)}));
  ::umount(disk.c_str());
  EXPECT_EQ(hosts.fExitCode, 0) << hosts.fErrors;
  EXPECT_NE(hosts.fOutput.find("\na,uuid-of-a,"), std::string::npos) << hosts.fOutput;
  EXPECT_EQ(add.fExitCode, 4);
  EXPECT_NE(add.fErrors.find("readonly"), std::string::npos) << add.fErrors;
}

/// Who may read a store, but not write it or beside it.
class StoreOfAnother : public StoreProgram {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "another user is needed, which only root can become";
    std::filesystem::permissions(fFolder.Path(), std::filesystem::perms(0755));
    std::filesystem::create_directory(fStoreFolder);
    ASSERT_EQ(RunProgram(Add(fStore, {DocumentOf("a", 1)})).fExitCode, 0);
  }

  static TProgramRun RunAsAnother(std::vector<std::string> command) {
    command.insert(command.begin(), {"/usr/bin/setpriv", "--reuid", "65534", "--clear-groups"});
    return RunProgram(command);
  }

  std::size_t FilesBeside() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(fStoreFolder), {}));
  }

  const std::filesystem::path fStoreFolder = fFolder.Path() / "stores";
  const std::string fStore = (fStoreFolder / "fleet.db").string();
};

TEST_F(StoreOfAnother, AnswersQuestionsAndIsNotWritten) {
  const std::string link = (fFolder.Path() / "link.db").string();
  std::filesystem::create_symlink(fStore, link);
  const std::string document = DocumentOf("b", 1);
  std::filesystem::permissions(document, std::filesystem::perms(0644));
  const struct {
    unsigned fOfFolder;
    unsigned fOfFile;
  } rows[] = {{0755, 0644}, {0755, 0666}, {0777, 0644}};
  for (const auto& [ofFolder, ofFile] : rows) {
    std::filesystem::permissions(fStoreFolder, std::filesystem::perms(ofFolder));
    std::filesystem::permissions(fStore, std::filesystem::perms(ofFile));
    for (const std::string& store : {fStore, link}) {
      for (const std::vector<std::string>& words :
           {std::vector<std::string>{"hosts", store, "--csv"}, {"history", store, "a", "--csv"}}) {
        std::vector<std::string> command = words;
        command.insert(command.begin(), QDX_STORE);
        // Days of silence can change between two questions.
        const std::string before = RunProgram(command).fOutput;
        const TProgramRun run = RunAsAnother(command);
        EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
        EXPECT_TRUE(run.fOutput == before || run.fOutput == RunProgram(command).fOutput)
            << run.fOutput;
      }
      const TProgramRun add = RunAsAnother(Add(store, {document}));
      EXPECT_EQ(add.fExitCode, 4);
      EXPECT_NE(add.fErrors.find("readonly"), std::string::npos) << add.fErrors;
    }
    // Files of another user here would keep the owner from writing.
    EXPECT_EQ(FilesBeside(), 1U) << std::oct << ofFolder << " " << ofFile;
  }
}

TEST_F(StoreOfAnother, ShowsWhatIsInTheLogOfAWriter) {
  if (!HasSQLite()) GTEST_SKIP() << "sqlite3 is not installed";
  std::filesystem::permissions(fStore, std::filesystem::perms(0644));
  // A process that is killed leaves its log. Once it has written all of it: a log without its index
  // can be read by the owner only.
  const std::string written = (fFolder.Path() / "written").string();
  RunProgram({"/bin/sh", "-c",
              "(echo \"UPDATE host SET name = 'renamed';\"; echo '.shell touch " + written +
                  "'; sleep 5) | sqlite3 '" + fStore + "' & while ! test -e '" + written +
                  "'; do sleep 0.1; done; kill -9 $!"});
  ASSERT_GT(FilesBeside(), 1U);
  const TProgramRun run = RunAsAnother({QDX_STORE, "hosts", fStore, "--csv"});
  EXPECT_NE(run.fOutput.find("\nrenamed,"), std::string::npos) << run.fErrors;
}

TEST_F(StoreOfAnother, IsNamedIfItCannotBeMadeOrIsOld) {
  std::filesystem::permissions(fStore, std::filesystem::perms(0644));
  const std::string other = (fStoreFolder / "new.db").string();
  const TProgramRun add = RunAsAnother(Add(other, {"-"}));
  EXPECT_EQ(add.fExitCode, 4);
  EXPECT_NE(add.fErrors.find("qdx-store: using store " + other + ": "), std::string::npos);
  std::filesystem::permissions(fStore, std::filesystem::perms(0600));
  const TProgramRun secret = RunAsAnother({QDX_STORE, "hosts", fStore});
  EXPECT_EQ(secret.fErrors, "qdx-store: using store " + fStore + ": Permission denied\n");
  std::filesystem::permissions(fStore, std::filesystem::perms(0644));
  if (!HasSQLite()) GTEST_SKIP() << "sqlite3 is not installed";
  Query(fStore, "UPDATE store SET version = 2");
  const TProgramRun hosts = RunAsAnother({QDX_STORE, "hosts", fStore});
  EXPECT_EQ(hosts.fExitCode, 4);
  EXPECT_NE(hosts.fErrors.find("an older qdx-store has made it"), std::string::npos)
      << hosts.fErrors;
}

TEST_F(StoreProgram, ReportsAFileThatGoesAway) {
  ASSERT_EQ(RunProgram(Add(StoreFile(), {DocumentOf("a", 1)})).fExitCode, 0);
  const std::string document = DocumentOf("a", 2);
  const std::string pipe = (fFolder.Path() / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] {
    std::ofstream stream(pipe);  // waits until the program has opened the store, and reads
    std::filesystem::remove(StoreFile());
    stream << ReadWholeFile(document);
  });
  const TProgramRun run = RunProgram(Add(StoreFile(), {pipe}));
  writer.join();
  EXPECT_EQ(run.fExitCode, 4);
  EXPECT_NE(run.fErrors.find("removed or replaced"), std::string::npos) << run.fErrors;
}

TEST_F(StoreProgram, ReportsAServerThatGoesAway) {
  TPostgreSQLServer& server = TPostgreSQLServer::Get();
  if (!server.WhyNot().empty()) GTEST_SKIP() << server.WhyNot();
  const std::string store = server.NewDatabase();
  const std::vector<std::string> files = Documents();
  ASSERT_EQ(RunProgram(Add(store, {files[0]})).fExitCode, 0);
  // A document that arrives slowly, so that the server can stop in between.
  const std::string pipe = (fFolder.Path() / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] {
    const std::string contents = ReadWholeFile(files[1]);
    std::ofstream stream(pipe);  // waits until the program has connected and reads
    server.Stop();
    stream << contents;
  });
  const TProgramRun run = RunProgram(Add(store, {pipe, files[2]}));
  writer.join();
  EXPECT_EQ(run.fExitCode, 4);
  EXPECT_NE(run.fErrors.find("0 added, then the store failed"), std::string::npos) << run.fErrors;
  EXPECT_EQ(RunProgram(Add(store, files)).fExitCode, 4);
  server.Start();
  EXPECT_EQ(RunProgram(Add(store, files)).fOutput, "11 added, 1 stored before\n");
  EXPECT_EQ(server.Query(server.LastDatabase(), kContents), kAllContents);
}

}  // namespace
