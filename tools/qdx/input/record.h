// SPDX-License-Identifier: Apache-2.0
/// Names in the record of a collection, which the verb collect writes and others read.
#ifndef TOOLS_QDX_INPUT_RECORD_H_
#define TOOLS_QDX_INPUT_RECORD_H_

namespace NVORNQDX20 {

/// The namespace of the record. Namespaces of providers with this name are not collected.
inline constexpr const char* kRecordNamespaceName = "root/qdx";
/// The class with one instance.
inline constexpr const char* kRecordClass = "VORNSG_Collection";
/// Its property with the names of the parts that the document lacks.
inline constexpr const char* kPartsLeftOut = "PartsLeftOut";

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_RECORD_H_
