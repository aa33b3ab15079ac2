// SPDX-License-Identifier: Apache-2.0
// Runs operations of the library, and lets each allocation and each system call in them fail:
//
//   fault_operations FOLDER SAMPLE [NAME [CALL NUMBER ERROR]]
//
// Each operation returns a text, and must return the same one or throw an exception of the library
// or of C++ after a fault, or say in its result which value is missing. It must not crash, hang, or
// keep memory or descriptors. FOLDER is an empty one. Every SAMPLE-th fault is tried. Prints a line
// for script/faults for each kind of outcome, "count NAME OUTCOME NUMBER", and for each violation,
// "violation NAME OUTCOME FAULT PLACE", with tabs in between.
#include <qdxcimxml/document_reader.h>
#include <qdxcimxml/document_writer.h>
#include <qdxcore/copy.h>
#include <qdxcore/logger.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/schema_helper.h>
#include <qdxdescribe/provider.h>
#include <qdxsystem/descriptor.h>
#include <qdxsystem/error_text.h>
#include <qdxsystem/write.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <set>
#include <sstream>

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "faults.h"
#include "support/class_builder.h"

namespace NVORNQDX20 {
namespace {

using namespace NDescribe;
using TType = TCIMValue::TCIMType;

constexpr unsigned kTimeout = 20;  // seconds

// --- the operations

std::string Values() {
  const std::vector<TCIMValue> values = {true,
                                         static_cast<unsigned char>(7),
                                         -7L,
                                         2.5,
                                         "a text that is longer than a small one",
                                         TCIMDateTime(2004, 3, 15, 14, 30, 0, 0, 60),
                                         TCIMValue(TType::kCIMTypeUint32, 0, {1U, 2U, 3U})};
  std::string texts;
  for (const TCIMValue& value : values) {
    TCIMValue copy = value;
    texts += copy.ToString(10) + (copy == value ? "\n" : " differs\n");
  }
  return texts;
}

std::string ParsedValues() {
  std::string texts;
  const auto parse = [&texts](TType type, std::string text) {
    texts += TCIMValue(type, text, nullptr).ToString(10) + "\n";
  };
  parse(TType::kCIMTypeString, "a text that is longer than a small one");
  parse(TType::kCIMTypeSint64, "-12345");
  parse(TType::kCIMTypeDateTime, "20040315143000.000000+060");
  return texts;
}

std::string DateTimes() {
  const TCIMDateTime point("20040315143000.000000+060");
  const TCIMDateTime interval("00000001020304.000005:000");
  const std::string now = TOSSpecific::GetLocalTime().ToString();  // the clock stands still
  return (point + interval).ToString() + (point - point).ToString() + point.ToUIString() + now +
         (point < point + interval ? "<" : ">");
}

TNamespace MakeDisks() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_Disk", {{"DeviceID", ""}, {"Number", 0U}},
           {{"Model", kNoText}, {"Levels", TCIMValue(TType::kCIMTypeUint32, 0, {1U, 2U})}});
  AddInstance(ns, "CIM_Disk", {{"DeviceID", "the disk with \"quotes\""}, {"Number", 7U}});
  AddInstance(ns, "CIM_Disk", {{"DeviceID", "sdb"}, {"Number", 8U}, {"Model", "A model & more"}});
  AddClass(ns, "CIM_Part", {{"Whole", NullReference(ns, "CIM_Disk")}});
  AddInstance(ns, "CIM_Part",
              {{"Whole", ReferenceTo(ns, "CIM_Disk.DeviceID=\"sdb\",Number=\"8\"")}});
  return ns;
}

const TNamespace& Disks() {
  static const TNamespace disks = MakeDisks();
  return disks;
}

