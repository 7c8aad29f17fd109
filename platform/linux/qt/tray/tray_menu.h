// The menu of the tray's item.
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
  // Lets the application bring its items up to date, as each time before it is shown by whomever.
  void refresh();
  // Opens it beside the item and returns when it has been closed.
  void open(const QRect& item);

  // As the application has described them; the key is "" for none.
  [[nodiscard]] static QString titleOf(const QAction& item);
  [[nodiscard]] static QString keyEquivalentOf(const QAction& item);

 protected:
  // A menu shows its items' keys and, while it is open, obeys them.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void addItem(const HLMenuItem& item);
  [[nodiscard]] QAction* actionNamed(std::string_view name) const;

  const HLMenu menu_;
};
