// The tray's menu where it cannot be opened beside the item, without a screen.
#include "platform/linux/qt/tray/tray_menu.h"

#include <gtest/gtest.h>

#include <QTimer>

#include "tests/platform/linux/qt/offscreen.h"

namespace {

HLMenu menuWith(const std::string& title) {
  HLMenu menu;
  menu.title = "Program";
  menu.items = {{"item", title, "", [] {}}};
  return menu;
}

// As a window of the desktop's it would be tiled if it could be resized.
TEST(TrayMenu, AsAWindowItHasTheProgramsNameAndTheSizeOfItsItems) {
  (void)Offscreen();
  HLTrayMenu menu(menuWith("Short"));
  QSize first;
  QSize second;
  const auto openAndNote = [&menu](QSize& size) {
    QTimer::singleShot(0, [&] {
      size = menu.size();
      EXPECT_EQ(menu.windowTitle(), "Program");
      EXPECT_EQ(menu.minimumSize(), size);
      EXPECT_EQ(menu.maximumSize(), size);
      menu.close();
    });
    menu.open({10, 10, 0, 0});
  };
  openAndNote(first);
  menu.setItem("item", "A title that is a good deal longer", false);
  openAndNote(second);
  EXPECT_GT(first.width(), 0);
  EXPECT_GT(second.width(), first.width());
}

}  // namespace
