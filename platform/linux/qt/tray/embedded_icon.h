// The item as a window in a tray of the X server (XEmbed). It has a connection to the server of its own: the tray's
// windows come and go beneath it, and a click brings the modifiers of its moment.
#pragma once

#include <QObject>
#include <QRect>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>

#include "platform/linux/qt/tray/tray.h"
#include "platform/linux/qt/tray/x_connection.h"

// Docks itself in each tray that comes. Nothing runs while nothing happens. Main thread.
class HLEmbeddedIcon : public QObject {
 public:
  // Tells whether there is a tray, at once and whenever that changes. nullptr without an X server. The item stays the
  // caller's.
  [[nodiscard]] static std::unique_ptr<HLEmbeddedIcon> open(const HLTrayItem& item,
                                                            std::function<void(bool hasTray)> changed);
  ~HLEmbeddedIcon() override;

  void redraw();

 private:
  HLEmbeddedIcon(const HLTrayItem& item, std::function<void(bool)> changed, HLXConnection connection);

  void handleEvents();
  void handle(const xcb_generic_event_t& event);
  void handleButton(const xcb_button_release_event_t& event);
  void findTray();
  void dock();
  void askForSize(int size);
  void undock();
  void draw();
  void showToolTip();
  [[nodiscard]] QColor color(const QImage& background) const;
  [[nodiscard]] QImage background() const;
  [[nodiscard]] QRect geometry() const;

  const HLTrayItem& item_;
  const std::function<void(bool)> changed_;
  HLXConnection x_;
  QSocketNotifier arrivals_;
  QTimer toolTipDelay_;
  xcb_window_t tray_ = XCB_NONE;
  HLXVisual visual_;
  xcb_window_t window_ = XCB_NONE;
  xcb_gcontext_t context_ = XCB_NONE;
  int width_ = 0;
  int height_ = 0;
  int asked_ = 0;
};
