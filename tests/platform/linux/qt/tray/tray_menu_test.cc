// The tray's menu where it cannot be opened beside the item, without a screen.
#include "platform/linux/qt/tray/tray_menu.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include "tests/platform/linux/qt/offscreen.h"

namespace {

HLMenu menuWith(const std::string& title) {
  HLMenu menu;
  menu.title = "Program";
  menu.items = {{"item", title, "", [] {}}};
  return menu;
}

// Opens the menu beside `item`. Returns the result of `note`, called while the menu is open.
template <class Note>
auto whileOpen(HLTrayMenu& menu, const QRect& item, const Note& note) {
  decltype(note()) noted;
  QTimer::singleShot(0, [&] {
    noted = note();
    menu.close();
  });
  menu.open(item);
  return noted;
}

// As a window of the desktop's it would be tiled if it could be resized.
TEST(TrayMenu, HasProgramNameAndFitsItems) {
  (void)Offscreen();
  HLTrayMenu menu(menuWith("Short"));
  const auto noteSize = [&menu] {
    EXPECT_EQ(menu.windowTitle(), "Program");
    EXPECT_EQ(menu.minimumSize(), menu.size());
    EXPECT_EQ(menu.maximumSize(), menu.size());
    return menu.size();
  };
  const QSize first = whileOpen(menu, {10, 10, 0, 0}, noteSize);
  menu.setItem("item", "A title that is a good deal longer", false);
  EXPECT_GT(first.width(), 0);
  EXPECT_GT(whileOpen(menu, {10, 10, 0, 0}, noteSize).width(), first.width());
}

TEST(TrayMenu, OpensAwayFromItsPanel) {
  (void)Offscreen();
  HLTrayMenu menu(menuWith("Item"));
  const auto noteFrame = [&menu] { return menu.geometry(); };
  const QRect above(10, 0, 22, 22);
  EXPECT_EQ(whileOpen(menu, above, noteFrame).topLeft(), QPoint(10, 22));
  const QRect below(10, QGuiApplication::primaryScreen()->size().height() - 22, 22, 22);
  EXPECT_EQ(whileOpen(menu, below, noteFrame).bottomLeft(), QPoint(10, below.top() - 1));
}

}  // namespace