/// Returns the instances of the namespace and their values. Not as JSON, whose destructors
/// allocate.
std::string Contents(const ICIMNamespace& ns) {
  std::string text;
  std::vector<boost::shared_ptr<ICIMClass>> classes;
  ns.EnumerateClasses(TAddToVectorCallback(classes), {});
  for (const auto& cimClass : classes) {
    text += cimClass->GetName({}) + '\n';
    std::vector<boost::shared_ptr<ICIMInstance>> instances;
    cimClass->EnumerateInstances(TAddToVectorCallback(instances), false, {});
    for (const auto& instance : instances) {
      const auto append = [&text](const boost::shared_ptr<ICIMProperty>& property) {
        const TCIMValue& value = property->GetValue();
        text += property->GetDecl()->GetName() + '=' + (value.IsNull() ? "" : value.ToString(10));
        return true;
      };
      instance->EnumerateProperties(append, {});
    }
  }
  return text;
}

std::string ReadFile(const std::string& name) {
  const TDescriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  return file.IsOpen() ? TOSSpecific::GetFileContents(file.Get()) : throw std::bad_alloc();
}

std::string ObjectPaths() {
  TCIMReference path(Disks(), "CIM_Part.Whole=\"CIM_Disk.DeviceID=\"sdb\",Number=\"8\"\"", {});
  return path.GetPath() + (path.GetCIMElement() ? " found" : " not found");
}

std::string WrongPath() {
  try {
    TCIMReference path(Disks(), "CIM_Disk.DeviceID=\"no end", {});
    return "accepted";
  } catch (const TQDXException& exception) {
    return exception.what();
  }
}

std::string Repository() { return Contents(*MakeDisks()); }

std::string Copies() {
  const TNamespace copy = MakeRepositoryNamespace("copy");
  TCIMCopy::CopyClasses(Disks(), copy);
  return Contents(*copy);
}

const char* const kMachine = "machine";

struct TFan {
  std::string fName;
  TReading<std::uint64_t> fSpeed;
};

std::string Description() {
  const auto list = [](const TRequest& request) {
    const TFiles files(request);
    return files.List("/fans").map([&files](const std::vector<std::string>& names) {
      std::vector<TFan> fans;
      for (const std::string& name : names) {
        fans.push_back({name, files.ReadNumber("/fans/" + name)});
      }
      return fans;
    });
  };
  const TTable<TFan> table{"Test_Fan",
                           "A fan.",
                           list,
                           {{"Name", "The fan.", &TFan::fName, kKey},
                            {"Speed", "How fast it turns.", &TFan::fSpeed, kGauge}}};
  const std::vector<TClassOf<TRequest>> classes = {table};
  return Contents(*Describe<TRequest>(TDescriber("test", "root/test"), classes, {kMachine, {}}));
}

std::string WriteDocument(const std::string& file) {
  ::unlink(file.c_str());
  NCIMXML::TDocumentWriter writer(file);
  writer.AddNamespace(*Disks());
  writer.Close();
  return ReadFile(file);
}

std::string WrittenDocument() { return WriteDocument("out.xml"); }
std::string WrittenGzip() { return WriteDocument("out.xml.gz"); }

std::string ReadDocument() {
  const TDescriptor file(::open("document.xml", O_RDONLY | O_CLOEXEC));
  if (!file.IsOpen()) throw TQDXException(kQDXStatusFileNotFound);
  const auto provider = NCIMXML::ReadDocument("document.xml", file.Get());
  return Contents(*provider->GetNamespace("test", {}));
}

/// The lines of a log can be lost without an exception.
std::string Log() {
  delete TLogger::GetInstance();
  TLogger::Initialize();
  const std::unique_ptr<TLogger> logger(TLogger::GetInstance());
  logger->SetLogFilename("a log with a name that is longer than a small one");
  logger->OutputLogEntry(ILogger::kLogError, "a message that is longer than a small one");
  return std::to_string(logger->GetLog().size());
}

std::string Listings() {
  std::string all;
  for (const std::string& name : TOSSpecific::ListDir(kMachine)) all += name + '\n';
  return all + ReadFile("machine/fans/fan2") + TOSSpecific::GetMachineName();
}

std::string Programs() { return TOSSpecific::SpawnProcess("/bin/echo", {"a", "b"}); }

