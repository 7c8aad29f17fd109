// Allows one instance per session by owning a name on the session bus.
#pragma once

#include <QDBusAbstractAdaptor>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <string>

// Without a session bus, every process counts as the first instance.
class HLQtSingleInstance {
 public:
  // Takes the name if it is free; later instances then call `didReopen` here.
  HLQtSingleInstance(const std::string& identifier, std::function<void()> didReopen);

  // Returns whether another instance has the name, after activating that instance. Blocks up to 5 s for its reply.
  [[nodiscard]] bool tellOther() const;

 private:
  const QString name_;
  const QString path_;
  QObject object_;
  bool isOther_ = false;
};

// org.freedesktop.Application: launchers can activate the running instance without starting a process.
class HLQtActivation : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  HLQtActivation(QObject* parent, std::function<void()> activated)
      : QDBusAbstractAdaptor(parent), activated_(std::move(activated)) {}

 public Q_SLOTS:
  void Activate(const QVariantMap& platformData);

 private:
  const std::function<void()> activated_;
};
