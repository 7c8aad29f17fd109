// The simulated process, its record and its host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "platform/property_lists.h"
#include "platform/user_notifications.h"
#include "tests/platform/sim/scene_desktop.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

// A file's name in a place of the test's own, without the file.
std::string content(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

TEST(SimulatedProcess, TakesArgumentsFromTheScene) {
  const HLSimulatorSetup setup{{"/bin/sim", "--a", "--b"}, {}};
  EXPECT_THAT(SimulatedDesktop("{}", setup).process().arguments(), ElementsAre("/bin/sim", "--a", "--b"));
  EXPECT_THAT(SimulatedDesktop(R"({"arguments": ["--c"]})", setup).process().arguments(),
              ElementsAre("/bin/sim", "--c"));
  EXPECT_THAT(SimulatedDesktop(R"({"arguments": []})", setup).process().arguments(), ElementsAre("/bin/sim"));
}

TEST(SimulatedProcess, HasTheGivenEnvironment) {
  SimulatedDesktop desktop("{}", {{"sim"}, {{"A", "1"}, {"EMPTY", ""}}});
  EXPECT_EQ(desktop.process().environment("A"), "1");
  EXPECT_EQ(desktop.process().environment("EMPTY"), "");
  EXPECT_EQ(desktop.process().environment("PATH"), std::nullopt);
}

TEST(SimulatedProcess, PrefersDirectoriesOfTheScene) {
  const HLSimulatorSetup setup{{"sim"}, {{"HOME", "/home/me/"}}};
  const HLSimulatorSetup withData{{"sim"}, {{"HOME", "/home/me"}, {"XDG_DATA_HOME", "/data/"}}};
  EXPECT_EQ(SimulatedDesktop("{}", setup).process().homeDirectory(), "/home/me");
  EXPECT_EQ(SimulatedDesktop(R"({"home": "/scene"})", setup).process().homeDirectory(), "/scene");
  EXPECT_EQ(SimulatedDesktop("{}", setup).process().applicationSupportDirectory(), "/home/me/.local/share");
  EXPECT_EQ(SimulatedDesktop(R"({"home": "/scene"})", setup).process().applicationSupportDirectory(),
            "/scene/.local/share");
  EXPECT_EQ(SimulatedDesktop("{}", withData).process().applicationSupportDirectory(), "/data");
  EXPECT_EQ(SimulatedDesktop(R"({"applicationSupport": "/s"})", withData).process().applicationSupportDirectory(),
            "/s");
  EXPECT_EQ(SimulatedDesktop(R"({"applicationSupport": null})", withData).process().applicationSupportDirectory(),
            std::nullopt);
}

TEST(SimulatedProcess, HasTheBundleOfTheScene) {
  EXPECT_EQ(SimulatedDesktop("{}").process().bundleIdentifier(), std::nullopt);
  EXPECT_TRUE(SimulatedDesktop("{}").process().informationDictionary().empty());
  SimulatedDesktop desktop(R"({"bundle": {"identifier": "com.example.a", "info": {"HLProductFlavor": "product", "n": 3,
    "nothing": null, "list": [1.5, {"deep": true}]}}})");
  EXPECT_EQ(desktop.process().bundleIdentifier(), "com.example.a");
  const HLDictionary info = desktop.process().informationDictionary();
  EXPECT_EQ(info[0].key, "HLProductFlavor") << "entries keep their order";
  EXPECT_EQ(*HLDictionaryValue(info, "HLProductFlavor")->as<std::string>(), "product");
  EXPECT_EQ(*HLDictionaryValue(info, "n")->as<std::int64_t>(), 3);
  EXPECT_TRUE(HLDictionaryValue(info, "nothing")->isMissing());
  const HLArray list = *HLDictionaryValue(info, "list")->as<HLArray>();
  EXPECT_EQ(*list[0].as<double>(), 1.5);
  EXPECT_EQ(*HLDictionaryValue(*list[1].as<HLDictionary>(), "deep")->as<bool>(), true);
}

TEST(SimulatedProcess, HasTheParentOfTheScene) {
  SimulatedDesktop child(R"({"parent": 7, "applications": [{"pid": 7, "name": "Terminal"}]})");
  EXPECT_EQ(child.process().parentProcessIdentifier(), 7);
  SimulatedDesktop orphan(
      R"({"applications": [{"pid": 1}, {"pid": 500}, {"pid": 501}], "timeline": [{"at": 1, "launch": {"pid": 2}}]})");
  orphan.sleep(1);
  EXPECT_FALSE(orphan.applications().find(orphan.process().parentProcessIdentifier()).has_value());
  EXPECT_FALSE(orphan.applications().find(orphan.process().processIdentifier()).has_value());
}

