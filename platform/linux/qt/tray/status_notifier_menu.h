// The status item's menu on the session bus (com.canonical.dbusmenu), drawn by the tray.
#pragma once

#include <QAction>
#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>
#include <vector>

#include "platform/linux/qt/tray/tray_menu.h"

struct HLMenuLayout {
  int id = 0;
  QVariantMap properties;
  QVariantList children;
};
struct HLMenuProperties {
  int id = 0;
  QVariantMap properties;
};
struct HLMenuPropertyNames {
  int id = 0;
  QStringList names;
};
struct HLMenuEvent {
  int id = 0;
  QString type;
  QDBusVariant data;
  uint timestamp = 0;
};
Q_DECLARE_METATYPE(HLMenuLayout)
Q_DECLARE_METATYPE(HLMenuProperties)
Q_DECLARE_METATYPE(HLMenuPropertyNames)
Q_DECLARE_METATYPE(HLMenuEvent)

inline constexpr const char* HLStatusNotifierMenuPath = "/MenuBar";

// Answers from the state announced last, so that a tray never receives an item it was not notified about. Owned by the
// menu, which is the object on the bus. Main thread only.
class HLStatusNotifierMenu : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
  Q_PROPERTY(uint Version READ version)
  Q_PROPERTY(QString TextDirection READ textDirection)
  Q_PROPERTY(QString Status READ status)
  Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

 public:
  explicit HLStatusNotifierMenu(HLTrayMenu* menu);

  [[nodiscard]] static uint version() { return 3; }
  [[nodiscard]] static QString textDirection();
  [[nodiscard]] static QString status() { return QStringLiteral("normal"); }
  [[nodiscard]] static QStringList iconThemePath() { return {}; }

  // D-Bus methods. Unknown ids are answered with an error.
 public Q_SLOTS:
  uint GetLayout(int parentId, int recursionDepth, const QStringList& names, const QDBusMessage& message,
                 HLMenuLayout& layout);
  QList<HLMenuProperties> GetGroupProperties(const QList<int>& ids, const QStringList& names);
  QDBusVariant GetProperty(int id, const QString& name, const QDBusMessage& message);
  void Event(int id, const QString& type, const QDBusVariant& data, uint timestamp, const QDBusMessage& message);
  QList<int> EventGroup(const QList<HLMenuEvent>& events, const QDBusMessage& message);
  bool AboutToShow(int id, const QDBusMessage& message);
  QList<int> AboutToShowGroup(const QList<int>& ids, const QDBusMessage& message, QList<int>& unknownIds);

 Q_SIGNALS:
  void LayoutUpdated(uint revision, int parentId);
  void ItemsPropertiesUpdated(const QList<HLMenuProperties>& updated, const QList<HLMenuPropertyNames>& removed);
  void ItemActivationRequested(int id, uint timestamp);

 private:
  struct Item {
    int id = 0;
    QAction* action = nullptr;  // nullptr for the root
    QVariantMap told;
  };

  [[nodiscard]] const Item* find(int id) const;
  bool tellChanges();
  [[nodiscard]] bool handle(int id, const QString& type) const;

  HLTrayMenu& menu_;
  std::vector<Item> items_;  // the root first
  int lastId_ = 0;
  uint revision_ = 1;
  QTimer changes_;
};
