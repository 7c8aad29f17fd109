// The texts that servers show for a body.
#include "platform/linux/notifications/body_forms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::UnorderedElementsAre;

TEST(PlainBlanks, JoinLinesAndTrim) {
  EXPECT_EQ(HLPlainBlanks("  a \n\t b\u2028c\u00A0d\r\n"), "a b c d");
  EXPECT_EQ(HLPlainBlanks(" \n "), "");
}

TEST(PlainBlanks, DropImages) {
  EXPECT_EQ(HLPlainBlanks("a \uFFFC b"), "a b");
  EXPECT_EQ(HLPlainBlanks("\uFFFC"), "");
}

TEST(PlainBlanks, KeepIllFormedBytes) { EXPECT_EQ(HLPlainBlanks("a\xFF b"), "a\xFF b"); }

TEST(BodyForms, ArePlainTextOnce) {
  EXPECT_THAT(HLBodyForms("Lunch at  noon?\nYes"), ElementsAre("Lunch at noon? Yes"));
  EXPECT_THAT(HLBodyForms(""), ElementsAre(""));
}

TEST(BodyForms, StripMarkupAndDecodeEntities) {
  EXPECT_THAT(HLBodyForms("<b>1 &lt; 2</b> &amp; <i>&quot;x&quot;</i>"), ElementsAre("1 < 2 & \"x\""));
}

TEST(BodyForms, KeepElementsOfBasicServers) {
  EXPECT_THAT(HLBodyForms("see <a href=\"https://example.org\">this</a>"),
              UnorderedElementsAre("see this", "see <a href=\"https://example.org\">this</a>"));
  EXPECT_THAT(HLBodyForms("&#65;&nbsp;&hellip;"), Contains("&#65;&nbsp;&hellip;"));
  EXPECT_THAT(HLBodyForms("&#65;&nbsp;&hellip;"), Contains("A …"));
  EXPECT_THAT(HLBodyForms("&#65;&#x42;"), UnorderedElementsAre("&#65;&#x42;", "A&#x42;", "AB"));
}

TEST(BodyForms, DecodeNumbersOfCharactersOnly) {
  EXPECT_THAT(HLBodyForms("&#X42;&#xe9;"), Contains("Bé"));
  for (const std::string body : {"&#xD800;", "&#xDFFF;", "&#x110000;", "&#0;", "&#;", "&#x;", "&#4a;"}) {
    EXPECT_THAT(HLBodyForms(body), ElementsAre(body));
  }
}

TEST(BodyForms, KeepIllFormedMarkupWhole) {
  EXPECT_THAT(HLBodyForms("2 & 3"), ElementsAre("2 & 3"));
  EXPECT_THAT(HLBodyForms("<b>bold"), UnorderedElementsAre("bold", "<b>bold"));
  EXPECT_THAT(HLBodyForms("<b><i>x</b></i>"), UnorderedElementsAre("x", "<b><i>x</b></i>"));
}

TEST(BodyForms, DropBracketsOfIllFormedMarkup) {
  EXPECT_THAT(HLBodyForms("1 < 2"), UnorderedElementsAre("1 < 2", "1"));
  EXPECT_THAT(HLBodyForms("a <-> b <3 c"), UnorderedElementsAre("a <-> b <3 c", "a b", "a"));
  EXPECT_THAT(HLBodyForms("1 < 2 > 1"), UnorderedElementsAre("1 < 2 > 1", "1 1", "1"));
}

TEST(BodyForms, DropComments) {
  EXPECT_THAT(HLBodyForms("a<!-- <b> -->c"), UnorderedElementsAre("ac", "a<!-- <b> -->c"));
  EXPECT_THAT(HLBodyForms("a<!-->c"), Contains("a<!-->c"));
}

TEST(BodyForms, DropImagesAndBreakLines) {
  EXPECT_THAT(HLBodyForms("a<br/>b<img src=\"x>y\" alt='z'/>"),
              UnorderedElementsAre("a b", "", "a<br/>b<img src=\"x>y\" alt='z'/>"));
}

TEST(BodyForms, JoinOrPartParagraphs) {
  EXPECT_THAT(HLBodyForms("<p>one</p><p>two</p>"),
              UnorderedElementsAre("one two", "onetwo", "<p>one</p><p>two</p>", ""));
  EXPECT_THAT(HLBodyForms("one<p>two"), Contains("one two"));
}

TEST(BodyForms, AreNotBasicWhereElementsCross) {
  EXPECT_THAT(HLBodyForms("<b><i>x</i></b><q>y</q>"), Contains("x<q>y</q>"));
  EXPECT_THAT(HLBodyForms("<b><i>x</b></i><q>y</q>"), Not(Contains("x<q>y</q>")));
}

TEST(BodyForms, AreNeverEmptyForKnownElements) {
  EXPECT_THAT(HLBodyForms("<b>x</b> &amp; y"), Not(Contains("")));
  EXPECT_THAT(HLBodyForms("1 < 2"), Not(Contains("")));
}

TEST(BodyForms, HideWellFormedSource) { EXPECT_THAT(HLBodyForms("a &amp; b"), Not(Contains("a &amp; b"))); }

TEST(BodyForms, SurviveHostileMarkup) {
  for (const std::string& body :
       {std::string("<"), std::string("&"), std::string("</"), std::string("<b"), std::string("&#;"),
        std::string("&#x110000;"), std::string("&#xD800;"), std::string("&#99999999999;"), std::string("<b \"'>"),
        std::string(4096, '<'), std::string(4096, '&'), "<" + std::string(4000, 'a') + ">", std::string("</b></i>"),
        std::string("\xFF<\xFE>")}) {
    EXPECT_FALSE(HLBodyForms(body).empty()) << body;
  }
}

}  // namespace