struct TOperation {
  const char* fName;
  std::string (*fRun)();
  /// Not with calls where the library's contract makes a failure look like a success.
  bool fWithCalls = true;
};

constexpr TOperation kOperations[] = {{"values", Values},
                                      {"parsed-values", ParsedValues},
                                      {"date-times", DateTimes},
                                      {"object-paths", ObjectPaths},
                                      {"wrong-path", WrongPath},
                                      {"repository", Repository},
                                      {"copies", Copies},
                                      {"description", Description},
                                      {"written-document", WrittenDocument},
                                      {"written-gzip", WrittenGzip},
                                      {"read-document", ReadDocument},
                                      {"log", Log},
                                      {"listings", Listings},
                                      {"programs", Programs, false}};

// --- faults in them

struct TFault {
  std::string fCall;
  unsigned fNumber;
  std::string fError;
};

/// What the child process that runs an operation tells its parent, which survives it.
struct TShared {
  std::size_t fNext;  ///< The position of the next fault.
  char fOutcomes[1 << 16][24];
  char fPlaces[1 << 16][40];
};

int CountDescriptors() {
  int count = 0;
  for (int number = 0; number < 64; ++number) {
    if (::fcntl(number, F_GETFD) != -1) ++count;
  }
  return count;
}

/// Also forgets the messages that the operation logged.
std::string OutcomeOf(const TOperation& operation, const std::string& expected,
                      const std::string& errorText) {
  std::string outcome;
  try {
    const std::string result = operation.fRun();
    DisarmFault();
    outcome = result == expected                            ? "same result"
              : result.find(errorText) != std::string::npos ? "missing value explained"
                                                            : "another result";
  } catch (const std::bad_alloc&) {
    DisarmFault();
    outcome = "out of memory";
  } catch (const std::exception&) {
    DisarmFault();
    outcome = "exception";
  }
  if (TLogger::GetInstance() == nullptr) TLogger::Initialize();
  TLogger::GetInstance()->ClearLog();
  return outcome;
}

struct TUse {
  TUse() : fBlocks(CountLiveBlocks()), fDescriptors(CountDescriptors()) {}
  long fBlocks;
  int fDescriptors;
};

/// Returns the reason of a value that is missing because of the fault.
std::string TextOf(const TFault& fault) {
  for (const int error : {EIO, EACCES, EINTR, EMFILE, ENOSPC}) {
    if (fault.fError == ::strerrorname_np(error)) return ErrorText(error);
  }
  return ErrorText(ENOMEM);
}

std::string Attempt(const TOperation& operation, const TFault& fault, const std::string& expected) {
  const std::string errorText = TextOf(fault);
  std::string kept;
  // Twice, since a first failure may fill a cache.
  for (int round = 0; round < 2; ++round) {
    const TUse before;
    ArmFault(fault.fCall.c_str(), fault.fNumber, fault.fError.c_str());
    const std::string outcome = OutcomeOf(operation, expected, errorText);
    if (!HasFailed()) return "not reached";
    const long own = outcome.size() > 15 ? 1 : 0;  // the outcome itself can be a block
    const TUse after;
    kept = after.fDescriptors > before.fDescriptors ? "keeps a descriptor"
           : after.fBlocks > before.fBlocks + own   ? "keeps memory"
                                                    : "";
    if (kept.empty()) return outcome;
  }
  return kept;
}

std::vector<TFault> FaultsOf(const TOperation& operation, std::size_t sample) {
  (void)operation.fRun();  // fills caches
  ArmFault("allocation", 0, "ONCE");
  (void)operation.fRun();
  DisarmFault();
  std::vector<TFault> faults;
  std::size_t position = 0;
  TFaultyCall call{};
  for (unsigned i = 0; GetFaultyCall(i, call); ++i) {
    if (!operation.fWithCalls && std::strcmp(call.fName, "allocation") != 0) continue;
    std::istringstream errors(call.fErrors);
    for (std::string error; errors >> error;) {
      for (unsigned number = 1; number <= call.fCount; ++number) {
        if (position++ % sample == 0) faults.push_back({call.fName, number, error});
      }
    }
  }
  return faults;
}

