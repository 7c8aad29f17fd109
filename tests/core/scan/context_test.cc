#include "core/scan/context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/scan/records.h"
#include "core/scan/words.h"
#include "platform/text.h"

namespace {

// What the flags mean, said the slow way.
bool holdsAny(std::string_view text, const std::vector<std::string_view>& words) {
  for (const std::string_view word : words) {
    if (text.find(word) != std::string_view::npos) return true;
  }
  return false;
}

bool isNotification(std::string_view text) {
  return holdsAny(text, {"notification", "axnotification", "stacked", "notification center", "from iphone",
                         "axnotificationlistitems"});
}

bool hasCloseWord(std::string_view text) { return holdsAny(text, {"close", "dismiss", "clear"}); }

TEST(Context, StartsEmpty) {
  const HLContext context;
  EXPECT_EQ(context.text(), "");
  EXPECT_FALSE(context.isNotification());
  EXPECT_FALSE(context.hasCloseWord());
}

TEST(Context, SeparatesAChildsWords) {
  const HLContext root = HLContext().extendedBy("axgroup");
  EXPECT_EQ(root.text(), "axgroup");
  EXPECT_EQ(root.extendedBy("axbutton").text(), "axgroup axbutton");
  EXPECT_EQ(root.extendedBy("").text(), "axgroup");
  EXPECT_EQ(HLContext().extendedBy("").text(), "");
  EXPECT_EQ(root.text(), "axgroup") << "the parent's stays as it is";
}

TEST(Context, KnowsItsOwnWords) {
  const HLContext root("axgroup");
  EXPECT_EQ(HLContext().own(), "");
  EXPECT_EQ(root.own(), "axgroup");
  EXPECT_EQ(root.extendedBy("axbutton").own(), "axbutton");
  EXPECT_EQ(root.extendedBy("").own(), "");
  EXPECT_EQ(root.extendedBy("axbutton").ownOrAll(), "axbutton");
  EXPECT_EQ(root.extendedBy("axlist").extendedBy("").ownOrAll(), "axgroup axlist");
}

TEST(Context, FindsWordsInsideOthers) {
  for (const std::string word :
       {"notification", "axnotification", "stacked", "notification center", "from iphone", "axnotificationlistitems"}) {
    EXPECT_TRUE(HLContext(word).isNotification()) << word;
    EXPECT_TRUE(HLContext("x" + word + "y").isNotification()) << word;
    EXPECT_TRUE(HLContext("axgroup").extendedBy(word).isNotification()) << word;
    EXPECT_FALSE(HLContext(word).hasCloseWord()) << word;
  }
  for (const std::string word : {"close", "dismiss", "clear"}) {
    EXPECT_TRUE(HLContext(word).hasCloseWord()) << word;
    EXPECT_TRUE(HLContext("x" + word + "d").hasCloseWord()) << word;
    EXPECT_TRUE(HLContext("axgroup").extendedBy(word).hasCloseWord()) << word;
    EXPECT_FALSE(HLContext(word).isNotification()) << word;
  }
}

TEST(Context, IgnoresOtherWords) {
  for (const char* word :
       {"", "notificatio", "otification", "stacke", "tacked", "from", "iphone", "from iphon", "rom iphone", "from ipad",
        "center", "xmark", "clos", "lose", "dismis", "ismiss", "clea", "lear", "cle ar"}) {
    EXPECT_FALSE(HLContext(word).isNotification()) << word;
    EXPECT_FALSE(HLContext(word).hasCloseWord()) << word;
  }
}

TEST(Context, KeepsTheBeginningOfItsText) {
  const std::string pair = "\U0001F600";  // two UTF-16 units
  for (const std::string& piece :
       {std::string("word"), std::string("gr\u00F6\u00DFe"), pair, "a" + pair + pair, std::string("\x80\xFF")}) {
    HLContext context;
    for (int depth = 0; depth < 6; ++depth) {
      context = context.extendedBy(piece + std::to_string(depth));
      for (std::size_t units = 0; units < 30; ++units) {
        ASSERT_EQ(context.beginning(units), HLUtf16Prefix(context.text(), units)) << context.text() << " " << units;
      }
    }
  }
  EXPECT_EQ(HLContext().beginning(180), "");
}

TEST(Context, InheritsFoundWords) {
  HLContext context = HLContext("notification close");
  for (int depth = 0; depth < 1400; ++depth) context = context.extendedBy("axgroup");
  EXPECT_TRUE(context.isNotification());
  EXPECT_TRUE(context.hasCloseWord());
}

TEST(Context, FindsWordsAcrossTheBoundary) {
  EXPECT_FALSE(HLContext("a banner from").isNotification());
  EXPECT_TRUE(HLContext("a banner from").extendedBy("iphone 15").isNotification());
  EXPECT_TRUE(HLContext().extendedBy("from").extendedBy("iphone").isNotification());
  EXPECT_TRUE(HLContext("notification").extendedBy("center").isNotification());
}

// The cached answers do not depend on the order of the queries.
TEST(Context, AnswersAlikeInEveryOrder) {
  for (int asked = 0; asked < 16; ++asked) {
    std::vector<HLContext> path = {HLContext("axwindow")};
    for (const char* own : {"a from", "iphone", "axgroup"}) path.push_back(path.back().extendedBy(own));
    for (std::size_t i = 0; i < path.size(); ++i) {
      if ((asked >> i & 1) != 0) {
        EXPECT_EQ(path[i].isNotification(), i >= 2) << asked;
      }
    }
    for (std::size_t i = path.size(); i-- > 0;) {
      EXPECT_EQ(path[i].isNotification(), i >= 2) << asked;
      EXPECT_FALSE(path[i].hasCloseWord());
    }
    EXPECT_TRUE(path[1].extendedBy("iphone").isNotification());
    EXPECT_FALSE(path[1].extendedBy("ipad").isNotification());
  }
}

TEST(Context, SeparatesParentAndChild) {
  EXPECT_FALSE(HLContext("notifi").extendedBy("cation").isNotification());
  EXPECT_FALSE(HLContext("stack").extendedBy("ed").isNotification());
  EXPECT_FALSE(HLContext("cl").extendedBy("ose").hasCloseWord());
}

// Extending searches only what is new; the flags must be those of a search of everything.
TEST(Context, MatchesTheWholeTextWhenExtended) {
  const std::array<std::string_view, 22> pieces = {"from",
                                                   "iphone",
                                                   "notification",
                                                   "center",
                                                   "axnotification",
                                                   "listitems",
                                                   "stacked",
                                                   "stack",
                                                   "ed",
                                                   "close",
                                                   "cl",
                                                   "ose",
                                                   "dismiss",
                                                   "clear",
                                                   "axgroup",
                                                   "axbutton button",
                                                   "a from",
                                                   "iphone 15 pro",
                                                   "größe",
                                                   "日本 from",
                                                   "😀",
                                                   "e\u0301"};
  std::mt19937 random(20240517);
  for (int round = 0; round < 3000; ++round) {
    std::string whole;
    HLContext context;
    for (int depth = 0; depth < 6; ++depth) {
      const std::string_view piece = pieces[random() % pieces.size()];
      if (!whole.empty()) whole += ' ';
      whole += piece;
      context = context.extendedBy(std::string(piece));
      ASSERT_EQ(context.text(), whole);
      ASSERT_EQ(context.isNotification(), isNotification(whole)) << whole;
      ASSERT_EQ(context.hasCloseWord(), hasCloseWord(whole)) << whole;
      ASSERT_EQ(HLContext(whole).isNotification(), isNotification(whole)) << whole;
      ASSERT_EQ(HLContext(whole).hasCloseWord(), hasCloseWord(whole)) << whole;
    }
  }
}

// Unfinished words are searched; the answers must be those of a search of the finished ones.

const std::vector<HLWordList> kLists = {HLDismissWords,  HLOwnCloseWords, HLNotificationWords,
                                        HLNegativeWords, HLButtonWords,   HLMenuStructureWords};

std::string finished(std::string_view text) { return HLCompactSnapshot(HLLowercase(text)); }

void expectTheSameAnswers(const HLContext& context, std::string_view own) {
  for (const HLWordList list : kLists) {
    ASSERT_EQ(context.ownWordIn(list), HLWordIn(own, list)) << testing::PrintToString(own);
  }
}

TEST(UnfinishedContext, MatchesFinishedForEveryCodeUnit) {
  for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const std::string piece = HLTextOfUtf16(std::u16string(1, static_cast<char16_t>(unit)));
    const std::string text =
        piece + "Stac" + piece + "ed not" + piece + "fication \u03A3" + piece + "\u03A3 menu" + piece;
    const HLContext parent(text + "from" + piece);
    const HLContext child = parent.extendedBy(piece + "iPhone");
    const std::string whole = finished(text + "from" + piece) + ' ' + finished(piece + "iPhone");
    ASSERT_EQ(child.isNotification(), isNotification(whole)) << whole;
    ASSERT_EQ(child.text(), whole);
  }
}

