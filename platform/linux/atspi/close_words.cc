#include "platform/linux/atspi/close_words.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

template <std::size_t size>
bool isOneOf(const std::string_view (&words)[size], std::string_view word) {
  return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

}  // namespace

bool HLIsCloseName(std::string_view lower) {
  // clang-format off
  static constexpr std::string_view kNames[] = {
      "close", "dismiss", "close notification", "dismiss notification", "schließen", "fermer", "cerrar",
      "chiudi", "fechar", "sluiten", "закрыть", "закрити", "zamknij", "zavřít", "zavrieť", "stäng", "luk",
      "lukk", "sulje", "sulge", "kapat", "bezárás", "închide", "zapri", "zatvori", "κλείσιμο", "tanca", "关闭",
      "關閉", "閉じる", "닫기", "إغلاق"};
  // clang-format on
  return isOneOf(kNames, lower);
}

bool HLIsCloseGlyph(std::string_view lower) {
  static constexpr std::string_view kGlyphs[] = {"x", "×", "✕", "✖", "✗", "✘", "⨯", "╳", "🗙"};
  return isOneOf(kGlyphs, lower);
}

bool HLMentionsClosing(std::string_view lower) {
  static constexpr std::string_view kStems[] = {
      "close",  "dismiss", "schließ", "ferme", "cierra", "cerrar", "chiud", "fecha", "slui",   "закр",   "zamyka",
      "zamkni", "zavř",    "zavírá",  "stäng", "lukke",  "sulkee", "kapat", "bezár", "închid", "zavrie", "tanca",
      "κλείν",  "sulge",   "zatvar",  "zapre", "閉じ",   "关闭",   "關閉",  "닫기",  "إغلاق"};
  return std::any_of(std::begin(kStems), std::end(kStems),
                     [lower](std::string_view stem) { return lower.find(stem) != std::string_view::npos; });
}
