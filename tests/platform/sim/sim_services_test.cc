// The services that the application uses, as a scene has them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/sim/scene_menu_bar.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

std::string services(const std::string& members) { return R"({"services": {)" + members + "}}"; }

// Alerts

TEST(Alerts, DefaultToTheFirstButton) {
  MenuBar program(services(R"("alertAnswers": ["Later", "OK"])"));
  HLAlerts& alerts = program.host().alerts;
  EXPECT_EQ(alerts.runModal({"One", "a", {"Download", "Later"}}), 1U);
  EXPECT_EQ(alerts.runModal({"Two", "b", {"OK"}}), 0U);
  EXPECT_EQ(alerts.runModal({"Three", "c", {"First", "Second"}}), 0U);
  EXPECT_EQ(program.dump()["alerts"],
            json::parse(R"([{"title": "One", "message": "a", "buttons": ["Download", "Later"], "answer": "Later"},
                            {"title": "Two", "message": "b", "buttons": ["OK"], "answer": "OK"},
                            {"title": "Three", "message": "c", "buttons": ["First", "Second"], "answer": "First"}])"));
}

TEST(Alerts, RejectAnUnknownAnswer) {
  MenuBar program(Timeline(R"({"at": 5, "quit": 9})", R"(, "services": {"alertAnswers": ["Maybe", "Never"]})"));
  testing::internal::CaptureStderr();
  EXPECT_EQ(program.run([&] {
    program.at(1, [&] {
      EXPECT_EQ(program.host().alerts->runModal({"Title", "", {"Yes", "No"}}), 1U);
      EXPECT_EQ(program.host().alerts->runModal({"Title", "", {"Yes", "No"}}), 1U);
    });
  }),
            2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "scene.json: services.alertAnswers: the alert \"Title\" has no button \"Maybe\"\n");
  EXPECT_EQ(program.desktop().simulator().elapsed(), 1);
}

// Hot keys

TEST(RefusedHotKeys, GiveTheirStatusAndRegisterNothing) {
  MenuBar program(services(R"("refusedHotKeys": [{"code": 45, "modifiers": ["command", "shift"], "status": -9878},
    {"code": 46, "status": -9868}, {"code": 47, "modifiers": ["option"], "status": 0}])"));
  HLHotKeys& hotKeys = program.host().hotKeys;
  const HLHotKeyRegistration taken = hotKeys.registerHotKey(45, HLHotKeyShift | HLHotKeyCommand, {"HLhk", 1});
  EXPECT_EQ(taken.status, HLHotKeyStatus::taken);
  EXPECT_EQ(taken.hotKey, nullptr);
  EXPECT_EQ(hotKeys.registerHotKey(46, 0, {"HLhk", 1}).status, HLHotKeyStatus::failed);
  EXPECT_EQ(program.dump()["hotKey"], nullptr);
  for (const auto& [code, modifiers] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
           {45, HLHotKeyShift}, {45, HLHotKeyCommand}, {46, HLHotKeyCommand}, {47, HLHotKeyOption}}) {
    const HLHotKeyRegistration registration = hotKeys.registerHotKey(code, modifiers, {"HLhk", 1});
    EXPECT_EQ(registration.status, HLHotKeyStatus::success);
    EXPECT_NE(registration.hotKey, nullptr);
    EXPECT_EQ(program.dump()["hotKey"], (json{{"code", code}, {"modifiers", modifiers}}));
  }
  EXPECT_EQ(program.dump()["hotKey"], nullptr);
}

// The login item

TEST(LoginItem, IsRegisteredAndUnregistered) {
  MenuBar program("{}");
  HLLoginItem& item = program.host().loginItem;
  EXPECT_EQ(item.status(), HLLoginItemStatus::notRegistered);
  EXPECT_TRUE(item.registerItem().ok);
  EXPECT_EQ(item.status(), HLLoginItemStatus::enabled);
  EXPECT_EQ(program.dump()["loginItemStatus"], 1);
  EXPECT_TRUE(item.unregisterItem().ok);
  EXPECT_EQ(item.status(), HLLoginItemStatus::notRegistered);
}

TEST(LoginItem, HasTheStatusesOfTheScene) {
  MenuBar program(services(R"("loginItem": {"status": 3, "statusAfterRegister": 2, "registerError": null})"));
  HLLoginItem& item = program.host().loginItem;
  EXPECT_EQ(program.dump()["loginItemStatus"], 3);
  EXPECT_TRUE(item.registerItem().ok);
  EXPECT_EQ(item.status(), HLLoginItemStatus::requiresApproval);
  EXPECT_TRUE(item.unregisterItem().ok);
  EXPECT_EQ(item.status(), HLLoginItemStatus::notRegistered);
}