// A word with some letters in upper case, i and k as characters that become them, and other white space.
std::string disguised(std::string_view word, std::mt19937& random) {
  constexpr std::array<std::string_view, 8> kBlanks = {"  ",      "\n",     "\u00A0", "\u200B",
                                                       "\u3000 ", "\u2028", " \t ",   "\u200C"};
  std::string text;
  for (const char c : word) {
    const bool keep = random() % 4 != 0;
    if (keep) {
      text += c;
    } else if (c == ' ') {
      text += kBlanks[random() % kBlanks.size()];
    } else if (c == 'k') {
      text += "\u212A";
    } else if (c == 'i') {
      text += "\u0130";
    } else {
      text += static_cast<char>(c - 'a' + 'A');
    }
  }
  return text;
}

std::string hostileText(std::mt19937& random) {
  constexpr std::array<std::string_view, 25> kPieces = {
      " ",      "\t",     "\u00A0",   "\u200B",       "\u3000",       "\u03A3",   "\u03A3",
      "\u03C2", "\u0391", "\u0301",   "\u0130",       "\u0307",       "\u212A",   "\u00AD",
      "\x80",   "\xC2",   "\xE2\x84", "\xED\xA0\xBD", "\xED\xB8\x80", "\xF0\x9F", "Ж",
      "日",     "🍲",      "\u023A",   "\U00010400"};
  std::string text;
  for (std::size_t length = random() % 12; length > 0; --length) {
    const HLWordList list = kLists[random() % kLists.size()];
    const std::string word = disguised(list[random() % list.size()], random);
    const bool wanted = random() % 6 == 0;
    text += wanted ? word.substr(random() % 8 == 0 ? 1 : 0) : std::string(kPieces[random() % kPieces.size()]);
    if (random() % 400 == 0) text.append(600, "x "[random() % 2]);  // longer than a cut, and than a block of a search
  }
  return text;
}

