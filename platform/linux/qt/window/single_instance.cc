#include "platform/linux/qt/window/single_instance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QTimer>
#include <utility>

namespace {

constexpr int kPatience = 5000;  // milliseconds

}  // namespace

HLQtSingleInstance::HLQtSingleInstance(const std::string& identifier, std::function<void()> didReopen)
    : name_(QString::fromStdString(identifier)), path_("/" + QString(name_).replace('.', '/').replace('-', '_')) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  new HLQtActivation(&object_, std::move(didReopen));  // NOLINT: the object owns it
  bus.registerObject(path_, &object_);                 // before the name is there to be called
  const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
      bus.interface()->registerService(name_, QDBusConnectionInterface::DontQueueService);
  isOther_ = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceNotRegistered;
}

bool HLQtSingleInstance::tellOther() const {
  if (!isOther_) return false;
  QDBusMessage call = QDBusMessage::createMethodCall(name_, path_, "org.freedesktop.Application", "Activate");
  call << QVariantMap();
  // Waited for, or this process might end before the call has left it.
  QDBusConnection::sessionBus().call(call, QDBus::Block, kPatience);
  return true;
}

void HLQtActivation::Activate(const QVariantMap&) {
  // After the answer: what follows may ask the user something.
  QTimer::singleShot(0, this, [this] { activated_(); });
}
