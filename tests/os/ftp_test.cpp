// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

#include <csignal>
#include <cstdarg>
#include <cstring>

#include <dlfcn.h>

namespace {

const char* gLibrary = nullptr;  // what stands for "libcurl.so"; null for this program
std::string gServer;             // what URLs are led to, unless it is empty
std::string gOptions;            // that were set, in their order
std::string gRefused;            // the option, or "init", that fails

template <typename TFunction>
TFunction* Next(const char* name) {
  return reinterpret_cast<TFunction*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" QDXCORE_EXPORT void* dlopen(const char* file, int flags) {
  const bool isTransfer = file != nullptr && std::strcmp(file, "libcurl.so") == 0;
  return Next<void*(const char*, int)>("dlopen")(isTransfer ? gLibrary : file, flags);
}

extern "C" QDXCORE_EXPORT void* curl_easy_init() {
  return gRefused == "init" ? nullptr : Next<void*()>("curl_easy_init")();
}

extern "C" QDXCORE_EXPORT int curl_easy_setopt(void* handle, int option, ...) {
  va_list arguments;
  va_start(arguments, option);
  void* value = va_arg(arguments, void*);  // a long comes the same way
  va_end(arguments);
  gOptions += std::to_string(option) + " ";
  if (gRefused == std::to_string(option)) return 1;
  std::string url;
  if (option == 10002) {
    url = static_cast<const char*>(value);
    gOptions += url + " ";
    if (!gServer.empty()) url.replace(6, url.find('/', 6) - 6, gServer);
    value = url.data();
  }
  return Next<int(void*, int, ...)>("curl_easy_setopt")(handle, option, value);
}

// Failed transfers leave their handles behind, on purpose.
extern "C" const char* __lsan_default_suppressions() { return "leak:libcurl\n"; }

namespace NVORNQDX20 {
namespace {

using TOS = TOSSpecific;

/// Between fDir and a server of fServed, with the real library below the functions above.
class FTPTransfer : public ::testing::Test {
 protected:
  FTPTransfer() {
    EXPECT_NE(::dlopen("libcurl.so.4", RTLD_LAZY | RTLD_GLOBAL), nullptr);
    std::filesystem::create_directories(fServed.Path() / kUploads);
    const std::string command = "exec timeout 60 /usr/bin/python3 -m pyftpdlib -p 0 -w -d ";
    fServer = ::popen((command + fServed.Path().string() + " 2>&1").c_str(), "re");
    char line[256] = "";
    int port = 0;
    while (port == 0 && std::fgets(line, sizeof line, fServer) != nullptr) {
      (void)std::sscanf(line, "%*[^>]>>> %*[^:]:%d, pid=%d", &port, &fPID);
    }
    EXPECT_NE(port, 0) << line;
    gServer = "127.0.0.1:" + std::to_string(port);
  }
  ~FTPTransfer() override {
    gLibrary = nullptr;
    ::kill(fPID, SIGTERM);
    ::pclose(fServer);
  }

  void Get(const std::string& path) { TOS::FTPFileFromVORN(fLocal, path); }
  void Put(const std::string& name) { TOS::FTPFile(fLocal, name); }

  /// It fails with this error, and a reason if the text ends in ": ".
  template <typename TOperation>
  static void ExpectFailure(TOperation operation, EQDXStatusCode status, const std::string& text) {
    const TLogCapture log;
    EXPECT_QDX_STATUS(operation(), status) << text;
    ASSERT_EQ(log.Messages().size(), 1U) << text;
    const std::string error = "0 TOSSpecific|FTPFile: Error " + text;
    EXPECT_EQ(log.Messages()[0].substr(0, error.size()), error);
    EXPECT_EQ(log.Messages()[0].size() > error.size(), error.back() == ' ') << log.Messages()[0];
  }

  const std::string kUploads = "loftnode/tovorn/qseries/prq_upload/";
  const TTempDir fServed;
  const TTempDir fDir;
  std::string fLocal = fDir.Write("local", "");

 private:
  std::FILE* fServer;
  int fPID = 0;
};

TEST_F(FTPTransfer, CarriesFilesUnchanged) {
  std::string contents(50'000'000, '\0');
  for (std::size_t i = 0; i < contents.size(); ++i) contents[i] = static_cast<char>(i * i >> 9);
  fDir.Write("local", contents);
  const auto before = TOS::ListDir("/proc/self/fd").size();
  gOptions = "";
  Put("a");
  EXPECT_TRUE(ReadWholeFile(fServed.Path() / (kUploads + "a.xml.gz")) == contents);
  fLocal = fDir.Write("fetched", "to be replaced");
  Get(kUploads + "a.xml.gz");
  EXPECT_TRUE(ReadWholeFile(fLocal) == contents);
  EXPECT_EQ(TOS::ListDir("/proc/self/fd").size(), before);
  const std::string url = ".vorn.invalid/" + kUploads + "a.xml.gz ";
  EXPECT_EQ(gOptions, "10010 46 10002 ftp://upload" + url + "10009 " +
                          "10010 20011 10001 10002 ftp://download" + url);

  fServed.Write("empty", "");
  fLocal += "none";
  Get("empty");
  EXPECT_FALSE(TOS::FileExists(fLocal));
}

TEST_F(FTPTransfer, SaysWhyItFails) {
  const std::string getting = "performing ftp get command: ";
  ExpectFailure([&] { Get("none"); }, kQDXStatusLibCurlFailure, getting);
  ExpectFailure([&] { Put("none/x"); }, kQDXStatusLibCurlFailure, "performing upload command: ");
  fServed.Write("small", "x");
  for (const char* target : {"/proc/none", "/dev/full"}) {
    fLocal = target;
    ExpectFailure([&] { Get("small"); }, kQDXStatusLibCurlFailure, getting);
  }
  EXPECT_EQ(curl_fwrite("x", 1, 1, nullptr), 4294967295U);

  for (const char* server : {"127.0.0.1:1", ""}) {  // refused; names that nobody knows
    gServer = server;
    ExpectFailure([&] { Get("x"); }, kQDXStatusConnectionFailed, "connecting to VORN");
    ExpectFailure([&] { Put("x"); }, kQDXStatusConnectionFailed, "connecting to VORN Service");
  }
}

TEST_F(FTPTransfer, EndsAtWhatIsMissingOrRefused) {
  const struct {
    const char *fLibrary, *fRefused, *fGetText, *fPutText;
  } rows[] = {{"/none", "", "opening curl library: ", "opening curl library: "},
              {"libc.so.6", "", "loading curl library: ", "loading curl library: "},
              {nullptr, "init", "initalizing curl", "initalizing curl"},
              {nullptr, "10010", "configuring curl error buffer", "configuring curl error buffer"},
              {nullptr, "20011", "setting curl write function", nullptr},
              {nullptr, "10001", "setting curl write function", nullptr},
              {nullptr, "10002", "setting curl target", "setting curl target"},
              {nullptr, "46", nullptr, "setting curl upload"},
              {nullptr, "10009", nullptr, "setting curl upload file"}};
  for (const auto& [library, refused, getText, putText] : rows) {
    gLibrary = library;
    gRefused = refused;
    if (getText) ExpectFailure([&] { Get("x"); }, kQDXStatusLibCurlFailure, getText);
    if (putText) ExpectFailure([&] { Put("x"); }, kQDXStatusLibCurlFailure, putText);
  }
  gRefused = "init";  // a missing file is noticed before
  fLocal += "none";
  ExpectFailure([&] { Put("x"); }, kQDXStatusFileSystemError, "getting file size");
  gRefused = "";
}

}  // namespace
}  // namespace NVORNQDX20
