// Each scene of the collection, run by the program: what it prints and the whole diagnostics log are compared with what
// was looked at and kept. tools/renew-goldens writes them anew.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/personal_log.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

const fs::path kScenes = HUSHLET_SCENES;
const fs::path kGoldens = HUSHLET_GOLDENS;

std::vector<std::string> namesIn(const fs::path& directory, const std::string& extension) {
  std::vector<std::string> names;
  if (!fs::is_directory(directory)) return names;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    if (entry.path().extension() == extension) names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// Lines of the observer begin with the time of day.
std::string withoutTimes(const std::string& output) {
  return std::regex_replace(output, std::regex(R"((^|\n)\d{10}\.\d{3} )"), "$1TIME ");
}

using Json = nlohmann::ordered_json;

void writeValue(std::string& text, const std::string& key, const Json& value, const std::string& indent) {
  text += indent + key + ":";
  if (!value.is_array() || value.empty()) {
    text += " " + value.dump() + "\n";
    return;
  }
  text += "\n";
  for (const Json& member : value) {
    if (!member.is_object() || !member.contains("content")) {
      text += indent + "  " + member.dump() + "\n";
      continue;
    }
    Json window = member;
    window.erase("content");
    text += indent + "  " + window.dump() + "\n";
    for (const Json& item : member["content"]) text += indent + "    " + item.dump() + "\n";
  }
}

// Lines that a scene dumps are unfolded; of all but the first, what has changed is written.
std::string unfolded(const std::string& output) {
  std::string text;
  Json last = Json::object();
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("{\"")) {
      text += line + "\n";
      continue;
    }
    const Json dump = Json::parse(line);
    text += "dump\n";
    for (const auto& [key, value] : dump.items()) {
      if (!last.contains(key) || last[key] != value) writeValue(text, key, value, "  ");
    }
    last = dump;
  }
  return text;
}

// One run, written down with all that it logs.
std::string run(const std::string& scene, const std::vector<std::string>& arguments) {
  const TemporaryDirectory home;
  const PersonalLogTurn personal;
  const std::string path = (kScenes / (scene + ".json")).string();
  std::vector<std::string> command = {HUSHLET_SIM};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const ProgramRun program =
      RunProgram(command, {{"HOME", home.path().c_str()}, {"XDG_DATA_HOME", nullptr}, {"HUSHLET_SCENE", path.c_str()}});
  std::string text = "$ hushlet-sim";
  for (const std::string& argument : arguments) text += " " + argument;
  text += "\n" + unfolded(withoutTimes(program.out));
  if (!program.err.empty()) text += "standard error:\n" + program.err;
  text += "exit code " + std::to_string(program.exitCode) + "\n";
  for (const char* log : {"/.local/state/hushlet/hushlet_detailed_diagnostics.log",
                          "/.local/share/com.tessaly.hushlet/hushlet_detailed_diagnostics.log",
                          "/.local/share/com.tessaly.hushlet/status.log"}) {
    if (fs::exists(home.path() + log)) text += std::string(" ") + log + "\n";
    for (const std::string& line : LogMessages(FileContent(home.path() + log))) text += "  " + line + "\n";
  }
  const std::vector<std::string> messages = personal.messages();
  if (!messages.empty()) text += " status log of the personal flavor\n";
  for (const std::string& line : messages) text += "  " + line + "\n";
  return text;
}

void expectGolden(const std::string& name, const std::string& text) {
  const fs::path golden = kGoldens / (name + ".txt");
  if (std::getenv("HUSHLET_RENEW_GOLDENS") != nullptr) {
    std::ofstream(golden, std::ios::binary) << text;
    return;
  }
  ASSERT_TRUE(fs::exists(golden)) << "no golden of that name: run tools/renew-goldens and look at it";
  EXPECT_EQ(text, FileContent(golden.string()));
}

class Golden : public testing::TestWithParam<std::string> {};

