// SPDX-License-Identifier: Apache-2.0
/// The structure of a class: what a namespace checks of its declaration.
#ifndef LIB_DESCRIBE_STRUCTURE_H_
#define LIB_DESCRIBE_STRUCTURE_H_

#include <qdxdescribe/declaration.h>

namespace NVORNQDX20::NDescribe::NDetail {

/// Declares and commits the class as DeclareClass does, but without descriptions, units,
/// enumerations and the other qualifiers that only explain.
void DeclareStructure(ICIMNamespace& ns, const TClassDeclaration& declaration);

}  // namespace NVORNQDX20::NDescribe::NDetail

#endif  // LIB_DESCRIBE_STRUCTURE_H_
