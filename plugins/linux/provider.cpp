// SPDX-License-Identifier: Apache-2.0
// The provider "linux": describes a machine.
#include <qdxcore/interfaces.h>
#include <qdxcore/registry.h>
#include <qdxcore/status.h>
#include <qdxmodel/names.h>
#include <qdxmodel/options.h>

#include "classes/catalogue.h"

namespace NVORNQDX20 {
namespace {

/// Provider "linux": describes one machine in the namespace "root/cimv2".
///
/// Option "root" (string, default "/") is the folder below which all files are read: a mounted
/// image, or a tree of files of another machine. Option "classes" (array of strings) names the
/// wanted classes; see DescribeMachine. Each call returns a new namespace with the current state.
class TLinuxProvider : public INamespaceProvider {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  /// Also throws what the constructor of THostFiles throws.
  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name,
                                                TOptionsMap options) override {
    if (!NModel::EqualIgnoringCase(name, fNamespaceName)) {
      throw TQDXException(kQDXStatusNotFound);
    }
    const THost host(NModel::RootOf(options));
    TNamespaceBuilder builder(fNamespaceName);
    DescribeMachine(builder, host, NModel::ClassesOf(options));
    return builder.Finish();
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    callback(fNamespaceName);
  }

 private:
  const std::string fName = "linux";
  const std::string fNamespaceName = "root/cimv2";
};

[[maybe_unused]] const bool kRegistered = RegisterProvider<TLinuxProvider>();

}  // namespace
}  // namespace NVORNQDX20
