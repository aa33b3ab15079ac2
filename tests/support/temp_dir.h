// SPDX-License-Identifier: Apache-2.0
/// A folder of the test's own, removed with all that is in it.
#ifndef TESTS_SUPPORT_TEMP_DIR_H_
#define TESTS_SUPPORT_TEMP_DIR_H_

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

class TTempDir {
 public:
  TTempDir() {
    std::string name = (std::filesystem::temp_directory_path() / "qdx-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp " + name);
    fPath = name;
  }
  ~TTempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(fPath, ignored);
  }
  TTempDir(const TTempDir&) = delete;
  TTempDir& operator=(const TTempDir&) = delete;

  const std::filesystem::path& Path() const { return fPath; }

  /// Writes a file, and the folders above it.
  std::filesystem::path Write(const std::string& name, const std::string& contents) const {
    const std::filesystem::path file = fPath / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    return file;
  }

 private:
  std::filesystem::path fPath;
};

inline std::string ReadWholeFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

#endif  // TESTS_SUPPORT_TEMP_DIR_H_
