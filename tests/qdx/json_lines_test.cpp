// SPDX-License-Identifier: Apache-2.0
#include <sstream>

#include <nlohmann/json.hpp>

#include "qdx/installation.h"

namespace {

using TJSON = nlohmann::ordered_json;

/// The lines of a made-up machine.
class QDXJSONLines : public ::testing::Test {
 protected:
  QDXJSONLines() {
    fQDX.AddLinuxProvider();
    fQDX.AddDocumentPlugins();
    fQDX.AddPlugin(QDX_LINES_WRITER, "libjsonl.nsc.so");
    fFolder.Write("machine/etc/hostname", "web\n");
    fFolder.Write("machine/proc/sys/kernel/hostname", "web\n");
    for (int i = 0; i < 300; ++i) {
      fFolder.Write("machine/sys/class/net/e" + std::to_string(i) + "/address",
                    "52:54:00:12:34:56\n");
    }
    fRoot = PathOf("machine");
    fDocument = PathOf("machine.xml");
  }
  std::string PathOf(const std::string& name) const { return fFolder.Path() / name; }
  /// Returns what remains if the lines lose the time, and those of what changes with each run.
  static std::vector<TJSON> Parse(const std::string& text) {
    std::vector<TJSON> lines;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);) {
      lines.push_back(TJSON::parse(line));
      EXPECT_FALSE(input.eof()) << "a line without an end";
      lines.back().erase("time");
      const std::string name = lines.back()["class"];
      if (name.rfind("VORNSG_Collection", 0) == 0 || name == "VORNSG_OperatingSystem") {
        lines.pop_back();
      }
    }
    return lines;
  }

  const TInstallation fQDX;
  const TTempDir fFolder;
  std::string fRoot;
  std::string fDocument;
};

TEST_F(QDXJSONLines, AreTheSameOnAllWays) {
  const std::string file = PathOf("lines.jsonl");
  const auto collected = fQDX.Run({"collect", "--root", fRoot, "--consumer", "jsonl", "-o", file});
  EXPECT_EQ(collected.fExitCode, 0) << collected.fErrors;
  const auto lines = Parse(ReadWholeFile(file));
  EXPECT_GT(lines.size(), 300U);
  EXPECT_EQ(lines.front()["host"], "web");
  fQDX.Run({"collect", "--root", fRoot, "--consumer", "jsonl", "-o", file + ".gz"});
  EXPECT_EQ(Parse(fQDX.RunScript("zcat " + file + ".gz").fOutput), lines);
  fQDX.Run({"collect", "--root", fRoot, "-o", fDocument});
  EXPECT_EQ(Parse(fQDX.Run({"show", fDocument, "--json-lines"}).fOutput), lines);
  EXPECT_EQ(Parse(fQDX.Run({"show", "--root", fRoot, "--json-lines"}).fOutput), lines);
}

TEST_F(QDXJSONLines, ShowWhatIsAskedFor) {
  fQDX.Run({"collect", "--root", fRoot, "-o", fDocument});
  const auto run = fQDX.Run({"show", fDocument, "VORNSG_NetworkPort", "--json-lines", "--where",
                             "Name=e7", "--properties", "SystemName,Name"});
  EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
  TJSON line = TJSON::parse(run.fOutput);  // the only one
  const std::string path = line["path"];
  EXPECT_NE(path.find("\"e7\""), std::string::npos);
  EXPECT_EQ(line["properties"], TJSON::parse(R"({"SystemName": "web", "Name": "e7"})"));
  // Although only instances of a class were read.
  EXPECT_EQ(line["host"], "web");
  EXPECT_FALSE(line["time"].is_null());
  EXPECT_EQ(
      fQDX.Run({"show", fDocument, "NetworkPort", "--json-lines", "--where", "Name=x"}).fOutput,
      "");
  const auto walk = fQDX.Run({"show", fDocument, path, "--associators", "--json-lines"});
  EXPECT_EQ(walk.fExitCode, 0) << walk.fErrors;
  EXPECT_EQ(TJSON::parse(walk.fOutput)["class"], "VORNSG_ComputerSystem");
}

TEST_F(QDXJSONLines, HaveNeitherHostNorTimeOfForeignDocuments) {
  const auto run = fQDX.Run({"show", QDX_FOREIGN_DOCUMENT, "--json-lines"});
  const TJSON line = TJSON::parse(run.fOutput.substr(0, run.fOutput.find('\n')));
  EXPECT_TRUE(line["host"].is_null() && line["time"].is_null()) << line;
}

TEST_F(QDXJSONLines, AreCompleteWhenWritingFails) {
  const std::string file = PathOf("lines");
  fQDX.Run({"collect", "--root", fRoot, "-o", fDocument});
  for (const char* const redirection : {">", ">>"}) {
    std::filesystem::remove(file);
    fFolder.Write("lines", "before\n");
    const auto run = fQDX.RunScript("trap '' XFSZ; ulimit -f 100; \"$0\" show " + fDocument +
                                    " --json-lines " + redirection + file);
    EXPECT_EQ(run.fExitCode, 4);
    EXPECT_NE(run.fErrors.find("File too large"), std::string::npos) << run.fErrors;
    const std::string text = ReadWholeFile(file);
    const std::size_t before = redirection == std::string(">>") ? 7 : 0;
    EXPECT_GT(text.size(), 90000U);
    EXPECT_GT(Parse(text.substr(before)).size(), 10U);
  }
  EXPECT_EQ(fQDX.RunScript("\"$0\" show " + fDocument + " --json-lines >/dev/full").fExitCode, 4);
  const auto closed = fQDX.RunScript("\"$0\" show " + fDocument +
                                     " --json-lines | head -n 1; exit ${PIPESTATUS[0]}");
  EXPECT_EQ(closed.fExitCode, 4);
  EXPECT_EQ(closed.fErrors, "");
}

TEST_F(QDXJSONLines, RefuseWhatHasNoInstances) {
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{"--depth", "1"}, "option '--json-lines' cannot be used with '--depth'"},
      {{"--json"}, "option '--json' cannot be used with '--json-lines'"},
      {{"--csv"}, "option '--json-lines' cannot be used with '--csv'"},
      {{"--tree"}, "option '--tree' cannot be used with '--json-lines'"},
      {{"--schema"}, "option '--schema' cannot be used with '--json-lines'"}};
  for (const auto& [words, error] : rows) {
    std::vector<std::string> all = {"show", "--json-lines"};
    all.insert(all.end(), words.begin(), words.end());
    const auto run = fQDX.Run(all);
    EXPECT_EQ(run.fExitCode, 2);
    EXPECT_NE(run.fErrors.find(error), std::string::npos) << run.fErrors;
  }
}

}  // namespace