TEST(UnfinishedContext, MatchesTheFinishedForHostileTexts) {
  std::mt19937 random(20261122);
  for (int round = 0; round < 20'000; ++round) {
    HLContext context;
    std::string whole;
    for (int depth = 0; depth < 3; ++depth) {
      const std::string text = hostileText(random);
      const std::string own = finished(text);
      context = context.extendedBy(text);
      if (!whole.empty() && !own.empty()) whole += ' ';
      whole += own;
      const auto asked = random();
      if (asked % 2 == 0) {
        ASSERT_EQ(context.isNotification(), isNotification(whole)) << testing::PrintToString(text);
      }
      if (asked % 3 == 0) expectTheSameAnswers(context, own);
      if (asked % 5 == 0) {
        ASSERT_EQ(context.beginning(HLSnapshotLimit), HLUtf16Prefix(whole, HLSnapshotLimit));
      }
      if (asked % 7 == 0) {
        ASSERT_EQ(context.own(), own) << testing::PrintToString(text);
      }
    }
    ASSERT_EQ(context.isNotification(), isNotification(whole)) << testing::PrintToString(whole);
    ASSERT_EQ(context.hasCloseWord(), hasCloseWord(whole)) << testing::PrintToString(whole);
    ASSERT_EQ(context.text(), whole);
  }
}

HLElementFacts factsOfSevenTexts() {
  HLElementFacts facts;
  facts.role = "AXButton";
  facts.subrole = "AXCloseButton";
  facts.roleDescription = "Close  Button";
  facts.title = "A\nTitle";
  facts.description = " Some Description ";
  facts.value = "42";
  facts.identifier = "Identifier.One";
  return facts;
}

TEST(SearchableContext, JoinsSevenTextsInOrder) {
  EXPECT_EQ(HLSearchableContext(factsOfSevenTexts()),
            "axbutton axclosebutton close button a title some description 42 identifier.one");
}

TEST(SearchableContext, OmitsEmptyAndBlankTexts) {
  HLElementFacts facts;
  EXPECT_EQ(HLSearchableContext(facts), "");
  facts.role = "AXButton";
  facts.subrole = " \n\t";
  facts.description = "close";
  EXPECT_EQ(HLSearchableContext(facts), "axbutton close");
  facts.role = "";
  EXPECT_EQ(HLSearchableContext(facts), "close");
}

TEST(SearchableContext, LowerCasesAllOfUnicode) {
  HLElementFacts facts;
  facts.title = "SCHLIESSEN ÄÖÜ ПРИВЕТ";
  EXPECT_EQ(HLSearchableContext(facts), "schliessen äöü привет");
}

TEST(StructuralContext, JoinsFourTextsOnly) {
  EXPECT_EQ(HLStructuralContext(factsOfSevenTexts()), "axbutton axclosebutton close button identifier.one");
  HLElementFacts facts;
  facts.title = "title";
  facts.description = "description";
  facts.value = "value";
  EXPECT_EQ(HLStructuralContext(facts), "");
  facts.identifier = "ID  1";
  EXPECT_EQ(HLStructuralContext(facts), "id 1");
}

}  // namespace
