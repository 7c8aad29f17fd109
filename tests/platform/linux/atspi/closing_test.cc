#include "platform/linux/atspi/closing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "tests/platform/linux/atspi/known_notifications.h"
#include "tests/platform/linux/atspi/recorded_tree.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A banner with a close control, and two with the application's buttons only.
constexpr const char* kMixed = R"(
frame '' [0 0 300x80]
  label 'Lunch' [10 10 200x20]
  label 'at noon' [10 30 200x20]
  button 'x' [270 6 24x24] <Click>
frame '' [0 100 300x80]
  label 'Ada' [10 110 200x20]
  label 'Are you there?' [10 130 200x20]
  button 'Close' [10 150 85x24] <Click>
  button 'Dismiss' [100 150 85x24] <Click>
frame '' [0 200 300x80]
  label 'News' [10 210 200x20]
  label 'of today' [10 230 200x20]
)";

std::string textOf(const std::optional<HLMappedAction>& closing) {
  if (!closing) return "none";
  if (const auto* name = std::get_if<HLNotificationName>(&*closing)) return std::to_string(name->number);
  return "press " + std::to_string(std::get<HLRawAction>(*closing).node);
}

std::vector<std::string> closingsOf(const HLRawTree& tree, HLOpenNotifications* notifications) {
  std::vector<std::string> texts;
  for (const auto& closing : HLFindClosingActions(tree, HLFindBanners(tree), notifications)) {
    texts.push_back(textOf(closing));
  }
  return texts;
}

TEST(ClosingActions, PressOrCloseByName) {
  KnownNotifications known;
  known.post(5, "Mail", "Lunch", "at noon");
  known.post(7, "Chat", "Ada", "Are you there?");
  EXPECT_THAT(closingsOf(ParseTree(kMixed), &known), ElementsAre("press 4", "7", "none"));
  EXPECT_THAT(known.closed(), IsEmpty());
}

TEST(ClosingActions, MatchAllBannersAtOnce) {
  KnownNotifications known;
  (void)closingsOf(ParseTree(kMixed), &known);
  ASSERT_THAT(known.asked(), SizeIs(1));
  EXPECT_THAT(known.asked().front(),
              ElementsAre(ElementsAre("Ada", "Are you there?"), ElementsAre("News", "of today")));
}

TEST(ClosingActions, MatchNothingWhereAllHaveControls) {
  KnownNotifications known;
  EXPECT_THAT(closingsOf(RecordedTree("lxqt"), &known), SizeIs(2));
  EXPECT_THAT(known.asked(), IsEmpty());
}

TEST(ClosingActions, OnlyPressWithoutNotifications) {
  EXPECT_THAT(closingsOf(ParseTree(kMixed), nullptr), ElementsAre("press 4", "none", "none"));
}

TEST(ClosingActions, NameEachOfEqualBannersOnce) {
  KnownNotifications known;
  known.post(1, "Chat", "Ada", "Hello");
  known.post(2, "Chat", "Ada", "Hello");
  EXPECT_THAT(closingsOf(ParseTree(R"(
frame ''
  label 'Ada'
  label 'Hello'
frame ''
  label 'Ada'
  label 'Hello'
frame ''
  label 'Ada'
  label 'Hello'
)"),
                         &known),
              ElementsAre("1", "2", "none"));
}

TEST(ClosingActions, CloseXfcesBannersByName) {
  KnownNotifications known;
  known.post(1, "Mail", "New message", "Hello, world");
  known.post(2, "Chat", "Ada", "Lunch?");
  EXPECT_THAT(closingsOf(RecordedTree("xfce"), &known), ElementsAre("1", "2"));
}

std::vector<std::string> actionsOf(const HLMappedTree& mapped) {
  std::vector<std::string> actions;
  for (const HLMappedNode& node : mapped.nodes) {
    for (const std::string& action : node.facts.actionNames) {
      actions.push_back(node.facts.description + " [" + node.facts.roleDescription + "] <" + action + ">");
    }
  }
  return actions;
}

TEST(ClosingActions, ReplaceAllOtherActionsOfServers) {
  KnownNotifications known;
  known.post(7, "Chat", "Ada", "Are you there?");
  const HLRawTree tree = ParseTree(kMixed);
  const std::vector<HLBanner> banners = HLFindBanners(tree);
  const HLMappedTree mapped =
      HLMapTree(tree, banners, HLFindClosingActions(tree, banners, &known), HLProcessKind::notificationServer);
  EXPECT_THAT(actionsOf(mapped), ElementsAre(", Lunch, at noon [banner 1] <Name:Close>",
                                             ", Ada, Are you there? [notification 7] <Name:Close>"));
}

// ---------------------------------------------------------------------------------------------------------------------
// What is compared.

std::vector<HLShownTexts> bannerTextsOf(const HLRawTree& tree) {
  std::vector<HLShownTexts> texts;
  for (const HLBanner& banner : HLFindBanners(tree)) texts.push_back(HLBannerTexts(tree, banner));
  return texts;
}

TEST(BannerTexts, NameTheApplicationIfShown) {
  EXPECT_THAT(bannerTextsOf(RecordedTree("lxqt")),
              ElementsAre(ElementsAre("Mail", "New message", "Hello, world"), ElementsAre("Chat", "Ada", "Lunch?")));
  EXPECT_THAT(bannerTextsOf(RecordedTree("mate")),
              ElementsAre(ElementsAre("New message", "Hello, world"), ElementsAre("Ada", "Lunch?")));
}

TEST(BannerTexts, TakePlasmasBodyFromTheDescription) {
  EXPECT_THAT(bannerTextsOf(RecordedTree("plasma")),
              ElementsAre(ElementsAre("Mail", "New message", "Hello, world  from Mail"),
                          ElementsAre("Chat", "Ada", "Lunch?  from Chat")));
}

TEST(BannerTexts, LeaveOutHiddenTimes) {
  EXPECT_THAT(bannerTextsOf(RecordedTree("cinnamon")), ElementsAre(ElementsAre("New message", "Hello, world")));
}

TEST(BannerTexts, LeaveOutEmptyTexts) {
  EXPECT_THAT(bannerTextsOf(ParseTree("alert ''\n  label 'Title'\n  label ' '\n")), ElementsAre(ElementsAre("Title")));
}

}  // namespace
