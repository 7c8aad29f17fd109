// One program of a kind in a session, by a name on the session's bus.
#pragma once

#include <QDBusAbstractAdaptor>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <string>

// Without a session bus every program is the only one.
class HLQtSingleInstance {
 public:
  // Takes the name where it is free; from then on, the others tell this one.
  HLQtSingleInstance(const std::string& identifier, std::function<void()> didReopen);

  // Whether another has the name. It has then been told that the user has started the program again.
  [[nodiscard]] bool tellOther() const;

 private:
  const QString name_;
  const QString path_;
  QObject object_;
  bool isOther_ = false;
};

// The desktop's own interface for that: launchers that know it need not start a process.
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
