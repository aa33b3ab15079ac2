// SPDX-License-Identifier: Apache-2.0
/// Reports for people: one HTML page that needs nothing from elsewhere.
#ifndef QDXREPORT_REPORT_H_
#define QDXREPORT_REPORT_H_

#include <qdxcore/interfaces.h>

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// Returns a page about namespaces: an overview with pictures, each class as a table, and what is
/// missing. Every text of the namespaces is escaped, and the page's own policy forbids scripts
/// other than its own. Passes on what the namespaces throw.
std::string MakeReport(const std::vector<boost::shared_ptr<ICIMNamespace>>& namespaces);

}  // namespace NVORNQDX20

#endif  // QDXREPORT_REPORT_H_
