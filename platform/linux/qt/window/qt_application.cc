#include "platform/linux/qt/window/qt_application.h"

#include <QApplication>
#include <QPalette>
#include <QSocketNotifier>
#include <QStyleFactory>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/linux/qt/window/colors.h"
#include "platform/linux/qt/window/key_monitor.h"
#include "platform/linux/qt/window/single_instance.h"

namespace {

// Skips static destructors: background threads may still use objects that returning from main would destroy.
[[noreturn]] void leave(int code) {
  std::fflush(nullptr);
  std::_Exit(code);
}

}  // namespace

int HLQtApplication::run(HLApplicationHandlers handlers) {
  const HLQtSingleInstance instance(request_.identifier, handlers.didReopen);
  if (instance.tellOther()) leave(EXIT_SUCCESS);

  QSocketNotifier runLoop(request_.runLoop.descriptor(), QSocketNotifier::Read);
  QObject::connect(&runLoop, &QSocketNotifier::activated, [this] { request_.runLoop.serve(); });
  // Posted to run inside the event loop: QApplication::quit() has no effect before exec().
  QTimer::singleShot(0, [&handlers] { handlers.didFinishLaunching(); });
  leave(QApplication::exec());
}

void HLQtApplication::terminate() { QApplication::quit(); }

void HLQtApplication::activate() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->isVisible() || window->windowType() == Qt::Popup || window->windowType() == Qt::ToolTip) continue;
    window->raise();
    window->activateWindow();
  }
}

void HLQtApplication::setDarkAppearance() {
  // The desktop's style may ignore the palette.
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setPalette(HLQtDarkPalette());
}

void HLQtApplication::beep() { QApplication::beep(); }

std::unique_ptr<HLKeyMonitor> HLQtApplication::addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) {
  return std::make_unique<HLQtKeyMonitor>(std::move(handler));
}

void HLQtApplication::perform(const HLEvent& event, const std::function<void()>& action) {
  const std::optional<HLEvent> outer = std::exchange(event_, event);
  action();
  event_ = outer;
}
