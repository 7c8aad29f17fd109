// Texts as real servers show them: each banner is matched with what was posted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/linux/atspi/accessible_application.h"
#include "platform/linux/atspi/banners.h"
#include "platform/linux/notifications/session_notifications.h"
#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/notifications/bus_session.h"

namespace {

struct Texts {
  const char* application;
  const char* summary;
  const char* body;
};

// Each has a summary of its own: a server may show the same banner as long as it fades out.
const std::vector<Texts> kTexts = {
    {"Mail", "plain", "Lunch at noon?"},
    {"Mail", "bodiless", ""},
    {"", "nameless", "body"},
    {"nameless", "both", "both"},
    {"Mail", "lines\nin summary", "one\ntwo\n\nthree"},
    {"Mail", "blanks  in   summary", "  one   two  "},
    {"Mail", "<b>markup</b> &amp; in summary", "body"},
    {"Mail", "markup", "<b>bold</b>, <i>slanted</i> and <u>underlined</u>"},
    {"Mail", "link", "see <a href=\"https://example.org/?a=b&amp;c=d\">this page</a>"},
    {"Mail", "entities", "1 &lt; 2 &amp;&amp; 3 &gt; 2 &quot;so&quot; &apos;it&apos; is"},
    {"Mail", "numbered entities", "&#65;&#x42; &#8230;"},
    {"Mail", "other entities", "a&nbsp;b &copy; &hellip; &unheard;"},
    {"Mail", "escaped markup", "&lt;b&gt;bold&lt;/b&gt;"},
    {"Mail", "escaped twice", "&amp;amp; &amp;lt;"},
    {"Mail", "ampersand", "you & me"},
    {"Mail", "less", "1 < 2"},
    {"Mail", "less and more", "1 < 2 > 1"},
    {"Mail", "arrow", "a <-> b <3 <me@example.org>"},
    {"Mail", "unclosed", "<b>bold"},
    {"Mail", "crossed", "<b><i>both</b></i>"},
    {"Mail", "closed only", "bold</b>"},
    {"Mail", "break", "one<br/>two"},
    {"Mail", "open break", "one<br>two"},
    {"Mail", "paragraphs", "<p>one</p><p>two</p>"},
    {"Mail", "image", "before <img src=\"/nowhere.png\" alt=\"a picture\"/> after"},
    {"Mail", "unknown element", "<blink>what</blink>"},
    {"Mail", "span", "<span color=\"red\">red</span> text"},
    {"Mail", "comment", "a<!-- b -->c"},
    {"Mail", "upper case", "<B>bold</B>"},
    {"Mail", "tabs", "a\tb"},
    {"Mail", "returns", "a\r\nb"},
    {"Mail", "Zoë 東京 שלום 👋🏽", "Ünïcödé — “quoted” 日本語 مرحبا"},
    {"Mail", "address", "https://example.org/a_b?c=d"},
    {"Mail", "percent", "100 % %s %n \\n \\t"},
    {"Mail", "separators", "a\u2028b\u2029c\u00A0d\u200Be\u00ADf"},
    {"Mail", "markup over lines", "<b>one\ntwo</b>\n<i>three</i>"},
};

class ShownTextsOn : public testing::TestWithParam<Server> {};

// The texts of the only banner on screen; empty if there are none or several.
HLShownTexts onlyBanner(HLAccessibleApplication& application) {
  const auto interface = application.read();
  if (interface == nullptr) return {};
  const std::vector<HLBanner> banners = HLFindBanners(interface->tree);
  return banners.size() == 1 ? HLBannerTexts(interface->tree, banners.front()) : HLShownTexts();
}

TEST_P(ShownTextsOn, MatchWhatWasPosted) {
  DesktopSession session;
  const SessionEnvironment environment(session.environment());
  const std::unique_ptr<ChildProcess> server = session.startServer(GetParam().command);
  HLSessionNotifications notifications([] { return true; });
  notifications.prepareToStay();
  ASSERT_TRUE(Eventually([&notifications] { return notifications.watch() != nullptr; }));
  const std::string address = HLAccessibilityBusAddress(*HLBus::openSession());
  Poster poster;
  std::unique_ptr<HLAccessibleApplication> application;
  for (const Texts& texts : kTexts) {
    const std::uint32_t number =
        poster.post(texts.summary, texts.body, {.application = texts.application, .timeout = 0});
    ASSERT_NE(number, 0U);
    // Some servers end when nothing is left, and come back by themselves.
    if (application == nullptr || application->hasEnded()) {
      ASSERT_TRUE(Eventually([&] {
        application = HLAccessibleApplication::connect(address, session.serverPid(), HLProcessKind::other);
        return application != nullptr;
      }));
    }
    HLShownTexts shown;
    std::optional<HLNotificationName> name;
    EXPECT_TRUE(Eventually(
        [&] {
          shown = onlyBanner(*application);
          if (!shown.empty()) name = notifications.match({shown}).front();
          return name.has_value();
        },
        std::chrono::seconds(2)))
        << texts.summary << " / " << texts.body << ": " << testing::PrintToString(shown);
    EXPECT_EQ(name.value_or(HLNotificationName{number, "", ""}).number, number) << texts.summary;
    EXPECT_TRUE(notifications.close({number, "", ""}));
    EXPECT_TRUE(Eventually([&] {
      const auto interface = application->read();
      return interface == nullptr || HLFindBanners(interface->tree).empty();
    }));
  }
}

TEST(ActivatedServer, IsKnownFromItsStartingCall) {
  DesktopSession session(WithActivatable({kDunst.command}));
  const SessionEnvironment environment(session.environment());
  HLSessionNotifications notifications([] { return true; });
  notifications.prepareToStay();
  ASSERT_TRUE(Eventually([&notifications] { return notifications.watch() != nullptr; }));
  Poster poster;
  const std::uint32_t number = poster.post("Ada", "Lunch?", {.timeout = 0});
  ASSERT_NE(number, 0U);
  EXPECT_TRUE(Eventually([&] {
    return notifications.match({{"Ada", "Lunch?"}}).front() == HLNotificationName{number, "", ""};
  }));
}

INSTANTIATE_TEST_SUITE_P(Servers, ShownTextsOn, testing::Values(kMate, kLxqt, kXfce),
                         [](const auto& server) { return server.param.name; });

}  // namespace
