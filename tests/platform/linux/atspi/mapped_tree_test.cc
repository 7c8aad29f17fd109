#include "platform/linux/atspi/mapped_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/linux/atspi/closing.h"
#include "tests/platform/linux/atspi/recorded_tree.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

HLMappedTree mapServer(const HLRawTree& tree) {
  const std::vector<HLBanner> banners = HLFindBanners(tree);
  const HLClosingActions closings = HLFindClosingActions(tree, banners, nullptr);
  return HLMapTree(tree, banners, closings, HLProcessKind::notificationServer);
}

HLMappedTree mapOther(const HLRawTree& tree) { return HLMapTree(tree, {}, {}, HLProcessKind::other); }

const HLMappedNode& at(const HLMappedTree& mapped, int index) {
  return mapped.nodes.at(static_cast<std::size_t>(index));
}

// Appends a line per node of the subtree: "role/subrole 'title' 'description' 'value' <actions>".
void describe(const HLMappedTree& mapped, int index, std::vector<std::string>& lines) {
  const HLElementFacts& facts = at(mapped, index).facts;
  std::string line =
      facts.role + "/" + facts.subrole + " '" + facts.title + "' '" + facts.description + "' '" + facts.value + "'";
  for (const std::string& action : facts.actionNames) line += " <" + action + ">";
  lines.push_back(line);
  for (int child : at(mapped, index).children) describe(mapped, child, lines);
}

std::vector<std::string> described(const HLMappedTree& mapped) {
  std::vector<std::string> lines;
  for (int window : mapped.windows) describe(mapped, window, lines);
  return lines;
}

constexpr const char* kLxqt = R"(
filler '' [974 628 300x200]
  filler '' [974 634 300x86]
    label '' (hidden)
    label 'Mail' [1005 645 225x17]
    label 'New message' [1005 668 225x17]
    label 'Hello' [1005 691 225x18]
    button 'x' [1239 645 24x24] <Press> <SetFocus>
  filler '' [974 732 300x90]
    label '' (hidden)
    label 'Chat' [1005 743 225x17]
    label 'Ada' [1005 766 225x17]
    label 'Lunch?' [1005 789 225x17]
    button 'x' [1239 743 24x24] <Press> <SetFocus>
    filler '' [1005 790 225x43]
      button 'Close' [1121 821 100x25] <Press>
)";

TEST(MapTree, MapsBannersToOneWindowChild) {
  EXPECT_THAT(described(mapServer(ParseTree(kLxqt))),
              ElementsAre("AXWindow/AXStandardWindow '' '' ''",
                          "AXGroup/AXNotificationCenterAlert '' 'Mail, New message, Hello' '' <Name:Close>",
                          "AXStaticText/ '' '' ''", "AXStaticText/ '' '' 'Mail'", "AXStaticText/ '' '' 'New message'",
                          "AXStaticText/ '' '' 'Hello'",
                          "AXGroup/AXNotificationCenterAlert '' 'Chat, Ada, Lunch?' '' <Name:Close>",
                          "AXStaticText/ '' '' ''", "AXStaticText/ '' '' 'Chat'", "AXStaticText/ '' '' 'Ada'",
                          "AXStaticText/ '' '' 'Lunch?'", "AXGroup/ '' '' ''", "AXButton/ 'Close' '' ''"));
}

TEST(MapTree, MapsCloseActionToCloseControl) {
  const HLRawTree tree = ParseTree(kLxqt);
  const HLMappedTree mapped = mapServer(tree);
  const HLMappedNode& banner = at(mapped, at(mapped, mapped.windows.at(0)).children.at(0));
  ASSERT_THAT(banner.actions, SizeIs(1));
  const HLRawAction& action = std::get<HLRawAction>(banner.actions.front());
  EXPECT_EQ(tree.at(static_cast<std::size_t>(action.node)).name, "x");
  EXPECT_EQ(action.action, 0);
  EXPECT_EQ(banner.facts.frame, (HLRect{974, 634, 300, 86}));
}

