// SPDX-License-Identifier: Apache-2.0
/// The contents of small files, so that each is read once.
#ifndef LIB_DESCRIBE_KEPT_FILES_H_
#define LIB_DESCRIBE_KEPT_FILES_H_

#include <qdxmodel/hash.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace NVORNQDX20::NDescribe {

/// Finds texts by paths. Most look-ups find nothing and end at one number; all bytes are in one
/// string, since a big machine has tens of thousands of files.
class TKeptFiles {
 public:
  /// Returns a view that is valid until the next Keep(), or nothing.
  std::optional<std::string_view> Find(std::string_view path) const;

  /// Keeps the contents unless they are long, or too many files are kept. REQUIRES: the path is not
  /// kept yet.
  void Keep(std::string_view path, std::string_view contents);

 private:
  // Large files are tables, which few classes need. Together at most some 10 MB.
  static constexpr std::size_t kMaxContents = 64;
  static constexpr std::size_t kMaxFiles = 1U << 16U;

  struct TFile {
    std::uint64_t fHash = 0;   // 0 for a free place
    std::uint32_t fPlace = 0;  // of the path in fBytes, before the contents
    std::uint16_t fPathSize = 0;
    std::uint16_t fSize = 0;
  };

  static std::uint64_t HashOf(std::string_view path);
  void Grow();
  void Insert(const TFile& file);

  std::vector<TFile> fFiles;  // a power of two; at most half of them are used
  std::size_t fCount = 0;
  std::string fBytes;
};

}  // namespace NVORNQDX20::NDescribe

#endif  // LIB_DESCRIBE_KEPT_FILES_H_
