// SPDX-License-Identifier: Apache-2.0
/// A server of PostgreSQL for a test: in a temporary folder, on a socket there, as a user who is
/// not root, which the server demands.
#ifndef TESTS_STORE_POSTGRESQL_SERVER_H_
#define TESTS_STORE_POSTGRESQL_SERVER_H_

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <pwd.h>
#include <unistd.h>

#include "support/run_program.h"
#include "support/temp_dir.h"

class TPostgreSQLServer {
 public:
  /// Returns why there is no server; empty if there is one.
  const std::string& WhyNot() const { return fWhyNot; }
  /// Returns the location of a new, empty database.
  std::string NewDatabase() {
    const std::string name = "test" + std::to_string(++fDatabases);
    Query("postgres", "CREATE DATABASE " + name);
    return LocationOf(name);
  }
  std::string Query(const std::string& database, const std::string& sql) const {
    return RunProgram(
               {"/usr/bin/psql", "-X", "-q", "-A", "-t", "-d", LocationOf(database), "-c", sql})
        .fOutput;
  }
  std::string LastDatabase() const { return "test" + std::to_string(fDatabases); }

  bool Start() const {
    return Control({"-l", fSocket + "/log", "-o", "-k " + fSocket + " -c listen_addresses=''", "-w",
                    "start"})
               .fExitCode == 0;
  }
  /// Like a crash.
  void Stop() const { Control({"-m", "immediate", "stop"}); }

  /// One for all tests of the process.
  static TPostgreSQLServer& Get() {
    static TPostgreSQLServer server;
    return server;
  }

 private:
  TPostgreSQLServer() {
    fPrograms = Programs();
    if (fPrograms.empty() || !std::filesystem::exists("/usr/bin/psql")) {
      fWhyNot = "PostgreSQL is not installed";
      return;
    }
    std::filesystem::permissions(fFolder.Path(), std::filesystem::perms(0755));
    const std::filesystem::path own = fFolder.Path() / "server";
    std::filesystem::create_directory(own);
    fSocket = own.string();
    if (::geteuid() == 0) {
      const passwd* const user = ::getpwnam("postgres");
      if (user == nullptr || ::chown(own.c_str(), user->pw_uid, user->pw_gid) != 0) {
        fWhyNot = "there is no user 'postgres' to run the server";
        return;
      }
    }
    const TProgramRun made = Run({fPrograms + "/initdb", "-D", fSocket + "/data", "-A", "trust",
                                  "-U", "tester", "-E", "UTF8", "--no-sync"});
    const bool runs = made.fExitCode == 0 && Start();
    if (!runs) fWhyNot = "the server does not start: " + made.fErrors;
  }
  ~TPostgreSQLServer() {
    if (fWhyNot.empty()) Stop();
  }

  /// The newest version of the Debian packages.
  static std::string Programs() {
    const std::filesystem::path all = "/usr/lib/postgresql";
    std::string newest;
    std::error_code error;
    for (const auto& version : std::filesystem::directory_iterator(all, error)) {
      const std::string programs = version.path() / "bin";
      if (std::filesystem::exists(programs + "/initdb")) newest = std::max(newest, programs);
    }
    return newest;
  }

  TProgramRun Run(std::vector<std::string> command) const {
    if (::geteuid() == 0) {
      command.insert(command.begin(), {"/usr/bin/setpriv", "--reuid", "postgres", "--regid",
                                       "postgres", "--clear-groups", "--"});
    }
    return RunProgram(command);
  }

  TProgramRun Control(const std::vector<std::string>& words) const {
    std::vector<std::string> command = {fPrograms + "/pg_ctl", "-D", fSocket + "/data"};
    command.insert(command.end(), words.begin(), words.end());
    return Run(command);
  }

  std::string LocationOf(const std::string& database) const {
    return "postgresql://tester@/" + database + "?host=" + fSocket;
  }

  const TTempDir fFolder;
  std::string fPrograms;
  std::string fSocket;
  std::string fWhyNot;
  int fDatabases = 0;
};

#endif  // TESTS_STORE_POSTGRESQL_SERVER_H_
