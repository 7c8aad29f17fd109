#include "platform/linux/qt/window/single_instance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QTimer>
#include <utility>

namespace {

constexpr int kTimeout = 5000;  // milliseconds

}  // namespace

HLQtSingleInstance::HLQtSingleInstance(const std::string& identifier, std::function<void()> didReopen)
    : name_(QString::fromStdString(identifier)), path_("/" + QString(name_).replace('.', '/').replace('-', '_')) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  new HLQtActivation(&object_, std::move(didReopen));  // NOLINT: object_ owns it
  bus.registerObject(path_, &object_);                 // before the name can be called
  const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
      bus.interface()->registerService(name_, QDBusConnectionInterface::DontQueueService);
  isOther_ = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceNotRegistered;
}

bool HLQtSingleInstance::tellOther() const {
  if (!isOther_) return false;
  QDBusMessage call = QDBusMessage::createMethodCall(name_, path_, "org.freedesktop.Application", "Activate");
  call << QVariantMap();
  // Blocking: an asynchronous call might not be sent before this process exits.
  QDBusConnection::sessionBus().call(call, QDBus::Block, kTimeout);
  return true;
}

void HLQtActivation::Activate(const QVariantMap&) {
  // Posted, so that the reply is sent first: the handler may run a modal dialog.
  QTimer::singleShot(0, this, [this] { activated_(); });
}
