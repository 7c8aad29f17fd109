// The item as a window in a tray of the X server (XEmbed). It has a connection to the server of its own: the tray's
// windows come and go beneath it, and a click brings the modifiers of its moment.
#pragma once

#include <QObject>
#include <QRect>
#include <QSocketNotifier>
#include <QTimer>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/linux/qt/tray.h"
#include "platform/linux/qt/x_connection.h"

// Docks itself in each tray that comes, while it is wanted. Nothing runs while nothing happens. Main thread.
class HLEmbeddedIcon : public QObject {
 public:
  // nullptr without an X server. The item stays the caller's.
  [[nodiscard]] static std::unique_ptr<HLEmbeddedIcon> open(const HLTrayItem& item);
  ~HLEmbeddedIcon() override;

  void setWanted(bool wanted);
  void redraw();

 private:
  HLEmbeddedIcon(const HLTrayItem& item, HLXConnection connection);

  void handleEvents();
  void handle(const xcb_generic_event_t& event);
  void handleButton(const xcb_button_release_event_t& event);
  void findTray();
  void dock();
  void undock();
  void draw();
  void showToolTip();
  [[nodiscard]] QColor color(const QImage& background) const;
  [[nodiscard]] QImage background() const;
  [[nodiscard]] QRect geometry() const;

  const HLTrayItem& item_;
  HLXConnection x_;
  QSocketNotifier arrivals_;
  QTimer toolTipDelay_;
  bool wanted_ = false;
  xcb_window_t tray_ = XCB_NONE;
  HLXVisual visual_;
  xcb_window_t window_ = XCB_NONE;
  xcb_gcontext_t context_ = XCB_NONE;
  int width_ = 0;
  int height_ = 0;
};
