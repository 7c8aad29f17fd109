// The status item and its menu, in an X11 or StatusNotifier tray.
#pragma once

#include <QMenu>
#include <QRect>
#include <QTimer>
#include <memory>
#include <string>
#include <string_view>

#include "platform/application/status_item.h"
#include "platform/linux/qt/tray/embedded_icon.h"
#include "platform/linux/qt/tray/status_notifier.h"
#include "platform/linux/qt/tray/tray.h"
#include "platform/linux/qt/tray/tray_menu.h"
#include "platform/linux/qt/tray/tray_picture.h"
#include "platform/linux/qt/window/qt_application.h"

class HLQtStatusItem : public HLStatusItem {
 public:
  HLQtStatusItem(HLQtApplication& application, std::string identifier, std::string displayName);

  void install(HLStatusItemDescription description) override;
  void setTitle(const std::string& title) override;
  void setImage(const HLSymbolImage& image) override;
  void setToolTip(const std::string& toolTip) override;
  [[nodiscard]] bool isVisible() override;
  void setMenuItem(std::string_view name, const std::string& title, bool on) override;
  void popUpMenu() override;

 private:
  // Coalesces changes: redraws at most once per frame.
  void redraw();
  void click(const HLTrayClick& click);

  HLQtApplication& application_;
  HLStatusItemDescription description_;
  HLTrayItem item_;
  HLTrayLook look_;
  QRect place_;  // of the item at the latest click
  std::unique_ptr<HLTrayMenu> menu_;
  std::unique_ptr<HLEmbeddedIcon> embedded_;
  bool isEmbedded_ = false;  // an X11 tray has the icon
  std::unique_ptr<HLStatusNotifier> notifier_;
  QTimer drawing_;
};
