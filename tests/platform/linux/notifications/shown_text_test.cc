// Which notification a banner shows.
#include "platform/linux/notifications/shown_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::Eq;

constexpr auto kNone = std::nullopt;

HLPostedNotification posted(const std::string& application, const std::string& summary, const std::string& body) {
  HLPostedNotification posted;
  posted.application = application;
  posted.summary = summary;
  posted.body = body;
  return posted;
}

// Notifications with the numbers 1, 2, 3...
std::vector<HLOpenNotificationRef> numbered(const std::vector<HLPostedNotification>& all) {
  std::vector<HLOpenNotificationRef> open;
  for (const HLPostedNotification& one : all) {
    const auto number = static_cast<std::uint32_t>(open.size() + 1);
    open.push_back(std::make_shared<const HLOpenNotification>(HLOpenNotification{{number, "", ""}, one, {}}));
  }
  return open;
}

constexpr HLServerTraits kOldest{.shownOfEqual = HLShownOfEqual::oldest};
constexpr HLServerTraits kNewest{.shownOfEqual = HLShownOfEqual::newest, .mostEqual = 3};
constexpr HLServerTraits kUnknown{};

TEST(TextFit, IsExactWithOrWithoutApplication) {
  const HLPostedNotification mail = posted("Mail", "Ada", "Lunch?");
  EXPECT_EQ(HLFitOfTexts({"Ada", "Lunch?"}, mail), HLTextFit::exact);
  EXPECT_EQ(HLFitOfTexts({"Mail", "Ada", "Lunch?"}, mail), HLTextFit::exact);
  EXPECT_EQ(HLFitOfTexts({"Mail", "Ada"}, posted("Mail", "Ada", "")), HLTextFit::exact);
  EXPECT_EQ(HLFitOfTexts({"Ada"}, posted("Mail", "Ada", "")), HLTextFit::exact);
  EXPECT_EQ(HLFitOfTexts({"Lunch?"}, posted("Mail", "", "Lunch?")), HLTextFit::exact);
}

TEST(TextFit, NeedsSummaryAndBody) {
  const HLPostedNotification mail = posted("Mail", "Ada", "Lunch?");
  for (const HLShownTexts& other : std::vector<HLShownTexts>{{"Ada"},
                                                             {"Lunch?"},
                                                             {"Lunch?", "Ada"},
                                                             {"Ada", "Lunch"},
                                                             {"Ada", "Lunch? Tomorrow"},
                                                             {"ada", "Lunch?"},
                                                             {"Mail", "Ada"},
                                                             {"Mail", "Bob", "Lunch?"},
                                                             {"Ada", "Lunch?", "Reply"},
                                                             {"Bob", "at", "Ada", "Lunch?"},
                                                             {}}) {
    EXPECT_EQ(HLFitOfTexts(other, mail), HLTextFit::none) << testing::PrintToString(other);
  }
}

TEST(TextFit, IsLooseWithOneOtherText) {
  const HLPostedNotification mail = posted("", "Ada", "Lunch?");
  EXPECT_EQ(HLFitOfTexts({"python3", "Ada", "Lunch?"}, mail), HLTextFit::loose);
  EXPECT_EQ(HLFitOfTexts({"Ada", "Just now", "Lunch?"}, mail), HLTextFit::loose);
  EXPECT_EQ(HLFitOfTexts({"python3", "Ada", "Just now", "Lunch?"}, mail), HLTextFit::none);
}

TEST(TextFit, IsDoubtfulForTextWithoutBody) {
  EXPECT_EQ(HLFitOfTexts({"Ada", "Just now"}, posted("Mail", "Ada", "")), HLTextFit::doubtful);
  EXPECT_EQ(HLFitOfTexts({"Bob", "Ada"}, posted("Mail", "Ada", "")), HLTextFit::doubtful);
}

TEST(TextFit, IgnoresBlanksAndLineBreaks) {
  EXPECT_EQ(HLFitOfTexts({" Ada Lovelace ", "one two\u2028three\uFFFC", ""},
                         posted("", "Ada\nLovelace", "one  two\nthree<img src='x'/>")),
            HLTextFit::exact);
}

TEST(TextFit, TakesDescriptionsOfBanners) {
  const HLPostedNotification mail = posted("Mail", "Ada", "Lunch?");
  EXPECT_EQ(HLFitOfTexts({"Mail", "Ada", "Lunch?  from Mail"}, mail), HLTextFit::exact);
  EXPECT_EQ(HLFitOfTexts({"Mail", "Ada", "Lunch?", "Lunch?  from Mail"}, mail), HLTextFit::exact);
  EXPECT_EQ(HLFitOfTexts({"Mail", "Ada", "from Mail"}, posted("Mail", "Ada", "")), HLTextFit::exact);
  EXPECT_EQ(HLFitOfTexts({"python3", "Ada", "Lunch?  from python3"}, posted("", "Ada", "Lunch?")), HLTextFit::loose);
  EXPECT_EQ(HLFitOfTexts({"Ada", "Lunch?  from Mail"}, mail), HLTextFit::none);
  EXPECT_EQ(HLFitOfTexts({"Mail", "Ada", "Lunch? with all of Mail"}, mail), HLTextFit::none);
  EXPECT_EQ(HLFitOfTexts({"Mail", "Ada", "Lunch? from Post"}, mail), HLTextFit::none);
}

TEST(TextFit, RefusesCutNotifications) {
  HLPostedNotification cut = posted("", "Ada", "Lunch?");
  cut.isCut = true;
  EXPECT_EQ(HLFitOfTexts({"Ada", "Lunch?"}, cut), HLTextFit::none);
}

