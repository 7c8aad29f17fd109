#include "tests/app/application_run.h"

#include <fstream>
#include <optional>
#include <sstream>

#include "tests/support/personal_log.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string bundle(bool isProduct) {
  return std::string(R"(, "bundle": {"identifier": "com.tessaly.hushlet", "path": "/Applications/Hushlet.app",
    "executablePath": "/Applications/Hushlet.app/Contents/MacOS/Hushlet", "info": {"HLProductFlavor": ")") +
         (isProduct ? "product" : "personal") +
         R"(", "CFBundleDisplayName": "Hushlet", "CFBundleShortVersionString": "1.3", "CFBundleVersion": "11"}})";
}

std::string bareBundle(const std::string& info) {
  return R"(, "bundle": {"identifier": "com.tessaly.hushlet", "info": {"HLProductFlavor": "product")" + info + "}}";
}

std::string sceneText(const ApplicationScene& scene, const std::string& record) {
  std::string text = R"({"record": ")" + record + "\"";
  text += scene.bareBundle ? bareBundle(*scene.bareBundle) : bundle(scene.isProduct);
  if (scene.hasNotificationCenter) {
    text += R"(, "applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui",
      "name": "Notification Center", "windows": [)" +
            scene.windows + "]}]";
  }
  std::string timeline;
  for (const std::string& event : scene.timeline) timeline += (timeline.empty() ? "" : ", ") + event;
  return text + R"(, "timeline": [)" + timeline + "]" + scene.further + "}";
}

}  // namespace

ApplicationRun RunApplication(const ApplicationScene& scene, const std::vector<std::string>& arguments) {
  const TemporaryDirectory home;
  const std::string sceneFile = home.path() + "/scene.json";
  const std::string record = home.path() + "/record.json";
  std::ofstream(sceneFile, std::ios::binary) << sceneText(scene, record);
  std::optional<PersonalLogTurn> personal;
  if (!scene.isProduct) personal.emplace();

  std::vector<std::string> command = {HUSHLET_SIM};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const ProgramRun program = RunProgram(
      command, {{"HOME", home.path().c_str()}, {"XDG_DATA_HOME", nullptr}, {"HUSHLET_SCENE", sceneFile.c_str()}});

  const std::vector<std::string> messages =
      personal ? personal->messages()
               : LogMessages(FileContent(home.path() + "/.local/share/com.tessaly.hushlet/status.log"));
  ApplicationRun run{program.exitCode, "", program.err, messages, {}, {}};
  std::istringstream lines(program.out);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with('{')) {
      run.dumps.push_back(nlohmann::json::parse(line));
    } else {
      run.out += line + "\n";
    }
  }
  if (const std::string content = FileContent(record); !content.empty()) run.record = nlohmann::json::parse(content);
  return run;
}

std::vector<std::string> MessagesOf(const ApplicationRun& run, std::string_view beginning) {
  std::vector<std::string> messages;
  for (const std::string& message : run.log) {
    if (message.starts_with(beginning)) messages.push_back(message);
  }
  return messages;
}

nlohmann::json WindowOf(const nlohmann::json& dump, const std::string& title) {
  for (const nlohmann::json& window : dump["windows"]) {
    if (window["title"] == title) return window;
  }
  return nullptr;
}

SetupControls SetupOf(const nlohmann::json& dump) {
  const nlohmann::json content = WindowOf(dump, SetupTitle).value("content", nlohmann::json::array());
  return {content.at(4), content.at(5)};
}

SettingsControls SettingsOf(const nlohmann::json& dump) {
  const nlohmann::json content = WindowOf(dump, SettingsTitle).value("content", nlohmann::json::array());
  const nlohmann::json& shortcut = content.at(1).at("row");
  return {shortcut.at(0), shortcut.at(1),
          content.at(2),  content.at(4).at("row").at(0),
          content.at(5),  content.size() > 6 ? content.at(6) : nlohmann::json()};
}

std::vector<std::string> ControlsOf(const nlohmann::json& window) {
  std::vector<std::string> controls;
  const auto append = [&controls](const nlohmann::json& item) {
    for (const char* kind : {"label", "button", "checkBox"}) {
      if (!item.contains(kind)) continue;
      const bool on = item.value("on", false);
      controls.push_back(std::string(kind) + " " + item[kind].get<std::string>() + (on ? " on" : ""));
    }
  };
  for (const nlohmann::json& item : window["content"]) {
    if (item.contains("row")) {
      for (const nlohmann::json& member : item["row"]) append(member);
    } else {
      append(item);
    }
  }
  return controls;
}

std::string At(double moment, const std::string& event) {
  return R"({"at": )" + std::to_string(moment) + ", " + event + "}";
}

std::string DumpAt(double moment) { return At(moment, R"("dump": "/dev/stdout")"); }

std::string Press(const std::string& control, const std::string& window) {
  return R"("press": ")" + control + R"(", "window": ")" + window + "\"";
}

std::string CloseWindow(const std::string& window) { return R"("closeWindow": ")" + window + "\""; }

std::string Banner(const std::string& id, const std::string& description) {
  return R"({"id": ")" + id + R"(", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": ")" +
         description + R"(", "frame": [1080, 40, 344, 80], "actions": ["AXPress", "Name:Close"], "closes": ")" + id +
         R"("})";
}

std::string BannerWindow(const std::vector<std::string>& banners) {
  std::string children;
  for (const std::string& banner : banners) children += (children.empty() ? "" : ", ") + banner;
  return R"({"id": "window", "role": "AXWindow", "title": "Notification Center", "children": [)" + children + "]}";
}
