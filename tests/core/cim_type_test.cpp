// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/value.h>

#include "support/expect_status.h"

#include <sstream>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

TEST(CIMType, ReadsKeywordsInAnyCase) {
  const struct {
    const char* fKeyword;
    unsigned int fType;
  } rows[] = {{"boolean", 1},    {"BOOLEAN", 1}, {"uint8", 2},   {"sint8", 3},   {"uint16", 4},
              {"sint16", 5},     {"uint32", 6},  {"sint32", 7},  {"uint64", 8},  {"sint64", 9},
              {"real32", 10},    {"REAL64", 11}, {"String", 13}, {"String ", 0}, {"DateTime", 14},
              {"reference", 15}, {"char", 0},    {"uint8[]", 0}, {" uint8", 0},  {"", 0}};
  for (const auto& row : rows) EXPECT_EQ(TCIMType(row.fKeyword), row.fType) << row.fKeyword;
}

TEST(CIMType, WritesTheKeywordOfTheElementType) {
  const char* const keywords[] = {"boolean", "uint8",  "sint8",  "uint16",   "sint16",
                                  "uint32",  "sint32", "uint64", "sint64",   "real32",
                                  "real64",  "char",   "string", "datetime", "reference"};
  for (unsigned int type = 1; type <= 15; ++type) {
    EXPECT_EQ(TCIMType(type).ToString(), keywords[type - 1]);
    EXPECT_EQ(TCIMType(type | TCIMType::kCIMTypeArray).ToString(), keywords[type - 1]);
  }
  std::ostringstream stream;
  stream << TCIMType(TCIMType::kCIMTypeString) << '.';
  EXPECT_EQ(stream.str(), "string.");
}

TEST(CIMType, RefusesToNameWhatHasNoKeyword) {
  for (const unsigned int type : {0U, 16U, 32U, 0xffffffffU}) {
    EXPECT_QDX_STATUS(TCIMType(type).ToString(), kQDXStatusTypeMismatch);
  }
}

}  // namespace
}  // namespace NVORNQDX20
