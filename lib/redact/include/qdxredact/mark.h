// SPDX-License-Identifier: Apache-2.0
/// The mark of a redacted document: an instance of a class in the record of its collection.
#ifndef QDXREDACT_MARK_H_
#define QDXREDACT_MARK_H_

#include <qdxcore/interfaces.h>
#include <qdxredact/redactor.h>

namespace NVORNQDX20::NRedact {

inline constexpr const char* kRedactionClass = "VORNSG_Redaction";

/// Adds the mark: what is replaced and what is kept, never the key. In a namespace that has the
/// mark of an earlier redaction, adds to it what is replaced now.
void Mark(ICIMNamespace& ns, const TRedaction& redaction, bool hasKeyOfOperator);

}  // namespace NVORNQDX20::NRedact

#endif  // QDXREDACT_MARK_H_
