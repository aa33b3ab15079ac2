// SPDX-License-Identifier: Apache-2.0
#include "storage/identity.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace NVORNQDX20::NStore;

namespace {

struct TFillIn {
  const char* fName;
  THostIdentity fHost;
};

class StoreIdentityFillIn : public ::testing::TestWithParam<TFillIn> {};

TEST_P(StoreIdentityFillIn, IdentifiesNobody) {
  EXPECT_TRUE(IdentityOf(GetParam().fHost).IsNobody());
}

INSTANTIATE_TEST_SUITE_P(
    Text, StoreIdentityFillIn,
    ::testing::Values(
        TFillIn{"Nothing", {"", "", "", "", "", ""}},
        TFillIn{"Zeros", {"00000000-0000-0000-0000-000000000000", "", "", "", "", ""}},
        TFillIn{"AllF", {"FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF", "", "", "", "", ""}},
        TFillIn{"BoardMaker", {"03000200-0400-0500-0006-000700080009", "", "", "", "", ""}},
        TFillIn{"NoMachineID", {"", "uninitialized", "", "", "", ""}},
        TFillIn{"SerialOfMaker", {"", "", "To be filled by O.E.M.", "Acme", "", ""}},
        TFillIn{"Default", {"", "", " Default string", "Acme", "", ""}},
        TFillIn{"Zero", {"", "", "0", "Acme", "", ""}},
        TFillIn{"NoMaker", {"", "", "S1", " ", "", ""}},
        TFillIn{"TooLong", {"", std::string(256, 'm'), "", "", "", std::string(255, 'n') + "o"}},
        TFillIn{"Localhost", {"", "", "", "", "", "localhost"}}),
    [](const auto& row) { return std::string(row.param.fName); });

/// One row: the hosts of identities, as letters. The same letter is one host.
struct TGrouping {
  const char* fName;
  std::vector<TIdentity> fIdentities;
  std::string fHosts;
};

class StoreIdentityGroup : public ::testing::TestWithParam<TGrouping> {};

/// In any order of the identities.
TEST_P(StoreIdentityGroup, IsOneHost) {
  const auto& [name, identities, hosts] = GetParam();
  std::vector<std::size_t> order(identities.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  do {
    std::vector<TIdentity> shuffled;
    for (const std::size_t i : order) shuffled.push_back(identities[i]);
    const std::vector<std::string> keys = HostKeys(shuffled);
    for (std::size_t i = 0; i < order.size(); ++i) {
      for (std::size_t j = 0; j < order.size(); ++j) {
        EXPECT_EQ(keys[i] == keys[j], hosts[order[i]] == hosts[order[j]]) << keys[i] << keys[j];
      }
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, StoreIdentityGroup,
    ::testing::Values(
        TGrouping{"OneUUIDAfterANewInstallation",
                  {{"u", "m1", "s", "acme", "a"}, {"u", "m2", "s", "acme", "b"}},
                  "AA"},
        TGrouping{"WithoutRoot", {{"u", "m", "s", "acme", "a"}, {"", "m", "", "", "a"}}, "AA"},
        TGrouping{"Renamed", {{"", "m", "", "", "a"}, {"", "m", "", "", "b"}}, "AA"},
        TGrouping{"ClonesByName",
                  {{"u", "m", "", "", "a"}, {"v", "m", "", "", "b"}, {"", "m", "", "", "b"}},
                  "ABB"},
        TGrouping{"CloneOfNeither",
                  {{"u", "m", "", "", "a"}, {"v", "m", "", "", "b"}, {"", "m", "", "", "c"}},
                  "ABC"},
        TGrouping{
            "ClonesBySerialNumber",
            {{"", "m", "s", "acme", "a"}, {"", "m", "t", "acme", "b"}, {"", "m", "", "", "a"}},
            "ABA"},
        TGrouping{"SerialNumberOfTwoMakers",
                  {{"", "", "s", "acme", "a"}, {"", "", "s", "globex", "b"}},
                  "AB"},
        TGrouping{
            "BySerialNumber", {{"u", "m", "s", "acme", "a"}, {"", "", "s", "acme", ""}}, "AA"},
        TGrouping{"ByName", {{"u", "m", "", "", "a"}, {"", "", "", "", "a"}}, "AA"},
        TGrouping{"NameOfTwo",
                  {{"u", "m", "", "", "a"}, {"v", "n", "", "", "a"}, {"", "", "", "", "a"}},
                  "ABC"},
        TGrouping{"DelimitersInTexts",
                  {{"u", "m", "", "", "a"},
                   {"v", "m", "", "", "b"},
                   {"", "m", "", "", "c"},
                   {"", "m/c", "", "", "d"}},
                  "ABCD"},
        TGrouping{"NoCommon", {{"u", "m", "", "", "a"}, {"", "n", "", "", "b"}}, "AB"}),
    [](const auto& row) { return std::string(row.param.fName); });

}  // namespace