TEST(SimulatedProcess, HasAFixedPid) {
  EXPECT_EQ(SimulatedDesktop("{}").process().processIdentifier(), SimulatedDesktop("{}").process().processIdentifier());
  EXPECT_EQ(SimulatedDesktop("{}").process().parentProcessIdentifier(),
            SimulatedDesktop("{}").process().parentProcessIdentifier());
}

// Services

TEST(SimulatedPropertyLists, AreThoseOfTheScene) {
  SimulatedDesktop desktop(R"({"propertyLists": {"/a.plist": {"Label": "x", "List": [1]}, "/list.plist": [1]}})");
  HLPropertyLists& lists = desktop.simulator().platform().propertyLists;
  const std::optional<HLDictionary> list = lists.readDictionary("/a.plist");
  ASSERT_TRUE(list.has_value());
  EXPECT_EQ(*HLDictionaryValue(*list, "Label")->as<std::string>(), "x");
  EXPECT_FALSE(lists.readDictionary("/list.plist").has_value()) << "it is no dictionary";
  EXPECT_FALSE(lists.readDictionary("/b.plist").has_value());
}

class SimulatedUserNotifications : public testing::Test {
 protected:
  // "granted", "denied" or "silent", and the error where there is one.
  static std::string permission(const std::string& service) {
    SimulatedDesktop desktop(R"({"services": {"userNotifications": )" + service + "}}");
    std::string answer = "silent";
    desktop.simulator().platform().userNotifications->requestAuthorization(
        [&answer](bool granted, const std::optional<std::string>& error) {
          answer = (granted ? "granted" : "denied") + (error ? " " + *error : "");
        });
    return answer;
  }
};

TEST_F(SimulatedUserNotifications, ArePermittedAsTheSceneSays) {
  EXPECT_EQ(permission("{}"), "granted");
  EXPECT_EQ(permission(R"({"permission": "granted", "error": null})"), "granted");
  EXPECT_EQ(permission(R"({"permission": "denied", "error": "no"})"), "denied no");
  EXPECT_EQ(permission(R"({"permission": "silent"})"), "silent");
}

TEST_F(SimulatedUserNotifications, FollowTheScene) {
  SimulatedDesktop desktop(R"({"services": {"userNotifications": {"addErrors": {"b": "full"}}}})");
  std::vector<std::string> answers;
  for (const char* identifier : {"a", "b"}) {
    desktop.simulator().platform().userNotifications->add(
        {identifier, "title", "body", 1.5, true},
        [&answers](const std::optional<std::string>& error) { answers.push_back(error.value_or("added")); });
  }
  EXPECT_THAT(answers, ElementsAre("added", "full"));
  const std::vector<HLUserNotification> handedOver = desktop.simulator().notifications();
  ASSERT_EQ(handedOver.size(), 2U);
  EXPECT_EQ(handedOver[1].identifier, "b");
  EXPECT_EQ(handedOver[1].delay, 1.5);
}

// The record

TEST(Record, AppendsALineAtTheEnd) {
  const std::string path = FreshPath("record");
  std::ofstream(path) << "before\n";
  {
    SimulatedDesktop desktop(
        Scene(R"({"id": "w", "actions": ["AXPress"], "children": [{"id": "a", "actions": ["Close\n"],
      "closes": "a"}, {"title": "nameless", "actions": ["AXPress"]}, {"id": "b"}]})",
              R"(, "record": ")" + path + '"'));
    const HLElementRef nameless = desktop.elements(desktop.element("w"), "AXChildren").at(1);
    desktop.sleep(0.0124);
    EXPECT_EQ(desktop.press("a", "Close\n"), HLAXErrorSuccess);
    desktop.sleep(0.1);
    EXPECT_EQ(nameless->performAction("AXRaise"), HLAXErrorActionUnsupported);
    EXPECT_EQ(content(path), "before\n");
  }
  const std::string written = content(path);
  ASSERT_TRUE(written.starts_with("before\n{") && written.find('\n', 7) == written.size() - 1) << written;
  const json record = json::parse(written.substr(7));
  EXPECT_EQ(record["at"], 0.112);
  EXPECT_EQ(record["actions"], json::parse(R"([{"at": 0.012, "element": "a", "action": "Close\n", "code": 0},
                                               {"at": 0.112, "element": null, "action": "AXRaise", "code": -25206}])"));
  EXPECT_EQ(record["present"], json::parse(R"(["w", "b"])"));
}

