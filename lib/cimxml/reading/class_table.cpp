// SPDX-License-Identifier: Apache-2.0
#include "class_table.h"

#include <qdxmodel/visit.h>

namespace NVORNQDX20::NCIMXML {
namespace {

TInstanceAdder AdderFor(const boost::shared_ptr<ICIMClass>& cimClass) {
  (void)cimClass->CreateInstance({});  // unlike the adder, it gives a reason when it throws
  return TInstanceAdder(cimClass);
}

}  // namespace

TClassTable::TClassTable(const boost::shared_ptr<ICIMClass>& cimClass)
    : fAdder(AdderFor(cimClass)) {
  cimClass->EnumeratePropertyDecls(
      [this](const boost::shared_ptr<ICIMPropertyDecl>& decl) {
        const TCIMType type = decl->GetType();
        fByName.emplace(decl->GetName(), fSlots.size());
        fSlots.push_back({decl, type, KeywordOf(type), type == TCIMType::kCIMTypeString,
                          NModel::SizeOfNumber(type) != 0, type == TCIMType::kCIMTypeDateTime,
                          fSlots.size()});
        return true;
      },
      {});
}

void TClassTable::Begin() {
  fAdder.Begin();
  fBindings.clear();
  fKeys.clear();
  fGiven.clear();
}

const TClassTable::TSlot* TClassTable::Find(std::string_view name) const {
  const auto found = fByName.find(name);
  return found == fByName.end() ? nullptr : &fSlots[found->second];
}

const TClassTable::TSlot* TClassTable::FindNext(std::string_view name, TOrder& order,
                                                std::size_t place) const {
  if (place < order.size()) {
    const TSlot* const expected = order[place];
    if (expected != nullptr && expected->fDecl->GetName() == name) return expected;
  } else {
    order.resize(place + 1);
  }
  order[place] = Find(name);
  return order[place];
}

}  // namespace NVORNQDX20::NCIMXML
