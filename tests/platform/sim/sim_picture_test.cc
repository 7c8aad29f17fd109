// The screen in characters.
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/sim/scene_desktop.h"

namespace {

// The picture of a desktop with these windows, without its frame and blank edges on the right.
std::string pictureOf(const std::string& windows) {
  const std::string picture = SimulatedDesktop(Scene(windows)).simulator().picture();
  std::string inner;
  std::size_t begin = picture.find('\n') + 1;
  const std::size_t last = picture.rfind('\n', picture.size() - 2) + 1;
  while (begin < last) {
    const std::size_t end = picture.find('\n', begin);
    std::string line = picture.substr(begin, end - begin);
    const std::string edge = "│";
    if (line.starts_with(edge)) line.erase(0, edge.size());
    if (line.ends_with(edge)) line.erase(line.size() - edge.size());
    inner += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    begin = end + 1;
  }
  return inner.substr(0, inner.find_last_not_of('\n') + 1);
}

TEST(Picture, ShowsAnEmptyScreen) {
  const std::string picture = SimulatedDesktop("{}").simulator().picture();
  std::string line;
  for (int column = 0; column < 102; ++column) line += "─";
  const std::string blank = "│" + std::string(102, ' ') + "│\n";
  std::string expected = "╭" + line + "╮\n";
  for (int row = 0; row < 11; ++row) expected += blank;
  EXPECT_EQ(picture, expected + "╰" + line + "╯\n");
}

TEST(Picture, ShowsTextsAndButtons) {
  EXPECT_EQ(pictureOf(R"({"role": "AXWindow", "subrole": "AXSystemDialog", "title": "Notification Center",
    "frame": [0, 0, 400, 400], "children": [{"role": "AXGroup", "frame": [0, 0, 400, 400], "children": [
      {"role": "AXGroup", "description": "Calendar, Dinner with Tom, Today, at the usual place", "frame": [14, 20, 336, 120],
       "children": [{"role": "AXStaticText", "value": "Dinner with Tom", "frame": [20, 30, 100, 16]},
         {"role": "AXStaticText", "value": "in an hour", "frame": [20, 50, 100, 16]},
         {"role": "AXButton", "title": "Options", "frame": [20, 70, 60, 20]}, {"role": "AXButton"}]}]}]})"),
            "╭ Calendar ────────────╮\n"
            "│ Dinner with Tom      │\n"
            "│ Today                │\n"
            "│ at the usual place   │\n"
            "│ [Options] [×]        │\n"
            "╰──────────────────────╯");
}

TEST(Picture, WrapsAndShortensLongTexts) {
  EXPECT_EQ(pictureOf(R"({"children": [{"description": "Mail, Are you still coming tonight or äöü tomorrow",
    "frame": [14, 20, 168, 80]}]})"),
            "╭ Mail ────╮\n"
            "│ Are you  │\n"
            "│ still c… │\n"
            "╰──────────╯");
}

TEST(Picture, PlacesTextsInAWindow) {
  EXPECT_EQ(pictureOf(R"({"role": "AXWindow", "title": "Notes", "frame": [14, 20, 280, 100], "children": [
    {"role": "AXStaticText", "value": "Groceries", "frame": [42, 40, 140, 16]},
    {"role": "AXTextField", "value": "Milk", "frame": [42, 60, 140, 16]},
    {"role": "AXButton", "title": "OK", "frame": [42, 80, 84, 20]},
    {"role": "AXStaticText", "value": "nowhere"}]})"),
            "╭ Notes ───────────╮\n"
            "│ Groceries        │\n"
            "│ Milk             │\n"
            "│ [OK]             │\n"
            "╰──────────────────╯");
}

TEST(Picture, ShowsOverlappingNotificationsOnce) {
  EXPECT_EQ(pictureOf(R"({"children": [{"description": "Chat, {n}", "repeat": 3, "frame": [14, 20, 112, 60]}]})"),
            "╭ Chat ╮\n"
            "│ 1    │\n"
            "╰══════╯");
}

TEST(Picture, OmitsDestroyedElements) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 4, "windows": [{"title": "w", "frame": [14, 20, 140, 100]}]}],
    "timeline": [{"at": 1, "quit": 4}]})");
  const std::string empty = SimulatedDesktop("{}").simulator().picture();
  EXPECT_NE(desktop.simulator().picture(), empty);
  desktop.sleep(1);
  EXPECT_EQ(desktop.simulator().picture(), empty);
}

TEST(Picture, CutsWhatReachesBeyondTheScreen) {
  SimulatedDesktop desktop(
      Scene(R"({"title": "far", "frame": [-1e300, -500, 1e308, 1e7]}, {"title": "out", "frame": [1e9, 1e9, 100, 100]},
    {"title": "control \u0007 \n character", "frame": [0, 0, 500, 100]})"));
  EXPECT_LT(desktop.simulator().picture().size(), 60000U);
  EXPECT_EQ(desktop.simulator().picture().find('\x07'), std::string::npos);
}

}  // namespace
