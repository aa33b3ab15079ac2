// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/os_specific.h>

#include "support/expect_status.h"
#include "support/run_program.h"
#include "support/temp_dir.h"

#include <array>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

/// An install root of the test's own, with the library in it.
class PluginRoot : public ::testing::Test {
 protected:
  PluginRoot() { fs::copy_file(QDXCORE_LIBRARY, fRoot / QDXCORE_SONAME); }

  /// What the host program prints when it runs in `folder`, the library found by `libraryPath`.
  std::string Ask(const std::string& request, const fs::path& folder,
                  const std::string& libraryPath) const {
    const TProgramRun run = RunProgram({"/bin/sh", "-c",
                                        "cd '" + folder.string() + "' && LD_LIBRARY_PATH='" +
                                            libraryPath + "' '" PLUGIN_HOST "' " + request});
    EXPECT_EQ(run.fExitCode, 0) << run.fErrors;
    return run.fOutput;
  }
  std::string Ask(const std::string& request) const { return Ask(request, "/", fRoot); }

  /// The same, without what the loader says in the words of its own.
  std::string AskForFailure(const std::string& request) const {
    const std::string answer = Ask(request);
    return answer.substr(0, answer.find("so: "));
  }

  const TTempDir fDir;
  const fs::path& fRoot = fDir.Path();
};

TEST_F(PluginRoot, IsTheFolderOfTheLibrary) {
  EXPECT_EQ(Ask("root"), fRoot.string() + "\n");
  // An empty element of the path makes the loader know the library by its bare name.
  EXPECT_EQ(Ask("root", fRoot, ":/none"), ".\n");
}

TEST_F(PluginRoot, IsSearchedForServices) {
  EXPECT_EQ(Ask("nscs"), "");
  for (const char* name :
       {"libdisk.nsp.so", "libfoo.nsp.so.old", "x.nsp", "libfile.nsc.so", "lib.so"}) {
    fDir.Write(name, "");
  }
  fs::create_directory(fRoot / "libfolder.nsp.so");
  fs::create_symlink("libdisk.nsp.so", fRoot / "liblink.nsp.so");
  fs::create_symlink("none", fRoot / "libdangling.nsp.so");
  EXPECT_EQ(Ask("nsps"), "disk\nfoo.nsp\nlink\nsp\n");
  EXPECT_EQ(Ask("nscs"), "file\n");
}

TEST_F(PluginRoot, GivesProvidersThatRegisterThemselves) {
  fs::copy_file(TEST_PROVIDER, fRoot / "libany.nsp.so");
  EXPECT_EQ(Ask("load-nsp any"), "test\n");
  EXPECT_EQ(AskForFailure("load-nsp none"),
            "kQDXStatusFileSystemError\nlog 0 Couldn't load NSP: none (" + fRoot.string() +
                "/libnone.nsp.");
}

TEST_F(PluginRoot, GivesConsumersByTheirEntryPoint) {
  for (const std::string name : {"good", "nothing", "other"}) {
    fs::copy_file(TEST_CONSUMER, fRoot / ("lib" + name + ".nsc.so"));
  }
  EXPECT_EQ(Ask("load-nsc good"), "the good consumer\nvisible to all\n");
  EXPECT_EQ(Ask("load-nsc nothing"), "null\nvisible to all\n");
  EXPECT_EQ(Ask("load-nsc other"),
            "kQDXStatusNotFound\nlog 0 Couldn't find 'CreateINamespaceConsumer' in " +
                fRoot.string() + "/libother.nsc.so\n");
  EXPECT_EQ(AskForFailure("load-nsc none"),
            "kQDXStatusFileSystemError\nlog 0 Couldn't load NSC: none (" + fRoot.string() +
                "/libnone.nsc.");
}

TEST_F(PluginRoot, LoadsGenericPluginsByPath) {
  fs::copy_file(TEST_PROVIDER, fRoot / "any.pi.so");
  EXPECT_EQ(Ask("load " + (fRoot / "any.pi.so").string()), "loaded\n");
  EXPECT_EQ(Ask("load any.pi.so", fRoot, fRoot), "loaded\n");
  for (const char* path : {"libm.so.6", "''"}) {
    EXPECT_EQ(Ask(std::string("load ") + path).find("kQDXStatusFileSystemError\n"), 0U) << path;
  }
  EXPECT_EQ(AskForFailure("load /none.pi.so"),
            "kQDXStatusFileSystemError\nlog 0 ERROR: Failed to load plugin.  Reason: /none.pi.");
}

using PluginSearch = PluginRoot;

TEST_F(PluginSearch, AsksForTheBareName) {
  for (const char* name : {"p/sub/a.pi.so", "p/sub/b.pi.so.bak", "p/sub/c.nsp.so",
                           "p/sub/deep/d.pi.so", "p/e.pi.so", "p/hidden/f.pi.so", "other/sub/x"}) {
    fDir.Write(name, "");
  }
  const std::string plugins = (fRoot / "p").string();
  const std::string found = plugins + "/sub/a.pi.so\n" + plugins + "/sub/b.pi.so.bak\n";
  const auto search = [&](const fs::path& folder) {
    return Ask("plugins " + plugins, folder, fRoot);
  };
  EXPECT_EQ(search(plugins), plugins + "/hidden/f.pi.so\n" + found);  // printed sorted
  EXPECT_EQ(search(fRoot / "other"), found);
  EXPECT_EQ(search(fRoot / "other/sub"), "");
  EXPECT_QDX_STATUS(TOSSpecific::FindPlugins("/none"), kQDXStatusFileSystemError);
}

TEST(SpecificationPath, IsBuiltFromThePluginPath) {
  const std::array<const char*, 3> rows[] = {
      {"/opt/t/plugins/x/libdisk.pi.so", "pi", "/opt/t/plugins/x/disk.properties.xml"},
      {"/opt/t/x/libdisk.cmpi.so", "cmpi", "/opt/t/x/libdisk.properties.xml"},
      {"/usr/lib/x/libdisk.pi.so", "pi", "/usr//x/libdisk.properties.xml"},
      {"libx.pi.so.pi.so", "pi", "x.properties.xml"},
  };
  for (const auto& [path, kind, specification] : rows) {
    EXPECT_EQ(TOSSpecific::BuildSpecificationPath(path, kind), specification);
  }
  EXPECT_EQ(TOSSpecific::BuildSpecificationPath("liba.pi.so"), "a.properties.xml");
  for (const char* bad : {"libx.so", "disk.pi.so", "disk.pi.so.lib"}) {
    EXPECT_QDX_STATUS(TOSSpecific::BuildSpecificationPath(bad), kQDXStatusFail);
  }
}

}  // namespace
}  // namespace NVORNQDX20
