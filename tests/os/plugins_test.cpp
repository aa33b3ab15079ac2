// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>

#include "support/expect_status.h"
#include "support/log_capture.h"
#include "support/temp_dir.h"

#include <algorithm>
#include <array>

#include <dlfcn.h>

static std::string gLibrary;  // where the library says that it is; where it is if empty

/// Stands before the C library's function, for the library under test too.
extern "C" QDXCORE_EXPORT int dladdr(const void* address, Dl_info* info) noexcept {
  static const auto next = reinterpret_cast<decltype(&dladdr)>(::dlsym(RTLD_NEXT, "dladdr"));
  const int result = next(address, info);
  if (!gLibrary.empty()) info->dli_fname = gLibrary.c_str();
  return result;
}

using namespace NVORNQDX20;

namespace fs = std::filesystem;
using TOS = TOSSpecific;
using TNames = std::vector<std::string>;

/// An install root of the test's own.
class PluginRoot : public ::testing::Test {
 protected:
  PluginRoot() { gLibrary = fRoot / "libqdxcore.so"; }

  static TNames Sorted(TNames names) {
    std::sort(names.begin(), names.end());
    return names;
  }
  /// What is thrown and logged, up to where the loader's own words begin.
  template <typename TLoad>
  static std::string Refusal(TLoad&& load) {
    const TLogCapture log;
    const std::string status = StatusThrownBy(load);
    const std::string message = log.Messages().at(0);
    return status + " " + message.substr(0, message.find("so: "));
  }

  const TTempDir fDir;
  const fs::path& fRoot = fDir.Path();
};

TEST_F(PluginRoot, IsTheFolderOfTheLibrary) {
  EXPECT_EQ(TOS::GetQDXRootPath(), fRoot);
  gLibrary.clear();
  EXPECT_TRUE(fs::equivalent(TOS::GetQDXRootPath(), fs::path(QDXCORE_LIBRARY).parent_path()));
  gLibrary = "libqdxcore.so";
  EXPECT_EQ(TOS::GetQDXRootPath(), ".");
}

TEST_F(PluginRoot, IsSearchedForServices) {
  EXPECT_EQ(TOS::FindNSCs(), TNames());
  for (const char* name :
       {"libdisk.nsp.so", "libfoo.nsp.so.old", "x.nsp", "libfile.nsc.so", "lib.so"}) {
    fDir.Write(name, "");
  }
  fs::create_directory(fRoot / "libfolder.nsp.so");
  fs::create_symlink("libdisk.nsp.so", fRoot / "liblink.nsp.so");
  fs::create_symlink("none", fRoot / "libdangling.nsp.so");
  EXPECT_EQ(Sorted(TOS::FindNSPs()), (TNames{"disk", "foo.nsp", "link", "sp"}));
  EXPECT_EQ(TOS::FindNSCs(), TNames{"file"});
}

TEST_F(PluginRoot, GivesProvidersThatRegisterThemselves) {
  fs::copy_file(TEST_PROVIDER, fRoot / "libany.nsp.so");
  TOS::LoadNSPLibrary("any");
  const auto registry = TRootObject::GetNamespaceProviderManager();
  EXPECT_EQ(registry->GetNamespaceProvider("test")->GetName({}), "test");
  EXPECT_EQ(
      Refusal([] { TOS::LoadNSPLibrary("none"); }),
      "kQDXStatusFileSystemError 0 Couldn't load NSP: none (" + fRoot.string() + "/libnone.nsp.");
}

TEST_F(PluginRoot, GivesConsumersByTheirEntryPoint) {
  for (const std::string name : {"good", "nothing", "other"}) {
    fs::copy_file(TEST_CONSUMER, fRoot / ("lib" + name + ".nsc.so"));
  }
  const boost::shared_ptr<INamespaceConsumer> consumer(TOS::LoadNSCLibrary("good"));
  EXPECT_EQ(consumer->GetName({}), "the good consumer");
  EXPECT_NE(::dlsym(RTLD_DEFAULT, "good_CreateINamespaceConsumer"), nullptr) << "visible to all";
  EXPECT_EQ(TOS::LoadNSCLibrary("nothing"), nullptr);
  EXPECT_EQ(Refusal([] { TOS::LoadNSCLibrary("other"); }),
            "kQDXStatusNotFound 0 Couldn't find 'CreateINamespaceConsumer' in " + fRoot.string() +
                "/libother.nsc.so");
  EXPECT_EQ(
      Refusal([] { TOS::LoadNSCLibrary("none"); }),
      "kQDXStatusFileSystemError 0 Couldn't load NSC: none (" + fRoot.string() + "/libnone.nsc.");
}

TEST_F(PluginRoot, LoadsGenericPluginsByPath) {
  fs::copy_file(TEST_CONSUMER, fRoot / "any.pi.so");
  EXPECT_NE(TOS::LoadPluginLibrary(fRoot / "any.pi.so"), nullptr);
  fs::current_path(fRoot);
  EXPECT_NE(TOS::LoadPluginLibrary("any.pi.so"), nullptr);
  for (const char* path : {"libm.so.6", ""}) {
    EXPECT_QDX_STATUS(TOS::LoadPluginLibrary(path), kQDXStatusFileSystemError);
  }
  EXPECT_EQ(Refusal([] { TOS::LoadPluginLibrary("/none.pi.so"); }),
            "kQDXStatusFileSystemError 0 ERROR: Failed to load plugin.  Reason: /none.pi.");
}

using PluginSearch = PluginRoot;

TEST_F(PluginSearch, AsksForTheBareName) {
  for (const char* name : {"p/sub/a.pi.so", "p/sub/b.pi.so.bak", "p/sub/c.nsp.so",
                           "p/sub/deep/d.pi.so", "p/e.pi.so", "p/hidden/f.pi.so", "other/sub/x"}) {
    fDir.Write(name, "");
  }
  const std::string plugins = fRoot / "p";
  const auto search = [&](const fs::path& folder) {
    fs::current_path(folder);
    return Sorted(TOS::FindPlugins(plugins));
  };
  const std::string a = plugins + "/sub/a.pi.so", b = plugins + "/sub/b.pi.so.bak";
  EXPECT_EQ(search(plugins), (TNames{plugins + "/hidden/f.pi.so", a, b}));
  EXPECT_EQ(search(fRoot / "other"), (TNames{a, b}));
  EXPECT_EQ(search(fRoot / "other/sub"), TNames());
}

TEST(SpecificationPath, IsBuiltFromThePluginPath) {
  const std::array<const char*, 3> rows[] = {
      // path, kind, specification
      {"/opt/t/plugins/x/libdisk.pi.so", "pi", "/opt/t/plugins/x/disk.properties.xml"},
      {"/opt/t/x/libdisk.cmpi.so", "cmpi", "/opt/t/x/libdisk.properties.xml"},
      {"/usr/lib/x/libdisk.pi.so", "pi", "/usr//x/libdisk.properties.xml"},
      {"libx.pi.so.pi.so", "pi", "x.properties.xml"},
  };
  for (const auto& [path, kind, specification] : rows) {
    EXPECT_EQ(TOS::BuildSpecificationPath(path, kind), specification);
  }
  EXPECT_EQ(TOS::BuildSpecificationPath("liba.pi.so"), "a.properties.xml");
  for (const char* bad : {"libx.so", "disk.pi.so", "disk.pi.so.lib"}) {
    EXPECT_QDX_STATUS(TOS::BuildSpecificationPath(bad), kQDXStatusFail);
  }
}
