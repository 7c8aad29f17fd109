#include "core/scan/scoring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/scan/words.h"
#include "tests/support/descriptions.h"
#include "tests/support/fake_element.h"

namespace {

const HLElementRef kElement = std::make_shared<FakeElement>();

// The target that an element with these facts is, below ancestors with these words.
std::string candidate(const HLElementFacts& facts, const std::string& ancestors = "") {
  return Describe(HLCandidateForElement(kElement, facts, HLContext(ancestors).extendedBy(HLSearchableContext(facts))));
}

HLElementFacts element(std::string role, std::string title, std::vector<std::string> actions, HLRect frame = {}) {
  HLElementFacts facts;
  facts.role = std::move(role);
  facts.title = std::move(title);
  facts.actionNames = std::move(actions);
  facts.frame = frame;
  return facts;
}

HLElementFacts banner(std::string title, HLRect frame = {0, 0, 360, 80}) {
  HLElementFacts facts = element("AXGroup", std::move(title), {"AXPress", "Name:Close"}, frame);
  facts.subrole = "AXNotificationCenterAlert";
  return facts;
}

const std::vector<std::string> kNegativeWords = {"reply",   "open",  "options", "show",   "view",       "accept",
                                                 "decline", "allow", "later",   "snooze", "mute",       "unmute",
                                                 "play",    "pause", "call",    "manage", "clear menu", "menu item"};
const std::vector<std::string> kNotificationWords = {
    "notification", "axnotification", "stacked", "notification center", "from iphone", "axnotificationlistitems"};

// Each word without its first or its last letter, where that holds none of the words itself.
std::vector<std::string> nearMisses(const std::vector<std::string>& words) {
  std::vector<std::string> misses;
  for (const std::string& word : words) {
    for (const std::string& miss : {word.substr(1), word.substr(0, word.size() - 1)}) {
      const bool isAnother = std::any_of(words.begin(), words.end(),
                                         [&miss](const std::string& other) { return miss.find(other) != miss.npos; });
      if (!isAnother) misses.push_back(miss);
    }
  }
  return misses;
}

constexpr HLRect kSmall = {0, 0, 16, 16};
constexpr HLRect kLarge = {0, 0, 360, 80};

TEST(WordMatching, FindsSubstrings) {
  const std::array<std::string_view, 2> words = {"view", "open"};
  EXPECT_TRUE(HLStringContainsAny("a preview", words));
  EXPECT_TRUE(HLStringContainsAny("REOPEN", words));
  EXPECT_TRUE(HLStringContainsAny("open", words));
  EXPECT_FALSE(HLStringContainsAny("vie w ope n", words));
  EXPECT_FALSE(HLStringContainsAny("", words));
  EXPECT_FALSE(HLStringContainsAny("open", {}));
}

TEST(WordMatching, LowercasesTheTextOnly) {
  const std::array<std::string_view, 1> lower = {"schließen"};
  EXPECT_TRUE(HLStringContainsAny("SCHLIEßEN", lower));
  const std::array<std::string_view, 1> kelvin = {"kelvin"};
  EXPECT_TRUE(HLStringContainsAny("\u212AELVIN", kelvin));
  const std::array<std::string_view, 1> upper = {"VIEW"};
  EXPECT_FALSE(HLStringContainsAny("VIEW view", upper));
}

TEST(WordMatching, FindsWordsAnywhereInLongTexts) {
  const std::array<std::string_view, 2> words = {"xmark", "close"};
  for (std::size_t length = 0; length < 1100; ++length) {
    const std::string text = std::string(length, 'o') + "cloze";
    EXPECT_FALSE(HLStringContainsAny(text, words)) << length;
    EXPECT_FALSE(HLStringContainsAny("lose" + text + "clos", words)) << length;
    EXPECT_TRUE(HLStringContainsAny("Close" + text, words)) << length;
    EXPECT_TRUE(HLStringContainsAny(text + "Close", words)) << length;
    EXPECT_TRUE(HLStringContainsAny(text + "close" + text, words)) << length;
  }
}

TEST(NotificationContext, AcceptsEachWordInAnyCase) {
  for (const std::string_view text :
       {"notification", "axnotification", "stacked", "notification center", "from iphone", "axnotificationlistitems",
        "Stacked Banners", "Mail FROM iPhone", "axgroup axnotificationcenterbanner"}) {
    EXPECT_TRUE(HLIsNotificationContext(text)) << text;
  }
  for (const std::string_view text : {"", "axgroup", "stack", "iphone", "from an iphone", "notify", "center"}) {
    EXPECT_FALSE(HLIsNotificationContext(text)) << text;
  }
}

TEST(DismissAction, TakesTheFirstMatchUnchanged) {
  EXPECT_EQ(HLExplicitDismissAction({"AXPress", "Name:Close", "Clear All"}), "Name:Close");
  EXPECT_EQ(HLExplicitDismissAction({"Clear All", "Name:Close"}), "Clear All");
  for (const std::string action : {"close", "dismiss", "clear", "Name:CLOSE\nTarget:0x0", "AXDismiss", "UnCleared"}) {
    EXPECT_EQ(HLExplicitDismissAction({"AXPress", action}), action);
  }
  EXPECT_EQ(HLExplicitDismissAction({"AXPress", "AXShowMenu", "xmark", "AXCancel", "Name:Options", ""}), std::nullopt);
  EXPECT_EQ(HLExplicitDismissAction({}), std::nullopt);
}

TEST(DismissAction, RejectsSimilarWords) {
  EXPECT_EQ(HLExplicitDismissAction(nearMisses({"close", "dismiss", "clear"})), std::nullopt);
}

TEST(Pressable, RequiresExactlyAXPress) {
  EXPECT_TRUE(HLIsPressable({"AXShowMenu", "AXPress"}));
  for (const std::string action : {"axpress", "AXPress ", "AXPressed", "Press"}) {
    EXPECT_FALSE(HLIsPressable({action})) << action;
  }
  EXPECT_FALSE(HLIsPressable({}));
}

TEST(MenuLike, MatchesRolesInAnyCase) {
  for (const std::string text : {"AXMenu", "AXMenuItem", "AXMenuButton", "axmenubar", "SOMEMENU"}) {
    HLElementFacts role;
    role.role = text;
    EXPECT_TRUE(HLIsMenuLike(role)) << text;
    HLElementFacts subrole;
    subrole.subrole = text;
    EXPECT_TRUE(HLIsMenuLike(subrole)) << text;
  }
  EXPECT_FALSE(HLIsMenuLike(element("AXButton", "menu item menu bar menubar", {})));
}

TEST(MenuLike, MatchesStructuralMenuWords) {
  for (const std::string text : {"Menu Item", "menu  bar", "menubar", "a menu items"}) {
    HLElementFacts description;
    description.roleDescription = text;
    EXPECT_TRUE(HLIsMenuLike(description)) << text;
    HLElementFacts identifier;
    identifier.identifier = text;
    EXPECT_TRUE(HLIsMenuLike(identifier)) << text;
  }
  for (const std::string text : {"menu", "menu button", "menuitem", "item menu"}) {
    HLElementFacts description;
    description.roleDescription = text;
    EXPECT_FALSE(HLIsMenuLike(description)) << text;
  }
  HLElementFacts joined;
  joined.roleDescription = "pop up menu";
  joined.identifier = "item 3";
  EXPECT_TRUE(HLIsMenuLike(joined));
  for (std::string HLElementFacts::*text :
       {&HLElementFacts::title, &HLElementFacts::description, &HLElementFacts::value}) {
    HLElementFacts facts;
    facts.*text = "menu item";
    EXPECT_FALSE(HLIsMenuLike(facts)) << "words that tell no structure";
  }
}

TEST(MenuLike, RejectsSimilarWords) {
  for (const std::string& word : nearMisses({"menu"})) {
    HLElementFacts facts;
    facts.role = facts.subrole = word;
    EXPECT_FALSE(HLIsMenuLike(facts)) << word;
  }
  for (const std::string& words : nearMisses({"menu item", "menu bar", "menubar"})) {
    HLElementFacts facts;
    facts.roleDescription = facts.identifier = words;
    EXPECT_FALSE(HLIsMenuLike(facts)) << words;
  }
}

TEST(BannerShortcut, Scores220WithADismissAction) {
  HLElementFacts facts = banner("Reply later, open options");
  EXPECT_EQ(candidate(facts),
            "Name:Close 220 (0,0,360,80) [axgroup axnotificationcenteralert reply later, open options] "
            "notification-subrole-explicit-action");
  facts.role = "AXMenuItem";
  facts.frame = {};
  EXPECT_EQ(candidate(facts),
            "Name:Close 220 no frame [axmenuitem axnotificationcenteralert reply later, open options] "
            "notification-subrole-explicit-action");
}

TEST(BannerShortcut, IgnoresSubroleCase) {
  HLElementFacts facts = banner("");
  facts.subrole = "AXNOTIFICATIONCENTERBANNERSTACK";
  EXPECT_EQ(
      candidate(facts),
      "Name:Close 220 (0,0,360,80) [axgroup axnotificationcenterbannerstack] notification-subrole-explicit-action");
}

TEST(BannerShortcut, NeedsADismissAction) {
  HLElementFacts facts = banner("Mail, hello");
  facts.actionNames = {"AXPress"};
  EXPECT_EQ(candidate(facts), "nothing");
}

TEST(BannerShortcut, NeedsTheSubrole) {
  HLElementFacts facts = banner("reply");
  facts.role = "axmenuitem";
  facts.subrole = "";
  EXPECT_EQ(candidate(facts, "notification"), "nothing");
}

TEST(BannerShortcut, StoresOwnTextOnly) {
  const HLElementFacts facts = banner("");
  EXPECT_EQ(Describe(HLCandidateForElement(kElement, facts, HLContext("notification").extendedBy(""))),
            "Name:Close 220 (0,0,360,80) [] notification-subrole-explicit-action");
}

TEST(MenuVeto, RejectsGoodTargets) {
  const HLElementFacts plain = element("AXButton", "Close", {"AXPress", "Name:Close"}, kSmall);
  EXPECT_EQ(candidate(plain, "notification"),
            "Name:Close 212 (0,0,16,16) [axbutton close] "
            "explicit-action,notification-context,close-words,pressable-button,small-frame");
  HLElementFacts role = plain;
  role.role = "AXMenuButton";
  EXPECT_EQ(candidate(role, "notification"), "nothing");
  HLElementFacts subrole = plain;
  subrole.subrole = "SomeMENU";
  EXPECT_EQ(candidate(subrole, "notification"), "nothing");
  HLElementFacts structure = plain;
  structure.roleDescription = "menu bar";
  EXPECT_EQ(candidate(structure, "notification"), "nothing");
}

// The score of each combination of tests, every point and every reason word.
struct ScoreCase {
  const char* name;
  HLElementFacts facts;
  const char* ancestors;
  const char* expected;
};

TEST(Score, ListsReasonsInOrder) {
  const std::vector<ScoreCase> cases = {
      {"a dismiss action alone", element("AXGroup", "hello", {"Name:Close"}, kLarge), "axwindow",
       "Name:Close 120 (0,0,360,80) [axgroup hello] explicit-action"},
      {"AXPress beside it adds nothing without the button word",
       element("AXGroup", "hello", {"AXPress", "Name:Close"}, kLarge), "axwindow",
       "Name:Close 120 (0,0,360,80) [axgroup hello] explicit-action"},
      {"in a notification", element("AXGroup", "hello", {"Name:Close"}, kLarge), "axwindow stacked",
       "Name:Close 160 (0,0,360,80) [axgroup hello] explicit-action,notification-context"},
      {"with close words of its own", element("AXGroup", "clear all", {"Name:Close"}, kLarge), "",
       "Name:Close 150 (0,0,360,80) [axgroup clear all] explicit-action,close-words"},
      {"with a close word above it", element("AXGroup", "hello", {"Name:Close"}, kLarge), "dismiss",
       "Name:Close 150 (0,0,360,80) [axgroup hello] explicit-action,close-words"},
      {"a pressable button", element("AXButton", "hello", {"AXPress", "Name:Close"}, kLarge), "",
       "Name:Close 134 (0,0,360,80) [axbutton hello] explicit-action,pressable-button"},
      {"a button that cannot be pressed", element("AXButton", "hello", {"Name:Close"}, kLarge), "",
       "Name:Close 120 (0,0,360,80) [axbutton hello] explicit-action"},
      {"small", element("AXGroup", "hello", {"Name:Close"}, kSmall), "",
       "Name:Close 128 (0,0,16,16) [axgroup hello] explicit-action,small-frame"},
      {"without a frame it is not small", element("AXGroup", "hello", {"Name:Close"}), "",
       "Name:Close 120 no frame [axgroup hello] explicit-action"},
      {"negative words outweigh a dismiss action", element("AXGroup", "reply", {"Name:Close"}, kLarge), "", "nothing"},
      {"negative words, notification", element("AXGroup", "reply", {"Name:Close"}, kLarge), "notification",
       "Name:Close 60 (0,0,360,80) [axgroup reply] explicit-action,notification-context,negative-words"},
      {"negative words, close words: 50 is enough", element("AXGroup", "reply", {"Name:Close"}, kLarge), "clear",
       "Name:Close 50 (0,0,360,80) [axgroup reply] explicit-action,close-words,negative-words"},
      {"negative words, pressable, small: 42 is not", element("AXButton", "reply", {"AXPress", "Name:Close"}, kSmall),
       "", "nothing"},
      {"everything", element("AXButton", "close reply", {"AXPress", "Name:Close"}, kSmall), "notification",
       "Name:Close 112 (0,0,16,16) [axbutton close reply] "
       "explicit-action,notification-context,close-words,pressable-button,small-frame,negative-words"},
      {"the highest score", element("AXButton", "close", {"AXPress", "Name:Close"}, kSmall), "notification",
       "Name:Close 212 (0,0,16,16) [axbutton close] "
       "explicit-action,notification-context,close-words,pressable-button,small-frame"},
      {"a close button without a dismiss action", element("AXButton", "close", {"AXPress"}, kSmall), "notification",
       "AXPress 92 (0,0,16,16) [axbutton close] "
       "notification-context,close-words,pressable-button,small-frame,press-fallback"},
      {"the same, not small", element("AXButton", "close", {"AXPress"}, {0, 0, 61, 16}), "notification",
       "AXPress 84 (0,0,61,16) [axbutton close] notification-context,close-words,pressable-button,press-fallback"},
      {"close words above it", element("AXGroup", "x", {"AXPress"}, kLarge), "notification dismiss",
       "AXPress 70 (0,0,360,80) [axgroup x] notification-context,close-words,press-fallback"},
      {"a small pressable button in a notification", element("AXButton", "x", {"AXPress"}, kSmall), "notification",
       "AXPress 62 (0,0,16,16) [axbutton x] notification-context,pressable-button,small-frame,press-fallback"},
      {"the same, not small", element("AXButton", "x", {"AXPress"}, {0, 0, 61, 16}), "notification", "nothing"},
      {"the same, without a frame", element("AXButton", "x", {"AXPress"}), "notification", "nothing"},
      {"the same, no button", element("AXGroup", "x", {"AXPress"}, kSmall), "notification", "nothing"},
      {"the same, outside a notification", element("AXButton", "x", {"AXPress"}, kSmall), "axwindow", "nothing"},
      {"a small reply button", element("AXButton", "reply", {"AXPress"}, {0, 0, 20, 20}), "notification", "nothing"},
      {"negative words beside close words", element("AXButton", "close reply", {"AXPress"}, kSmall), "notification",
       "nothing"},
      {"a close button outside a notification", element("AXButton", "close", {"AXPress"}, kSmall), "axwindow",
       "nothing"},
      {"close words and notification, but no action", element("AXGroup", "close", {}, kLarge), "notification",
       "nothing"},
      {"the same with another action", element("AXButton", "close", {"AXShowMenu"}, kSmall), "notification", "nothing"},
      {"nothing at all", HLElementFacts(), "", "nothing"},
  };
  for (const ScoreCase& each : cases) {
    EXPECT_EQ(candidate(each.facts, each.ancestors), each.expected) << each.name;
  }
}

TEST(Score, Subtracts100PerNegativeWord) {
  for (const std::string& word : kNegativeWords) {
    const bool isCloseWord = word == "clear menu";  // which is worth 30 points besides
    EXPECT_EQ(candidate(element("AXGroup", "x" + word + "y", {"Name:Close"}, kLarge), "notification"),
              "Name:Close " + std::string(isCloseWord ? "90" : "60") + " (0,0,360,80) [axgroup x" + word +
                  "y] explicit-action,notification-context," + (isCloseWord ? "close-words," : "") + "negative-words");
  }
}

TEST(Score, IgnoresNegativeWordsOfAncestors) {
  EXPECT_EQ(candidate(element("AXGroup", "hello", {"Name:Close"}, kLarge), "reply open options later"),
            "Name:Close 120 (0,0,360,80) [axgroup hello] explicit-action");
}

TEST(Score, IgnoresSimilarNegativeWords) {
  std::vector<std::string> words = nearMisses(kNegativeWords);
  EXPECT_EQ(words.size(), 35U) << "all but the mute in unmute";
  words.insert(words.end(), {"ope n", "clear  the menu", "menuitem"});
  for (const std::string& word : words) {
    const std::string found = candidate(element("AXGroup", word, {"Name:Close"}, kLarge), "notification");
    EXPECT_NE(found, "nothing") << word;
    EXPECT_EQ(found.find("negative-words"), std::string::npos) << word;
  }
}

TEST(Score, IgnoresSimilarCloseWords) {
  for (const std::string& word : nearMisses({"close", "dismiss", "clear", "xmark"})) {
    EXPECT_EQ(candidate(element("AXGroup", word, {"Name:Close"}, kLarge), word),
              "Name:Close 120 (0,0,360,80) [axgroup " + word + "] explicit-action");
  }
}

TEST(Score, IgnoresSimilarNotificationWords) {
  for (const std::string& word : nearMisses(kNotificationWords)) {
    EXPECT_EQ(candidate(element("AXGroup", "", {"Name:Close"}, kLarge), word),
              "Name:Close 120 (0,0,360,80) [axgroup] explicit-action");
    EXPECT_FALSE(HLIsNotificationContext(word)) << word;
  }
}

TEST(Score, CountsEveryOwnCloseWord) {
  for (const std::string word : {"close", "dismiss", "clear", "xmark"}) {
    EXPECT_EQ(candidate(element("AXGroup", word, {"Name:Close"}, kLarge)),
              "Name:Close 150 (0,0,360,80) [axgroup " + word + "] explicit-action,close-words");
  }
}

TEST(Score, CountsThreeCloseWordsOfAncestors) {
  const HLElementFacts facts = element("AXGroup", "hello", {"Name:Close"}, kLarge);
  for (const std::string word : {"close", "dismiss", "clear"}) {
    EXPECT_EQ(candidate(facts, word), "Name:Close 150 (0,0,360,80) [axgroup hello] explicit-action,close-words");
  }
  EXPECT_EQ(candidate(facts, "xmark"), "Name:Close 120 (0,0,360,80) [axgroup hello] explicit-action");
}

TEST(Score, CountsEveryNotificationWord) {
  const HLElementFacts facts = element("AXGroup", "hello", {"Name:Close"}, kLarge);
  for (const std::string& words : kNotificationWords) {
    EXPECT_EQ(candidate(facts, words),
              "Name:Close 160 (0,0,360,80) [axgroup hello] explicit-action,notification-context");
  }
  EXPECT_EQ(candidate(element("AXGroup", "stacked", {"Name:Close"}, kLarge)),
            "Name:Close 160 (0,0,360,80) [axgroup stacked] explicit-action,notification-context");
  EXPECT_EQ(candidate(element("AXGroup", "", {"Name:Close"}, kLarge), "notif"),
            "Name:Close 120 (0,0,360,80) [axgroup] explicit-action");
}

TEST(Score, CountsButtonRoleOrWord) {
  const auto withButtonWords = [](std::string role, std::string roleDescription) {
    HLElementFacts facts = element(std::move(role), "", {"AXPress", "Name:Go clear"}, kLarge);
    facts.roleDescription = std::move(roleDescription);
    return candidate(facts);
  };
  EXPECT_EQ(withButtonWords("AXButton", ""),
            "Name:Go clear 134 (0,0,360,80) [axbutton] explicit-action,pressable-button");
  EXPECT_EQ(withButtonWords("axbutton", ""),
            "Name:Go clear 134 (0,0,360,80) [axbutton] explicit-action,pressable-button");
  EXPECT_EQ(withButtonWords("AXImage", "Radiobuttons"),
            "Name:Go clear 134 (0,0,360,80) [aximage radiobuttons] explicit-action,pressable-button");
  for (const std::string& word : nearMisses({"button"})) {
    EXPECT_EQ(withButtonWords("AXImage", word),
              "Name:Go clear 120 (0,0,360,80) [aximage " + word + "] explicit-action");
  }
}

TEST(Score, CountsTheRoleWithoutText) {
  HLElementFacts facts = element("AXButton", "", {"AXPress"}, kSmall);
  EXPECT_EQ(Describe(HLCandidateForElement(kElement, facts, HLContext("axgroup notification").extendedBy(""))),
            "AXPress 62 (0,0,16,16) [axgroup notification] "
            "notification-context,pressable-button,small-frame,press-fallback");
}

TEST(Score, IgnoresButtonWordsOfAncestors) {
  EXPECT_EQ(candidate(element("AXGroup", "x", {"AXPress"}, kSmall), "notification button"), "nothing");
}

TEST(Score, SixtyPointsBothWaysAreSmall) {
  const auto score = [](double width, double height) {
    return candidate(element("AXGroup", "", {"Name:Close"}, {0, 0, width, height}));
  };
  EXPECT_EQ(score(60, 60), "Name:Close 128 (0,0,60,60) [axgroup] explicit-action,small-frame");
  EXPECT_EQ(score(61, 60), "Name:Close 120 (0,0,61,60) [axgroup] explicit-action");
  EXPECT_EQ(score(60, 61), "Name:Close 120 (0,0,60,61) [axgroup] explicit-action");
  EXPECT_EQ(score(60.001, 1), "Name:Close 120 (0,0,60.001,1) [axgroup] explicit-action");
  EXPECT_EQ(score(1, 60.001), "Name:Close 120 (0,0,1,60.001) [axgroup] explicit-action");
  EXPECT_EQ(candidate(element("AXGroup", "", {"Name:Close"}, {-5000, -5000, 60, 60})),
            "Name:Close 128 (-5000,-5000,60,60) [axgroup] explicit-action,small-frame");
}

TEST(Score, LimitsSmallButtonsEqually) {
  const auto fallback = [](double width, double height) {
    return candidate(element("AXButton", "x", {"AXPress"}, {0, 0, width, height}), "notification");
  };
  EXPECT_NE(fallback(60, 60), "nothing");
  EXPECT_EQ(fallback(60.5, 60), "nothing");
  EXPECT_EQ(fallback(60, 60.5), "nothing");
}

TEST(Score, AcceptsOnlyAXPressAsFallback) {
  EXPECT_EQ(candidate(element("AXButton", "close", {"axpress", "Press"}, kSmall), "notification"), "nothing");
}

TEST(Snapshot, CutsOwnTextAt180Units) {
  const std::string title(400, 'a');
  const std::string own = "axgroup " + std::string(172, 'a');
  EXPECT_EQ(candidate(element("AXGroup", title, {"Name:Close"})),
            "Name:Close 120 no frame [" + own + "] explicit-action");
  EXPECT_EQ(candidate(banner(title)), "Name:Close 220 (0,0,360,80) [axgroup axnotificationcenteralert " +
                                          std::string(146, 'a') + "] notification-subrole-explicit-action");
}

TEST(Snapshot, Keeps180Units) {
  const std::string title(172, 'a');
  EXPECT_EQ(candidate(element("AXGroup", title, {"Name:Close"})),
            "Name:Close 120 no frame [axgroup " + title + "] explicit-action");
}

TEST(Snapshot, MayCutASurrogatePair) {
  std::string faces;
  for (int i = 0; i < 100; ++i) faces += "😀";
  const HLElementFacts even = element("", faces, {"Name:Close"});
  EXPECT_EQ(candidate(even), "Name:Close 120 no frame [" + faces.substr(0, 90 * 4) + "] explicit-action");
  const HLElementFacts odd = element("", "a" + faces, {"Name:Close"});
  EXPECT_EQ(candidate(odd), "Name:Close 120 no frame [a" + faces.substr(0, 89 * 4) + "\xED\xA0\xBD] explicit-action");
  const HLElementFacts umlauts = element("", std::string("ä") + std::string(200, 'b'), {"Name:Close"});
  EXPECT_EQ(candidate(umlauts), "Name:Close 120 no frame [ä" + std::string(179, 'b') + "] explicit-action");
}

TEST(Snapshot, UsesContextWithoutOwnText) {
  const HLElementFacts facts = element("", "", {"Name:Close"}, kLarge);
  EXPECT_EQ(candidate(facts, "axgroup hello"), "Name:Close 120 (0,0,360,80) [axgroup hello] explicit-action");
  EXPECT_EQ(candidate(facts, std::string(400, 'c')),
            "Name:Close 120 (0,0,360,80) [" + std::string(180, 'c') + "] explicit-action");
}

TEST(Candidate, KeepsTheHandle) {
  const auto handle = std::make_shared<FakeElement>();
  const HLElementFacts facts = element("AXGroup", "", {"Name:Close"});
  const auto scored = HLCandidateForElement(handle, facts, HLContext("axgroup"));
  ASSERT_TRUE(scored.has_value());
  EXPECT_EQ(scored->element, handle);
  const HLElementFacts shortcut = banner("");
  const auto taken = HLCandidateForElement(handle, shortcut, HLContext("axgroup"));
  ASSERT_TRUE(taken.has_value());
  EXPECT_EQ(taken->element, handle);
}

}  // namespace
