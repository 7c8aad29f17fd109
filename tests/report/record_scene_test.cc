#include "report/record_scene.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <sstream>
#include <string>
#include <variant>

#include "tests/support/processes.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

bool hasLinks = true;  // whether link() works

}  // namespace

// Takes the place of the C library's function in this program.
extern "C" int link(const char* from, const char* to) noexcept(noexcept(::link("", ""))) {
  if (hasLinks) return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
  errno = EPERM;
  return -1;
}

namespace {

constexpr const char* kRecordedBanner = R"({"title": "Notification Center", "children": [
  {"id": "b", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": "Mail, Tom, Lunch",
   "children": [{"id": "x", "role": "AXButton", "title": "Close", "actions": ["AXPress"], "frame": [0, 0, 16, 16]}]}]})";

class RecordScene : public testing::Test {
 protected:
  int record(const std::string& path) { return HLRecordScene(path, "hushlet 9", out_, err_); }

  SimulatedDesktop desktop_{NotificationCenterScene(kRecordedBanner)};
  const std::string path_ = desktop_.home() + "/scene.json";
  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(RecordScene, WritesAPrivateFile) {
  EXPECT_EQ(record(path_), 0);
  EXPECT_EQ(out_.str(), path_ + ": 3 elements, texts replaced\n");
  EXPECT_EQ(err_.str(), "");
  struct stat status {};
  ASSERT_EQ(::stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(desktop_.home()), {}), 1);
  EXPECT_TRUE(desktop_.simulator().actions().empty());
  EXPECT_TRUE(desktop_.diagnostics().empty());
}

TEST_F(RecordScene, LeavesNoTextReadable) {
  EXPECT_EQ(record(path_), 0);
  const std::string scene = FileContent(path_);
  for (const char* text : {"Tom", "Lunch", "Mail"}) EXPECT_EQ(scene.find(text), std::string::npos) << scene;
  EXPECT_NE(scene.find("Close"), std::string::npos);
  EXPECT_NE(scene.find(R"("texts": "replaced")"), std::string::npos);
}

TEST_F(RecordScene, ClosesTheNotificationAboveAControl) {
  EXPECT_EQ(record(path_), 0);
  const SimulatedDesktop again(FileContent(path_));
  EXPECT_NE(FileContent(path_).find(R"("id": "e2")"), std::string::npos) << FileContent(path_);
  EXPECT_NE(FileContent(path_).find(R"("closes": "e2")"), std::string::npos) << FileContent(path_);
}

TEST(Recording, KeepsFreshHandlesErrorsAndNulls) {
  const SimulatedDesktop desktop(NotificationCenterScene(R"({"title": "Notification Center",
    "children": [{"id": "fresh", "role": "AXGroup", "freshHandles": true}, {"role": "AXRow", "errors": {"AXTitle": -25204},
                  "attributes": {"AXTitle": "x", "AXValue": null, "AXSize": {"size": [3, 4]}}}, 7],
    "visibleChildren": [{"ref": "fresh"}]})"));
  const auto recorded = HLRecordingOf(HLCaptureScreen(), HLTexts::replaced, "hushlet 9");
  ASSERT_TRUE(std::holds_alternative<HLRecording>(recorded));
  const std::string scene = std::get<HLRecording>(recorded).scene;
  for (const char* kept : {R"("freshHandles": true)", R"("visibleChildren": [{"ref": "e2"}])", R"("AXTitle": -25204)",
                           R"("AXValue": null)", R"({"size": [3, 4]})"}) {
    EXPECT_NE(scene.find(kept), std::string::npos) << kept << " in\n" << scene;
  }
}

TEST(Recording, NamesElementsThatAreLost) {
  const SimulatedDesktop desktop(NotificationCenterScene(kRecordedBanner));
  std::unique_ptr<HLCapture> capture = HLCaptureScreen();
  capture->add();  // in no window
  const auto recorded = HLRecordingOf(std::move(capture), HLTexts::kept, "hushlet 9");
  ASSERT_TRUE(std::holds_alternative<std::string>(recorded));
  EXPECT_EQ(std::get<std::string>(recorded), "only 3 of 4 elements of the recording can be read again");
}

TEST_F(RecordScene, NeverOverwrites) {
  EXPECT_EQ(record(path_), 0);
  const std::string scene = FileContent(path_);
  EXPECT_EQ(record(path_), 1);
  EXPECT_EQ(err_.str(), "hushlet: " + path_ + ": not recorded: File exists\n");
  EXPECT_EQ(FileContent(path_), scene);
  std::filesystem::create_symlink("nowhere", desktop_.home() + "/link");
  EXPECT_EQ(record(desktop_.home() + "/link"), 1);
}

TEST_F(RecordScene, WritesOnFileSystemsWithoutLinks) {
  hasLinks = false;
  EXPECT_EQ(record(path_), 0) << err_.str();
  const std::string scene = FileContent(path_);
  EXPECT_EQ(record(path_), 1);
  hasLinks = true;
  EXPECT_NE(scene.find("AXNotificationCenterAlert"), std::string::npos);
  EXPECT_EQ(FileContent(path_), scene);
  struct stat status {};
  ASSERT_EQ(::stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(desktop_.home()), {}), 1);
}

TEST(RecordSceneInAProcess, FailsBeyondTheFileSizeLimit) {
  const std::string result = InChildProcess([] {
    const SimulatedDesktop desktop(NotificationCenterScene(kRecordedBanner));
    const rlimit limit{100, 100};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::ostringstream out;
    std::ostringstream err;
    const int code = HLRecordScene(desktop.home() + "/scene.json", "hushlet 9", out, err);
    const bool isEmpty = std::filesystem::is_empty(desktop.home());
    return std::to_string(code) + err.str().substr(err.str().rfind(':')) + (isEmpty ? "no file" : "a file");
  });
  EXPECT_EQ(result, "1: File too large\nno file");
}

TEST(RecordSceneMode, RefusesUnknownArguments) {
  const SimulatedDesktop desktop(NotificationCenterScene(
      kRecordedBanner, R"(, "arguments": ["--record-scene", "/no/scene.json", "--keep-texts", "--keep\u001Btext"])"));
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(HLRecordScene("/no/scene.json", "hushlet 9", out, err), 1);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(
      err.str(),
      "hushlet: /no/scene.json: not recorded: unknown argument \"--keep\\u001Btext\": --record-scene takes a path and "
      "--keep-texts\n");
}

TEST_F(RecordScene, ReportsWhyItFails) {
  EXPECT_EQ(record(desktop_.home() + "/no/scene.json"), 1);
  EXPECT_NE(err_.str().find("No such file or directory"), std::string::npos);
  EXPECT_EQ(record("--keep-texts"), 1);
  EXPECT_EQ(out_.str(), "");
}

}  // namespace
