// Key presses in this application's windows, in macOS key codes and modifier flags.
#pragma once

#include <QEvent>
#include <QKeyEvent>
#include <QObject>
#include <cstdint>
#include <functional>
#include <optional>

#include "platform/application/application.h"
#include "platform/application/events.h"

[[nodiscard]] std::uint64_t HLQtModifiers(Qt::KeyboardModifiers modifiers);
// Returns nullopt for keys without a virtual key code, such as modifier keys.
[[nodiscard]] std::optional<HLKeyEvent> HLQtKeyEvent(const QKeyEvent& event);

class HLQtKeyMonitor : public QObject, public HLKeyMonitor {
 public:
  explicit HLQtKeyMonitor(std::function<void(const HLKeyEvent&)> handler);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  const std::function<void(const HLKeyEvent&)> handler_;
};
