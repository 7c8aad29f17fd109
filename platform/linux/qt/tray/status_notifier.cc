#include "platform/linux/qt/tray/status_notifier.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QTimer>
#include <QtEndian>
#include <utility>

#include "platform/application/events.h"
#include "platform/linux/qt/window/key_monitor.h"

namespace {

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
constexpr const char* kItemPath = "/StatusNotifierItem";
constexpr int kPixmapSizes[] = {16, 22, 24, 32, 44, 48, 64};

HLNotifierPicture pictureOf(QImage image) {
  image.convertTo(QImage::Format_ARGB32);
  HLNotifierPicture picture{image.width(), image.height(), QByteArray(image.sizeInBytes(), Qt::Uninitialized)};
  qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, picture.pixels.data());
  return picture;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const HLNotifierPicture& picture) {
  argument.beginStructure();
  argument << picture.width << picture.height << picture.pixels;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, HLNotifierPicture& picture) {
  argument.beginStructure();
  argument >> picture.width >> picture.height >> picture.pixels;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const HLNotifierToolTip& toolTip) {
  argument.beginStructure();
  argument << toolTip.icon << toolTip.pictures << toolTip.title << toolTip.text;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, HLNotifierToolTip& toolTip) {
  argument.beginStructure();
  argument >> toolTip.icon >> toolTip.pictures >> toolTip.title >> toolTip.text;
  argument.endStructure();
  return argument;
}

HLStatusNotifier::HLStatusNotifier(const HLTrayItem& item)
    : item_(item),
      service_(QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QGuiApplication::applicationPid())),
      watcher_(kWatcher, QDBusConnection::sessionBus()) {
  qDBusRegisterMetaType<HLNotifierPicture>();
  qDBusRegisterMetaType<QList<HLNotifierPicture>>();
  qDBusRegisterMetaType<HLNotifierToolTip>();
  new HLStatusNotifierAdaptor(this);  // NOLINT: this object owns it
  QDBusConnection bus = QDBusConnection::sessionBus();
  bus.registerObject(kItemPath, this);
  connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &HLStatusNotifier::askWatcher);
  connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, &HLStatusNotifier::withdraw);
  bus.connect(kWatcher, kWatcherPath, kWatcher, "StatusNotifierHostRegistered", this, SLOT(askWatcher()));
}

void HLStatusNotifier::setWanted(bool wanted) {
  if (std::exchange(wanted_, wanted) == wanted) return;
  if (wanted) {
    askWatcher();
  } else {
    withdraw();
  }
}

// A watcher without a host accepts items for a tray that may never start; register only once it has one.
void HLStatusNotifier::askWatcher() {
  if (!wanted_) return;
  QDBusMessage call = QDBusMessage::createMethodCall(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get");
  call << kWatcher << "IsStatusNotifierHostRegistered";
  call.setAutoStartService(false);
  auto* pending = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending] {
    const QDBusPendingReply<QDBusVariant> reply = *pending;
    pending->deleteLater();
    if (!reply.isError() && reply.value().variant().toBool()) registerItem();
  });
}

void HLStatusNotifier::registerItem() {
  if (!wanted_) return;
  QDBusConnection bus = QDBusConnection::sessionBus();
  bus.registerService(service_);
  QDBusMessage call = QDBusMessage::createMethodCall(kWatcher, kWatcherPath, kWatcher, "RegisterStatusNotifierItem");
  call << service_;
  call.setAutoStartService(false);
  ++unanswered_;
  auto* pending = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
  connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending] {
    pending->deleteLater();
    --unanswered_;
    registered_ = !pending->isError();
    if (!wanted_) withdraw();
  });
}

// Watchers remove an item when its bus name disappears, but observe the name only after replying to the registration.
// Releasing the name earlier would leave a dead item in the tray.
void HLStatusNotifier::withdraw() {
  registered_ = false;
  if (unanswered_ == 0) QDBusConnection::sessionBus().unregisterService(service_);
}

HLStatusNotifierAdaptor& HLStatusNotifier::adaptor() { return *findChild<HLStatusNotifierAdaptor*>(); }

void HLStatusNotifier::redraw() { Q_EMIT adaptor().NewIcon(); }

void HLStatusNotifier::announceToolTip() { Q_EMIT adaptor().NewToolTip(); }

void HLStatusNotifier::click(std::int64_t type, QPoint place) {
  // The call carries no modifiers, so query the keyboard now. Posted, so that the reply is sent first: the handler may
  // open a menu, and the tray would wait until the menu closes.
  const HLTrayClick click{type, HLQtModifiers(QGuiApplication::queryKeyboardModifiers()), QRect(place, QSize())};
  QTimer::singleShot(0, this, [this, click] { item_.clicked(click); });
}

QList<HLNotifierPicture> HLStatusNotifierAdaptor::iconPixmap() const {
  QList<HLNotifierPicture> pictures;
  for (int size : kPixmapSizes) pictures.append(pictureOf(owner_->item_.draw(size, HLTrayLightColor)));
  return pictures;
}

HLNotifierToolTip HLStatusNotifierAdaptor::toolTip() const {
  HLNotifierToolTip toolTip;
  toolTip.title = owner_->item_.toolTip;
  return toolTip;
}

void HLStatusNotifierAdaptor::Activate(int x, int y) { owner_->click(HLEventLeftMouseUp, {x, y}); }

void HLStatusNotifierAdaptor::SecondaryActivate(int, int) {}  // the middle button has no action

void HLStatusNotifierAdaptor::ContextMenu(int x, int y) { owner_->click(HLEventRightMouseUp, {x, y}); }

void HLStatusNotifierAdaptor::Scroll(int, const QString&) {}
