// SPDX-License-Identifier: Apache-2.0
/// Short names of instances that are shown together.
#ifndef QDXDISPLAY_INSTANCE_LABELS_H_
#define QDXDISPLAY_INSTANCE_LABELS_H_

#include <map>
#include <string>

namespace NVORNQDX20 {

/// Finds names that tell instances apart: the short one, unless several have it.
class TInstanceLabels {
 public:
  /// Object paths, and texts that are none, can be added several times.
  void Add(const std::string& path);
  /// Returns the InstanceLabel(), or the path if that is the label of another path, too.
  /// REQUIRES: the path was added.
  const std::string& GetLabel(const std::string& path) const;

 private:
  std::map<std::string, std::string> fLabels;  // by path
  std::map<std::string, std::string> fPaths;   // by label; empty if there are several
};

}  // namespace NVORNQDX20

#endif  // QDXDISPLAY_INSTANCE_LABELS_H_
