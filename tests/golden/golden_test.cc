// Each scene of the collection, run by the program: what it prints and the whole diagnostics log are compared with what
// was looked at and kept. tools/renew-goldens writes them anew.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

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

// One run, written down.
std::string run(const std::string& scene, const std::string& mode) {
  const TemporaryDirectory home;
  const std::string path = (kScenes / (scene + ".json")).string();
  const ProgramRun program =
      RunProgram({HUSHLET_SIM, mode}, {{"HOME", home.path().c_str()}, {"HUSHLET_SCENE", path.c_str()}});
  std::string text = "$ hushlet-sim " + mode + "\n" + program.out;
  if (!program.err.empty()) text += "standard error:\n" + program.err;
  text += "exit code " + std::to_string(program.exitCode) + "\n";
  const std::string log = FileContent(home.path() + "/.local/state/hushlet/hushlet_detailed_diagnostics.log");
  for (const std::string& line : LogMessages(log)) text += "  " + line + "\n";
  return text;
}

class Golden : public testing::TestWithParam<std::string> {};

TEST_P(Golden, IsWhatTheSceneComesTo) {
  const std::string text = run(GetParam(), "--self-check") + "\n" + run(GetParam(), "--dismiss-now");
  const fs::path golden = kGoldens / (GetParam() + ".txt");
  if (std::getenv("HUSHLET_RENEW_GOLDENS") != nullptr) {
    std::ofstream(golden, std::ios::binary) << text;
    return;
  }
  ASSERT_TRUE(fs::exists(golden)) << "no golden for this scene: run tools/renew-goldens and look at it";
  EXPECT_EQ(text, FileContent(golden.string()));
}

std::string nameOf(const testing::TestParamInfo<std::string>& info) {
  return std::regex_replace(info.param, std::regex("[^A-Za-z0-9]"), "_");
}

INSTANTIATE_TEST_SUITE_P(Scenes, Golden, testing::ValuesIn(namesIn(kScenes, ".json")), nameOf);

TEST(Goldens, AreThereForScenesOnly) {
  EXPECT_FALSE(namesIn(kScenes, ".json").empty());
  const std::vector<std::string> scenes = namesIn(kScenes, ".json");
  for (const std::string& golden : namesIn(kGoldens, ".txt")) {
    if (golden == "CMakeLists") continue;
    EXPECT_TRUE(std::binary_search(scenes.begin(), scenes.end(), golden)) << golden << ".txt has no scene";
  }
}

}  // namespace
