// SPDX-License-Identifier: Apache-2.0
// A provider that publishes the load average of this machine in a namespace of its own.
//
// The repository implements the interfaces of the object model. The provider declares a class, adds
// an instance, and registers itself.
#include <qdxcore/logger.h>
#include <qdxcore/registry.h>
#include <qdxrepository/repository.h>

#include <cstdint>
#include <fstream>
#include <locale>
#include <string>

#include <boost/algorithm/string/predicate.hpp>

using namespace NVORNQDX20;

namespace {

using TType = TCIMValue::TCIMType;

struct TLoad {
  double fOneMinute;
  double fFiveMinutes;
  double fFifteenMinutes;
  std::uint32_t fProcesses;
};

/// Parses "0.52 0.58 0.59 2/345 12345": three averages, the numbers of running processes and of all
/// processes, and the newest process ID.
TLoad ReadLoad(const std::string& fileName) {
  std::ifstream file(fileName);
  file.imbue(std::locale::classic());
  TLoad load{};
  std::uint32_t running = 0;
  char slash = 0;
  file >> load.fOneMinute >> load.fFiveMinutes >> load.fFifteenMinutes >> running >> slash >>
      load.fProcesses;
  // qdx prints this reason.
  if (!file) LogErrorAndThrow(kQDXStatusFileSystemError, {"cannot read ", fileName});
  return load;
}

boost::shared_ptr<ICIMClass> DeclareClass(ICIMNamespace& ns) {
  const auto key = ns.CreateQualifierDecl("Key", false, kScopeProperty, kFlavorToSubclass, {});
  key->Commit();

  auto load = ns.CreateClass("Example_LoadAverage", nullptr, {});
  // A null value only gives the type.
  const auto name = load->CreatePropertyDecl("Name", TCIMValue(TType::kCIMTypeString, 0), {});
  name->AddQualifier(key, true)->Commit();
  name->Commit();
  for (const char* property : {"OneMinute", "FiveMinutes", "FifteenMinutes"}) {
    load->CreatePropertyDecl(property, TCIMValue(TType::kCIMTypeReal64, 0), {})->Commit();
  }
  load->CreatePropertyDecl("Processes", TCIMValue(TType::kCIMTypeUint32, 0), {})->Commit();
  load->Commit({});
  return load;
}

void AddInstance(ICIMClass& loadClass, const TLoad& load) {
  const auto instance = loadClass.CreateInstance({});
  instance->SetPropertyValue("Name", "load", {});
  instance->SetPropertyValue("OneMinute", load.fOneMinute, {});
  instance->SetPropertyValue("FiveMinutes", load.fFiveMinutes, {});
  instance->SetPropertyValue("FifteenMinutes", load.fFifteenMinutes, {});
  instance->SetPropertyValue("Processes", load.fProcesses, {});
  instance->Commit({});
}

class TLoadAverageProvider : public INamespaceProvider {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  /// Creates a new namespace in each call, so that it shows the current state. Option "root" names
  /// the folder below which all files are read, in order to describe another machine.
  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string& name,
                                                TOptionsMap options) override {
    if (!boost::algorithm::iequals(name, fNamespaceName, std::locale::classic())) {
      throw TQDXException(kQDXStatusNotFound);
    }
    const auto root = options.find("root");
    const std::string folder = root == options.end() ? "" : std::string(root->second);
    const TLoad load = ReadLoad(folder + "/proc/loadavg");
    auto ns = MakeRepositoryNamespace(fNamespaceName);
    AddInstance(*DeclareClass(*ns), load);
    return ns;
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    callback(fNamespaceName);
  }

 private:
  const std::string fName = "loadaverage";
  const std::string fNamespaceName = "root/loadaverage";
};

[[maybe_unused]] const bool kRegistered = RegisterProvider<TLoadAverageProvider>();

}  // namespace
