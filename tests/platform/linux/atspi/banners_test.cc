#include "platform/linux/atspi/banners.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/linux/atspi/recorded_tree.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> textsOf(const HLRawTree& tree) {
  std::vector<std::string> texts;
  for (const HLBanner& banner : HLFindBanners(tree)) texts.push_back(HLBannerText(tree, banner));
  return texts;
}

// Of each banner the control that would be pressed: "name/description action-index", or "none".
std::vector<std::string> controlsOf(const HLRawTree& tree) {
  std::vector<std::string> controls;
  for (const HLBanner& banner : HLFindBanners(tree)) {
    const std::optional<HLRawAction> control = HLFindCloseControl(tree, banner);
    if (!control) {
      controls.emplace_back("none");
      continue;
    }
    const HLRawNode& node = tree[static_cast<std::size_t>(control->node)];
    controls.push_back(node.name + "/" + node.description + " " + std::to_string(control->action));
  }
  return controls;
}

// ---------------------------------------------------------------------------------------------------------------------
// What real servers showed: one banner of the application Mail, and one of Chat with the buttons Open and Close.

TEST(RecordedBanners, DescribeCloseButtonOnMate) {
  const HLRawTree tree = RecordedTree("mate");
  EXPECT_THAT(textsOf(tree), ElementsAre(", New message, Hello, world", ", Ada, Lunch?"));
  EXPECT_THAT(controlsOf(tree), ElementsAre("/Closes the notification. 0", "/Closes the notification. 0"));
}

TEST(RecordedBanners, ShareOneWindowOnLxqt) {
  const HLRawTree tree = RecordedTree("lxqt");
  EXPECT_THAT(textsOf(tree), ElementsAre("Mail, New message, Hello, world", "Chat, Ada, Lunch?"));
  EXPECT_THAT(controlsOf(tree), ElementsAre("x/ 0", "x/ 0"));
}

TEST(RecordedBanners, HaveNoCloseButtonOnXfce) {
  const HLRawTree tree = RecordedTree("xfce");
  EXPECT_THAT(textsOf(tree), ElementsAre(", New message, Hello, world", ", Ada, Lunch?"));
  EXPECT_THAT(controlsOf(tree), ElementsAre("none", "none"));
}

TEST(RecordedBanners, AppearSinglyWithNotificationDaemon) {
  const HLRawTree tree = RecordedTree("notification-daemon");
  EXPECT_THAT(textsOf(tree), ElementsAre(", New message, Hello, world"));
  EXPECT_THAT(controlsOf(tree), ElementsAre("/Closes the notification. 0"));
}

TEST(RecordedBanners, CloseByOwnButtonOnBudgie) {
  const HLRawTree tree = RecordedTree("budgie");
  EXPECT_THAT(textsOf(tree), ElementsAre(", New message, Hello, world", ", Ada, Lunch?"));
  const std::vector<HLBanner> banners = HLFindBanners(tree);
  ASSERT_THAT(banners, SizeIs(2));
  for (const HLBanner& banner : banners) {
    const std::optional<HLRawAction> control = HLFindCloseControl(tree, banner);
    ASSERT_TRUE(control);
    EXPECT_EQ(tree[static_cast<std::size_t>(control->node)].extents->width, 24);  // the application's is 85 wide
  }
}

TEST(RecordedBanners, KeepCloseButtonOutsideOnPlasma) {
  const HLRawTree tree = RecordedTree("plasma");
  EXPECT_THAT(textsOf(tree), ElementsAre("Mail, New message, Hello, world  from Mail", "Chat, Ada, Lunch?  from Chat"));
  EXPECT_THAT(controlsOf(tree), ElementsAre("Close/Mail 0", "Close/Chat 0"));
}

TEST(RecordedBanners, MayAskForReplyOnPlasma) {
  const HLRawTree tree = ParseTree(R"(
frame '' [908 515 336x125]
  tool bar '' [914 515 324x30]
  label 'Chat' [914 522 281x17]
  button 'Configure' / 'Chat' (hidden)
    label 'Configure' (hidden)
  button 'Close' / 'Chat' [1214 515 30x30] <Press> <SetFocus> <Press>
    label 'Close' (hidden)
  notification 'Ada' / 'Lunch?  from Chat' [914 545 324x35]
    label 'Ada' [914 545 320x17]
    panel ''
      text '' [914 563 254x17] <SetFocus>
        label '' (hidden)
  button 'Reply' [1187 605 51x30] <Press> <SetFocus> <Press>
    label 'Reply'
  text '' / 'Reply to Ada' [914 605 252x30] <SetFocus>
    label 'Reply to Ada'
  button 'Send' [1170 605 68x30] <Press> <SetFocus>
    label 'Send'
)");
  EXPECT_THAT(textsOf(tree), ElementsAre("Chat, Ada, Lunch?  from Chat"));
  EXPECT_THAT(controlsOf(tree), ElementsAre("Close/Chat 0"));
}

TEST(RecordedBanners, HaveUnpressableCloseButtonOnCinnamon) {
  const HLRawTree tree = RecordedTree("cinnamon");
  EXPECT_THAT(textsOf(tree), ElementsAre(", New message, Hello, world"));
  EXPECT_THAT(controlsOf(tree), ElementsAre("none"));
}

