#include "platform/linux/qt/services/x11_hot_keys.h"

#include <xcb/xcb.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/qt/services/key_codes.h"

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

constexpr xcb_keysym_t kNumLock = 0xFF7F;
constexpr xcb_keysym_t kScrollLock = 0xFF14;
constexpr xcb_keysym_t kAltLeft = 0xFFE9;
constexpr xcb_keysym_t kAltRight = 0xFFEA;
constexpr xcb_keysym_t kSuperLeft = 0xFFEB;
constexpr xcb_keysym_t kSuperRight = 0xFFEC;
constexpr std::uint16_t kAllModifiers = 0xFF;
constexpr std::uint8_t kBadAccess = 10;

// Modifier bits of the current keyboard map; 0 if no key has that modifier.
struct Masks {
  std::uint16_t command = 0;
  std::uint16_t option = 0;
  std::uint16_t numLock = 0;
  std::uint16_t scrollLock = 0;
  bool operator==(const Masks&) const = default;

  [[nodiscard]] std::uint16_t locks() const {
    return static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK | numLock | scrollLock);
  }

  void take(xcb_keysym_t symbol, std::uint16_t bit) {
    // Shift, Lock and Control keep their meaning whatever keys are mapped to them.
    if (bit <= XCB_MOD_MASK_CONTROL) return;
    const auto add = [bit](std::uint16_t& mask) { mask = mask == 0 ? bit : mask; };
    if (symbol == kSuperLeft || symbol == kSuperRight) add(command);
    if (symbol == kAltLeft || symbol == kAltRight) add(option);
    if (symbol == kNumLock) add(numLock);
    if (symbol == kScrollLock) add(scrollLock);
  }
};

Masks readMasks(xcb_connection_t* connection) {
  const xcb_setup_t& setup = *xcb_get_setup(connection);
  const auto keyCount = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
  const auto modifiersAsked = xcb_get_modifier_mapping(connection);
  const auto symbolsAsked = xcb_get_keyboard_mapping(connection, setup.min_keycode, keyCount);
  const Reply<xcb_get_modifier_mapping_reply_t> modifiers(
      xcb_get_modifier_mapping_reply(connection, modifiersAsked, nullptr));
  const Reply<xcb_get_keyboard_mapping_reply_t> symbols(
      xcb_get_keyboard_mapping_reply(connection, symbolsAsked, nullptr));
  Masks masks;
  if (modifiers == nullptr || symbols == nullptr) return masks;
  const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(modifiers.get());
  const xcb_keysym_t* names = xcb_get_keyboard_mapping_keysyms(symbols.get());
  const int perModifier = modifiers->keycodes_per_modifier;
  const int perKey = symbols->keysyms_per_keycode;
  for (int i = 0; i < 8 * perModifier; ++i) {
    if (codes[i] < setup.min_keycode) continue;  // an unused entry
    const auto bit = static_cast<std::uint16_t>(1U << static_cast<unsigned>(i / perModifier));
    const xcb_keysym_t* ofKey = names + (codes[i] - setup.min_keycode) * perKey;
    for (int symbol = 0; symbol < perKey; ++symbol) masks.take(ofKey[symbol], bit);
  }
  return masks;
}

// Returns the X11 modifier mask; nullopt if the keyboard lacks one of the modifiers.
std::optional<std::uint16_t> modifierMask(std::uint32_t modifiers, const Masks& masks) {
  std::uint16_t mask = 0;
  const std::array<std::pair<std::uint32_t, std::uint16_t>, 4> pairs = {{{HLHotKeyCommand, masks.command},
                                                                         {HLHotKeyOption, masks.option},
                                                                         {HLHotKeyShift, XCB_MOD_MASK_SHIFT},
                                                                         {HLHotKeyControl, XCB_MOD_MASK_CONTROL}}};
  for (const auto& [wanted, bit] : pairs) {
    if ((modifiers & wanted) == 0) continue;
    if (bit == 0) return std::nullopt;
    mask |= bit;
  }
  return mask;
}

}  // namespace

class HLX11HotKeys::HotKey : public HLHotKey {
 public:
  HotKey(std::shared_ptr<Display> display, xcb_keycode_t key, std::uint32_t modifiers, HLHotKeyIdentity identity);
  ~HotKey() override;