TEST(TextFit, RefusesWordlessTexts) {
  EXPECT_EQ(HLFitOfTexts({}, posted("", "", "")), HLTextFit::none);
  EXPECT_EQ(HLFitOfTexts({" ", "\uFFFC"}, posted("", " ", "")), HLTextFit::none);
  EXPECT_EQ(HLFitOfTexts({"Mail"}, posted("Mail", "", "")), HLTextFit::exact);
}

TEST(ShownTexts, MatchEachBanner) {
  const auto open = numbered({posted("", "Ada", "Lunch?"), posted("", "Bob", "No"), posted("", "Ada", "Dinner?")});
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Dinner?"}, {"Eve", "Hi"}, {"Bob", "No"}}, kUnknown, open),
              ElementsAre(Eq(2U), Eq(kNone), Eq(1U)));
}

TEST(ShownTexts, MatchEqualBannersOldestFirst) {
  const auto open = numbered({posted("", "Ada", "Hi"), posted("", "Ada", "Hi"), posted("", "Ada", "Hi")});
  const HLShownTexts banner = {"Ada", "Hi"};
  EXPECT_THAT(HLMatchShownTexts({banner}, kOldest, open), ElementsAre(Eq(0U)));
  EXPECT_THAT(HLMatchShownTexts({banner, banner}, kOldest, open), ElementsAre(Eq(0U), Eq(1U)));
  EXPECT_THAT(HLMatchShownTexts({banner, banner, banner, banner}, kOldest, open),
              ElementsAre(Eq(0U), Eq(1U), Eq(2U), Eq(kNone)));
}

TEST(ShownTexts, MatchNewestWhereNewestAreShown) {
  const HLPostedNotification one = posted("", "Ada", "Hi");
  const HLShownTexts banner = {"Ada", "Hi"};
  const auto open = numbered({one, one, posted("", "Bob", "Hi"), one});
  EXPECT_THAT(HLMatchShownTexts({banner}, kNewest, open), ElementsAre(Eq(3U)));
  EXPECT_THAT(HLMatchShownTexts({banner, banner}, kNewest, open), ElementsAre(Eq(1U), Eq(3U)));
  EXPECT_THAT(HLMatchShownTexts({banner, {"Bob", "Hi"}}, kNewest, open), ElementsAre(Eq(3U), Eq(2U)));
}

TEST(ShownTexts, LeaveMoreEqualOnesThanWait) {
  const HLPostedNotification one = posted("", "Ada", "Hi");
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Hi"}}, kNewest, numbered({one, one, one, one})), ElementsAre(Eq(kNone)));
}

TEST(ShownTexts, LeaveEqualOnesOfDifferentUrgency) {
  const HLPostedNotification one = posted("", "Ada", "Hi");
  HLPostedNotification urgent = one;
  urgent.urgency = 2;
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Hi"}}, kNewest, numbered({one, urgent})), ElementsAre(Eq(kNone)));
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Hi"}, {"Ada", "Hi"}}, kNewest, numbered({one, urgent})),
              ElementsAre(Eq(0U), Eq(1U)));
}

TEST(ShownTexts, LeaveEqualOnesWhereNotKnown) {
  const auto open = numbered({posted("", "Ada", "Hi"), posted("", "Ada", "Hi"), posted("", "Bob", "Hi")});
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Hi"}, {"Bob", "Hi"}}, kUnknown, open), ElementsAre(Eq(kNone), Eq(2U)));
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Hi"}, {"Ada", "Hi"}}, kUnknown, open), ElementsAre(Eq(0U), Eq(1U)));
}

TEST(ShownTexts, LeaveWhatTwoTextsFit) {
  // The second of a server that hides applications, or the first of one that shows them.
  const auto open = numbered({posted("Ada", "Hi", ""), posted("Mail", "Ada", "Hi")});
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Hi"}}, kOldest, open), ElementsAre(Eq(kNone)));
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Hi"}, {"Ada", "Hi"}}, kOldest, open), ElementsAre(Eq(0U), Eq(1U)));
}

TEST(ShownTexts, LeaveDoubtfulBanners) {
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Just now"}}, kOldest, numbered({posted("Mail", "Ada", "")})),
              ElementsAre(Eq(kNone)));
  // Without the first, the second would fit alone.
  const auto open = numbered({posted("Mail", "Ada", ""), posted("Ada", "Just now", "")});
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "Just now"}}, kOldest, open), ElementsAre(Eq(kNone)));
}

TEST(ShownTexts, PreferTheApplicationShown) {
  const auto open = numbered({posted("Mail", "Ada", "Hi"), posted("Chat", "Ada", "Hi")});
  EXPECT_THAT(HLMatchShownTexts({{"Chat", "Ada", "Hi"}}, kOldest, open), ElementsAre(Eq(1U)));
}

TEST(ShownTexts, LeaveBannersThatShareANotification) {
  // Shown as markup by some servers, as its source by others.
  const auto open = numbered({posted("", "Ada", "a<br/>b")});
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "a b"}, {"Ada", "a<br/>b"}}, kOldest, open),
              ElementsAre(Eq(kNone), Eq(kNone)));
  EXPECT_THAT(HLMatchShownTexts({{"Ada", "a b"}}, kOldest, open), ElementsAre(Eq(0U)));
  EXPECT_THAT(HLMatchShownTexts({{"Ada"}}, kOldest, open), ElementsAre(Eq(0U)));
}

}  // namespace
