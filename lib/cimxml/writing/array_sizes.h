// SPDX-License-Identifier: Apache-2.0
/// Which array properties have a fixed size.
#ifndef LIB_CIMXML_WRITING_ARRAY_SIZES_H_
#define LIB_CIMXML_WRITING_ARRAY_SIZES_H_

#include <qdxcore/interfaces.h>

#include <unordered_map>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NCIMXML {

/// A declaration has a maximum, which CIM-XML does not know. It is the fixed size if no value
/// contradicts.
class TArraySizes {
 public:
  /// Returns the number of elements that the value has and, by its maximum, all others may have; 0
  /// if others may have fewer. A null value shows only the maximum.
  static unsigned int SizeOf(const TCIMValue& value);

  /// Returns the size of a property that the class declares, according to the default and all
  /// instances; 0 if it is not fixed.
  unsigned int Declare(const ICIMClass& cimClass, const boost::shared_ptr<ICIMPropertyDecl>& decl);
  /// Returns what Declare() has returned for the declaration; 0 before it.
  unsigned int Declared(const ICIMPropertyDecl& decl) const;

 private:
  struct TSize {
    boost::shared_ptr<ICIMPropertyDecl> fDecl;  // keeps the address in use
    unsigned int fSize;
  };
  std::unordered_map<const ICIMPropertyDecl*, TSize> fSizes;  // not those without size
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_WRITING_ARRAY_SIZES_H_
