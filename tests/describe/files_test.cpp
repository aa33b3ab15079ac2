// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/files.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <numeric>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

namespace NVORNQDX20::NDescribe {
namespace {

namespace fs = std::filesystem;

/// What is read, or why it is not.
std::string TextOf(const TReading<std::string>& reading) {
  return reading ? *reading : reading.GetReason();
}

/// A tree that stands in for a machine.
class Files : public ::testing::Test {
 protected:
  std::string Line(const std::string& path) const { return TextOf(fFiles.ReadLine(path)); }
  void Link(const std::string& target, const std::string& name) const {
    fs::create_symlink(target, fTree.Path() / name);
  }

  const TTempDir fTree;
  const TTempDir fOutside;
  const std::string fSecret = fOutside.Write("secret", "outside").string();
  const TFiles fFiles = TFiles({fTree.Path().string(), {}});
};

TEST_F(Files, AreReadUpToASizeOrByTheirFirstLine) {
  const std::string text = " \x1b[a \n" + std::string(1018, 'x');
  fTree.Write("f", text);
  EXPECT_EQ(Line("/f"), "[a");
  EXPECT_EQ(TextOf(fFiles.Read("/f", 1024)), text);
  EXPECT_EQ(TextOf(fFiles.Read("/f", 1023)), "/f: more than 0 KiB");
  fTree.Write("f", " \x01\n" + std::string(65534, 'x'));
  EXPECT_EQ(Line("/f"), "/f: more than 64 KiB");
  fTree.Write("f", " \x01\nx");
  EXPECT_EQ(Line("/f"), "/f: empty");
}

TEST_F(Files, AreListedInOrder) {
  for (const char* name : {"d/b", "d/a/x", "d/.c", "d/B"}) fTree.Write(name, "");
  EXPECT_EQ(*fFiles.List("/d"), (std::vector<std::string>{".c", "B", "a", "b"}));
  EXPECT_EQ(fFiles.List("/d/b").GetReason(), "/d/b: Not a directory");
  EXPECT_FALSE(fFiles.IsAbsent("/d/a"));
  EXPECT_TRUE(fFiles.IsAbsent("/d/b/c"));
  EXPECT_EQ(*fFiles.FirstOf({"/no", "/d/b", "/d/a/x"}) + *fFiles.FirstOf({"/no", "/d/c"}),
            "/d/b/d/c");
  EXPECT_EQ(fFiles.FirstOf({}).GetReason(), "no path was given");
  EXPECT_EQ(fFiles.In("/").PathOf("x") + fFiles.In("d/").PathOf("x"), "/x/d/x");
  const std::string longName(300, 'x');  // neither absent nor there
  EXPECT_EQ(fFiles.FirstOf({longName.c_str(), "/d/b"}).GetReason(),
            "/" + longName + ": File name too long");
}

TEST_F(Files, AreFoundInAFolder) {
  fTree.Write("d/e/f", "-7\n");
  fTree.Write("d/flag", "2\n");
  const TFiles folder = fFiles.In("d");
  EXPECT_EQ(*folder.In("e").List(), std::vector<std::string>{"f"});
  EXPECT_EQ(*folder.ReadNumber<int>("e/f"), -7);
  EXPECT_EQ(*folder.In("/d/e").ReadNumber<double>("/d/e/f"), -7);
  EXPECT_EQ(folder.ReadNumber("e/f").GetReason(), "/d/e/f: '-7' is no valid number");
  EXPECT_EQ(folder.ReadFlag("flag").GetReason(), "/d/flag: neither 0 nor 1");
  EXPECT_EQ(folder.In("none").List().GetReason(), "/d/none: No such file or directory");
  fTree.Write("d/e/f", "8\n");  // what was read once is kept
  EXPECT_EQ(*folder.ReadNumber<int>("e/f"), -7);
}

TEST_F(Files, NoLinkLeadsOutOfTheTree) {
  fTree.Write("share/release", "inside");
  Link(fSecret, "absolute");
  Link("../../../../../../../.." + fSecret, "share/relative");
  Link(fOutside.Path().string(), "folder");
  Link("/share/release", "below");
  Link("../share/release", "share/up");
  for (const std::string path : {"/absolute", "/share/relative", "/folder/secret"}) {
    EXPECT_EQ(Line(path), path + ": No such file or directory");
  }
  EXPECT_EQ(Line("/../.." + fSecret), "/../.." + fSecret + ": No such file or directory");
  EXPECT_EQ(Line("/below") + Line("/share/up"), "insideinside");
  EXPECT_EQ(TextOf(fFiles.ReadLink("/share/up")), "../share/release");
  EXPECT_EQ(TextOf(fFiles.ReadLink("absolute")), fSecret);
  EXPECT_EQ(TextOf(fFiles.ReadLink("share/release")), "/share/release: not a symbolic link");
}

/// More folders and files than are kept open or fit into the first table of kept contents.
TEST_F(Files, OfManyFoldersAreFoundAgain) {
  fTree.Write("real/d0/f0", "linked\n");
  fs::create_directory(fTree.Path() / "all");
  Link("../real", "all/d1");
  Link(fOutside.Path().string(), "all/d2");
  std::string expected;
  for (int i = 3; i < 40; ++i) {
    for (int file = 0; file < 10; ++file) {
      const std::string name = "d" + std::to_string(i) + "/f" + std::to_string(file);
      fTree.Write("all/" + name, name + "\n");
      expected += name + ";/all/" + name + "/x: Not a directory;";
    }
  }
  for (int round = 0; round < 2; ++round) {
    std::string found;
    for (int i = 3; i < 40; ++i) {
      for (int file = 0; file < 10; ++file) {
        const std::string path = "/all/d" + std::to_string(i) + "/f" + std::to_string(file);
        found += Line(path) + ";" + Line(path + "/x") + ";";
        if (round == 0) std::ofstream(fTree.Path().string() + path) << "changed";
      }
      EXPECT_EQ(Line("/all/d1/d0/f0") + Line("/all/d2/secret"),
                "linked/all/d2/secret: No such file or directory");
      EXPECT_EQ(Line("/none/of/these"), "/none/of/these: No such file or directory");
      EXPECT_EQ(Line("/none/of/these/x"), "/none/of/these/x: No such file or directory");
    }
    EXPECT_EQ(found, expected);
  }
  EXPECT_EQ(*fFiles.List("/all/d1"), std::vector<std::string>{"d0"});
  EXPECT_EQ(fFiles.List("/all/d2").GetReason(), "/all/d2: No such file or directory");
  EXPECT_EQ(fFiles.List("/none/of").GetReason(), "/none/of: No such file or directory");
  EXPECT_EQ(fFiles.ReadLink("/none/of/x").GetReason(), "/none/of/x: No such file or directory");
  EXPECT_TRUE(fFiles.IsAbsent("/none/of/x"));
}

/// Makes the kernel answer ENOSYS to openat2, for the rest of the process.
bool ForbidOpenat2() {
  sock_filter filter[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                          BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program{std::size(filter), filter};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// What is found in a folder is kept, so each operation is tried after each other one.
TEST_F(Files, AreTheSameWhateverWasReadBefore) {
  for (const char* file : {"real/f", "shut/f", "dark/f"}) fTree.Write(file, "text\n");
  fs::create_directory(fTree.Path() / "all");
  fs::permissions(fTree.Path(), fs::perms::all);
  fs::permissions(fTree.Path() / "shut", fs::perms{0444});  // names can be listed, not followed
  fs::permissions(fTree.Path() / "dark", fs::perms{0111});
  const std::pair<const char*, std::string> links[] = {
      {"all/in", "../real"},      {"all/out", fOutside.Path().string()},
      {"all/lost", "nowhere"},    {"all/file", "../real/f"},
      {"all/circle", "circle/x"}, {"all/again", "in"},
      {"all/shut", "../shut"},    {"all/dark", "../dark"}};
  for (const auto& [name, target] : links) Link(target, name);
  std::vector<std::string> paths = {"/real", "/real/f", "/none", "/", "/shut", "/shut/f"};
  for (const auto& [name, target] : links) {
    for (const char* below : {"", "/.", "/f", "/../real/f"}) {
      paths.push_back("/" + std::string(name) + below);
    }
  }
  using TOperation = std::function<std::string(const TFiles&, const std::string&)>;
  const TOperation operations[] = {
      [](const TFiles& files, const std::string& path) { return TextOf(files.ReadLine(path)); },
      [](const TFiles& files, const std::string& path) { return TextOf(files.ReadLink(path)); },
      [](const TFiles& files, const std::string& path) {
        return TextOf(files.List(path).map([](const std::vector<std::string>& names) {
          return std::accumulate(names.begin(), names.end(), std::string("has"));
        }));
      },
      [](const TFiles& files, const std::string& path) {
        return TextOf(files.Exists(path).map(
            [](bool exists) -> std::string { return exists ? "is there" : "is absent"; }));
      }};
  const uid_t user = ::geteuid();
  ASSERT_EQ(::seteuid(user == 0 ? 65534 : user), 0);  // root may search any folder
  const TRequest tree{fTree.Path().string(), {}};
  std::vector<std::string> expected;
  for (const std::string& path : paths) {
    for (const TOperation& read : operations) expected.push_back(read(TFiles(tree), path));
  }
  EXPECT_EQ(std::count(expected.begin(), expected.end(), "text"), 8);
  EXPECT_EQ(std::count(expected.begin(), expected.end(), "is there"), 18);
  EXPECT_EQ(std::count(expected.begin(), expected.end(), "outside"), 0);
  for (const std::string& first : paths) {
    for (const TOperation& read : operations) {
      auto next = expected.begin();
      for (const std::string& second : paths) {
        for (const TOperation& readNext : operations) {
          const TFiles files(tree);
          (void)read(files, first);
          EXPECT_EQ(readNext(files, second), *next++) << second << " after " << first;
        }
      }
    }
  }
  ASSERT_EQ(::seteuid(user), 0);
  fs::permissions(fTree.Path() / "shut", fs::perms::all);
  fs::permissions(fTree.Path() / "dark", fs::perms::all);
}

TEST_F(Files, WithoutOpenat2LinksLeadToTheSameFiles) {
  fTree.Write("share/release", "inside");
  Link(fSecret, "absolute");
  Link("../../../../../../../.." + fSecret, "share/relative");
  Link("/share/.", "folder");
  Link("folder/../folder/release", "file");
  Link("circle/x", "circle");
  const auto read = [this] {
    if (!ForbidOpenat2()) ::_exit(9);
    const bool leadsOut = Line("/../.." + fSecret) == "outside";
    std::cerr << Line("/share/release") << ";" << Line("/absolute") << ";"
              << Line("/folder/relative") << ";" << Line("/circle") << ";" << Line("/file/x") << ";"
              << Line("/file") << TextOf(fFiles.ReadLink("/folder")) << Line("/../share/./release")
              << leadsOut << fFiles.List("/folder")->size();
    ::_exit(0);
  };
  EXPECT_EXIT(read(), ::testing::ExitedWithCode(0),
              "^inside;/absolute: No such file or directory;"
              "/folder/relative: No such file or directory;"
              "/circle: Too many levels of symbolic links;"
              "/file/x: Not a directory;inside/share/.inside02$");
}

TEST_F(Files, AreReadIfTheyAreRegularAndMayBeRead) {
  const fs::path file = fTree.Write("f", "text");
  fs::permissions(fTree.Path(), fs::perms::all);
  fs::permissions(file, fs::perms::none);
  const uid_t user = ::geteuid();
  if (::seteuid(user == 0 ? 65534 : user) != 0) GTEST_SKIP() << "root may read anything";
  EXPECT_EQ(Line("/f"), "/f: Permission denied");
  ASSERT_EQ(::seteuid(user), 0);
  fs::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  ::alarm(30);  // opening it could wait for ever
  EXPECT_EQ(Line("/f"), "/f: not a regular file");
  ::alarm(0);
  EXPECT_EQ(Line("/"), "/: not a regular file");
}

TEST_F(Files, AreReadWhateverTakesTheirPlaces) {
  const std::string file = fTree.Write("f", "text").string(), longer = fTree.Write("g", "longer\n");
  const std::string pipe = (fTree.Path() / "p").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const pid_t swapper = ::fork();
  if (swapper == 0) {
    ::alarm(30);
    for (bool isPipe = true;; isPipe = !isPipe) {
      const char* const other = isPipe ? pipe.c_str() : longer.c_str();
      ::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, other, RENAME_EXCHANGE);
    }
  }
  std::map<std::string, int> lines;
  for (int i = 0; i < 20000; ++i) ++lines[TextOf(TFiles({fTree.Path(), {}}).ReadLine("/f"))];
  ::kill(swapper, SIGKILL);
  ::waitpid(swapper, nullptr, 0);
  for (const auto& [line, count] : lines) {
    EXPECT_TRUE(line == "text" || line == "longer" || line == "/f: not a regular file")
        << count << " times " << line;
  }
}

TEST_F(Files, AreThisMachinesBelowItsRoot) {
  Link("/", "root");
  const TFiles here({(fTree.Path() / "root").string(), {}});
  EXPECT_TRUE(here.IsThisMachine());
  EXPECT_EQ(TextOf(here.ReadLine(fSecret)), "outside");
  EXPECT_FALSE(fFiles.IsThisMachine());
  EXPECT_QDX_STATUS(TFiles({fSecret, {}}), kQDXStatusFileNotFound);
}

}  // namespace
}  // namespace NVORNQDX20::NDescribe
