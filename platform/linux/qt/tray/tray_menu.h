// The status item's menu.
#pragma once

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QRect>
#include <QString>
#include <string>
#include <string_view>

#include "platform/application/status_item.h"

class HLTrayMenu : public QMenu {
 public:
  explicit HLTrayMenu(HLMenu menu);

  void setItem(std::string_view name, const std::string& title, bool on);
  // Calls the application's needsUpdate. Called before every showing, by Qt or by the tray.
  void refresh();
  // Opens the menu beside the item. Blocks in a nested event loop until it closes.
  void open(const QRect& item);

  // As described by the application. "" without a key.
  [[nodiscard]] static QString titleOf(const QAction& item);
  [[nodiscard]] static QString keyEquivalentOf(const QAction& item);

 protected:
  // Triggers the item whose key equivalent was pressed.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void addItem(const HLMenuItem& item);
  [[nodiscard]] QAction* actionNamed(std::string_view name) const;

  const HLMenu menu_;
};
