// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/hash.h>

#include <qdxmodel/names.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "support/run_program.h"

#include <gtest/gtest.h>

namespace NVORNQDX20::NModel {
namespace {

/// Returns how many of 256 places of a table are taken.
std::size_t PlacesOf(const std::vector<std::uint64_t>& hashes) {
  std::set<std::uint64_t> places;
  for (const std::uint64_t hash : hashes) places.insert(hash % 256);
  return places.size();
}

TEST(Hash, SpreadsWhatAnotherKeyPutsInOnePlace) {
  const TNameHash known({0x0123456789ABCDEFU, 0xFEDCBA9876543211U});
  std::vector<std::uint64_t> chosen;
  std::vector<std::uint64_t> shifted;
  for (std::uint64_t i = 0; chosen.size() < 256; ++i) {
    const std::string name = "VORNSG_Name" + std::to_string(i);
    if (known(name) % 256 == 0) chosen.push_back(TNameHash()(name));
  }
  for (std::uint64_t i = 0; i < 256; ++i) {
    THasher hasher(ProcessHashKey());
    hasher.Add(i << 40);
    shifted.push_back(hasher.Get());
  }
  EXPECT_GT(PlacesOf(chosen), 100U);   // 162 are expected of random ones
  EXPECT_GT(PlacesOf(shifted), 100U);  // differ only in high bits
}

TEST(Hash, HasAnotherKeyInEachProcess) {
  std::printf("%zx\n", TNameHash()("name"));
  if (::testing::GTEST_FLAG(filter) == "Hash.HasAnotherKey*") return;  // as the other process
  const TProgramRun other = RunProgram({std::filesystem::read_symlink("/proc/self/exe").string(),
                                        "--gtest_filter=Hash.HasAnotherKey*"});
  char mine[32];
  std::snprintf(mine, sizeof(mine), "\n%zx\n", TNameHash()("name"));
  EXPECT_EQ(other.fExitCode, 0);
  EXPECT_EQ(other.fOutput.find(mine), std::string::npos);
}

}  // namespace
}  // namespace NVORNQDX20::NModel
