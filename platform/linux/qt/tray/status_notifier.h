// The status item on the session bus (StatusNotifierItem), drawn by the tray.
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>

#include "platform/linux/qt/tray/status_notifier_menu.h"
#include "platform/linux/qt/tray/tray.h"

// Rows of 32-bit ARGB pixels, big-endian.
struct HLNotifierPicture {
  int width = 0;
  int height = 0;
  QByteArray pixels;
};
struct HLNotifierToolTip {
  QString icon;
  QList<HLNotifierPicture> pictures;
  QString title;
  QString text;
};
Q_DECLARE_METATYPE(HLNotifierPicture)
Q_DECLARE_METATYPE(HLNotifierToolTip)

class HLStatusNotifierAdaptor;

// While wanted, registers with each StatusNotifierWatcher that has a host (a tray). Main thread only.
class HLStatusNotifier : public QObject {
  Q_OBJECT

 public:
  // `item` must outlive the notifier.
  explicit HLStatusNotifier(const HLTrayItem& item);

  void setWanted(bool wanted);
  void redraw();
  void announceToolTip();
  // Returns whether a watcher with a host has accepted the item.
  [[nodiscard]] bool isRegistered() const { return registered_; }

 private Q_SLOTS:
  void askWatcher();

 private:
  friend class HLStatusNotifierAdaptor;

  [[nodiscard]] HLStatusNotifierAdaptor& adaptor();
  void registerItem();
  void withdraw();
  void click(std::int64_t type, QPoint place);

  const HLTrayItem& item_;
  const QString service_;
  QDBusServiceWatcher watcher_;
  bool wanted_ = false;
  bool registered_ = false;
  int unanswered_ = 0;  // registrations in flight
};

class HLStatusNotifierAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category)
  Q_PROPERTY(QString Id READ id)
  Q_PROPERTY(QString Title READ title)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(int WindowId READ windowId)
  Q_PROPERTY(QString IconName READ noText)
  Q_PROPERTY(QList<HLNotifierPicture> IconPixmap READ iconPixmap)
  Q_PROPERTY(QString OverlayIconName READ noText)
  Q_PROPERTY(QList<HLNotifierPicture> OverlayIconPixmap READ noPictures)
  Q_PROPERTY(QString AttentionIconName READ noText)
  Q_PROPERTY(QList<HLNotifierPicture> AttentionIconPixmap READ noPictures)
  Q_PROPERTY(QString AttentionMovieName READ noText)
  Q_PROPERTY(QString IconAccessibleDesc READ title)
  Q_PROPERTY(HLNotifierToolTip ToolTip READ toolTip)
  Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
  Q_PROPERTY(QDBusObjectPath Menu READ menu)

 public:
  explicit HLStatusNotifierAdaptor(HLStatusNotifier* owner) : QDBusAbstractAdaptor(owner), owner_(owner) {}

  [[nodiscard]] static QString category() { return QStringLiteral("ApplicationStatus"); }
  [[nodiscard]] QString id() const { return owner_->item_.identifier; }
  [[nodiscard]] QString title() const { return owner_->item_.displayName; }
  [[nodiscard]] static QString status() { return QStringLiteral("Active"); }
  [[nodiscard]] static int windowId() { return 0; }
  [[nodiscard]] static QString noText() { return {}; }
  [[nodiscard]] static QList<HLNotifierPicture> noPictures() { return {}; }
  [[nodiscard]] QList<HLNotifierPicture> iconPixmap() const;
  [[nodiscard]] HLNotifierToolTip toolTip() const;
  [[nodiscard]] static bool itemIsMenu() { return false; }
  // For trays that draw the menu. Others call ContextMenu, which is reported as a click.
  [[nodiscard]] static QDBusObjectPath menu() { return QDBusObjectPath(HLStatusNotifierMenuPath); }

 public Q_SLOTS:
  void Activate(int x, int y);
  void SecondaryActivate(int x, int y);
  void ContextMenu(int x, int y);
  void Scroll(int delta, const QString& orientation);

 Q_SIGNALS:
  void NewTitle();
  void NewIcon();
  void NewAttentionIcon();
  void NewOverlayIcon();
  void NewToolTip();
  void NewStatus(const QString& status);

 private:
  HLStatusNotifier* owner_;
};
