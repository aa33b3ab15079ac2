// SPDX-License-Identifier: Apache-2.0
// The commonest mistakes, each with the line that explains it.
#include "qdx/installation.h"

namespace {

constexpr const char* kFiles = R"(
  "$0" collect --root tree -o w.xml 2>&1 >/dev/null || exit 99
  gzip -k w.xml; head -c 2000 w.xml >cut.xml; head -c 500 w.xml.gz >cut.xml.gz
  : >empty.xml; echo hello >text.xml; echo '<html/>' >html.xml; mkdir folder closed
  chmod a+r w.xml*; chmod a+w folder; touch secret.xml; chmod 0 secret.xml; chmod 555 closed
  chmod a+rx . "${0%/bin/qdx}"
  # Root may read and write everything.
  qdx() { [ $(id -u) = 0 ] && set -- setpriv --reuid=65534 --clear-groups "$qdx" "$@" || set -- "$qdx" "$@"; "$@"; }
)";

const struct {
  const char* fCommand;
  int fExitCode;
  const char* fLine;  ///< After "qdx: "; "..." stands for any text.
} kRows[] = {
    // What was typed.
    {"shwo", 2, "unknown verb 'shwo'; did you mean 'show'? Try 'qdx --help'."},
    {"frob", 2, "unknown verb 'frob'. Try 'qdx --help'."},
    {"show --jsn", 2, "unknown option '--jsn'; did you mean '--json'? Try 'qdx help show'."},
    {"--jsn show", 2, "unknown option '--jsn'; did you mean '--json'? Try 'qdx --help'."},
    {"plugins --root /", 2, "plugins has no option '--root'. Try 'qdx help plugins'."},
    {"plugins x", 2, "unexpected argument 'x'. Try 'qdx help plugins'."},
    {"diff w.xml", 2, "diff needs an argument: B. Try 'qdx help diff'."},
    {"diff - -", 2, "only one of the two can be standard input. Try 'qdx help diff'."},
    {"collect -o", 2, "option '--output' needs a value: FILE. Try 'qdx help collect'."},
    {"show w.xml --memory x", 2,
     "--memory is 'x', not a number of MiB from 1 to 4294967295. Try 'qdx help show'."},
    {"collect --timeout 0", 2,
     "--timeout is '0', not a number of seconds from 1 to 65535. Try 'qdx help collect'."},
    {"plugins --log-level all", 2,
     "unknown log level 'all', none of error, warning, status, debug, verbose. Try 'qdx help "
     "plugins'."},
    // Documents.
    {"show none.xml", 4, "reading document none.xml: No such file or directory"},
    {"validate none.xml", 4, "reading document none.xml: No such file or directory"},
    {"diff w.xml none.xml", 4, "reading document none.xml: No such file or directory"},
    {"show folder", 4,
     "reading document folder: Is a directory; 'qdx summary --root folder' describes the machine "
     "whose files are in a folder"},
    {"show secret.xml", 4,
     "reading document secret.xml: Permission denied; read it as its owner or as root"},
    {"show empty.xml", 4, "reading document empty.xml: line 1, column 1: the file is empty"},
    {"show text.xml", 4,
     "reading document text.xml: line 1, column 1: no XML document: syntax error"},
    {"show html.xml", 4,
     "reading document html.xml: line 1, column 1: no CIM-XML document: it begins with element "
     "\"html\""},
    {"show cut.xml", 4, "reading document cut.xml: line ...: the document ends too early"},
    {"show cut.xml.gz", 4,
     "reading document cut.xml.gz: gzip: the file ends too early, after 500 bytes"},
    {"show w.xml --memory 1", 4,
     "reading document w.xml: line ...: the document needs more than 1 MiB of memory; --memory "
     "sets another limit"},
    // What is described, and by whom.
    {"show w.xml 'VORNSG_DiskDrive.DeviceID=x'", 4,
     "looking for VORNSG_DiskDrive.DeviceID=x: Reference missing opening '\"'; in the shell an "
     "object path needs single quotes: 'CLASS.KEY=\"VALUE\"'"},
    {"identity --root none", 4, "reading root folder none: No such file or directory"},
    {"identity --root w.xml", 4, "reading root folder w.xml: not a folder"},
    {"show --provider none", 4,
     "looking for provider none: no plug-in brings one of this name; 'qdx plugins' lists all"},
    {"collect --only disk -o x", 4,
     "looking for part disk: no provider has it, only ...; did you mean 'disks'?"},
    {"collect --consumer none -o folder/x", 4,
     "loading consumer .../libnone.nsc.so: it is not there; 'qdx plugins' lists what is installed"},
    // Where it is written.
    {"collect --root tree -o none/x.xml", 4, "writing none/x.xml: its folder does not exist"},
    {"collect --root tree -o closed/x.xml", 4,
     "writing closed/x.xml: no permission to create a file in its folder"},
    {"collect --root tree -o folder", 4, "writing document folder: Is a directory"},
    {"collect --root tree -o /dev/full", 4, "writing document /dev/full: No space left on device"},
    {"identity --root tree >/dev/full", 4, "writing standard output: No space left on device"},
    {"plugins --log none/l", 4, "opening log none/l: No such file or directory"}};

/// Returns whether the text is as expected.
bool Fits(const std::string& text, const std::string& expected) {
  const std::size_t gap = expected.find("...");
  if (gap == std::string::npos) return text == expected;
  const std::string end = expected.substr(gap + 3);
  return text.size() >= gap + end.size() && text.compare(0, gap, expected, 0, gap) == 0 &&
         text.compare(text.size() - end.size(), end.size(), end) == 0;
}

TEST(QDXErrors, SayWhatWasTriedOnWhatWhyAndWhatToDo) {
  TInstallation installation;
  installation.AddLinuxProvider();
  installation.AddDocumentPlugins();
  const TTempDir folder;
  folder.Write("tree/proc/sys/kernel/hostname", "srv1\n");
  folder.Write("tree/etc/os-release", "ID=debian\n");
  const std::string start = "cd '" + folder.Path().string() + "' || exit 99; qdx=$0\n";
  const TProgramRun made = installation.RunScript(start + kFiles);
  ASSERT_EQ(made.fExitCode, 0) << made.fErrors;
  const std::string function = std::string(kFiles).substr(std::string(kFiles).find("  # Root"));
  for (const auto& [command, exitCode, line] : kRows) {
    const TProgramRun run = installation.RunScript(start + function + "qdx " + command);
    EXPECT_EQ(run.fExitCode, exitCode) << command;
    EXPECT_TRUE(Fits(run.fErrors, "qdx: " + std::string(line) + "\n")) << command << "\n"
                                                                       << run.fErrors;
  }
}

}  // namespace