  [[nodiscard]] const HLHotKeyIdentity& identity() const { return identity_; }
  [[nodiscard]] HLHotKeyStatus grab();
  void ungrab();
  [[nodiscard]] bool isSame(xcb_keycode_t key, std::uint32_t modifiers) const {
    return key == key_ && modifiers == modifiers_;
  }
  // Returns whether the event presses this hot key. False for auto-repeat.
  [[nodiscard]] bool takePress(const xcb_key_press_event_t& event);
  void takeRelease(const xcb_key_release_event_t& event);

 private:
  const std::shared_ptr<Display> display_;
  const xcb_keycode_t key_;
  const std::uint32_t modifiers_;
  const HLHotKeyIdentity identity_;
  std::optional<std::uint16_t> mask_;  // set while grabbed
  std::uint16_t locks_ = 0;
  bool isDown_ = false;
  std::optional<xcb_timestamp_t> lastRelease_;
};

class HLX11HotKeys::Display {
 public:
  Display(HLLinuxRunLoop& runLoop, std::shared_ptr<const Handler> handler)
      : runLoop_(runLoop), handler_(std::move(handler)), connection_(xcb_connect(nullptr, nullptr)) {
    if (!works()) return;
    masks_ = readMasks(connection_);
    source_ = runLoop_.addSource({xcb_get_file_descriptor(connection_), [this] { return serve(); }});
  }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;
  ~Display() {
    runLoop_.removeSource(source_);
    xcb_disconnect(connection_);
  }

  [[nodiscard]] bool works() const { return xcb_connection_has_error(connection_) == 0; }
  [[nodiscard]] const Masks& masks() const { return masks_; }

  // Grabs on every screen for every lock-modifier combination: X11 cannot ignore selected modifiers.
  [[nodiscard]] HLHotKeyStatus grab(xcb_keycode_t key, std::uint16_t mask) {
    std::vector<xcb_void_cookie_t> asked;
    forEachGrab(mask, masks_.locks(), [&](xcb_window_t root, std::uint16_t modifiers) {
      asked.push_back(
          xcb_grab_key_checked(connection_, 0, root, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    });
    HLHotKeyStatus status = HLHotKeyStatus::success;
    for (const xcb_void_cookie_t& request : asked) {
      const Reply<xcb_generic_error_t> error(xcb_request_check(connection_, request));
      if (error != nullptr) status = error->error_code == kBadAccess ? HLHotKeyStatus::taken : HLHotKeyStatus::failed;
    }
    if (!works()) status = HLHotKeyStatus::failed;
    if (status != HLHotKeyStatus::success) ungrab(key, mask, masks_.locks());
    // xcb may have queued events along with the replies; the descriptor does not signal those.
    runLoop_.postToMainQueue([] {});
    return status;
  }

  void ungrab(xcb_keycode_t key, std::uint16_t mask, std::uint16_t locks) {
    forEachGrab(mask, locks,
                [&](xcb_window_t root, std::uint16_t modifiers) { xcb_ungrab_key(connection_, key, root, modifiers); });
    xcb_flush(connection_);
    // A round trip: the server has released the combination when this returns.
    const Reply<xcb_get_input_focus_reply_t> passed(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    runLoop_.postToMainQueue([] {});
  }

  void add(HotKey* hotKey) { hotKeys_.push_back(hotKey); }
  void remove(HotKey* hotKey) { std::erase(hotKeys_, hotKey); }
  [[nodiscard]] bool has(xcb_keycode_t key, std::uint32_t modifiers) const {
    for (const HotKey* hotKey : hotKeys_) {
      if (hotKey->isSame(key, modifiers)) return true;
    }
    return false;
  }

 private:
  template <class Function>
  void forEachGrab(std::uint16_t mask, std::uint16_t locks, const Function& function) {
    for (xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)); screen.rem > 0;
         xcb_screen_next(&screen)) {
      // Enumerates every subset of the lock bits, from all of them to none.
      for (unsigned subset = locks;; subset = (subset - 1) & locks) {
        function(screen.data->root, static_cast<std::uint16_t>(mask | subset));
        if (subset == 0) break;
      }
    }
  }

  bool serve() {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) take(*event);
    return works();
  }

