// The flavor is decided once per process, so each case looks at it in a child process, and no test of this program
// decides it before.
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/log.h"
#include "base/paths.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string text(const std::optional<std::string>& path) { return path.value_or("absent"); }

std::string allPaths() {
  return text(HLStateDirectoryPath()) + "\n" + text(HLStatusLogPath()) + "\n" + text(HLDiagnosticsLogPath()) + "\n" +
         text(HLLocalSocketPath());
}

std::string flavorWith(const std::string& bundle) {
  return InChildProcess([&bundle] {
    SimulatedDesktop desktop(R"({"bundle": )" + bundle + "}");
    return std::string(HLIsProductFlavor() ? "product" : "personal");
  });
}

// A scene in the product flavor with these further keys; "$" stands for the directory.
std::string productScene(const std::string& directory, std::string keys, const std::string& bundleKeys = "") {
  for (std::size_t at = 0; (at = keys.find('$', at)) != std::string::npos;) keys.replace(at, 1, directory);
  return R"({"bundle": {"info": {"HLProductFlavor": "product"})" + bundleKeys + "}" + keys + "}";
}

TEST(Flavor, NeedsTheExactWordProduct) {
  EXPECT_EQ(flavorWith(R"({"info": {"HLProductFlavor": "product"}})"), "product");
  EXPECT_EQ(flavorWith(R"({"info": {"CFBundleName": "x", "HLProductFlavor": "product"}})"), "product");
}

TEST(Flavor, IsPersonalInEveryOtherCase) {
  for (const char* bundle :
       {"{}", R"({"info": {}})", R"({"info": {"HLProductFlavor": "personal"}})",
        R"({"info": {"HLProductFlavor": "Product"}})", R"({"info": {"HLProductFlavor": "PRODUCT"}})",
        R"({"info": {"HLProductFlavor": " product"}})", R"({"info": {"HLProductFlavor": ""}})",
        R"({"info": {"HLProductFlavor": 1}})", R"({"info": {"HLProductFlavor": true}})",
        R"({"info": {"HLProductFlavor": ["product"]}})", R"({"info": {"HLProductFlavor": {"product": "product"}}})",
        R"({"info": {"hlproductflavor": "product"}})", R"({"identifier": "product"})"}) {
    EXPECT_EQ(flavorWith(bundle), "personal") << bundle;
  }
}

TEST(Flavor, IsDecidedOnce) {
  TemporaryDirectory first;
  TemporaryDirectory second;
  EXPECT_EQ(InChildProcess([&] {
              {
                SimulatedDesktop desktop(productScene(first.path(), R"(, "applicationSupport": "$")"));
                (void)HLIsProductFlavor();
              }
              SimulatedDesktop desktop(R"({"applicationSupport": ")" + second.path() + R"("})");
              return text(HLStateDirectoryPath());
            }),
            second.path() + "/dismiss");
}

TEST(PersonalPaths, AreUnderTheHome) {
  TemporaryDirectory home;
  EXPECT_EQ(InChildProcess([&] {
              SimulatedDesktop desktop(R"({"home": ")" + home.path() + R"(", "bundle": {"identifier": "x.y"}})");
              return allPaths();
            }),
            home.path() + "/.local/state/hushlet\n/tmp/hushlet-status.log\n" + home.path() +
                "/.local/state/hushlet/hushlet_detailed_diagnostics.log\n" + home.path() +
                "/.local/state/hushlet/daemon.sock");
}

TEST(ProductPaths, ContainTheBundleIdentifier) {
  TemporaryDirectory support;
  EXPECT_EQ(InChildProcess([&] {
              SimulatedDesktop desktop(productScene(support.path(), R"(, "applicationSupport": "$")",
                                                    R"(, "identifier": "com.tessaly.hushlet")"));
              return allPaths();
            }),
            support.path() + "/com.tessaly.hushlet\n" + support.path() + "/com.tessaly.hushlet/status.log\n" +
                support.path() + "/com.tessaly.hushlet/hushlet_detailed_diagnostics.log\n" + support.path() +
                "/com.tessaly.hushlet/daemon.sock");
}

TEST(ProductPaths, UseDismissWithoutAnIdentifier) {
  TemporaryDirectory support;
  EXPECT_EQ(InChildProcess([&] {
              SimulatedDesktop desktop(productScene(support.path(), R"(, "applicationSupport": "$")"));
              return text(HLStatusLogPath());
            }),
            support.path() + "/dismiss/status.log");
}

TEST(ProductPaths, AreAbsentWithoutApplicationSupport) {
  TemporaryDirectory home;
  EXPECT_EQ(InChildProcess([&] {
              SimulatedDesktop desktop(productScene(home.path(), R"(, "applicationSupport": null, "home": "$")"));
              HLAppendLog("status %d", 1);
              HLAppendDiagnostics("diagnostics %d", 1);
              HLEnsureStateDirectory();
              return allPaths();
            }),
            "absent\nabsent\nabsent\nabsent");
  EXPECT_TRUE(std::filesystem::is_empty(home.path()));
}

TEST(ProductPaths, SeparateTheTwoLogs) {
  TemporaryDirectory support;
  EXPECT_EQ(InChildProcess([&] {
              SimulatedDesktop desktop(productScene(support.path(), R"(, "applicationSupport": "$")"));
              HLAppendLog("to the status log");
              HLAppendDiagnostics("to the diagnostics log");
              return std::string("done");
            }),
            "done");
  EXPECT_EQ(LogMessages(FileContent(support.path() + "/dismiss/status.log")),
            std::vector<std::string>{"to the status log"});
  EXPECT_EQ(LogMessages(FileContent(support.path() + "/dismiss/hushlet_detailed_diagnostics.log")),
            std::vector<std::string>{"to the diagnostics log"});
}

}  // namespace
