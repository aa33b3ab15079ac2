// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/nearest_name.h>

#include <gtest/gtest.h>

namespace {

using namespace NVORNQDX20::NModel;

TEST(NearestName, IsFewSlipsAway) {
  const std::vector<std::string> names = {"collect", "core",      "show",
                                          "diff",    "DiskDrive", "DiskPartition"};
  const struct {
    const char* fTyped;
    const char* fNearest;
  } rows[] = {{"shwo", "show"},
              {"shw", "show"},
              {"SHOOW", "show"},
              {"colect", "collect"},
              {"dif", "diff"},
              {"diskdrve", "DiskDrive"},
              {"diskpartitoin", "DiskPartition"},
              {"disk", ""},
              {"nope", ""},
              {"dfif", "diff"},
              {"sohwn", ""},
              {"cllect", "collect"},
              {"cllct", ""},
              {"cllcet", "collect"},
              {"frob", ""},
              {"", ""},
              {"x", ""}};
  for (const auto& [typed, nearest] : rows) EXPECT_EQ(NearestName(typed, names), nearest) << typed;
  EXPECT_EQ(NearestName("diskd", {"x", "diske", "diskf"}), "diske");
  EXPECT_EQ(NearestName(std::string(1000000, 'x'), names), "");
  EXPECT_EQ(SuggestedName("shw", names), "; did you mean 'show'?");
  EXPECT_EQ(SuggestedName("frob", names), "");
}

}  // namespace