  void take(const xcb_generic_event_t& event) {
    constexpr std::uint8_t kSentByAProgram = 0x80;
    const auto kind = static_cast<std::uint8_t>(event.response_type & ~kSentByAProgram);
    if (kind == XCB_MAPPING_NOTIFY) return takeNewMapping();
    if ((event.response_type & kSentByAProgram) != 0) return;  // sent by SendEvent: no key was pressed
    const std::vector<HotKey*> hotKeys = hotKeys_;
    for (HotKey* hotKey : hotKeys) {
      if (kind == XCB_KEY_RELEASE) hotKey->takeRelease(reinterpret_cast<const xcb_key_release_event_t&>(event));
      if (kind == XCB_KEY_PRESS && hotKey->takePress(reinterpret_cast<const xcb_key_press_event_t&>(event))) {
        pressed(hotKey->identity());
      }
    }
  }

  // Posted, so that all received events are processed first: the handler may register or destroy hot keys.
  void pressed(const HLHotKeyIdentity& identity) {
    runLoop_.postToMainQueue([handler = handler_, identity] {
      if (*handler) (void)(*handler)(identity);
    });
  }

  void takeNewMapping() {
    const Masks masks = readMasks(connection_);
    if (masks == masks_) return;
    for (HotKey* hotKey : hotKeys_) hotKey->ungrab();
    masks_ = masks;
    for (HotKey* hotKey : hotKeys_) (void)hotKey->grab();  // if taken now, the next change of the map retries
  }

  HLLinuxRunLoop& runLoop_;
  const std::shared_ptr<const Handler> handler_;
  xcb_connection_t* const connection_;
  Masks masks_;
  int source_ = 0;
  std::vector<HotKey*> hotKeys_;
};

HLX11HotKeys::HotKey::HotKey(std::shared_ptr<Display> display, xcb_keycode_t key, std::uint32_t modifiers,
                             HLHotKeyIdentity identity)
    : display_(std::move(display)), key_(key), modifiers_(modifiers), identity_(std::move(identity)) {
  display_->add(this);
}

HLX11HotKeys::HotKey::~HotKey() {
  display_->remove(this);
  ungrab();
}

HLHotKeyStatus HLX11HotKeys::HotKey::grab() {
  const std::optional<std::uint16_t> mask = modifierMask(modifiers_, display_->masks());
  if (!mask) return HLHotKeyStatus::failed;
  const HLHotKeyStatus status = display_->grab(key_, *mask);
  if (status == HLHotKeyStatus::success) {
    mask_ = mask;
    locks_ = display_->masks().locks();
  }
  return status;
}

void HLX11HotKeys::HotKey::ungrab() {
  if (mask_) display_->ungrab(key_, *mask_, locks_);
  mask_ = std::nullopt;
  isDown_ = false;
}

// X11 auto-repeat sends a release and a press with the same timestamp.
bool HLX11HotKeys::HotKey::takePress(const xcb_key_press_event_t& event) {
  if (!mask_ || event.detail != key_ || (event.state & kAllModifiers & ~locks_) != *mask_) return false;
  const bool repeats = isDown_ || event.time == lastRelease_;
  isDown_ = true;
  return !repeats;
}

void HLX11HotKeys::HotKey::takeRelease(const xcb_key_release_event_t& event) {
  if (!isDown_ || event.detail != key_) return;
  isDown_ = false;
  lastRelease_ = event.time;
}

HLX11HotKeys::HLX11HotKeys(HLLinuxRunLoop& runLoop) : runLoop_(runLoop) {}
HLX11HotKeys::~HLX11HotKeys() = default;

void HLX11HotKeys::installHandler(Handler handler) { *handler_ = std::move(handler); }

HLHotKeyRegistration HLX11HotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                  const HLHotKeyIdentity& identity) {
  const std::optional<std::uint32_t> kernelKey = HLKernelKeyForVirtualKey(code);
  if (!kernelKey || *kernelKey > 0xFF - HLKeycodeOffsetOfXKB) return {HLHotKeyStatus::failed, nullptr};
  const auto key = static_cast<xcb_keycode_t>(*kernelKey + HLKeycodeOffsetOfXKB);
  if (display_ == nullptr || !display_->works()) display_ = std::make_shared<Display>(runLoop_, handler_);
  if (!display_->works()) return {HLHotKeyStatus::failed, nullptr};
  if (display_->has(key, modifiers)) return {HLHotKeyStatus::taken, nullptr};
  auto hotKey = std::make_unique<HotKey>(display_, key, modifiers, identity);
  const HLHotKeyStatus status = hotKey->grab();
  if (status != HLHotKeyStatus::success) return {status, nullptr};
  return {status, std::move(hotKey)};
}
