// SPDX-License-Identifier: Apache-2.0
// Handles failed assertions of Boost as QDX_BOOST_ASSERT says.
#include <qdxcore/logger.h>
#include <qdxcore/status.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <boost/assert.hpp>

namespace NVORNQDX20 {
namespace {

/// Not std::cerr: its header makes all standard streams whenever the library is loaded.
void Print(const std::string& text) {
  (void)std::fwrite(text.data(), 1, text.size(), stderr);
  (void)std::fflush(stderr);  // the program may have given it a buffer, and end by the fault
}

void ActOnFailure(const std::string& message) {
  const char* setting = std::getenv("QDX_BOOST_ASSERT");
  const std::string policy = setting != nullptr ? setting : "throwqdx";

  LogMessage(ILogger::kLogError, {message});

  if (policy == "throwboost") throw TBoostAssertException(message);
  if (policy == "trap") {
    Print("\n" + message + "\n\nForcing segmentation fault.\n\n");
    return;  // no signal here: the caller goes on to dereference the null reference, which faults
  }
  if (policy == "exit") {
    Print("\n" + message + "\n");
    std::exit(1);
  }
  if (policy != "throwqdx") {
    Print("Invalid setting for QDX_BOOST_ASSERT '" + policy +
          "'. Valid values are {throwqdx, throwboost, trap, exit}.\n");
  }
  throw TQDXException(kQDXStatusFail);
}

}  // namespace
}  // namespace NVORNQDX20

namespace boost {

void assertion_failed(char const* expr, char const* function, char const* file, long line) {
  NVORNQDX20::ActOnFailure(std::string("Boost assertion failure! ") + file + ":" +
                           std::to_string(line) + " [" + expr + "] func = " + function);
}

void assertion_failed_msg(char const* expr, char const* msg, char const* function, char const* file,
                          long line) {
  assertion_failed((std::string(expr) + " (" + msg + ")").c_str(), function, file, line);
}

}  // namespace boost
