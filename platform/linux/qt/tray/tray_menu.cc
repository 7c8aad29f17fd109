#include "platform/linux/qt/tray/tray_menu.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeySequence>
#include <QScreen>
#include <QWidget>
#include <optional>
#include <utility>

#include "platform/linux/qt/services/wayland.h"
#include "platform/linux/qt/window/qt_text.h"

namespace {

constexpr const char* kTitle = "title";
constexpr const char* kKeyEquivalent = "keyEquivalent";

// What Command is on the home platform is Control here.
QKeySequence keysOf(const QAction& item) {
  const QString key = HLTrayMenu::keyEquivalentOf(item);
  return key.isEmpty() ? QKeySequence() : QKeySequence("Ctrl+" + key.toUpper());
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

// The keys as a text only: a shortcut of its own would work in every window.
void setItemTitle(QAction& item, const std::string& title) {
  item.setProperty(kTitle, QString::fromStdString(title));
  const QString keys = keysOf(item).toString(QKeySequence::NativeText);
  item.setText(keys.isEmpty() ? HLQtPlain(title) : HLQtPlain(title) + '\t' + keys);
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
  QAction* action = addAction(QString());
  action->setObjectName(QString::fromStdString(item.name));
  action->setProperty(kKeyEquivalent, QString::fromStdString(item.keyEquivalent));
  setItemTitle(*action, item.title);
  connect(action, &QAction::triggered, [action, perform = item.action] {
    action->setChecked(action->isCheckable());  // choosing it leaves its mark to the application
    perform();
  });
}

QString HLTrayMenu::titleOf(const QAction& item) { return item.property(kTitle).toString(); }

QString HLTrayMenu::keyEquivalentOf(const QAction& item) { return item.property(kKeyEquivalent).toString(); }

QAction* HLTrayMenu::actionNamed(std::string_view name) const {
  for (QAction* action : actions()) {
    if (!name.empty() && action->objectName().toStdString() == name) return action;
  }
  return nullptr;
}

void HLTrayMenu::setItem(std::string_view name, const std::string& title, bool on) {
  QAction* action = actionNamed(name);
  if (action == nullptr) return;
  setItemTitle(*action, title);
  action->setCheckable(on);
  action->setChecked(on);
}

void HLTrayMenu::refresh() {
  if (menu_.needsUpdate) menu_.needsUpdate();
}

void HLTrayMenu::open(const QRect& item) {
  if (isVisible()) return;
  refresh();
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
    if (const QKeySequence keys = keysOf(*action); keys.isEmpty() || keys != pressed) continue;
    close();
    action->trigger();
    return;
  }
  QMenu::keyPressEvent(event);
}
