// The status item as a window in an X11 system tray (XEmbed). Uses its own X connection, because the tray destroys and
// reparents the window at will, and because an X button event carries the modifiers at the time of the click.
#pragma once

#include <QObject>
#include <QRect>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>

#include "platform/linux/qt/tray/tray.h"
#include "platform/linux/qt/tray/x_connection.h"

// Docks in each tray that appears. Event-driven: no polling. Main thread only.
class HLEmbeddedIcon : public QObject {
 public:
  // Calls `changed` once before returning and on every change of the tray's presence. Returns nullptr without an X
  // server. `item` must outlive the icon.
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
