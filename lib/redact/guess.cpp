// SPDX-License-Identifier: Apache-2.0
#include "guess.h"

#include <qdxmodel/names.h>

#include <string_view>

#include <arpa/inet.h>

namespace NVORNQDX20::NRedact {
namespace {

using NDescribe::ESecret;

/// In lower case.
struct TNamePart {
  const char* fPart;
  ESecret fSecret;
};

/// The first one that is part of a name counts.
constexpr TNamePart kNameParts[] = {{"creationclassname", ESecret::kNone},
                                    {"addresstype", ESecret::kNone},
                                    {"addressformat", ESecret::kNone},
                                    {"addressmode", ESecret::kNone},
                                    {"startingaddress", ESecret::kNone},
                                    {"endingaddress", ESecret::kNone},
                                    {"busaddress", ESecret::kNone},
                                    {"typeid", ESecret::kNone},
                                    {"serialnum", ESecret::kSerial},
                                    {"assettag", ESecret::kSerial},
                                    {"usertracking", ESecret::kSerial},
                                    {"uuid", ESecret::kSerial},
                                    {"guid", ESecret::kAddress},
                                    {"machineid", ESecret::kSerial},
                                    {"bootid", ESecret::kSerial},
                                    {"wwn", ESecret::kSerial},
                                    {"identifyingnumber", ESecret::kSerial},
                                    {"identifyinginfo", ESecret::kSerial},
                                    {"hostname", ESecret::kHostName},
                                    {"systemname", ESecret::kHostName},
                                    {"csname", ESecret::kHostName},
                                    {"dnssuffix", ESecret::kHostName},
                                    {"domain", ESecret::kHostName},
                                    {"address", ESecret::kAddress},
                                    {"accessinfo", ESecret::kAddress},
                                    {"gateway", ESecret::kAddress},
                                    {"nexthop", ESecret::kAddress},
                                    {"nodename", ESecret::kAddress},
                                    {"portname", ESecret::kNone},
                                    {"listen", ESecret::kAddress},
                                    {"username", ESecret::kUser},
                                    {"userid", ESecret::kUser},
                                    {"owner", ESecret::kUser},
                                    {"homedirectory", ESecret::kUser},
                                    {"runsas", ESecret::kUser},
                                    {"commandline", ESecret::kCommandLine},
                                    {"parameters", ESecret::kCommandLine},
                                    {"sourcedevice", ESecret::kMountSource},
                                    {"mountoptions", ESecret::kMountSource}};

/// For properties whose names say nothing without the class: its last part, in lower case.
struct TMember {
  const char* fClass;
  const char* fProperty;
  ESecret fSecret;
};
constexpr TMember kClassMembers[] = {{"computersystem", "name", ESecret::kHostName},
                                     {"account", "name", ESecret::kUser},
                                     {"account", "comment", ESecret::kUser},
                                     {"group", "members", ESecret::kUser},
                                     {"route", "instanceid", ESecret::kAddress},
                                     {"accesspoint", "name", ESecret::kAddress},
                                     {"endpoint", "name", ESecret::kAddress},
                                     {"filesystem", "device", ESecret::kMountSource},
                                     {"mountsetting", "instanceid", ESecret::kMountSource},
                                     {"mountsetting", "device", ESecret::kMountSource}};

bool HasEnd(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool IsUUID(std::string_view value) {
  return value.size() == 36 &&
         value.find_first_not_of("0123456789abcdefABCDEF-") == std::string_view::npos &&
         value[8] == '-' && value[13] == '-' && value[18] == '-' && value[23] == '-';
}

bool IsIPAddress(const std::string& value) {
  unsigned char address[16];
  return ::inet_pton(AF_INET, value.c_str(), address) == 1 ||
         ::inet_pton(AF_INET6, value.c_str(), address) == 1;
}

}  // namespace

ESecret GuessByName(const std::string& className, const std::string& property) {
  const std::string cimClass = NModel::Folded(className);
  const std::string name = NModel::Folded(property);
  for (const TMember& each : kClassMembers) {
    if (name == each.fProperty && HasEnd(cimClass, each.fClass)) return each.fSecret;
  }
  for (const TNamePart& each : kNameParts) {
    if (name.find(each.fPart) != std::string::npos) return each.fSecret;
  }
  return ESecret::kNone;
}

ESecret GuessByForm(const std::string& property, const std::string& value) {
  const std::string name = NModel::Folded(property);
  const auto isIn = [&name](const char* part) { return name.find(part) != std::string::npos; };
  // Four numbers with dots can be a version, and the type of a partition is a UUID.
  if (isIn("version") || isIn("revision") || isIn("release") || isIn("mask") || isIn("type")) {
    return ESecret::kNone;
  }
  if (IsUUID(value)) return ESecret::kSerial;
  return IsIPAddress(value) ? ESecret::kAddress : ESecret::kNone;
}

}  // namespace NVORNQDX20::NRedact
