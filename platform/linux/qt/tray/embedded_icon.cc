#include "platform/linux/qt/tray/embedded_icon.h"

#include <QGuiApplication>
#include <QToolTip>
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/application/events.h"

namespace {

constexpr int kFirstSize = 22;            // in pixels, until the tray resizes the window
constexpr int kToolTipDelay = 700;        // milliseconds; Qt's own delay
constexpr int kButtons[] = {1, 3};        // left, right
constexpr std::uint32_t kSizeHints = 18;  // length of WM_NORMAL_HINTS in words, and indices of its fields
constexpr std::uint32_t kLeastSizeFlag = 1U << 4U;
constexpr std::size_t kLeastWidth = 5;
constexpr std::size_t kLeastHeight = 6;
constexpr std::uint32_t kDockRequest = 0;
constexpr std::uint32_t kEmbeddedMapped = 1;
constexpr std::uint32_t kEventMask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                     XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW |
                                     XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;

std::uint64_t modifiersOf(std::uint16_t state) {
  std::uint64_t flags = 0;
  if (state & XCB_MOD_MASK_LOCK) flags |= HLModifierCapsLock;
  if (state & XCB_MOD_MASK_SHIFT) flags |= HLModifierShift;
  if (state & XCB_MOD_MASK_CONTROL) flags |= HLModifierControl;
  if (state & XCB_MOD_MASK_1) flags |= HLModifierOption;
  if (state & XCB_MOD_MASK_4) flags |= HLModifierCommand;
  return flags;
}

}  // namespace

std::unique_ptr<HLEmbeddedIcon> HLEmbeddedIcon::open(const HLTrayItem& item, std::function<void(bool)> changed) {
  std::optional<HLXConnection> connection = HLXConnection::open();
  if (!connection) return nullptr;
  return std::unique_ptr<HLEmbeddedIcon>(new HLEmbeddedIcon(item, std::move(changed), std::move(*connection)));
}

HLEmbeddedIcon::HLEmbeddedIcon(const HLTrayItem& item, std::function<void(bool)> changed, HLXConnection connection)
    : item_(item),
      changed_(std::move(changed)),
      x_(std::move(connection)),
      arrivals_(xcb_get_file_descriptor(x_.get()), QSocketNotifier::Read) {
  toolTipDelay_.setSingleShot(true);
  connect(&toolTipDelay_, &QTimer::timeout, this, [this] { showToolTip(); });
  connect(&arrivals_, &QSocketNotifier::activated, this, [this] { handleEvents(); });
  // A new tray announces itself by a MANAGER message to the root window.
  const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x_.get(), x_.screen().root, XCB_CW_EVENT_MASK, &mask);
  findTray();
}

HLEmbeddedIcon::~HLEmbeddedIcon() = default;

void HLEmbeddedIcon::redraw() {
  draw();
  // Waiting for a reply may have queued events, which the descriptor does not signal.
  QTimer::singleShot(0, this, [this] { handleEvents(); });
}

void HLEmbeddedIcon::handleEvents() {
  while (const HLXReply<xcb_generic_event_t> event{xcb_poll_for_event(x_.get())}) handle(*event);
  xcb_flush(x_.get());
  if (xcb_connection_has_error(x_.get()) != 0) arrivals_.setEnabled(false);
}

void HLEmbeddedIcon::handle(const xcb_generic_event_t& event) {
  const void* any = &event;
  switch (event.response_type & 0x7F) {
    case XCB_CLIENT_MESSAGE: {
      const auto& message = *static_cast<const xcb_client_message_event_t*>(any);
      if (message.type == x_.atom("MANAGER")) findTray();
      break;
    }
    case XCB_DESTROY_NOTIFY: {
      const auto& destroyed = *static_cast<const xcb_destroy_notify_event_t*>(any);
      if (destroyed.window == window_) window_ = XCB_NONE;
      if (destroyed.window == tray_) findTray();
      break;
    }
    case XCB_REPARENT_NOTIFY: {
      // A tray that exits reparents the window to the root, where the window manager would show it.
      const auto& reparented = *static_cast<const xcb_reparent_notify_event_t*>(any);
      if (reparented.window != window_) break;
      if (reparented.parent == x_.screen().root) {
        undock();
      } else if (visual_.depth == x_.screen().root_depth) {
        const std::uint32_t background = XCB_BACK_PIXMAP_PARENT_RELATIVE;
        xcb_change_window_attributes(x_.get(), window_, XCB_CW_BACK_PIXMAP, &background);
      }
      break;
    }
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configured = *static_cast<const xcb_configure_notify_event_t*>(any);
      if (configured.window != window_) break;
      width_ = configured.width;
      height_ = configured.height;
      askForSize(std::max(height_, kFirstSize));
      draw();
      break;
    }
    case XCB_EXPOSE:
      draw();
      break;
    case XCB_BUTTON_RELEASE:
      handleButton(*static_cast<const xcb_button_release_event_t*>(any));
      break;
    case XCB_ENTER_NOTIFY:
      toolTipDelay_.start(kToolTipDelay);
      break;
    case XCB_LEAVE_NOTIFY:
      toolTipDelay_.stop();
      QToolTip::hideText();
      break;
    default:
      break;
  }
}

