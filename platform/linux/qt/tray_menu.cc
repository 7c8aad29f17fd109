#include "platform/linux/qt/tray_menu.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeySequence>
#include <QScreen>
#include <utility>

#include "platform/linux/qt/text.h"

namespace {

constexpr const char* kKeyProperty = "key";

// What Command is on the home platform is Control here.
QKeySequence keysOf(const std::string& keyEquivalent) {
  return QKeySequence("Ctrl+" + QString::fromStdString(keyEquivalent).toUpper());
}

QString titleWithKeys(const std::string& title, const QString& keys) {
  return keys.isEmpty() ? HLQtPlain(title) : HLQtPlain(title) + '\t' + keys;
}

}  // namespace

HLTrayMenu::HLTrayMenu(HLMenu menu) : menu_(std::move(menu)) {
  setTitle(QString::fromStdString(menu_.title));
  setAccessibleName(title());
  for (const HLMenuItem& item : menu_.items) addItem(item);
}

void HLTrayMenu::addItem(const HLMenuItem& item) {
  if (item.title.empty()) {
    addSeparator();
    return;
  }
  // As a text only: a shortcut of its own would work in every window.
  const QString keys =
      item.keyEquivalent.empty() ? QString() : keysOf(item.keyEquivalent).toString(QKeySequence::NativeText);
  QAction* action = addAction(titleWithKeys(item.title, keys));
  action->setObjectName(QString::fromStdString(item.name));
  action->setProperty(kKeyProperty, keys);
  connect(action, &QAction::triggered, [perform = item.action] { perform(); });
}

QAction* HLTrayMenu::actionNamed(std::string_view name) const {
  for (QAction* action : actions()) {
    if (!name.empty() && action->objectName().toStdString() == name) return action;
  }
  return nullptr;
}

void HLTrayMenu::setItem(std::string_view name, const std::string& title, bool on) {
  QAction* action = actionNamed(name);
  if (action == nullptr) return;
  action->setText(titleWithKeys(title, action->property(kKeyProperty).toString()));
  action->setCheckable(on);
  action->setChecked(on);
}

void HLTrayMenu::open(const QRect& item) {
  if (isVisible()) return;
  if (menu_.needsUpdate) menu_.needsUpdate();
  QPoint corner(item.left(), item.top() + item.height());
  const QScreen* screen = QGuiApplication::screenAt(item.topLeft());
  // From a panel at the bottom it opens upwards.
  if (screen != nullptr && item.center().y() > screen->geometry().center().y()) {
    corner.setY(item.top() - sizeHint().height());
  }
  exec(corner);
}

void HLTrayMenu::keyPressEvent(QKeyEvent* event) {
  const QKeySequence pressed(event->keyCombination());
  for (QAction* action : actions()) {
    const QString keys = action->property(kKeyProperty).toString();
    if (keys.isEmpty() || QKeySequence(keys, QKeySequence::NativeText) != pressed) continue;
    close();
    action->trigger();
    return;
  }
  QMenu::keyPressEvent(event);
}
