// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "qdx/installation.h"

namespace {

TEST(QDXPlugins, AreListedInOrder) {
  const TInstallation installation;
  installation.AddPlugin(TESTS "test_provider.so", "libtest.nsp.so");
  installation.AddLinuxProvider();
  installation.AddPlugin(TESTS "test_consumer.so", "libgood.nsc.so");
  const TProgramRun run =
      installation.RunScript("\"$0\" plugins | sed 's| /.*/| |; /^parts of linux/d'");
  EXPECT_EQ(run.fErrors, "");
  EXPECT_EQ(run.fOutput,
            "KIND      SERVICE  NAME               NAMESPACES  FILE\n"
            "provider  linux    linux              root/cimv2  liblinux.nsp.so\n"
            "provider  test     test               -           libtest.nsp.so\n"
            "consumer  good     the good consumer  -           libgood.nsc.so\n"
            "parts of test: small\n"
            "parts of test on request: dear\n");
  EXPECT_EQ(installation.Run({"plugins"}).fExitCode, 0);
}

TEST(QDXPlugins, AreListedWithTheirFailures) {
  const TInstallation installation;
  installation.AddBrokenPlugin("liba.nsp.so");
  installation.AddLinuxProvider();
  installation.AddPlugin(TESTS "bad_provider.so", "libbad.nsp.so");
  installation.AddPlugin(TESTS "bad_provider.so",
                         "libworse.nsp.so");  // registers a name that is taken
  installation.AddBrokenPlugin("libb.nsc.so");
  installation.AddPlugin(TESTS "test_consumer.so", "libnothing.nsc.so");  // creates null
  const TProgramRun run = installation.Run({"plugins", "--json"});
  EXPECT_EQ(run.fExitCode, 3);
  const auto plugins = nlohmann::json::parse(run.fOutput);
  ASSERT_EQ(plugins["providers"].size(), 4U);
  ASSERT_EQ(plugins["consumers"].size(), 2U);
  EXPECT_EQ(plugins["providers"][1]["failure"], nullptr);
  EXPECT_EQ(plugins["providers"][1]["providers"][0]["namespaces"][0], "red\x1b[31m\xef\xbf\xbd");
  for (const auto& failed : {plugins["providers"][0], plugins["providers"][3],
                             plugins["consumers"][0], plugins["consumers"][1]}) {
    const std::string line = failed.value("file", "") + ": " + failed.value("failure", "");
    EXPECT_NE(run.fErrors.find("er " + line + "\n"), std::string::npos) << run.fErrors;
    EXPECT_EQ(failed["status"], "kQDXStatusInvalidPlugin");
  }
  EXPECT_NE(installation.Run({"plugins"}).fOutput.find("red?[31m?  "), std::string::npos);
}

TEST(QDXPlugins, AreMissedWhereNoneIsUsable) {
  const TInstallation installation;
  const TProgramRun run = installation.Run({"identity"});
  EXPECT_EQ(run.fExitCode, 5);
  EXPECT_EQ(run.fErrors,
            "qdx: describing the machine below /: no provider has root/cimv2; 'qdx plugins' lists "
            "what is installed\n");
  EXPECT_EQ(run.fOutput, "");
  const TProgramRun plugins = installation.Run({"plugins", "--json"});
  EXPECT_EQ(plugins.fExitCode, 5);
  EXPECT_EQ(plugins.fErrors, "qdx: looking for plug-ins in " + installation.Folder().string() +
                                 ": the folder has none\n");
  EXPECT_EQ(nlohmann::json::parse(plugins.fOutput)["consumers"].size(), 0U);
}

}  // namespace