TEST(LoginItem, KeepsItsStatusOnFailure) {
  MenuBar program(services(R"("loginItem": {"status": 2, "registerError": "no", "unregisterError": "never"})"));
  HLLoginItem& item = program.host().loginItem;
  const HLLoginItemOutcome registered = item.registerItem();
  EXPECT_FALSE(registered.ok);
  EXPECT_EQ(registered.error, "no");
  const HLLoginItemOutcome unregistered = item.unregisterItem();
  EXPECT_FALSE(unregistered.ok);
  EXPECT_EQ(unregistered.error, "never");
  EXPECT_EQ(item.status(), HLLoginItemStatus::requiresApproval);
}

// Preferences

TEST(Defaults, PreferStoredValues) {
  MenuBar program(R"({"defaults": {"kept": 1, "changed": "old", "list": [true, 1.5]}})");
  HLUserDefaults& defaults = program.host().userDefaults;
  defaults.registerDefaults({{"kept", std::int64_t{9}}, {"fallback", std::string("f")}, {"other", true}});
  defaults.registerDefaults({{"fallback", std::string("g")}});
  EXPECT_EQ(HLIntegerDefault(defaults, "kept"), 1);
  EXPECT_EQ(HLStringDefault(defaults, "fallback"), "g");
  EXPECT_TRUE(HLBooleanDefault(defaults, "other"));
  EXPECT_TRUE(defaults.value("nothing").isMissing());
  EXPECT_EQ(program.dump()["defaults"], json::parse(R"({"kept": 1, "changed": "old", "list": [true, 1.5]})"));
  defaults.setValue("changed", false);
  defaults.setValue("fallback", std::string("stored"));
  EXPECT_EQ(program.dump()["defaults"],
            json::parse(R"({"kept": 1, "changed": false, "list": [true, 1.5], "fallback": "stored"})"));
  EXPECT_EQ(HLStringDefault(defaults, "fallback"), "stored");
}

// The workspace

