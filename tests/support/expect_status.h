// SPDX-License-Identifier: Apache-2.0
/// EXPECT_QDX_STATUS(statement, code): the statement throws a TQDXException of just that code.
#ifndef TESTS_SUPPORT_EXPECT_STATUS_H_
#define TESTS_SUPPORT_EXPECT_STATUS_H_

#include <qdxcore/status.h>

#include <gtest/gtest.h>

/// The text of the code that `operation` throws, "nothing", or what else it throws.
template <typename TOperation>
std::string StatusThrownBy(TOperation&& operation) {
  try {
    operation();
  } catch (const NVORNQDX20::TQDXException& e) {
    return e.what();
  } catch (const std::exception& e) {
    return std::string("another exception: ") + e.what();
  }
  return "nothing";
}

#define EXPECT_QDX_STATUS(statement, code)              \
  EXPECT_EQ(StatusThrownBy([&] { (void)(statement); }), \
            NVORNQDX20::TQDXStatusCode(code).TranslateStatusCode())

#endif  // TESTS_SUPPORT_EXPECT_STATUS_H_