void AttemptFrom(const TOperation& operation, const std::vector<TFault>& faults, TShared& shared) {
  const std::string expected = operation.fRun();
  while (shared.fNext < faults.size()) {
    const std::size_t position = shared.fNext;
    ::alarm(kTimeout);
    const std::string outcome = Attempt(operation, faults[position], expected);
    std::strncpy(shared.fPlaces[position], PlaceOfFault(), sizeof(shared.fPlaces[0]) - 1);
    std::strncpy(shared.fOutcomes[position], outcome.c_str(), sizeof(shared.fOutcomes[0]) - 1);
    ++shared.fNext;
  }
}

/// Runs the operation in processes of its own, and a new one after each crash.
void AttemptAll(const TOperation& operation, const std::vector<TFault>& faults, TShared& shared) {
  while (shared.fNext < faults.size()) {
    const pid_t child = ::fork();
    if (child == 0) {
      AttemptFrom(operation, faults, shared);
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) continue;
    const std::string end = !WIFSIGNALED(status)          ? "ends the process"
                            : WTERMSIG(status) == SIGALRM ? "hangs"
                                                          : "crashes";
    std::strncpy(shared.fOutcomes[shared.fNext++], end.c_str(), sizeof(shared.fOutcomes[0]) - 1);
  }
}

bool IsAllowed(const std::string& outcome) {
  static const std::set<std::string> allowed = {"same result", "missing value explained",
                                                "out of memory", "exception", "not reached"};
  return allowed.count(outcome) != 0;
}

void Report(const TOperation& operation, const std::vector<TFault>& faults, const TShared& shared) {
  std::map<std::string, int> counts;
  for (std::size_t i = 0; i < faults.size(); ++i) {
    const std::string outcome = shared.fOutcomes[i];
    ++counts[outcome];
    if (IsAllowed(outcome)) continue;
    std::printf("violation\t%s\t%s\t%s %u %s\t%s\n", operation.fName, outcome.c_str(),
                faults[i].fCall.c_str(), faults[i].fNumber, faults[i].fError.c_str(),
                shared.fPlaces[i]);
  }
  for (const auto& [outcome, count] : counts) {
    std::printf("count\t%s\t%s\t%d\n", operation.fName, outcome.c_str(), count);
  }
  std::fflush(stdout);
}

void WriteFile(const std::string& path, const std::string& text) {
  const TDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  if (!WriteAll(file.Get(), text)) std::abort();
}

void PrepareFolder() {
  TOSSpecific::CreateDir(kMachine);
  TOSSpecific::CreateDir("machine/fans");
  WriteFile("machine/fans/fan1", "1200\n");
  WriteFile("machine/fans/fan2", "not a number\n");
  (void)WriteDocument("document.xml");
}

int Run(const std::vector<std::string>& words) {
  if (words.size() < 2 || ::chdir(words[0].c_str()) != 0) return 2;
  TLogger::Initialize();
  PrepareFolder();
  void* const memory =
      ::mmap(nullptr, sizeof(TShared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return 2;
  auto& shared = *static_cast<TShared*>(memory);
  for (const TOperation& operation : kOperations) {
    if (words.size() > 2 && words[2] != operation.fName) continue;
    std::vector<TFault> faults = FaultsOf(operation, std::stoul(words[1]));
    if (words.size() == 6) {
      faults = {{words[3], static_cast<unsigned>(std::stoul(words[4])), words[5]}};
    }
    shared.fNext = 0;
    if (faults.size() > std::size(shared.fOutcomes)) return 2;
    std::memset(shared.fPlaces, 0, sizeof(shared.fPlaces));
    AttemptAll(operation, faults, shared);
    Report(operation, faults, shared);
  }
  return 0;
}

}  // namespace
}  // namespace NVORNQDX20

int main(int argc, char** argv) { return NVORNQDX20::Run({argv + 1, argv + argc}); }
