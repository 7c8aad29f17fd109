#include "platform/linux/atspi/presentation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/platform/linux/atspi/recorded_tree.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

HLPresentation presentServer(const HLRawTree& tree) {
  return HLPresent(tree, HLFindBanners(tree), HLProcessKind::notificationServer);
}

HLPresentation presentOther(const HLRawTree& tree) { return HLPresent(tree, {}, HLProcessKind::other); }

const HLPresentedNode& at(const HLPresentation& presentation, int index) {
  return presentation.nodes.at(static_cast<std::size_t>(index));
}

// What is below, one line a node: "role/subrole 'title' 'description' 'value' <actions>".
void describe(const HLPresentation& presentation, int index, std::vector<std::string>& lines) {
  const HLElementFacts& facts = at(presentation, index).facts;
  std::string line =
      facts.role + "/" + facts.subrole + " '" + facts.title + "' '" + facts.description + "' '" + facts.value + "'";
  for (const std::string& action : facts.actionNames) line += " <" + action + ">";
  lines.push_back(line);
  for (int child : at(presentation, index).children) describe(presentation, child, lines);
}

std::vector<std::string> described(const HLPresentation& presentation) {
  std::vector<std::string> lines;
  for (int window : presentation.windows) describe(presentation, window, lines);
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

TEST(Presentation, EachBannerIsOneChildOfItsWindowWithOneAction) {
  EXPECT_THAT(described(presentServer(ParseTree(kLxqt))),
              ElementsAre("AXWindow/AXStandardWindow '' '' ''",
                          "AXGroup/AXNotificationCenterAlert '' 'Mail, New message, Hello' '' <Name:Close>",
                          "AXStaticText/ '' '' ''", "AXStaticText/ '' '' 'Mail'", "AXStaticText/ '' '' 'New message'",
                          "AXStaticText/ '' '' 'Hello'",
                          "AXGroup/AXNotificationCenterAlert '' 'Chat, Ada, Lunch?' '' <Name:Close>",
                          "AXStaticText/ '' '' ''", "AXStaticText/ '' '' 'Chat'", "AXStaticText/ '' '' 'Ada'",
                          "AXStaticText/ '' '' 'Lunch?'", "AXGroup/ '' '' ''", "AXButton/ 'Close' '' ''"));
}

TEST(Presentation, TheCloseActionPressesTheControlAndNothingElse) {
  const HLRawTree tree = ParseTree(kLxqt);
  const HLPresentation presentation = presentServer(tree);
  const HLPresentedNode& banner = at(presentation, at(presentation, presentation.windows.at(0)).children.at(0));
  ASSERT_THAT(banner.actions, SizeIs(1));
  EXPECT_EQ(tree.at(static_cast<std::size_t>(banner.actions.front().node)).name, "x");
  EXPECT_EQ(banner.actions.front().action, 0);
  EXPECT_EQ(banner.facts.frame, (HLRect{974, 634, 300, 86}));
}

TEST(Presentation, AWindowThatIsABannerIsShownAsBoth) {
  const HLPresentation presentation = presentServer(ParseTree(R"(
alert 'Notification' [820 125 454x83]
  label 'Title'
  button '' / 'Closes the notification.' [1220 135 44x34] <Click>
)"));
  EXPECT_THAT(described(presentation), ElementsAre("AXWindow/AXDialog 'Notification' '' ''",
                                                   "AXGroup/AXNotificationCenterAlert '' ', Title' '' <Name:Close>",
                                                   "AXStaticText/ '' '' 'Title'"));
  EXPECT_EQ(at(presentation, 0).raw, at(presentation, 1).raw);
  EXPECT_FALSE(at(presentation, 0).isBanner);
  EXPECT_TRUE(at(presentation, 1).isBanner);
}

TEST(Presentation, ABannerWithoutACloseControlHasNoAction) {
  EXPECT_THAT(described(presentServer(ParseTree("alert '' <Click>\n  label 'Title'\n  button 'Reply' <Click>\n"))),
              ElementsAre("AXWindow/AXDialog '' '' ''", "AXGroup/AXNotificationCenterAlert '' ', Title' ''",
                          "AXStaticText/ '' '' 'Title'", "AXButton/ 'Reply' '' ''"));
}

TEST(Presentation, BannersOfAShellComeBeforeEverythingElseInTheirWindow) {
  const std::vector<std::string> lines = described(presentServer(ParseTree(R"(
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

TEST(Presentation, HiddenWindowsAreLeftOut) {
  EXPECT_THAT(presentServer(ParseTree("window 'Hidden' (hidden)\n  label 'Text'\n")).windows, IsEmpty());
}

TEST(Presentation, SpeaksTheHomePlatformsWords) {
  EXPECT_THAT(described(presentOther(ParseTree(R"(
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

TEST(Presentation, AnActionThatIsListedTwiceIsPresentedOnce) {
  const HLPresentation presentation = presentOther(ParseTree("frame ''\n  button 'Push' <SetFocus> <Press> <Press>\n"));
  const HLPresentedNode& button = at(presentation, 1);
  EXPECT_THAT(button.facts.actionNames, ElementsAre("Name:SetFocus", "AXPress"));
  ASSERT_THAT(button.actions, SizeIs(2));
  EXPECT_EQ(button.actions[1].action, 1);
}

TEST(DetailsNeeded, OfAServerAreThoseOfItsBanners) {
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

TEST(DetailsNeeded, OfOtherProcessesAreThoseOfWindowsAndOfWhatCanBePressed) {
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
