// SPDX-License-Identifier: Apache-2.0
#include "input/document_pool.h"

#include <gtest/gtest.h>
#include <qdxsystem/descriptor.h>

#include <csignal>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cimxml/documents.h"
#include "store/input/host.h"

namespace NVORNQDX20::NStore {
namespace {

class DocumentPool : public ::testing::Test {
 protected:
  std::string DocumentOf(const std::string& host, const std::string& name) const {
    const std::string file = (fFolder.Path() / name).string();
    Write(file, {MakeHost({host}), MakeRecord({host})});
    return file;
  }

  /// One line for each document: the host, or the failure.
  static std::string ReadAll(const TInputRequest& request, const TInputLimits& limits = {}) {
    std::string list;
    TDocumentPool(limits).Read(request, [&list](TInputDocument&& document) {
      list += (document.fFacts             ? document.fFacts->fHost.fName
               : document.fFailure.empty() ? "known"
                                           : "failed: " + document.fFailure) +
              "\n";
      if (!document.fFacts) return;
      EXPECT_EQ(document.fFacts->fDigest, document.fDigest);
    });
    return list;
  }

  const TTempDir fFolder;
};

TEST_F(DocumentPool, KeepsTheOrderAndNamesWhatCannotBeRead) {
  std::vector<std::string> files;
  std::string expected;
  for (int i = 0; i < 20; ++i) {
    const std::string number = std::to_string(i);
    files.push_back(DocumentOf("web" + number, number + (i % 2 == 0 ? ".xml" : ".xml.gz")));
    expected += "web" + number + "\n";
  }
  const std::string half = fFolder.Write("half.xml", ReadWholeFile(files[0]).substr(0, 300));
  const std::string torn = fFolder.Write("torn.gz", ReadWholeFile(files[1]).substr(0, 300));
  files.insert(files.end(),
               {half, torn, fFolder.Write("empty.xml", ""), fFolder.Path().string(), "/nonexistent",
                fFolder.Write("noise.xml", "\x1b]0;title\x07"), DocumentOf("last", "last.xml")});
  TInputRequest request;
  request.fFiles = files;
  const std::string list = ReadAll(request);
  ASSERT_EQ(list.substr(0, expected.size()), expected);
  const std::string rest = list.substr(expected.size());
  EXPECT_NE(rest.find("failed: line "), std::string::npos) << rest;
  EXPECT_NE(rest.find("failed: line 1, column 1: the file is empty\n"
                      "failed: it is a folder\n"
                      "failed: No such file or directory\n"),
            std::string::npos)
      << rest;
  EXPECT_EQ(rest.find(half), std::string::npos) << "the caller names the file: " << rest;
  EXPECT_EQ(rest.substr(rest.size() - 5), "last\n") << rest;
}

TEST_F(DocumentPool, LeavesOutWhatIsKnown) {
  TInputRequest request;
  request.fFiles = {DocumentOf("a", "a.xml"), DocumentOf("b", "b.xml")};
  std::string digest;
  TDocumentPool().Read(request, [&digest](TInputDocument&& document) {
    if (digest.empty()) digest = document.fDigest;
  });
  EXPECT_EQ(digest.size(), 64U);
  request.fIsKnown = [&digest](const std::string& each) { return each == digest; };
  EXPECT_EQ(ReadAll(request), "known\nb\n");
}

TEST_F(DocumentPool, BoundsEachDocument) {
  TInputRequest request;
  request.fFiles = {DocumentOf("a", "a.xml")};
  TInputLimits limits;
  limits.fFacts = 2;
  EXPECT_EQ(ReadAll(request, limits), "failed: it has more than 2 facts\n");
  limits = {};
  limits.fBytes = 100;
  EXPECT_EQ(ReadAll(request, limits), "failed: it has more than 0 MiB\n");
  limits = {};
  request.fFiles = {fFolder.Write("bomb.xml", "<CIM>" + std::string(30 << 20, ' '))};
  limits.fMemory = 8 << 20;
  EXPECT_NE(ReadAll(request, limits).find("failed: "), std::string::npos);
  limits = {};
  limits.fTime = std::chrono::seconds(0);
  EXPECT_EQ(ReadAll(request, limits), "failed: it takes longer than 0 s to read\n");
}

TEST_F(DocumentPool, ReadsPipesToTheirEnd) {
  const std::string document = ReadWholeFile(DocumentOf("a", "a.xml"));
  const std::string pipe = (fFolder.Path() / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(pipe) << document; });
  TInputRequest request;
  request.fFiles = {pipe};
  EXPECT_EQ(ReadAll(request), "a\n");
  writer.join();
}

TEST_F(DocumentPool, WaitsOnlySoLongForAPipe) {
  const std::string document = ReadWholeFile(DocumentOf("a", "a.xml"));
  const std::string pipe = (fFolder.Path() / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  TInputRequest request;
  request.fFiles = {pipe, DocumentOf("b", "b.xml")};
  TInputLimits limits;
  limits.fTime = std::chrono::seconds(1);
  EXPECT_EQ(ReadAll(request, limits), "failed: no program writes to it\nb\n");
  TDescriptor writer(::open(pipe.c_str(), O_RDWR | O_CLOEXEC));
  limits.fPipeTime = std::chrono::seconds(2);
  EXPECT_EQ(ReadAll(request, limits), "failed: its writer takes longer than 2 s\nb\n");
  // One that says nothing for longer than the worker may need.
  limits.fPipeTime = std::chrono::seconds(60);
  std::thread slow([&] {
    std::ofstream stream(pipe);
    ::sleep(2);
    stream << document;
  });
  request.fFiles = {pipe};
  std::string list;
  std::thread reader([&] { list = ReadAll(request, limits); });
  slow.join();
  writer.Close();
  reader.join();
  EXPECT_EQ(list, "a\n");
}

TEST_F(DocumentPool, ReportsWhatTheReaderLeavesOut) {
  std::string text = ReadWholeFile(DocumentOf("a", "a.xml"));
  const std::string bad =
      "<VALUE.NAMEDOBJECT><CLASS NAME='bad name'></CLASS></VALUE.NAMEDOBJECT></DECLGROUP.WITHNAME>";
  text.replace(text.find("</DECLGROUP.WITHNAME>"), 21, bad);
  TInputRequest request;
  request.fFiles = {fFolder.Write("b.xml", text)};
  TDocumentPool().Read(request, [](TInputDocument&& document) {
    ASSERT_TRUE(document.fFacts) << document.fFailure;
    EXPECT_FALSE(document.fFacts->fIsComplete);
    ASSERT_EQ(document.fFacts->fWarnings.size(), 1U);
    EXPECT_NE(document.fFacts->fWarnings[0].find("bad name"), std::string::npos);
    EXPECT_TRUE(document.fFacts->IsUnknown("root/cimv2", "C", "", "o", "P"));
  });
}

TEST_F(DocumentPool, GoesOnWithoutTheProcessThatStartsWorkers) {
  TInputRequest request;
  std::string expected;
  for (int i = 0; i < 6; ++i) {
    request.fFiles.push_back(DocumentOf("a", std::to_string(i) + ".xml"));
    expected += "a";
  }
  TDocumentPool pool;
  pid_t launcher = 0;
  std::ifstream("/proc/thread-self/children") >> launcher;
  if (launcher <= 0) GTEST_SKIP() << "the kernel does not list children";
  std::string hosts;
  pool.Read(request, [&](TInputDocument&& document) {
    hosts += document.fFacts ? document.fFacts->fHost.fName : document.fFailure;
    if (hosts.size() == 2) ::kill(launcher, SIGKILL);
  });
  EXPECT_EQ(hosts, expected);
}

TEST_F(DocumentPool, EndsItsWorkersIfTheCallerThrows) {
  TInputRequest request;
  for (int i = 0; i < 4; ++i) request.fFiles.push_back(DocumentOf("a", std::to_string(i) + ".xml"));
  EXPECT_THROW(
      TDocumentPool().Read(request, [](TInputDocument&&) { throw std::runtime_error("full"); }),
      std::runtime_error);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
}

}  // namespace
}  // namespace NVORNQDX20::NStore
