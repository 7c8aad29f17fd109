#include "platform/linux/qt/tray_menu.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeySequence>
#include <QScreen>
#include <QWidget>
#include <optional>
#include <utility>

#include "platform/linux/qt/services/wayland.h"
#include "platform/linux/qt/text.h"

namespace {

constexpr const char* kKeyProperty = "key";

// What Command is on the home platform is Control here.
QKeySequence keysOf(const std::string& keyEquivalent) {
  return QKeySequence("Ctrl+" + QString::fromStdString(keyEquivalent).toUpper());
}

// Below a menu of the X server beside a Wayland compositor. The menu is told of the clicks on windows of that server
// only, and would stay open; so one of them covers the screen, and nobody sees it.
class Backdrop : public QWidget {
 public:
  Backdrop() : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setGeometry(QGuiApplication::primaryScreen()->virtualGeometry());
    show();
  }
};

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
  std::optional<Backdrop> backdrop;
  if (QGuiApplication::platformName() == "xcb") {
    if (HLReachWayland()) backdrop.emplace();
  } else {
    // A menu that belongs to no window is a window itself on Wayland: with a title, and tiled where its size can
    // change.
    setWindowTitle(title());
    setFixedSize(sizeHint());
  }
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
