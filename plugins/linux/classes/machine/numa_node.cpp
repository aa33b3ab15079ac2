// SPDX-License-Identifier: Apache-2.0
// Class VORNSG_NUMANode: parts of the machine within which memory is near.
#include "classes/catalogue.h"
#include "sources/fields.h"
#include "sources/processors/numa.h"

namespace NVORNQDX20 {
namespace {

TInstances<TNUMANode> ListNodes(const THost& host) {
  const auto& nodes = host.Shared<TNUMANodes>();
  return {nodes.fAll, nodes.fReason};
}

std::string NodeIDOf(const TNUMANode& node) { return "VORNSG:node" + std::to_string(node.fNumber); }

/// Reads a line such as "Node 0 MemTotal: 64 kB".
auto Memory(const char* field) {
  return [field](const TNUMANode& node) {
    const std::string name = "Node " + std::to_string(node.fNumber) + " " + field;
    return node.fMemory.GetNumber(name, " kB");
  };
}

}  // namespace

TClass NUMANodeClass() {
  const TUnit kilobytes{"byte * 2^10"};
  return THostTable<TNUMANode>{
      "VORNSG_NUMANode",
      "A NUMA node: processors, memory, and how far the other nodes are.",
      ListNodes,
      {{"InstanceID", "Tells the node from all others.", NodeIDOf, kKey},
       {"Number", "The kernel's number.", &TNUMANode::fNumber},
       {"LogicalProcessors", "The numbers of its logical processors; empty if it has none.",
        [](const TNUMANode& node) { return node.fCPUs.map(FormatCPUList); }},
       {"MemorySize", "Its memory.", Memory("MemTotal"), kilobytes},
       {"FreeMemory", "Its memory that nothing uses.", Memory("MemFree"), kilobytes, kGauge,
        kVolatile},
       {"Distances", "The distances to all nodes in their order; 10 is that to itself.",
        &TNUMANode::fDistances}}};
}

}  // namespace NVORNQDX20
