// SPDX-License-Identifier: Apache-2.0
/// The command in an installation of the test's own, with the plug-ins that the test wants.
#ifndef TESTS_QDX_INSTALLATION_H_
#define TESTS_QDX_INSTALLATION_H_

#include <string>
#include <vector>

#include "support/run_program.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

class TInstallation {
 public:
  TInstallation() {
    std::filesystem::create_directories(Folder());
    std::filesystem::create_directory(fCommand.parent_path());
    std::filesystem::copy_file(QDX, fCommand);
    AddPlugin(QDXCORE_LIBRARY, QDXCORE_SONAME);
  }

  void AddPlugin(const std::string& file, const std::string& name) const {
    std::filesystem::copy_file(file, Folder() / name);
  }
  void AddLinuxProvider() const { AddPlugin(QDX_LINUX_PROVIDER, "liblinux.nsp.so"); }
  /// Both plug-ins "cimxml".
  void AddDocumentPlugins() const {
    AddPlugin(QDX_DOCUMENT_READER, "libcimxml.nsp.so");
    AddPlugin(QDX_DOCUMENT_WRITER, "libcimxml.nsc.so");
  }
  void AddBrokenPlugin(const std::string& name,
                       const std::string& contents = "\177ELF, and no more") const {
    fPrefix.Write("lib/qdx/" + name, contents);
  }
  std::filesystem::path Folder() const { return fPrefix.Path() / "lib/qdx"; }

  TProgramRun Run(std::vector<std::string> words) const {
    words.insert(words.begin(), fCommand.string());
    return RunProgram(words);
  }
  /// Runs a shell script in which "$0" is the command.
  TProgramRun RunScript(const std::string& script) const {
    return RunProgram({"/bin/bash", "-c", script, fCommand.string()});
  }

 private:
  const TTempDir fPrefix;
  const std::filesystem::path fCommand = fPrefix.Path() / "bin/qdx";
};

#endif  // TESTS_QDX_INSTALLATION_H_
