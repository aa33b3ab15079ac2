// SPDX-License-Identifier: Apache-2.0
/// Declarations as MOF text (DMTF DSP0004, MOF).
///
/// What the grammar cannot express is replaced, and a comment beside it gives the original: an
/// empty array, a real that is not a number, a text that is declared as a character and is none, a
/// method without a type, a reference to an unknown class, a qualifier without scope, a name that
/// is a reserved word. Comments mark static values and embedded objects.
#ifndef QDXSNAPSHOT_MOF_H_
#define QDXSNAPSHOT_MOF_H_

#include <string>

#include <qdxsnapshot/schema.h>

namespace NVORNQDX20 {

/// Returns the text as a string in quotes. Control characters, and those that change the direction
/// of writing, are escaped; bytes that are not UTF-8 become U+FFFD.
std::string QuotedForMOF(const std::string& text);

/// Returns the declaration of a class: what it declares itself, without what it inherits. Other
/// names are written unchanged.
std::string ClassAsMOF(const TClassSchema& cimClass);

/// Returns the declaration of a qualifier.
std::string QualifierAsMOF(const TQualifierSchema& qualifier);

}  // namespace NVORNQDX20

#endif  // QDXSNAPSHOT_MOF_H_
