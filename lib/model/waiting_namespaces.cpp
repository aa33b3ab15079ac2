// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/waiting_namespaces.h>

#include <qdxcore/logger.h>
#include <qdxcore/status.h>
#include <qdxmodel/options.h>

#include <utility>

namespace NVORNQDX20::NModel {

std::optional<TWaitingNamespaces::TComplete> TWaitingNamespaces::Add(
    boost::shared_ptr<ICIMNamespace> ns, const TOptionsMap& options, const std::string& service) {
  const auto file = FileOf(options);
  if (!file) {
    LogErrorAndThrow(kQDXStatusRequiredContextMissing,
                     {service, ": the option \"file\" is missing"});
  }
  const bool more = HasMore(options);
  TComplete all = std::exchange(fWaiting, {});
  if (all.fFile != *file) all = {*file, {}};
  all.fNamespaces.push_back(std::move(ns));
  if (!more) return all;
  fWaiting = std::move(all);
  return std::nullopt;
}

}  // namespace NVORNQDX20::NModel
