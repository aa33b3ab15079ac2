// SPDX-License-Identifier: Apache-2.0
// Transfers with a library that this program stands for; tests/qdx has them with the real one.
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

#include <cstdarg>
#include <cstring>
#include <tuple>

#include <dlfcn.h>

namespace {

const char* gLibrary = nullptr;  // what is loaded instead; null for this program
std::string gCalls;
std::string gRefused;  // the call that fails
int gResult = 0;
std::map<int, void*> gOptions;

bool Pass(const std::string& call) {
  gCalls += call + " ";
  return call != gRefused;
}

}  // namespace

extern "C" {
QDXCORE_EXPORT void* dlopen(const char* file, int flags) {
  static const auto next = reinterpret_cast<decltype(&dlopen)>(::dlsym(RTLD_NEXT, "dlopen"));
  return next(file != nullptr && std::strcmp(file, "libcurl.so") == 0 ? gLibrary : file, flags);
}
QDXCORE_EXPORT int curl_global_init(long flags) { return Pass("all" + std::to_string(flags)) - 1; }
QDXCORE_EXPORT void* curl_easy_init() {
  gOptions.clear();
  return Pass("init") ? &gCalls : nullptr;
}
QDXCORE_EXPORT int curl_easy_setopt(void*, int option, ...) {
  va_list arguments;
  va_start(arguments, option);
  gOptions[option] = va_arg(arguments, void*);  // a long comes the same way
  va_end(arguments);
  return Pass(std::to_string(option)) ? 0 : 1;
}
QDXCORE_EXPORT int curl_easy_perform(void*) {
  Pass(static_cast<const char*>(gOptions[10002]));
  std::memcpy(gOptions[10010], "why", sizeof "why");
  char data[8];  // reads to the end, and takes an error for it
  const auto source = static_cast<std::FILE*>(gOptions[10009]);
  while (source != nullptr && std::fread(data, 1, sizeof data, source) > 0) continue;
  const auto write = reinterpret_cast<decltype(&NVORNQDX20::curl_fwrite)>(gOptions[20011]);
  if (write != nullptr && write("data", 1, 4, gOptions[10001]) != 4) return 23;
  return gResult;
}
QDXCORE_EXPORT void curl_easy_cleanup(void*) { Pass("cleanup"); }
QDXCORE_EXPORT void curl_global_cleanup() { Pass("end"); }
}

using namespace NVORNQDX20;

using TOS = TOSSpecific;

/// It fails with this error; what follows in it is a path and why that cannot be loaded.
void ExpectError(bool isUpload, const std::string& file, EQDXStatusCode status,
                 const std::string& text) {
  const TLogCapture log;
  gCalls.clear();
  EXPECT_QDX_STATUS(isUpload ? TOS::FTPFile(file, "a") : TOS::FTPFileFromVORN(file, "b/c"), status);
  const std::string message = log.Messages().at(0);
  EXPECT_EQ(message.substr(0, message.find(": /")), "0 TOSSpecific|FTPFile: Error " + text);
}

TEST(FTPTransfer, TellsTheLibraryWhatToDo) {
  const auto before = TOS::ListDir("/proc/self/fd").size();
  const TTempDir folder;
  const std::string file = folder.Write("file", "longer than what comes");
  TOS::FTPFileFromVORN(file, "b/c");
  EXPECT_EQ(ReadWholeFile(file), "data");
  TOS::FTPFile("/dev/null", "a");
  EXPECT_EQ(gOptions[46], reinterpret_cast<void*>(1));
  EXPECT_EQ(TOS::ListDir("/proc/self/fd").size(), before);
  EXPECT_EQ(gCalls,
            "all3 init 10010 20011 10001 10002 ftp://download.vorn.invalid/b/c cleanup end "
            "all3 init 10010 46 10002 10009 ftp://upload.vorn.invalid/loftnode/tovorn/qseries/"
            "prq_upload/a.xml.gz cleanup end ");
}

TEST(FTPTransfer, SaysWhyItFails) {
  const auto library = kQDXStatusLibCurlFailure, connection = kQDXStatusConnectionFailed;
  // The call that fails, the transfer's result, status, the texts of download and upload.
  const std::tuple<const char*, int, EQDXStatusCode, const char*, const char*> rows[] = {
      {"init", 0, library, "initalizing curl", "initalizing curl"},
      {"10010", 0, library, "configuring curl error buffer", "configuring curl error buffer"},
      {"20011", 0, library, "setting curl write function", nullptr},
      {"10002", 0, library, "setting curl target", "setting curl target"},
      {"46", 0, library, nullptr, "setting curl upload"},
      {"10009", 0, library, nullptr, "setting curl upload file"},
      {"", 6, connection, "connecting to VORN", "connecting to VORN Service"},
      {"", 7, connection, "connecting to VORN", "connecting to VORN Service"},
      {"", 8, library, "performing ftp get command: why", "performing upload command: why"}};
  const std::string inherited = TOS::SpawnProcess("ls", {"/proc/self/fd"});
  for (const auto& [refused, result, status, downloadText, uploadText] : rows) {
    gRefused = refused;
    gResult = result;
    if (downloadText != nullptr) ExpectError(false, "/dev/null", status, downloadText);
    if (uploadText != nullptr) ExpectError(true, "/dev/null", status, uploadText);
    EXPECT_EQ(gCalls.find("cleanup"), std::string::npos);
  }
  gResult = 0;
  for (const char* target : {"/none/x", "/dev/full"}) {
    ExpectError(false, target, library, "performing ftp get command: why");
  }
  ExpectError(true, "/", library,
              "performing upload command: the file could not be read to its end");
  EXPECT_EQ(TOS::SpawnProcess("ls", {"/proc/self/fd"}), inherited);  // not what failures leave open
  EXPECT_EQ(curl_fwrite("x", 1, 1, nullptr), 4294967295U);
  ExpectError(true, "/none", kQDXStatusFileSystemError, "getting file size");
  EXPECT_EQ(gCalls, "");
  for (const bool isUpload : {false, true}) {
    gLibrary = "/none";
    ExpectError(isUpload, "/none", library, "opening curl library");
    gLibrary = "libm.so.6";
    ExpectError(isUpload, "/none", library, "loading curl library");
  }
}