TEST(Workspace, OpensEveryAddressByDefault) {
  MenuBar program("{}");
  EXPECT_TRUE(program.host().workspace->openAddress("x-apple:pane"));
  EXPECT_TRUE(program.host().workspace->openAddress("https://a/b"));
  EXPECT_EQ(program.dump()["openedAddresses"], json::parse(R"(["x-apple:pane", "https://a/b"])"));
}

TEST(Workspace, OpensOnlyGivenPrefixes) {
  MenuBar program(services(R"("opens": ["https://a/", "mailto:x"])"));
  HLWorkspace& workspace = program.host().workspace;
  EXPECT_TRUE(workspace.openAddress("https://a/b"));
  EXPECT_TRUE(workspace.openAddress("mailto:x"));
  EXPECT_FALSE(workspace.openAddress("https://a"));
  EXPECT_FALSE(workspace.openAddress("x https://a/"));
  EXPECT_FALSE(workspace.openAddress("HTTPS://a/"));
  EXPECT_EQ(program.dump()["openedAddresses"], json::parse(R"(["https://a/b", "mailto:x"])"));
  MenuBar closed(services(R"("opens": [])"));
  EXPECT_FALSE(closed.host().workspace->openAddress("https://a/b"));
  EXPECT_THAT(closed.dump()["openedAddresses"], IsEmpty());
}

// HTTP

class Fetched : public testing::Test {
 protected:
  // "STATUS BODY@MILLISECONDS", for one request after the other was made at once.
  std::vector<std::string> fetch(const std::string& http, const std::vector<std::string>& addresses) {
    MenuBar program(services(R"("http": {)" + http + "}"));
    (void)program.run([&] {
      for (const std::string& address : addresses) {
        program.host().httpClient->get(address, 15, [&](const HLHTTPAnswer& answer) {
          program.note(std::to_string(answer.status) + " " + answer.body.value_or("failed"));
        });
      }
      program.note("asked");
    });
    return program.entries();
  }
};

TEST_F(Fetched, IsWhatTheScenesPathHolds) {
  EXPECT_THAT(
      fetch(R"("/a/b.json": {"status": 404, "body": "gone"}, "/": {"body": "root"}, "/a": {"status": 204})",
            {"https://host.example/a/b.json", "https://host.example", "http://host.example:80/a?x=/y",
             "https://host.example/a#z", "https://host.example/?q", "https://host.example/a/b",
             "https://host.example/A"}),
      ElementsAre("asked@0", "404 gone@0", "200 root@0", "204 @0", "204 @0", "200 root@0", "0 failed@0", "0 failed@0"));
}

TEST_F(Fetched, ComesWhenItsTimeHasPassed) {
  EXPECT_THAT(
      fetch(R"("/late": {"body": "late", "seconds": 15}, "/soon": {"body": "soon", "seconds": 0.25},
    "/never": {"body": "x", "seconds": 15.001}, "/error": {"error": "offline", "seconds": 2}, "/off": {"error": "x"})",
            {"https://h/late", "https://h/never", "https://h/soon", "https://h/error", "https://h/off"}),
      ElementsAre("asked@0", "0 failed@0", "200 soon@250", "0 failed@2000", "200 late@15000", "0 failed@15000"));
}

// Pictures of windows

std::uint32_t bigEndian(const std::string& bytes, std::size_t at) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) number = number << 8 | static_cast<unsigned char>(bytes.at(at + i));
  return number;
}

// Returns the content of a zlib stream of stored blocks; checks its Adler-32 checksum.
std::string inflated(const std::string& stream) {
  std::string bytes;
  std::size_t at = 2;
  for (bool last = false; !last;) {
    last = stream.at(at) == 1;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(stream.at(at + i)); };
    const std::size_t length = byte(1) + std::size_t{byte(2)} * 256;
    EXPECT_EQ(length ^ 0xFFFF, byte(3) + std::size_t{byte(4)} * 256);
    bytes += stream.substr(at + 5, length);
    at += 5 + length;
  }
  std::uint32_t low = 1;
  std::uint32_t high = 0;
  for (const char c : bytes) {
    low = (low + static_cast<unsigned char>(c)) % 65521;
    high = (high + low) % 65521;
  }
  EXPECT_EQ(bigEndian(stream, at), high << 16 | low);
  EXPECT_EQ(at + 4, stream.size());
  return bytes;
}

TEST(Picture, IsBlankForAWindow) {
  MenuBar program("{}");
  for (const auto& [width, height] : std::vector<std::pair<double, double>>{{420, 280}, {1, 1}, {2000, 700}}) {
    const auto window = program.host().windows->makeWindow({"W", width, height, 0, 0, {}, {}});
    const std::vector<HLWindowView> views = program.host().windows->views();
    ASSERT_EQ(views.size(), 1U);
    EXPECT_EQ(views[0].width, width);
    EXPECT_EQ(views[0].height, height);
    const std::string png = views[0].png().value_or("");
    ASSERT_TRUE(png.starts_with("\x89PNG\r\n\x1a\n"));
    std::vector<std::string> kinds;
    for (std::size_t at = 8; at < png.size(); at += 12 + bigEndian(png, at)) kinds.push_back(png.substr(at + 4, 4));
    EXPECT_THAT(kinds, ElementsAre("IHDR", "IDAT", "IEND"));
    EXPECT_EQ(bigEndian(png, 16), width);
    EXPECT_EQ(bigEndian(png, 20), height);
    EXPECT_EQ(png.substr(png.size() - 8), "IEND\xAE\x42\x60\x82");
    const std::string line = std::string(1, '\0') + std::string((static_cast<std::size_t>(width) + 7) / 8, '\xFF');
    std::string lines;
    for (int i = 0; i < static_cast<int>(height); ++i) lines += line;
    EXPECT_EQ(inflated(png.substr(41, bigEndian(png, 33))), lines);
  }
}

TEST(Views, ListWindowsInCreationOrder) {
  MenuBar program("{}");
  const auto a = program.open("A");
  const auto b = program.open("B");
  const auto c = program.host().windows->makeWindow({"", 10, 20, 0, 0, {}, {}});
  a->makeKeyAndOrderFront();
  b->close();
  const std::vector<HLWindowView> views = program.host().windows->views();
  ASSERT_EQ(views.size(), 3U);
  EXPECT_EQ(views[0].title, "A");
  EXPECT_TRUE(views[0].visible);
  EXPECT_EQ(views[1].title, "B");
  EXPECT_FALSE(views[1].visible);
  EXPECT_EQ(views[2].title, "");
  EXPECT_FALSE(views[2].visible);
}

// Trust

TEST(GrantOnPrompt, TrustsInAnIdleRunLoop) {
  MenuBar program(Timeline(R"({"at": 3, "quit": 9})", R"(, "trusted": false, "services": {"grantOnPrompt": true})"));
  const auto trusted = [&](bool prompt) { return program.desktop().accessibility().isProcessTrusted(prompt); };
  (void)program.run([&] {
    program.at(1, [&] {
      EXPECT_FALSE(trusted(false));
      program.at(0.5, [&] { program.note(trusted(false) ? "trusted" : "not"); });
    });
    program.at(2, [&] {
      EXPECT_FALSE(trusted(true));
      EXPECT_FALSE(trusted(false));
      program.runLoop().postToMainQueue([&] { program.note(trusted(false) ? "trusted" : "not"); });
      program.at(0.001, [&] { program.note(trusted(false) ? "trusted" : "not"); });
    });
  });
  EXPECT_THAT(program.entries(), ElementsAre("not@1500", "not@2000", "trusted@2001"));
}

TEST(GrantOnPrompt, IsOffByDefault) {
  MenuBar program(R"({"trusted": false})");
  (void)program.run([&] {
    EXPECT_FALSE(program.desktop().accessibility().isProcessTrusted(true));
    program.at(1, [&] { program.note(program.desktop().accessibility().isProcessTrusted(true) ? "yes" : "no"); });
  });
  EXPECT_THAT(program.entries(), ElementsAre("no@1000"));
}

}  // namespace
