// SPDX-License-Identifier: Apache-2.0
#include "kept_files.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace NVORNQDX20::NDescribe {

std::optional<std::string_view> TKeptFiles::Find(std::string_view path) const {
  if (fFiles.empty()) return std::nullopt;
  const std::uint64_t hash = HashOf(path);
  const std::size_t mask = fFiles.size() - 1;
  for (std::size_t i = hash & mask; fFiles[i].fHash != 0; i = (i + 1) & mask) {
    const TFile& file = fFiles[i];
    if (file.fHash != hash) continue;
    const std::string_view bytes = std::string_view(fBytes).substr(file.fPlace);
    if (bytes.substr(0, file.fPathSize) == path) return bytes.substr(file.fPathSize, file.fSize);
  }
  return std::nullopt;
}

void TKeptFiles::Keep(std::string_view path, std::string_view contents) {
  constexpr std::size_t longest = std::numeric_limits<std::uint16_t>::max();
  if (contents.size() > kMaxContents || path.size() > longest || fCount == kMaxFiles) return;
  if (fFiles.size() < 2 * (fCount + 1)) Grow();
  TFile file;
  file.fHash = HashOf(path);
  file.fPlace = static_cast<std::uint32_t>(fBytes.size());
  file.fPathSize = static_cast<std::uint16_t>(path.size());
  file.fSize = static_cast<std::uint16_t>(contents.size());
  fBytes.append(path).append(contents);
  Insert(file);
  ++fCount;
}

std::uint64_t TKeptFiles::HashOf(std::string_view path) {
  NModel::THasher hasher(NModel::ProcessHashKey());
  hasher.Add(path);
  return std::max<std::uint64_t>(hasher.Get(), 1);
}

void TKeptFiles::Grow() {
  constexpr std::size_t least = 256;
  const auto files = std::exchange(fFiles, std::vector<TFile>(std::max(least, 2 * fFiles.size())));
  for (const TFile& file : files) {
    if (file.fHash != 0) Insert(file);
  }
}

void TKeptFiles::Insert(const TFile& file) {
  const std::size_t mask = fFiles.size() - 1;
  std::size_t place = file.fHash & mask;
  while (fFiles[place].fHash != 0) place = (place + 1) & mask;
  fFiles[place] = file;
}

}  // namespace NVORNQDX20::NDescribe
