// SPDX-License-Identifier: Apache-2.0
#include "instance_reader.h"

#include <qdxcore/reference.h>
#include <qdxmodel/names.h>

#include <utility>

namespace NVORNQDX20 {

TInstanceReader::TInstanceReader(const boost::shared_ptr<ICIMClass>& cimClass,
                                 const TClassSnapshot& snapshot, std::string ownNamespace)
    : fClass(cimClass), fOwnNamespace(std::move(ownNamespace)), fReader(*cimClass) {
  NModel::TNameMap<std::size_t> positions;
  for (const auto& property : fReader.GetProperties()) {
    positions.emplace(property.fName, positions.size());
  }
  fColumns.reserve(snapshot.fProperties.size());
  for (const TPropertySnapshot& property : snapshot.fProperties) {
    fColumns.push_back({property.fName, property.fIsKey, positions.at(property.fName)});
  }
}

std::string TInstanceReader::ReadPath() const {
  TCIMReference path(nullptr, {});
  path.SetClass(fClass);
  for (const TColumn& column : fColumns) {
    if (!column.fIsKey) continue;
    fReader.Read(column.fPosition,
                 [&](const TCIMValue& value) { path.AddKeyValue(column.fName, value); });
  }
  return path.GetPath();
}

std::vector<TJSON> TInstanceReader::ReadValues() const {
  std::vector<TJSON> values;
  values.reserve(fColumns.size());
  for (const TColumn& column : fColumns) {
    TPlainValue plain;
    if (fReader.FindPlain(column.fPosition, plain)) {
      values.push_back(ToJSON(plain, fReader.GetProperties()[column.fPosition].fType));
      continue;
    }
    fReader.Read(column.fPosition,
                 [&](const TCIMValue& value) { values.push_back(ToJSON(value, fOwnNamespace)); });
  }
  return values;
}

}  // namespace NVORNQDX20