TEST(MapTree, SplitsBannerWindowsInTwo) {
  const HLMappedTree mapped = mapServer(ParseTree(R"(
alert 'Notification' [820 125 454x83]
  label 'Title'
  button '' / 'Closes the notification.' [1220 135 44x34] <Click>
)"));
  EXPECT_THAT(described(mapped), ElementsAre("AXWindow/AXDialog 'Notification' '' ''",
                                             "AXGroup/AXNotificationCenterAlert '' ', Title' '' <Name:Close>",
                                             "AXStaticText/ '' '' 'Title'"));
  EXPECT_EQ(at(mapped, 0).raw, at(mapped, 1).raw);
  EXPECT_FALSE(at(mapped, 0).isBanner);
  EXPECT_TRUE(at(mapped, 1).isBanner);
}

TEST(MapTree, GivesUnclosableBannersNoAction) {
  EXPECT_THAT(described(mapServer(ParseTree("alert '' <Click>\n  label 'Title'\n  button 'Reply' <Click>\n"))),
              ElementsAre("AXWindow/AXDialog '' '' ''", "AXGroup/AXNotificationCenterAlert '' ', Title' ''",
                          "AXStaticText/ '' '' 'Title'", "AXButton/ 'Reply' '' ''"));
}

TEST(MapTree, ListsBannersFirstInTheirWindow) {
  const std::vector<std::string> lines = described(mapServer(ParseTree(R"(
window ''
  panel ''
    menu bar 'Menus'
    button 'Notifications' <Click>
  panel ''
    notification '' [900 10 300x80]
      label 'Title' [910 20 100x20]
      button 'Close' [1170 14 24x24] <Click>
)")));
  EXPECT_THAT(lines, ElementsAre("AXWindow/AXStandardWindow '' '' ''",
                                 "AXGroup/AXNotificationCenterAlert '' ', Title' '' <Name:Close>",
                                 "AXStaticText/ '' '' 'Title'", "AXGroup/ '' '' ''", "AXMenuBar/ 'Menus' '' ''",
                                 "AXButton/ 'Notifications' '' ''", "AXGroup/ '' '' ''"));
}

TEST(MapTree, OmitsHiddenWindows) {
  EXPECT_THAT(mapServer(ParseTree("window 'Hidden' (hidden)\n  label 'Text'\n")).windows, IsEmpty());
}

TEST(MapTree, GivesRolesAndActionsAxNames) {
  EXPECT_THAT(described(mapOther(ParseTree(R"(
frame 'Window'
  button 'Push' <click>
  button 'Press' <Press>
  label 'Text' / 'What it is'
  toggle button 'Toggle' <click>
  menu bar ''
    menu 'File' <click>
      menu item 'Quit' <click>
  103 'Info' <expand or contract>
)"))),
              ElementsAre("AXWindow/AXStandardWindow 'Window' '' ''", "AXButton/ 'Push' '' '' <AXPress>",
                          "AXButton/ 'Press' '' '' <AXPress>", "AXStaticText/ '' 'What it is' 'Text'",
                          "AXCheckBox/AXToggle 'Toggle' '' '' <AXPress>", "AXMenuBar/ '' '' ''",
                          "AXMenu/ 'File' '' '' <AXPress>", "AXMenuItem/ 'Quit' '' '' <AXPress>",
                          "AXUnknown/ 'Info' '' '' <Name:expand or contract>"));
}

TEST(MapTree, MapsTheFirstOfRepeatedActions) {
  const HLMappedTree mapped = mapOther(ParseTree("frame ''\n  button 'Push' <SetFocus> <Press> <Press>\n"));
  const HLMappedNode& button = at(mapped, 1);
  EXPECT_THAT(button.facts.actionNames, ElementsAre("Name:SetFocus", "AXPress"));
  ASSERT_THAT(button.actions, SizeIs(2));
  EXPECT_EQ(std::get<HLRawAction>(button.actions[1]).action, 1);
}

TEST(DetailsNeeded, CoverBannersOfServers) {
  HLRawTree tree = ParseTree(R"(
window '' [0 0 9x9]
  panel '' [0 0 9x9]
    toggle button 'Other' [0 0 9x9] <Click>
  notification '' [0 0 9x9]
    label 'Title' [0 0 9x9]
    button 'Close' [0 0 9x9] <Click>
)");
  const HLNeededDetails needed = HLDetailsNeeded(tree, HLFindBanners(tree), HLProcessKind::notificationServer);
  EXPECT_THAT(needed.extentsOf, ElementsAre(1, 4, 5, 6));
  EXPECT_THAT(needed.actionsOf, ElementsAre(6));
}

TEST(DetailsNeeded, CoverWindowsAndPressableElementsElsewhere) {
  const HLRawTree tree = ParseTree(R"(
frame '' [0 0 9x9]
  button 'Shown' [0 0 9x9] <Click>
  button 'Hidden' (hidden) [0 0 9x9] <Click>
  label 'Text' [0 0 9x9]
)");
  const HLNeededDetails needed = HLDetailsNeeded(tree, {}, HLProcessKind::other);
  EXPECT_THAT(needed.extentsOf, ElementsAre(1, 2));
  EXPECT_THAT(needed.actionsOf, ElementsAre(2));
}

}  // namespace
