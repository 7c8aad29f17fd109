// The menu of the tray's item.
#pragma once

#include <QKeyEvent>
#include <QMenu>
#include <QRect>
#include <string>
#include <string_view>

#include "platform/status_item.h"

class HLTrayMenu : public QMenu {
 public:
  explicit HLTrayMenu(HLMenu menu);

  void setItem(std::string_view name, const std::string& title, bool on);
  // Opens it beside the item and returns when it has been closed.
  void open(const QRect& item);

 protected:
  // A menu shows its items' keys and, while it is open, obeys them.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void addItem(const HLMenuItem& item);
  [[nodiscard]] QAction* actionNamed(std::string_view name) const;

  const HLMenu menu_;
};
