#include "core/scan/context.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <string_view>
#include <vector>

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
