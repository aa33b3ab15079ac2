// SPDX-License-Identifier: Apache-2.0
// A provider: the load average of this machine, in a namespace of its own.
//
// The repository implements the interfaces of the object model; what is left to do is to declare a
// class, to fill an instance, and to register.
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

/// "0.52 0.58 0.59 2/345 12345": three averages, running and all processes, the newest process.
TLoad ReadLoad(const std::string& fileName) {
  std::ifstream file(fileName);
  file.imbue(std::locale::classic());
  TLoad load{};
  std::uint32_t running = 0;
  char slash = 0;
  file >> load.fOneMinute >> load.fFiveMinutes >> load.fFifteenMinutes >> running >> slash >>
      load.fProcesses;
  // The caller shows this reason to the operator.
  if (!file) LogErrorAndThrow(kQDXStatusFileSystemError, {"cannot read ", fileName});
  return load;
}

boost::shared_ptr<ICIMClass> DeclareClass(ICIMNamespace& ns) {
  const auto key = ns.CreateQualifierDecl("Key", false, kScopeProperty, kFlavorToSubclass, {});
  key->Commit();

  auto load = ns.CreateClass("Example_LoadAverage", nullptr, {});
  // A null value gives the type alone.
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

  /// Made anew by each call: the namespace shows the machine as it is now. Option "root" names the
  /// folder below which all files are read, where it is not this machine that is described.
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
