#include "app/update_feed.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

constexpr const char* kFeed = R"({"version": "1.4", "build": 12, "released": 1700000000})";

QLMUpdateVerdict read(const std::optional<std::string>& data, std::int64_t installedBuild = 11) {
  return QLMReadUpdateFeed(data, "1.3", installedBuild);
}

std::string feed(const std::string& version, const std::string& build, const std::string& released) {
  return R"({"version": )" + version + R"(, "build": )" + build + R"(, "released": )" + released + "}";
}

void expectFailure(const std::optional<std::string>& data) {
  const QLMUpdateVerdict verdict = read(data);
  EXPECT_EQ(verdict.kind, 3) << data.value_or("nothing");
  EXPECT_EQ(verdict.version, "");
  EXPECT_EQ(verdict.build, 0);
  EXPECT_FALSE(verdict.offersDownload());
}

TEST(UpdateFeed, OffersANewerBuild) {
  const QLMUpdateVerdict verdict = read(kFeed);
  EXPECT_EQ(verdict.kind, 1);
  EXPECT_EQ(verdict.version, "1.4");
  EXPECT_EQ(verdict.build, 12);
  EXPECT_EQ(verdict.title, "Quillmere 1.4 is available.");
  EXPECT_EQ(verdict.message,
            "You have 1.3. Open the download and drag Quillmere to Applications to replace it; your settings stay.");
  EXPECT_TRUE(verdict.offersDownload());
}

TEST(UpdateFeed, TreatsOlderBuildsAsCurrent) {
  for (const std::int64_t installed : {12, 13}) {
    const QLMUpdateVerdict verdict = read(kFeed, installed);
    EXPECT_EQ(verdict.kind, 0);
    EXPECT_EQ(verdict.version, "1.4");
    EXPECT_EQ(verdict.build, 12);
    EXPECT_EQ(verdict.title, "Quillmere is up to date.");
    EXPECT_EQ(verdict.message, "You have version 1.3 (" + std::to_string(installed) + "), the newest one.");
    EXPECT_FALSE(verdict.offersDownload());
  }
}

TEST(UpdateFeed, ComparesBuildsAndNeverVersions) {
  EXPECT_EQ(read(feed(R"("0.1")", "12", "1")).kind, 1);
  EXPECT_EQ(read(feed(R"("9.9")", "11", "1")).kind, 0);
}

TEST(UpdateFeed, NamesTheDownloadPageOnFailure) {
  const QLMUpdateVerdict verdict = read(std::nullopt);
  EXPECT_EQ(verdict.kind, 3);
  EXPECT_EQ(verdict.title, "Couldn't check for updates.");
  EXPECT_EQ(verdict.message,
            "Try again later, or get the newest version at updates.hushlet.example/quillmere/download.");
}

TEST(UpdateFeed, UsesTheUpdateServer) {
  EXPECT_EQ(QLMUpdateFeedURL(), "https://updates.hushlet.example/quillmere/latest.json");
  EXPECT_EQ(QLMDownloadURL(), "https://updates.hushlet.example/quillmere/download");
}

TEST(UpdateFeed, FailsOnOtherDocuments) {
  for (const char* data : {"", " ", "[]", "[{\"version\": \"1.4\", \"build\": 12, \"released\": 1}]", "12", "null",
                           "\"1.4\"", "{", "{\"version\": \"1.4\"", "<html></html>"}) {
    expectFailure(data);
  }
  expectFailure(std::nullopt);
}

TEST(UpdateFeed, AcceptsVersionsUpTo32Characters) {
  const auto version = [](std::size_t length) { return feed('"' + std::string(length, '1') + '"', "12", "1"); };
  expectFailure(version(0));
  EXPECT_EQ(read(version(1)).kind, 1);
  EXPECT_EQ(read(version(32)).kind, 1);
  expectFailure(version(33));
}

TEST(UpdateFeed, CountsUtf16Units) {
  const auto version = [](int bells) {
    std::string text = "\"";
    for (int i = 0; i < bells; ++i) text += "🔔";
    return feed(text + "\"", "12", "1");
  };
  EXPECT_EQ(read(version(16)).kind, 1);
  expectFailure(version(17));
}

TEST(UpdateFeed, RequiresATextVersion) {
  for (const char* version : {"1.4", "null", "true", "[\"1.4\"]", "{}"}) expectFailure(feed(version, "12", "1"));
  expectFailure(R"({"build": 12, "released": 1})");
}

TEST(UpdateFeed, RequiresPositiveBuildAndRelease) {
  for (const char* number :
       {"\"12\"", "0", "-1", "0.9", "true", "null", "[12]", "{}", "1e30", "-1e30", "9223372036854775808"}) {
    expectFailure(feed("\"1.4\"", number, "1"));
    expectFailure(feed("\"1.4\"", "12", number));
  }
  expectFailure(R"({"version": "1.4", "released": 1})");
  expectFailure(R"({"version": "1.4", "build": 12})");
}

TEST(UpdateFeed, CutsNumbersToTheirIntegerPart) {
  EXPECT_EQ(read(feed("\"1.4\"", "12.9", "1")).build, 12);
  EXPECT_EQ(read(feed("\"1.4\"", "12", "1.5")).kind, 1);
  EXPECT_EQ(read(feed("\"1.4\"", "11.9", "1")).kind, 0);
  EXPECT_EQ(read(feed("\"1.4\"", "9223372036854775807", "1")).build, 9223372036854775807);
}

TEST(UpdateFeed, IgnoresOtherMembers) {
  EXPECT_EQ(read(R"({"notes": [1, {"a": null}], "version": "1.4", "build": 12, "released": 1, "kind": 3})").kind, 1);
}

}  // namespace
