// The update check as the user meets it; the reading of the feed has its own test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/app/application_run.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCheck = R"("choose": "Check for Updates…")";
constexpr const char* kBody = R"("{\"version\": \"1.4\", \"build\": 12, \"released\": 1700000000}")";
const std::string kNewerBuild = std::string(R"("status": 200, "body": )") + kBody;

std::string feed(const std::string& answer, const std::string& further = "") {
  return R"(, "services": {"http": {"/quillmere/latest.json": {)" + answer + "}}" + further + "}";
}

ApplicationRun check(const std::string& services) {
  return RunApplication({.timeline = {At(1, kCheck), DumpAt(30)}, .further = services});
}

TEST(UpdateCheck, OffersANewerBuild) {
  const ApplicationRun run = check(feed(kNewerBuild));
  EXPECT_THAT(MessagesOf(run, "update check"), ElementsAre("update check status=200 kind=1 feedBuild=12 build=11"));
  ASSERT_EQ(run.dumps.at(0)["alerts"].size(), 1U);
  const json alert = run.dumps.at(0)["alerts"][0];
  EXPECT_EQ(alert["title"], "Quillmere 1.4 is available.");
  EXPECT_EQ(alert["message"],
            "You have 1.3. Open the download and drag Quillmere to Applications to replace it; your settings stay.");
  EXPECT_THAT(alert["buttons"], ElementsAre("Download", "Later"));
  EXPECT_EQ(alert["answer"], "Download");
  EXPECT_THAT(run.dumps.at(0)["openedAddresses"], ElementsAre("https://updates.hushlet.example/quillmere/download"));
}

TEST(UpdateCheck, OpensNothingAfterLater) {
  const ApplicationRun run = check(feed(kNewerBuild, R"(, "alertAnswers": ["Later"])"));
  EXPECT_EQ(run.dumps.at(0)["alerts"][0]["answer"], "Later");
  EXPECT_THAT(run.dumps.at(0)["openedAddresses"], IsEmpty());
}

TEST(UpdateCheck, ReportsTheNewestBuild) {
  const ApplicationRun run =
      check(feed(R"("status": 200, "body": "{\"version\": \"1.3\", \"build\": 11, \"released\": 5}")"));
  EXPECT_THAT(MessagesOf(run, "update check"), ElementsAre("update check status=200 kind=0 feedBuild=11 build=11"));
  EXPECT_EQ(run.dumps.at(0)["alerts"][0]["message"], "You have version 1.3 (11), the newest one.");
  EXPECT_THAT(run.dumps.at(0)["alerts"][0]["buttons"], ElementsAre("OK"));
  EXPECT_THAT(run.dumps.at(0)["openedAddresses"], IsEmpty());
}

TEST(UpdateCheck, ReadsOnlyStatus200) {
  for (const char* status : {"404", "201", "301", "500"}) {
    const ApplicationRun run = check(feed(std::string(R"("status": )") + status + R"(, "body": )" + kBody));
    EXPECT_THAT(MessagesOf(run, "update check"),
                ElementsAre(std::string("update check status=") + status + " kind=3 feedBuild=0 build=11"));
    EXPECT_THAT(run.dumps.at(0)["alerts"][0]["buttons"], ElementsAre("OK"));
  }
}

TEST(UpdateCheck, FailsWithoutANetwork) {
  for (const std::string& services : {feed(R"("error": "The network is down.")"), std::string()}) {
    const ApplicationRun run = check(services);
    EXPECT_THAT(MessagesOf(run, "update check"), ElementsAre("update check status=0 kind=3 feedBuild=0 build=11"));
    EXPECT_EQ(run.dumps.at(0)["alerts"][0]["title"], "Couldn't check for updates.");
    EXPECT_EQ(run.dumps.at(0)["alerts"][0]["message"],
              "Try again later, or get the newest version at updates.hushlet.example/quillmere/download.");
  }
}

TEST(UpdateCheck, WaitsFifteenSecondsAndNoLonger) {
  const auto alertsAt = [](const char* seconds) {
    const ApplicationRun run = RunApplication(
        {.timeline = {At(1, kCheck), DumpAt(14.9), DumpAt(15.9), DumpAt(16.1)},
         .further = feed(std::string(R"("status": 200, "seconds": )") + seconds + R"(, "body": )" + kBody)});
    return std::vector<std::size_t>{run.dumps.at(0)["alerts"].size(), run.dumps.at(1)["alerts"].size(),
                                    run.dumps.at(2)["alerts"].size()};
  };
  EXPECT_THAT(alertsAt("14.5"), ElementsAre(0, 1, 1));
  EXPECT_THAT(alertsAt("15.5"), ElementsAre(0, 0, 1));
}

TEST(UpdateCheck, RunsBesideAnother) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, kCheck), At(1.5, kCheck), DumpAt(9)},
                      .further = feed(std::string(R"("status": 200, "seconds": 2, "body": )") + kBody)});
  EXPECT_EQ(run.dumps.at(0)["alerts"].size(), 2U);
}

TEST(UpdateCheck, WorksWithoutInstalledVersion) {
  const ApplicationRun run =
      RunApplication({.bareBundle = "", .timeline = {At(1, kCheck), DumpAt(9)}, .further = feed(kNewerBuild)});
  EXPECT_THAT(MessagesOf(run, "update check"), ElementsAre("update check status=200 kind=1 feedBuild=12 build=0"));
  EXPECT_THAT(run.dumps.at(0)["alerts"][0]["message"].get<std::string>(), testing::StartsWith("You have ?. "));
}

TEST(UpdateCheck, AcceptsBuildAsNumberOrText) {
  for (const auto& [build, logged] : {std::pair{"12", "0 feedBuild=12 build=12"},
                                      {"\"12\"", "0 feedBuild=12 build=12"},
                                      {"11.9", "1 feedBuild=12 build=11"},
                                      {"1e-05", "1 feedBuild=12 build=0"},
                                      {"1.5e17", "0 feedBuild=12 build=150000000000000000"},
                                      {"-1.5", "1 feedBuild=12 build=-1"},
                                      {"1e30", "1 feedBuild=12 build=0"},
                                      {"true", "1 feedBuild=12 build=1"},
                                      {"[12]", "1 feedBuild=12 build=0"},
                                      {"\"7 (beta)\"", "1 feedBuild=12 build=7"},
                                      {"\"beta\"", "1 feedBuild=12 build=0"}}) {
    const ApplicationRun run = RunApplication({.bareBundle = R"(, "CFBundleVersion": )" + std::string(build),
                                               .timeline = {At(1, kCheck)},
                                               .further = feed(kNewerBuild)});
    EXPECT_THAT(MessagesOf(run, "update check"), ElementsAre(std::string("update check status=200 kind=") + logged));
  }
}

TEST(UpdateCheck, AcceptsInstalledVersionOfAnyType) {
  for (const auto& [version, named] :
       {std::pair{"1.5", "1.5"}, {"2", "2"}, {"\"1.3 beta\"", "1.3 beta"}, {"[1]", "?"}}) {
    const ApplicationRun run =
        RunApplication({.bareBundle = R"(, "CFBundleShortVersionString": )" + std::string(version),
                        .timeline = {At(1, kCheck), DumpAt(9)},
                        .further = feed(kNewerBuild)});
    EXPECT_THAT(run.dumps.at(0)["alerts"][0]["message"].get<std::string>(),
                testing::StartsWith(std::string("You have ") + named + ". "));
  }
}

}  // namespace
