// What is on screen of a real server, recorded and explained. With HUSHLET_KEEP_RECORDINGS set to a folder both are
// kept there; tools/add-scene makes tests of recordings.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/linux/desktop/real_desktop.h"
#include "tests/support/processes.h"
#include "tests/support/temporary_directory.h"

namespace {

class Recording : public RealDesktop, public testing::WithParamInterface<Server> {
 protected:
  std::string call(const std::vector<std::string>& arguments) {
    const std::unique_ptr<ChildProcess> program = start(arguments);
    EXPECT_EQ(program->wait(std::chrono::seconds(30)), 0) << program->output();
    return program->output();
  }
};

TEST_P(Recording, ReproducesTargetsInSimulatorWithoutTexts) {
  beginWith(GetParam());
  (void)sender_->send("Mail", "Ana Petrova", "Are you still coming tonight?");
  (void)sender_->send("Calendar", "Dinner with Tom", "Today at 19:30", {"open", "Open", "close", "Close"});
  (void)Eventually([&] { return call({"--explain", "--keep-texts"}).find("Dinner with Tom") != std::string::npos; });
  const std::string path = session_->directory() + "/recording.json";
  EXPECT_NE(call({"--record-scene", path}).find(" elements, texts replaced"), std::string::npos);

  const std::string scene = FileContent(path);
  EXPECT_EQ(scene.find("Petrova"), std::string::npos);
  EXPECT_EQ(scene.find(session_->directory()), std::string::npos);
  EXPECT_EQ(scene.find(HL_PROGRAM), std::string::npos);
  EXPECT_NE(scene.find("\"rawTree\""), std::string::npos);
  EXPECT_NE(scene.find("\"version\""), std::string::npos);
  const std::string seen = run("--self-check");
  const ProgramRun played = RunProgram({HL_SIMULATOR, "--self-check"}, {{"HUSHLET_SCENE", path.c_str()}});
  const auto targetsIn = [](const std::string& line) { return line.substr(0, line.find(" pid=")); };
  EXPECT_EQ(targetsIn(played.out), targetsIn(seen));

  if (const char* folder = std::getenv("HUSHLET_KEEP_RECORDINGS")) {
    std::filesystem::copy_file(path, std::string(folder) + "/" + GetParam().name + ".json");
  }
}

TEST_P(Recording, ExplainsWhyButtonIsNotPressed) {
  beginWith(GetParam());
  (void)sender_->send("Calendar", "Dinner with Tom", "Today at 19:30", {"open", "Open"});
  std::string explanation;
  EXPECT_TRUE(Eventually([&] {
    explanation = call({"--explain", "--keep-texts"});
    return explanation.find("\"Open\"") != std::string::npos;
  })) << explanation;
  const std::size_t button = explanation.find("AXButton \"Open\"");
  ASSERT_NE(button, std::string::npos) << explanation;
  EXPECT_NE(explanation.find("it is not small and square like an icon", button), std::string::npos) << explanation;
  if (const char* folder = std::getenv("HUSHLET_KEEP_RECORDINGS")) {
    std::ofstream(std::string(folder) + "/" + GetParam().name + ".txt") << explanation;
  }
}

INSTANTIATE_TEST_SUITE_P(Servers, Recording, testing::Values(kMate, kLxqt, kXfce),
                         [](const auto& server) { return server.param.name; });

}  // namespace