void HLEmbeddedIcon::handleButton(const xcb_button_release_event_t& event) {
  toolTipDelay_.stop();
  QToolTip::hideText();
  const bool inside = event.event_x >= 0 && event.event_y >= 0 && event.event_x < width_ && event.event_y < height_;
  if (!inside || std::find(std::begin(kButtons), std::end(kButtons), event.detail) == std::end(kButtons)) return;
  const std::int64_t type = event.detail == 1 ? HLEventLeftMouseUp : HLEventRightMouseUp;
  const HLTrayClick click{type, modifiersOf(event.state), geometry()};
  // Posted: the handler may open a menu, whose nested loop must be able to handle further events.
  QTimer::singleShot(0, this, [this, click] { item_.clicked(click); });
}

// The tray

void HLEmbeddedIcon::findTray() {
  undock();
  const auto cookie =
      xcb_get_selection_owner(x_.get(), x_.atom("_NET_SYSTEM_TRAY_S" + std::to_string(x_.screenNumber())));
  const HLXReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(x_.get(), cookie, nullptr));
  tray_ = owner == nullptr ? static_cast<xcb_window_t>(XCB_NONE) : owner->owner;
  if (tray_ != XCB_NONE) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(x_.get(), tray_, XCB_CW_EVENT_MASK, &mask);
    dock();
  }
  xcb_flush(x_.get());
  changed_(tray_ != XCB_NONE);
}

void HLEmbeddedIcon::dock() {
  if (tray_ == XCB_NONE || window_ != XCB_NONE) return;
  const std::vector<std::uint32_t> wish = x_.property(tray_, x_.atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID);
  const HLXVisual usual{x_.screen().root_visual, x_.screen().root_depth};
  visual_ = wish.empty() ? usual : x_.visual(wish.front()).value_or(usual);
  width_ = height_ = kFirstSize;
  asked_ = 0;

  const xcb_colormap_t colormap = xcb_generate_id(x_.get());
  xcb_create_colormap(x_.get(), XCB_COLORMAP_ALLOC_NONE, colormap, x_.screen().root, visual_.id);
  window_ = xcb_generate_id(x_.get());
  const std::array<std::uint32_t, 4> values = {0, 0, kEventMask, colormap};
  xcb_create_window(x_.get(), visual_.depth, window_, x_.screen().root, 0, 0, kFirstSize, kFirstSize, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_.id,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values.data());
  context_ = xcb_generate_id(x_.get());
  xcb_create_gc(x_.get(), context_, window_, 0, nullptr);

  const QByteArray name = item_.displayName.toUtf8();
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, window_, x_.atom("_NET_WM_NAME"), x_.atom("UTF8_STRING"), 8,
                      static_cast<std::uint32_t>(name.size()), name.constData());
  const QByteArray id = item_.identifier.toUtf8();
  const QByteArray classes = id + '\0' + id + '\0';
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(classes.size()), classes.constData());
  const xcb_atom_t info = x_.atom("_XEMBED_INFO");
  const std::array<std::uint32_t, 2> embedded = {0, kEmbeddedMapped};
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, window_, info, info, 32, 2, embedded.data());

  askForSize(kFirstSize);

  xcb_client_message_event_t request{};
  request.response_type = XCB_CLIENT_MESSAGE;
  request.format = 32;
  request.window = tray_;
  request.type = x_.atom("_NET_SYSTEM_TRAY_OPCODE");
  request.data.data32[1] = kDockRequest;
  request.data.data32[2] = window_;
  xcb_send_event(x_.get(), 0, tray_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&request));
  xcb_flush(x_.get());
  QTimer::singleShot(0, this, [this] { handleEvents(); });
}

// Asks for a square of the tray's height. Trays read the minimum size; some use a single pixel without one.
void HLEmbeddedIcon::askForSize(int size) {
  if (std::exchange(asked_, size) == size) return;
  std::array<std::uint32_t, kSizeHints> hints{};
  hints[0] = kLeastSizeFlag;
  hints[kLeastWidth] = hints[kLeastHeight] = static_cast<std::uint32_t>(size);
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                      kSizeHints, hints.data());
}

void HLEmbeddedIcon::undock() {
  if (window_ == XCB_NONE) return;
  xcb_free_gc(x_.get(), context_);
  xcb_destroy_window(x_.get(), std::exchange(window_, static_cast<xcb_window_t>(XCB_NONE)));
  xcb_flush(x_.get());
}

QRect HLEmbeddedIcon::geometry() const {
  const auto cookie = xcb_translate_coordinates(x_.get(), window_, x_.screen().root, 0, 0);
  const HLXReply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(x_.get(), cookie, nullptr));
  if (place == nullptr) return {};
  const double scale = qGuiApp->devicePixelRatio();
  return {qRound(place->dst_x / scale), qRound(place->dst_y / scale), qRound(width_ / scale), qRound(height_ / scale)};
}

void HLEmbeddedIcon::showToolTip() {
  const QRect item = geometry();
  QToolTip::showText(item.center(), item_.toolTip);
}
