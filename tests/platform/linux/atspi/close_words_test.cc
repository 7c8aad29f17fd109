#include "platform/linux/atspi/close_words.h"

#include <gtest/gtest.h>

#include "platform/text.h"

namespace {

TEST(CloseName, IsKnownInTranslationsOfGtk) {
  for (const char* name :
       {"Close",  "Schließen", "Fermer", "Cerrar", "Chiudi",   "Fechar", "Sluiten", "Закрыть", "Закрити", "Zamknij",
        "Zavřít", "Zavrieť",   "Stäng",  "Luk",    "Lukk",     "Sulje",  "Sulge",   "Kapat",   "Bezárás", "Închide",
        "Zapri",  "Zatvori",   "Tanca",  "关闭",   "Κλείσιμο", "關閉",   "閉じる",  "닫기",    "إغلاق"}) {
    EXPECT_TRUE(HLIsCloseName(HLLowercase(name))) << name;
  }
  EXPECT_TRUE(HLIsCloseName("dismiss"));
  EXPECT_TRUE(HLIsCloseName("close notification"));
  EXPECT_TRUE(HLIsCloseName("dismiss notification"));
  EXPECT_FALSE(HLIsCloseName("close account"));
}

TEST(ClosingDescription, IsKnownInTranslationsOfServers) {
  for (const char* sentence : {"Closes the notification.",
                               "Dismisses the notification.",
                               "Schließt die Benachrichtigung.",
                               "Ferme la notification",
                               "Cerrar la notificación",
                               "Cierra la notificación.",
                               "Chiude la notifica.",
                               "Fecha a notificação.",
                               "Sluit de melding.",
                               "Закрывает уведомление.",
                               "Закриває повідомлення.",
                               "Zamyka powiadomienie.",
                               "Zamknij powiadomienie.",
                               "Zavře upozornění.",
                               "Zavírá upozornění.",
                               "Zavrie oznámenie.",
                               "Stänger aviseringarna.",
                               "Lukker påmindelsen.",
                               "Sulkee ilmoituksen.",
                               "Bildirimleri kapatır.",
                               "Bezárja az értesítést.",
                               "Închide notificarea.",
                               "Tanca la notificació.",
                               "Κλείνει την ειδοποιήσει.",
                               "Teavituse sulgemine.",
                               "Zatvara obavijest.",
                               "Zapre obvestilo.",
                               "通知を閉じる",
                               "关闭通知",
                               "關閉通知。",
                               "알림 닫기.",
                               "إغلاق التنبيهات"}) {
    EXPECT_TRUE(HLMentionsClosing(HLLowercase(sentence))) << sentence;
  }
  EXPECT_FALSE(HLMentionsClosing("shows the message"));
}

TEST(CloseGlyph, LooksLikeACross) {
  for (const char* glyph : {"x", "×", "✕", "✖", "✗", "✘", "⨯", "╳", "🗙"})
    EXPECT_TRUE(HLIsCloseGlyph(glyph)) << glyph;
  EXPECT_FALSE(HLIsCloseGlyph("+"));
}

}  // namespace