TEST(RecordedBanners, HaveUnpressableCloseButtonOnGnome) {
  const HLRawTree tree = RecordedTree("gnome");
  EXPECT_THAT(controlsOf(tree), ElementsAre("none"));
}

TEST(RecordedBanners, HaveNoCloseControlInDialogs) {
  EXPECT_THAT(controlsOf(RecordedTree("notify-osd")), ElementsAre("none", "none"));
}

// ---------------------------------------------------------------------------------------------------------------------
// What is a banner.

TEST(Banners, ExcludeHiddenWindows) {
  EXPECT_THAT(HLFindBanners(ParseTree(R"(
alert 'Notification' (hidden)
  label 'Title'
  button '' / 'Closes the notification.' <Click>
)")),
              IsEmpty());
}

TEST(Banners, ExcludeHiddenNodesInVisibleWindows) {
  EXPECT_THAT(HLFindBanners(ParseTree(R"(
window ''
  menu bar ''
  notification '' (hidden)
    label 'Title'
)")),
              IsEmpty());
}

TEST(Banners, AreInnermostNodesWithTheRole) {
  EXPECT_THAT(textsOf(ParseTree(R"(
window ''
  alert ''
    notification ''
      label 'One'
    notification ''
      label 'Two'
)")),
              ElementsAre(", One", ", Two"));
}

// A list of windows shows a text and a close button for each of the user's own.
TEST(Banners, NeedTheRoleInDesktopShells) {
  EXPECT_THAT(textsOf(ParseTree(R"(
window '' [0 0 1280x1024]
  panel ''
    label 'A window of the user'
    button 'Close' [1250 10 24x24] <Click>
  notification '' [900 800 300x80]
    label 'Title'
window '' [0 1000 1280x24]
  menu bar ''
window '' [300 900 200x100]
  label 'Another window of the user'
  button 'Close' [470 910 24x24] <Click>
)")),
              ElementsAre(", Title"));
}

// An open message list shows its entries with the same role, far below the window.
TEST(Banners, IgnoreEntriesOfAMessageList) {
  std::string tree = "window ''\n  menu bar ''\n";
  std::string indent = "  ";
  for (int level = 0; level < 12; ++level, indent += "  ") tree += indent + "panel ''\n";
  tree += indent + "notification ''\n" + indent + "  label 'Title'\n";
  EXPECT_THAT(HLFindBanners(ParseTree(tree)), IsEmpty());
}

TEST(Banners, IncludeListItemsWithCloseButtons) {
  EXPECT_THAT(textsOf(ParseTree(R"(
window ''
  list ''
    list item ''
      label 'One'
      button 'Close' <Click>
    list item ''
      label 'Two'
      button 'Close' <Click>
)")),
              ElementsAre(", One", ", Two"));
}

TEST(Banners, IncludeButtonsContainingCloseButtons) {
  EXPECT_THAT(textsOf(ParseTree(R"(
window ''
  panel ''
    button '' <Press>
      label 'One'
      button 'Close' <Press>
)")),
              ElementsAre(", One"));
}

TEST(Banners, ExcludeWindowsWithoutText) {
  EXPECT_THAT(HLFindBanners(ParseTree(R"(
window ''
  button 'Close' <Click>
)")),
              IsEmpty());
}

TEST(Banners, ExcludeWindowsWithManyElements) {
  std::string tree = "window ''\n  label 'Applications'\n";
  for (int i = 0; i < 100; ++i) tree += "  panel ''\n";
  EXPECT_THAT(HLFindBanners(ParseTree(tree)), IsEmpty());
}

TEST(Banners, AreAbsentFromEmptyTrees) { EXPECT_THAT(HLFindBanners(HLRawTree(1)), IsEmpty()); }

// ---------------------------------------------------------------------------------------------------------------------
// What closes it.

// A banner of 400 by 100 at (0, 0) with these buttons.
HLRawTree bannerWith(const std::string& buttons) {
  return ParseTree("alert '' [0 0 400x100]\n  label 'Title' [60 10 200x20]\n  label 'Body' [60 40 200x20]\n" + buttons);
}

std::vector<std::string> controlsWith(const std::string& buttons) { return controlsOf(bannerWith(buttons)); }

TEST(CloseControl, IsUnnamedIconInUpperCorner) {
  EXPECT_THAT(controlsWith("  button '' [370 6 24x24] <Click>\n"), ElementsAre("/ 0"));
  EXPECT_THAT(controlsWith("  button '' [6 6 24x24] <Click>\n"), ElementsAre("/ 0"));
}

TEST(CloseControl, IsNotAnIconElsewhere) {
  EXPECT_THAT(controlsWith("  button '' [370 70 24x24] <Click>\n"), ElementsAre("none"));
  EXPECT_THAT(controlsWith("  button '' [190 6 24x24] <Click>\n"), ElementsAre("none"));
}

TEST(CloseControl, IsNoIconWithoutPosition) {
  EXPECT_THAT(controlsWith("  button '' <Click>\n"), ElementsAre("none"));
  EXPECT_THAT(controlsWith("  button 'Close' <Click>\n"), ElementsAre("none"));
}

TEST(CloseControl, IsNeitherOfTwoEqualIcons) {
  EXPECT_THAT(controlsWith("  button '' [370 6 24x24] <Click>\n  button '' [340 6 24x24] <Click>\n"),
              ElementsAre("none"));
}

TEST(CloseControl, IsTheNamedIconOfTwo) {
  EXPECT_THAT(controlsWith("  button '' [340 6 24x24] <Click>\n  button 'Close' [370 6 24x24] <Click>\n"),
              ElementsAre("Close/ 0"));
}

TEST(CloseControl, IsTheDescribedButtonAnywhere) {
  EXPECT_THAT(controlsWith("  button 'x' [370 6 24x24] <Click>\n  button '' / 'Closes the notification.' <Click>\n"),
              ElementsAre("/Closes the notification. 0"));
}

TEST(CloseControl, MayBeDescribedInAnotherLanguage) {
  EXPECT_THAT(controlsWith("  button '' / 'Schließt die Benachrichtigung.' <Click>\n"),
              ElementsAre("/Schließt die Benachrichtigung. 0"));
}

TEST(CloseControl, IgnoresDescriptionsOfOtherwiseNamedButtons) {
  EXPECT_THAT(controlsWith("  button 'Open' / 'Opens it and closes this' [370 6 24x24] <Click>\n"),
              ElementsAre("none"));
}

TEST(CloseControl, IsNoApplicationButtonNamedClose) {
  for (const std::string name : {"Close", "Dismiss", "x"}) {
    EXPECT_THAT(controlsWith("  button '" + name + "' [300 6 80x24] <Click>\n"), ElementsAre("none")) << name;
    EXPECT_THAT(controlsWith("  button '" + name + "' [310 70 24x24] <Click>\n"), ElementsAre("none")) << name;
  }
  EXPECT_THAT(controlsWith("  button 'Close' [370 6 24x24] <Click>\n    label 'Close' [372 8 20x20]\n"),
              ElementsAre("none"));
}

TEST(CloseControl, IsNoIconWithAnotherName) {
  for (const std::string name : {"Reply", "Open", "Undo", "Delete", "Close tab", "Clear", "OK", "Cancel", "Later"}) {
    EXPECT_THAT(controlsWith("  button '" + name + "' [370 6 24x24] <Click>\n"), ElementsAre("none")) << name;
  }
}

TEST(CloseControl, IsTheSymbolInItsCorner) {
  for (const std::string name : {"x", "X", "×", "✕"}) {
    EXPECT_THAT(controlsWith("  button '" + name + "' [370 6 24x24] <Press>\n"), ElementsAre(name + "/ 0")) << name;
  }
}

TEST(CloseControl, UsesItsFirstPressAction) {
  EXPECT_THAT(controlsWith("  button 'x' [370 6 24x24] <SetFocus> <Press> <Press>\n"), ElementsAre("x/ 1"));
}

TEST(CloseControl, CannotBePressedWithoutAnAction) {
  EXPECT_THAT(controlsWith("  button 'x' [370 6 24x24]\n"), ElementsAre("none"));
  EXPECT_THAT(controlsWith("  button 'x' [370 6 24x24] <SetFocus>\n"), ElementsAre("none"));
}

TEST(CloseControl, MayAppearUnderThePointerOnly) {
  EXPECT_THAT(controlsWith("  button 'Close' (hidden) [370 6 24x24] <Press>\n"), ElementsAre("Close/ 0"));
}

TEST(CloseControl, MayBeWithinAnyDepth) {
  EXPECT_THAT(controlsWith("  panel ''\n    panel ''\n      button 'x' [370 6 24x24] <Press>\n"), ElementsAre("x/ 0"));
}

// ---------------------------------------------------------------------------------------------------------------------
// What it says.

TEST(BannerText, LeavesOutAMissingBody) {
  EXPECT_THAT(textsOf(ParseTree("alert ''\n  label 'Title'\n")), ElementsAre(", Title"));
}

TEST(BannerText, NamesApplicationDespiteEmptyLabels) {
  EXPECT_THAT(
      textsOf(ParseTree("alert ''\n  label '' (hidden)\n  label 'Mail'\n  label 'Title'\n  label '' (hidden)\n")),
      ElementsAre("Mail, Title"));
}

TEST(BannerText, FollowsTheOrderOnScreen) {
  EXPECT_THAT(textsOf(ParseTree("alert ''\n  label 'Body' [0 40 90x20]\n  label 'Title' [0 10 90x20]\n")),
              ElementsAre(", Title, Body"));
}

TEST(BannerText, LeavesOutWhatTheButtonsSay) {
  EXPECT_THAT(textsOf(ParseTree("alert ''\n  label 'Title'\n  button 'Open'\n    label 'Open'\n")),
              ElementsAre(", Title"));
}

TEST(BannerText, MayStandOnTheNotificationItself) {
  EXPECT_THAT(textsOf(ParseTree("notification 'Title' / 'Body'\n")), ElementsAre(", Title, Body"));
}

}  // namespace
