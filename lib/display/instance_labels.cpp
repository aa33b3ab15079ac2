// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/instance_labels.h>

#include <qdxdisplay/names.h>

namespace NVORNQDX20 {

void TInstanceLabels::Add(const std::string& path) {
  const auto [label, isNew] = fLabels.try_emplace(path);
  if (!isNew) return;
  label->second = InstanceLabel(path);
  const auto [found, isFirst] = fPaths.emplace(label->second, path);
  if (!isFirst) found->second.clear();
}

const std::string& TInstanceLabels::GetLabel(const std::string& path) const {
  const std::string& label = fLabels.at(path);
  return fPaths.at(label).empty() ? path : label;
}

}  // namespace NVORNQDX20