TEST(Record, ListsLiveObservers) {
  const std::string path = FreshPath("observers");
  const HLObserverCallback nothing = [](const HLElementRef&, std::string_view) {};
  std::unique_ptr<HLObserver> kept;
  {
    SimulatedDesktop desktop(Scene(R"({"id": "w"})", R"(, "record": ")" + path + '"'));
    const auto dropped = desktop.accessibility().createObserver(400, nothing);
    kept = desktop.accessibility().createObserver(400, nothing);
    const HLElementRef root = desktop.accessibility().createApplication(400);
    EXPECT_EQ(kept->addNotification(root, "N"), HLAXErrorSuccess);
    EXPECT_EQ(kept->addNotification(desktop.element("w"), "N"), HLAXErrorSuccess);
    EXPECT_EQ(kept->addNotification(root, "A"), HLAXErrorSuccess);
  }
  kept.reset();
  EXPECT_EQ(json::parse(content(path))["observers"], json::parse(R"([{"pid": 400, "notifications": ["N", "A"]}])"));
}

TEST(Record, ListsPostedNotifications) {
  const std::string path = FreshPath("notifications");
  {
    SimulatedDesktop desktop(R"({"record": ")" + path + "\"}");
    desktop.simulator().platform().userNotifications->add({"id", "title", "body", 2, true}, [](const auto&) {});
  }
  EXPECT_EQ(json::parse(content(path))["notifications"],
            json::parse(R"([{"identifier": "id", "title": "title", "body": "body", "delay": 2, "sound": true}])"));
}

TEST(Record, ReportsAnUnwritableFile) {
  testing::internal::CaptureStderr();
  { const SimulatedDesktop desktop(R"({"record": "/nowhere/at/all"})"); }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "/nowhere/at/all: No such file or directory\n");
}

// The host of hushlet-sim

class Host : public testing::Test {
 protected:
  void TearDown() override {
    unsetenv("HUSHLET_SCENE");
    unsetenv("HUSHLET_PICTURE");
  }

  static std::variant<std::unique_ptr<HLHost>, HLHostFailure> make() {
    std::string program = "hushlet-sim";
    std::string mode = "--dismiss-now";
    std::vector<char*> arguments = {program.data(), mode.data(), nullptr};
    return HLMakeHost(2, arguments.data());
  }
  static std::string failureWith(const std::string& path) {
    setenv("HUSHLET_SCENE", path.c_str(), 1);
    const auto made = make();
    const auto* failure = std::get_if<HLHostFailure>(&made);
    if (failure == nullptr) return "";
    EXPECT_EQ(failure->exitCode, 2);
    return failure->message;
  }
};

TEST_F(Host, DefaultsToTheEveningScene) {
  const auto made = make();
  const auto* host = std::get_if<std::unique_ptr<HLHost>>(&made);
  ASSERT_NE(host, nullptr);
  const HLPlatform& platform = (*host)->platform();
  EXPECT_THAT(platform.process->arguments(), ElementsAre("hushlet-sim", "--dismiss-now"));
  EXPECT_EQ(platform.process->environment("PATH"), std::getenv("PATH"));
  EXPECT_EQ(platform.runningApplications->list().back().bundleIdentifier, "com.apple.notificationcenterui");
}

TEST_F(Host, ReadsTheSceneOfTheEnvironment) {
  const std::string path = FreshPath("scene.json");
  std::ofstream(path) << R"({"applications": [{"pid": 77}]})";
  setenv("HUSHLET_SCENE", path.c_str(), 1);
  const auto made = make();
  const auto* host = std::get_if<std::unique_ptr<HLHost>>(&made);
  ASSERT_NE(host, nullptr);
  EXPECT_TRUE((*host)->platform().runningApplications->find(77).has_value());
}

TEST_F(Host, PrintsTheScreenOnRequest) {
  const std::string path = FreshPath("scene.json");
  std::ofstream(path) << Scene(R"({"id": "w", "role": "AXWindow", "title": "Gone", "frame": [0, 0, 400, 100]})",
                               R"(, "timeline": [{"at": 1, "remove": "w"}])");
  setenv("HUSHLET_SCENE", path.c_str(), 1);
  const std::string window = SimulatedDesktop(content(path)).simulator().picture();
  const std::string empty = SimulatedDesktop("{}").simulator().picture();
  ASSERT_NE(window, empty);
  for (const auto& [wanted, printed] : {std::pair{"1", "before:\n" + window + "after:\n" + empty}, {"0", ""}}) {
    setenv("HUSHLET_PICTURE", wanted, 1);
    testing::internal::CaptureStdout();
    {
      const auto made = make();
      std::get<std::unique_ptr<HLHost>>(made)->platform().runLoop->sleep(1);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), printed) << wanted;
  }
}

TEST_F(Host, FailsOnAMalformedScene) {
  const std::string path = FreshPath("bad.json");
  std::ofstream(path) << R"({"applications": [{"pid": 77, "windows": [{}, {"frame": [1]}]}]})";
  EXPECT_EQ(failureWith(path), path + ": applications[0].windows[1].frame: expected four numbers");
  std::ofstream(path) << "";
  EXPECT_NE(failureWith(path), "");
  EXPECT_EQ(failureWith("/nowhere.json"), "/nowhere.json: cannot be read: No such file or directory");
  EXPECT_EQ(failureWith("/"), "/: cannot be read: Is a directory");
}

}  // namespace
