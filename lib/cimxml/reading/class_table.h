// SPDX-License-Identifier: Apache-2.0
/// What the instances of one class have in common while they are read.
#ifndef LIB_CIMXML_READING_CLASS_TABLE_H_
#define LIB_CIMXML_READING_CLASS_TABLE_H_

#include <qdxcore/interfaces.h>
#include <qdxmodel/names.h>
#include <qdxrepository/instance_adder.h>

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "object_path.h"
#include "xml/cim_type.h"
#include "xml/element.h"

namespace NVORNQDX20::NCIMXML {

/// The properties of a class by name, and the instance of it that is being made: its parts are here
/// so that their memory serves the next one.
struct TClassTable {
  struct TSlot {
    boost::shared_ptr<ICIMPropertyDecl> fDecl;
    TCIMType fType;
    std::string_view fKeyword;  ///< Of the type.
    bool fIsText;               ///< A string, no array.
    bool fIsNumber;             ///< Or a boolean, no array.
    bool fIsTime;               ///< A date-time, no array.
    std::size_t fPosition;      ///< For TInstanceAdder.
  };
  /// The slots of the elements of an instance.
  using TOrder = std::vector<const TSlot*>;

  /// A key from the name of the instance.
  struct TKey {
    const TSlot* fSlot;
    const TElement* fElement;
    std::optional<TCIMValue> fValue;  ///< Absent for a text and a number: the element has it.
  };
  struct TGiven {
    const TSlot* fSlot;
    const TElement* fElement;
  };

  /// Throws what ICIMClass::CreateInstance() throws.
  explicit TClassTable(const boost::shared_ptr<ICIMClass>& cimClass);

  /// Starts an instance.
  void Begin();
  /// Returns null if the class has no such property.
  const TSlot* Find(std::string_view name) const;
  /// The same for the element at a place of an instance. Tries what the instance before had in that
  /// place, since most of them have one order.
  const TSlot* FindNext(std::string_view name, TOrder& order, std::size_t place) const;

  TInstanceAdder fAdder;
  TOrder fKeyOrder;
  TOrder fPropertyOrder;
  std::vector<TKeyBinding> fBindings;
  std::vector<TKey> fKeys;
  std::vector<TGiven> fGiven;  ///< The properties of the instance.

 private:
  std::vector<TSlot> fSlots;
  std::unordered_map<std::string_view, std::size_t, NModel::TNameHash, NModel::TNameEqual> fByName;
};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_READING_CLASS_TABLE_H_
