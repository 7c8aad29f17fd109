#include "platform/linux/qt/window/key_monitor.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

#include <QChar>
#include <QGuiApplication>
#include <QString>
#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "platform/linux/qt/services/key_codes.h"

namespace {

bool onX() { return QGuiApplication::platformName() == "xcb"; }

std::string characters(xcb_keysym_t symbol) {
  std::array<char, 8> buffer{};
  return xkb_keysym_to_utf8(symbol, buffer.data(), buffer.size()) > 0 ? buffer.data() : "";
}

// Queries the keyboard map on every call: the user may change the layout at any time, and calls are rare.
std::string charactersOnX(std::uint32_t keycode, std::uint32_t state) {
  const auto* x = qApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x == nullptr || keycode > UINT8_MAX) return "";
  xcb_connection_t* connection = x->connection();
  const auto cookie = xcb_get_keyboard_mapping(connection, static_cast<xcb_keycode_t>(keycode), 1);
  const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, decltype(&std::free)> map(
      xcb_get_keyboard_mapping_reply(connection, cookie, nullptr), &std::free);
  if (map == nullptr || map->keysyms_per_keycode == 0) return "";
  // Each of the first two groups (layouts) has two symbols: plain and with Shift.
  const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
  const std::uint32_t group = (state >> 13) & 3;
  const bool hasGroup = group == 1 && map->keysyms_per_keycode > 2 && symbols[2] != XCB_NO_SYMBOL;
  return characters(symbols[hasGroup ? 2 : 0]);
}

std::string charactersOf(const QKeyEvent& event) {
  if (onX()) return charactersOnX(event.nativeScanCode(), event.nativeModifiers());
  // Qt::Key uses the capital letter.
  const auto key = static_cast<char32_t>(event.key());
  if (key < Qt::Key_Escape && QChar::isPrint(key)) return QString::fromUcs4(&key, 1).toLower().toStdString();
  return "";
}

}  // namespace

std::uint64_t HLQtModifiers(Qt::KeyboardModifiers modifiers) {
  std::uint64_t flags = 0;
  if (modifiers & Qt::ShiftModifier) flags |= HLModifierShift;
  if (modifiers & Qt::ControlModifier) flags |= HLModifierControl;
  if (modifiers & Qt::AltModifier) flags |= HLModifierOption;
  if (modifiers & Qt::MetaModifier) flags |= HLModifierCommand;
  return flags;
}

std::optional<HLKeyEvent> HLQtKeyEvent(const QKeyEvent& event) {
  if (event.nativeScanCode() < HLKeycodeOffsetOfXKB) return std::nullopt;
  const std::optional<std::uint16_t> code = HLVirtualKeyForKernelKey(event.nativeScanCode() - HLKeycodeOffsetOfXKB);
  if (!code) return std::nullopt;
  std::uint64_t modifiers = HLQtModifiers(event.modifiers());
  if (onX() && (event.nativeModifiers() & XCB_MOD_MASK_LOCK) != 0) modifiers |= HLModifierCapsLock;
  return HLKeyEvent{*code, modifiers, charactersOf(event)};
}

HLQtKeyMonitor::HLQtKeyMonitor(std::function<void(const HLKeyEvent&)> handler) : handler_(std::move(handler)) {
  qApp->installEventFilter(this);
}

bool HLQtKeyMonitor::eventFilter(QObject*, QEvent* event) {
  // Accepting ShortcutOverride keeps menu and window shortcuts from consuming the key.
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();
    return true;
  }
  if (event->type() != QEvent::KeyPress) return false;
  if (const std::optional<HLKeyEvent> key = HLQtKeyEvent(*static_cast<QKeyEvent*>(event))) {
    const auto handler = handler_;  // a copy: the handler may destroy the monitor
    handler(*key);
  }
  return true;
}
