// Random screens of hostile texts: no banner is matched with a notification of other texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/linux/notifications/shown_text.h"

namespace {

// A part of a body, and how kinds of servers show it. A text of "!" has the server show the whole source instead; one
// of "-" has it show no body at all.
struct Part {
  const char* source;
  const char* strict;  // reads markup as XML
  const char* basic;   // knows <b>, <i> and <u>
  const char* html;
};
constexpr const char* kWhole = "!";
constexpr const char* kNothing = "-";
const std::vector<Part> kParts = {
    {"a", "a", "a", "a"},
    {"b", "b", "b", "b"},
    {"Ada", "Ada", "Ada", "Ada"},
    {"<b>a</b>", "a", "a", "a"},
    {"&lt;b&gt;a&lt;/b&gt;", "<b>a</b>", "<b>a</b>", "<b>a</b>"},
    {"&amp;", "&", "&", "&"},
    {"&amp;amp;", "&amp;", "&amp;", "&amp;"},
    {"&", kWhole, "&", "&"},
    {"<", kWhole, "<", "<"},
    {"<b>", kWhole, kWhole, ""},
    {"<br/>", kNothing, "<br/>", "\n"},
    {"<br/>", kWhole, "<br/>", "\n"},
    {"<img src='a'/>", kNothing, "<img src='a'/>", "\uFFFC"},
    {"<img src='a'/>", "", "<img src='a'/>", "\uFFFC"},
    {"&nbsp;", kWhole, "&nbsp;", "\u00A0"},
    {"<a href='b'>b</a>", "b", "<a href='b'>b</a>", "b"},
    {"\n", "\n", " ", " "},
    {"from Mail", "from Mail", "from Mail", "from Mail"},
    {"Just now", "Just now", "Just now", "Just now"},
};
const std::vector<std::string> kNames = {"", "a", "b", "Ada", "Mail", "Just now", "a b", "<b>a</b>"};

enum class Kind { strict, basic, html };

std::string shownBody(const std::vector<Part>& parts, Kind kind) {
  std::string source;
  std::string shown;
  bool isWhole = false;
  bool isNothing = false;
  for (const Part& part : parts) {
    const std::string text = kind == Kind::strict ? part.strict : kind == Kind::basic ? part.basic : part.html;
    source += std::string(" ") + part.source;
    isWhole |= text == kWhole;
    isNothing |= text == kNothing;
    shown += " " + text;
  }
  return isNothing ? "" : isWhole ? source : shown;
}

std::string sourceOf(const std::vector<Part>& parts) {
  std::string source;
  for (const Part& part : parts) source += std::string(" ") + part.source;
  return source;
}

struct Screen {
  std::vector<HLOpenNotificationRef> open;
  std::vector<HLShownTexts> banners;
  std::vector<std::size_t> shows;  // of each banner
};

Screen randomScreen(std::mt19937& random) {
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  const auto kind = static_cast<Kind>(below(3));
  const bool showsApplication = below(2) == 0;
  const bool showsTime = below(4) == 0;
  Screen screen;
  const std::size_t count = 1 + below(6);
  for (std::size_t i = 0; i < count; ++i) {
    std::vector<Part> parts(below(4));
    for (Part& part : parts) part = kParts[below(kParts.size())];
    HLPostedNotification posted;
    posted.application = kNames[below(kNames.size())];
    posted.summary = kNames[below(kNames.size())];
    posted.body = sourceOf(parts);
    screen.open.push_back(std::make_shared<const HLOpenNotification>(
        HLOpenNotification{{static_cast<std::uint32_t>(i + 1), "", ""}, posted, {}}));
    if (below(3) == 0) continue;  // in the tray, waiting, or on another screen
    HLShownTexts texts;
    if (showsApplication) texts.push_back(posted.application);
    texts.push_back(posted.summary);
    const std::string body = shownBody(parts, kind);
    if (showsTime && !showsApplication && !body.empty()) texts.emplace_back("Just now");
    texts.push_back(body);
    screen.banners.push_back(texts);
    screen.shows.push_back(i);
  }
  return screen;
}

std::string described(const Screen& screen) {
  std::string text;
  for (const HLOpenNotificationRef& open : screen.open) {
    text += "\n  open [" + open->posted.application + "] [" + open->posted.summary + "] [" + open->posted.body + "]";
  }
  for (std::size_t i = 0; i < screen.banners.size(); ++i) {
    text += "\n  banner of " + std::to_string(screen.shows[i]);
    for (const std::string& shown : screen.banners[i]) text += " [" + shown + "]";
  }
  return text;
}

bool areEqual(const HLOpenNotification& a, const HLOpenNotification& b) {
  return a.posted.summary == b.posted.summary && a.posted.body == b.posted.body;
}

TEST(ShownTextProperty, NeverMatchesOtherTexts) {
  std::size_t matched = 0;
  std::size_t banners = 0;
  for (std::uint32_t seed = 1; seed <= 20000; ++seed) {
    std::mt19937 random(seed);
    const Screen screen = randomScreen(random);
    const HLServerTraits server{.shownOfEqual = static_cast<HLShownOfEqual>(random() % 3)};
    const auto matches = HLMatchShownTexts(screen.banners, server, screen.open);
    ASSERT_EQ(matches.size(), screen.banners.size());
    std::set<std::size_t> used;
    for (std::size_t i = 0; i < matches.size(); ++i) {
      ++banners;
      if (!matches[i]) continue;
      ++matched;
      ASSERT_LT(*matches[i], screen.open.size());
      ASSERT_TRUE(used.insert(*matches[i]).second) << "twice, seed " << seed;
      const bool isOnScreen = std::count(screen.shows.begin(), screen.shows.end(), *matches[i]) != 0;
      const HLOpenNotification& shown = *screen.open[screen.shows[i]];
      ASSERT_TRUE(isOnScreen || areEqual(*screen.open[*matches[i]], shown))
          << "seed " << seed << ", banner " << i << " with " << *matches[i] << described(screen);
    }
  }
  // Enough was decided for the property to mean something.
  EXPECT_GT(matched, banners / 2) << matched << " of " << banners;
}

}  // namespace
