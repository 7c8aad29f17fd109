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

// Key equivalents use Command on macOS and Ctrl here.
QKeySequence keysOf(const QAction& item) {
  const QString key = HLTrayMenu::keyEquivalentOf(item);
  return key.isEmpty() ? QKeySequence() : QKeySequence("Ctrl+" + key.toUpper());
}

// A transparent window that covers the screen below the menu. Under XWayland the menu receives clicks on X11 windows
// only and would stay open after a click on a Wayland window.
class Backdrop : public QWidget {
 public:
  Backdrop() : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setGeometry(QGuiApplication::primaryScreen()->virtualGeometry());
    show();
  }
};

// Shows the keys as text only: QAction::setShortcut() would activate them in every window.
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
    action->setChecked(action->isCheckable());  // undoes Qt's toggling: the application sets the mark
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
    // On Wayland a menu without a parent is a toplevel: it has a title, and tiling compositors resize it unless its
    // size is fixed.
    setWindowTitle(title());
    setFixedSize(sizeHint());
  }
  QPoint corner(item.left(), item.top() + item.height());
  const QScreen* screen = QGuiApplication::screenAt(item.topLeft());
  // Opens upwards from a panel at the bottom.
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