TEST_P(Golden, MatchesTheKeptOutput) {
  expectGolden(GetParam(), run(GetParam(), {"--self-check"}) + "\n" + run(GetParam(), {"--dismiss-now"}));
}

// What a person is told of each scene.
class ExplanationGolden : public testing::TestWithParam<std::string> {};

TEST_P(ExplanationGolden, MatchesTheKeptOutput) {
  expectGolden("explain/" + GetParam(), run(GetParam(), {"--explain", "--keep-texts"}));
}

// What real servers showed, in one file each.
class RecordingGolden : public testing::TestWithParam<std::string> {};

TEST_P(RecordingGolden, MatchesTheKeptOutput) {
  const std::string scene = "recorded/" + GetParam();
  expectGolden(scene, run(scene, {"--self-check"}) + "\n" + run(scene, {"--dismiss-now"}) + "\n" +
                          run(scene, {"--explain", "--keep-texts"}));
}

// The menu-bar application on scenes with a timeline of what a user does.
class ApplicationGolden : public testing::TestWithParam<std::string> {};

TEST_P(ApplicationGolden, MatchesTheKeptOutput) { expectGolden("app/" + GetParam(), run("app/" + GetParam(), {})); }

std::string nameOf(const testing::TestParamInfo<std::string>& info) {
  return std::regex_replace(info.param, std::regex("[^A-Za-z0-9]"), "_");
}

INSTANTIATE_TEST_SUITE_P(Scenes, Golden, testing::ValuesIn(namesIn(kScenes, ".json")), nameOf);

INSTANTIATE_TEST_SUITE_P(Scenes, ExplanationGolden, testing::ValuesIn(namesIn(kScenes, ".json")), nameOf);

INSTANTIATE_TEST_SUITE_P(Scenes, RecordingGolden, testing::ValuesIn(namesIn(kScenes / "recorded", ".json")), nameOf);

INSTANTIATE_TEST_SUITE_P(Scenes, ApplicationGolden, testing::ValuesIn(namesIn(kScenes / "app", ".json")), nameOf);

constexpr const char* kEveryMode = "every_mode";
constexpr const char* kExplanationData = "explanation_data";

TEST(Goldens, ShowAnExplanationAsData) {
  expectGolden(kExplanationData, run("plain_buttons", {"--explain", "--json", "--keep-texts"}));
}

TEST(Goldens, ShowEveryMode) {
  const std::vector<std::vector<std::string>> calls = {
      {"--request-accessibility"},
      {"--daemon-dismiss"},
      {"--daemon-self-check"},
      {"--auto-close-match", "Kurzbefehle, Zuhause, Deine Automation wird ausgeführt"},
      {"--auto-close-match", "Mail, Running your automation"},
      {"--close-matching", "lunch"},
      {"--auto-close-probe", "3"},
      {"--observe-nc", "3"},
      {"--self-check"},
      {"--send-test-notifications"},
      {"--dismiss-now"},
      {}};
  std::string text;
  for (const std::vector<std::string>& call : calls) text += (text.empty() ? "" : "\n") + run("automation", call);
  expectGolden(kEveryMode, text);
}

TEST(Goldens, AreThereForScenesOnly) {
  EXPECT_FALSE(namesIn(kScenes, ".json").empty());
  const std::vector<std::string> scenes = namesIn(kScenes, ".json");
  for (const char* folder : {"app", "recorded"}) {
    EXPECT_EQ(namesIn(kGoldens / folder, ".txt"), namesIn(kScenes / folder, ".json"));
  }
  EXPECT_EQ(namesIn(kGoldens / "explain", ".txt"), scenes);
  for (const std::string& golden : namesIn(kGoldens, ".txt")) {
    if (golden == "CMakeLists" || golden == kEveryMode || golden == kExplanationData) continue;
    EXPECT_TRUE(std::binary_search(scenes.begin(), scenes.end(), golden)) << golden << ".txt has no scene";
  }
}

}  // namespace
