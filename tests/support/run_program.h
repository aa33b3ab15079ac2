// SPDX-License-Identifier: Apache-2.0
/// Runs a program as a child process and keeps what it prints.
#ifndef TESTS_SUPPORT_RUN_PROGRAM_H_
#define TESTS_SUPPORT_RUN_PROGRAM_H_

#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_dir.h"

struct TProgramRun {
  int fExitCode;  ///< Minus the signal's number if one ended the program; 127 if it did not start.
  std::string fOutput;
  std::string fErrors;
};

/// Runs the program at argv[0]. One that takes longer than two minutes is ended by SIGALRM.
inline TProgramRun RunProgram(const std::vector<std::string>& argv) {
  const TTempDir folder;
  const std::filesystem::path output = folder.Write("out", "");
  const std::filesystem::path errors = folder.Write("err", "");
  const pid_t child = ::fork();
  if (child == 0) {
    std::vector<char*> words;
    for (const std::string& word : argv) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    ::dup2(::open(output.c_str(), O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
    ::dup2(::open(errors.c_str(), O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    ::alarm(120);
    ::execv(words[0], words.data());
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), ReadWholeFile(output),
          ReadWholeFile(errors)};
}

#endif  // TESTS_SUPPORT_RUN_PROGRAM_H_
