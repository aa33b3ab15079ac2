// SPDX-License-Identifier: Apache-2.0
/// What is told on a terminal while a namespace is copied.
#ifndef TOOLS_QDX_CLI_PROGRESS_H_
#define TOOLS_QDX_CLI_PROGRESS_H_

#include <qdxcore/interfaces.h>

#include <string>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// A namespace to copy into: it hands everything on to `target`, and before each new class shows
/// `label` and how many classes and instances there are by then, in one line of standard error,
/// which its destructor clears. Answers `target` itself if standard error is no terminal.
boost::shared_ptr<ICIMNamespace> WithProgress(const boost::shared_ptr<ICIMNamespace>& target,
                                              const std::string& label);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_PROGRESS_H_
