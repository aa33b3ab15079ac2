// SPDX-License-Identifier: Apache-2.0
#include "bare.h"

#include <cstdio>
#include <fstream>
#include <memory>

#include <dirent.h>
#include <dlfcn.h>
#include <expat.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace NBench {
namespace {

constexpr std::size_t kBlockSize = 1 << 16;

void ListFolder(int file) {
  DIR* const folder = ::fdopendir(file);
  if (folder == nullptr) return;
  while (::readdir(folder) != nullptr) {
  }
  ::closedir(folder);
}

void ReadFile(const std::string& name, char* buffer) {
  const int file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) return;
  ssize_t count = 0;
  while ((count = ::read(file, buffer, kBlockSize)) > 0) {
  }
  if (count == 0) {
    ::close(file);
  } else {
    ListFolder(file);
  }
}

bool ParseFile(const std::string& name) {
  const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr),
                                                                       &XML_ParserFree);
  XML_SetElementHandler(
      parser.get(), [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
  XML_SetCharacterDataHandler(parser.get(), [](void*, const XML_Char*, int) {});
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "re"),
                                                             &std::fclose);
  if (!file) return false;
  std::size_t count = kBlockSize;
  while (count == kBlockSize) {
    void* const buffer = XML_GetBuffer(parser.get(), kBlockSize);
    count = std::fread(buffer, 1, kBlockSize, file.get());
    if (XML_ParseBuffer(parser.get(), static_cast<int>(count), count < kBlockSize) == 0) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool LoadAndRead(const std::string& library, const std::string& list) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (::dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL) == nullptr) ::_exit(1);
    const auto buffer = std::make_unique<char[]>(kBlockSize);
    std::ifstream names(list);
    for (std::string name; std::getline(names, name);) ReadFile(name, buffer.get());
    ::_exit(0);
  }
  int status = 1;
  if (child > 0) ::waitpid(child, &status, 0);
  return status == 0;
}

bool ParseFiles(const std::vector<std::string>& files) {
  for (const std::string& file : files) {
    if (!ParseFile(file)) return false;
  }
  return true;
}

}  // namespace NBench
