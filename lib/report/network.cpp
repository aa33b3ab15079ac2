// SPDX-License-Identifier: Apache-2.0
// Network ports with the state of their links.
#include <qdxdisplay/quantity.h>

#include "overview.h"

namespace NVORNQDX20::NReport {
namespace {

using namespace NSummary;

/// A jack, in the colour of its style.
constexpr const char* kJack =
    "<svg class=\"jack\" viewBox=\"0 0 20 20\" aria-hidden=\"true\">"
    "<path d=\"M2 17V6h4V3h8v3h4v11z\"/></svg>";

THTML PortPicture(const TPort& port, const TRecords& records) {
  const auto record = records.Find({"EthernetPort", "NetworkPort", "WiFiPort", "IBPort", "FCPort"},
                                   "Name", port.fName);
  const auto number = record ? std::make_optional(record->GetNumber()) : std::nullopt;
  const bool isUp = port.fLinkState == "up";
  std::string state = port.fLinkState.empty() ? "state unknown" : port.fLinkState;
  if (isUp && port.fBitsPerSecond) {
    state += ", " + FormatQuantity(static_cast<double>(*port.fBitsPerSecond), "bit / second");
  }
  THTML addresses;
  for (const std::string& address : port.fAddresses) {
    addresses += TextElement("span", "address", address);
  }
  return Element("li", isUp ? "port up" : "port",
                 kJack + Element("span", "name", Link(number, port.fName)) +
                     TextElement("span", "size", state) + TextElement("span", "quiet", port.fKind) +
                     addresses) +
         "\n";
}

}  // namespace

THTML Network(const TSummary& summary, const TRecords& records) {
  constexpr std::size_t kMostPorts = 64;
  THTML ports;
  for (std::size_t i = 0; i < summary.fPorts.size() && i < kMostPorts; ++i) {
    ports += PortPicture(summary.fPorts[i], records);
  }
  if (summary.fPorts.size() > kMostPorts) {
    ports += TextElement("li", "port",
                         "and " + std::to_string(summary.fPorts.size() - kMostPorts) + " more");
  }
  return ports.empty() ? "" : Element("ul", "ports", ports);
}

}  // namespace NVORNQDX20::NReport
