// SPDX-License-Identifier: Apache-2.0
/// Shows progress on a terminal while a namespace is copied.
#ifndef TOOLS_QDX_CLI_PROGRESS_H_
#define TOOLS_QDX_CLI_PROGRESS_H_

#include <qdxcore/interfaces.h>

#include <string>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// Returns a namespace that passes everything on to `target`, and before each new class shows
/// `label` and the number of classes and instances so far, in one line of standard error, which its
/// destructor clears. Returns `target` itself if standard error is not a terminal.
boost::shared_ptr<ICIMNamespace> WithProgress(const boost::shared_ptr<ICIMNamespace>& target,
                                              const std::string& label);

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_PROGRESS_H_
