// Hot keys on a real X server, pressed by its test extension.
#include "platform/linux/qt/services/linux_hot_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/qt/services/x11_hot_keys.h"
#include "tests/platform/linux/support/desktop_session.h"
#include "tests/support/listener.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kN = 45;  // virtual key codes
constexpr std::uint32_t kF5 = 96;
constexpr std::uint32_t kF6 = 97;
constexpr std::uint32_t kThree = HLHotKeyCommand | HLHotKeyOption | HLHotKeyControl;
const HLHotKeyIdentity kNoIdentity;

constexpr xcb_keysym_t kScrollLock = 0xFF14;
constexpr int kThird = 5;  // in the server's table of modifiers: Shift, Lock, Control, then these by their numbers
constexpr int kFourth = 6;

constexpr xcb_keycode_t keycode(int kernelKey) { return static_cast<xcb_keycode_t>(kernelKey + 8); }

// Another program on the same X server, which can also press keys.
class OtherClient {
 public:
  OtherClient() : connection_(xcb_connect(nullptr, nullptr)) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  }
  OtherClient(const OtherClient&) = delete;
  OtherClient& operator=(const OtherClient&) = delete;
  ~OtherClient() { xcb_disconnect(connection_); }

  void fake(std::uint8_t type, int kernelKey) {
    xcb_test_fake_input(connection_, type, keycode(kernelKey), XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    sync();
  }
  void down(int kernelKey) { fake(XCB_KEY_PRESS, kernelKey); }
  void up(int kernelKey) { fake(XCB_KEY_RELEASE, kernelKey); }

  // Presses them in this order and releases them in the other, then rests as any hand must: the server's clock has
  // milliseconds, and what is pressed at the moment of its release is a repetition.
  void press(const std::vector<int>& kernelKeys) {
    for (int key : kernelKeys) down(key);
    for (auto key = kernelKeys.rbegin(); key != kernelKeys.rend(); ++key) up(*key);
    std::this_thread::sleep_for(milliseconds(2));
  }

  // Whether it could be grabbed.
  bool grab(int kernelKey, std::uint16_t modifiers) {
    xcb_generic_error_t* error =
        xcb_request_check(connection_, xcb_grab_key_checked(connection_, 0, root_, modifiers, keycode(kernelKey),
                                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    const bool grabbed = error == nullptr;
    std::free(error);
    return grabbed;
  }
  void ungrab(int kernelKey, std::uint16_t modifiers) {
    xcb_ungrab_key(connection_, keycode(kernelKey), root_, modifiers);
    sync();
  }
  bool canGrab(int kernelKey, std::uint16_t modifiers) {
    const bool could = grab(kernelKey, modifiers);
    if (could) ungrab(kernelKey, modifiers);
    return could;
  }

  int takeKeyPresses() {
    int count = 0;
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
      count += event->response_type == XCB_KEY_PRESS ? 1 : 0;
      std::free(event);
    }
    return count;
  }

  // Passes the modifier mapping and its keycodes per modifier to `change`, then sets the result.
  void changeModifiers(const std::function<void(xcb_keycode_t* codes, int width)>& change) {
    xcb_get_modifier_mapping_reply_t* mapping =
        xcb_get_modifier_mapping_reply(connection_, xcb_get_modifier_mapping(connection_), nullptr);
    change(xcb_get_modifier_mapping_keycodes(mapping), mapping->keycodes_per_modifier);
    std::free(xcb_set_modifier_mapping_reply(connection_,
                                             xcb_set_modifier_mapping(connection_, mapping->keycodes_per_modifier,
                                                                      xcb_get_modifier_mapping_keycodes(mapping)),
                                             nullptr));
    std::free(mapping);
  }

  void changeSymbols(int kernelKey, const std::vector<xcb_keysym_t>& symbols) {
    xcb_change_keyboard_mapping(connection_, 1, keycode(kernelKey), static_cast<std::uint8_t>(symbols.size()),
                                symbols.data());
  }

  void sync() { std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)); }

 private:
  xcb_connection_t* const connection_;
  xcb_window_t root_ = 0;
};

class HotKeys : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("XDG_SESSION_TYPE");
    keys_->installHandler([this](const std::optional<HLHotKeyIdentity>& identity) {
      fired_.push_back(identity ? identity->id : 0);
      return HLHotKeyStatus::success;
    });
  }

  HLHotKeyRegistration add(std::uint32_t code, std::uint32_t modifiers, std::uint32_t id = 1) {
    return keys_->registerHotKey(code, modifiers, {"HLhk", id});
  }

  bool runUntil(const std::function<bool()>& condition) {
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(20);
    while (!condition()) {
      if (Clock::now() >= deadline) return false;
      loop_.runFor(0.005);
    }
    return true;
  }

  // What has fired, once all that was pressed has been delivered: a key that is pressed last fires last.
  std::vector<std::uint32_t> fired() {
    constexpr std::uint32_t kLast = 99;
    const HLHotKeyRegistration last = add(kF6, HLHotKeyShift, kLast);
    EXPECT_EQ(last.status, HLHotKeyStatus::success);
    other_.press({KEY_LEFTSHIFT, KEY_F6});
    EXPECT_TRUE(runUntil([&] { return !fired_.empty() && fired_.back() == kLast; }));
    if (!fired_.empty()) fired_.pop_back();
    return std::exchange(fired_, {});
  }

  DesktopSession session_{WithoutAccessibility()};
  SessionEnvironment environment_{session_.environment()};
  HLLinuxRunLoop loop_;
  std::unique_ptr<HLQtHotKeys> keys_ = std::make_unique<HLQtHotKeys>(loop_, "com.example.program");
  OtherClient other_;
  std::vector<std::uint32_t> fired_;
};

const std::vector<int> kThreeAndN = {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_N};

TEST_F(HotKeys, FireWhenTheirCombinationIsPressed) {
  const HLHotKeyRegistration registration = add(kN, kThree, 7);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  ASSERT_NE(registration.hotKey, nullptr);
  other_.press(kThreeAndN);
  EXPECT_THAT(fired(), ElementsAre(7));
  other_.press({KEY_RIGHTCTRL, KEY_RIGHTALT, KEY_RIGHTMETA, KEY_N});
  other_.press(kThreeAndN);
  EXPECT_THAT(fired(), ElementsAre(7, 7));
}

TEST_F(HotKeys, DoNotFireForOtherCombinations) {
  const HLHotKeyRegistration registration = add(kN, kThree);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  for (const std::vector<int>& keys :
       std::vector<std::vector<int>>{{KEY_N},
                                     {KEY_LEFTCTRL, KEY_LEFTALT, KEY_N},
                                     {KEY_LEFTCTRL, KEY_LEFTMETA, KEY_N},
                                     {KEY_LEFTALT, KEY_LEFTMETA, KEY_N},
                                     {KEY_LEFTSHIFT, KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_N},
                                     {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_M}}) {
    other_.press(keys);
  }
  EXPECT_THAT(fired(), IsEmpty());
}

// Where Scroll Lock switches a light, it is the third modifier. In the second layout the key here is a letter.
TEST_F(HotKeys, FireWhateverTheLocks) {
  other_.changeSymbols(KEY_SCROLLLOCK, {kScrollLock, XCB_NO_SYMBOL, 'a', XCB_NO_SYMBOL});
  other_.changeModifiers([](xcb_keycode_t* codes, int width) { codes[kThird * width] = keycode(KEY_SCROLLLOCK); });
  const HLHotKeyRegistration registration = add(kF5, 0);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  other_.press({KEY_NUMLOCK});
  other_.press({KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(1)) << "Num Lock";
  other_.press({KEY_CAPSLOCK});
  other_.press({KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(1)) << "Num Lock and Caps Lock";
  other_.press({KEY_NUMLOCK});
  other_.press({KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(1)) << "Caps Lock";
  other_.press({KEY_SCROLLLOCK});
  other_.press({KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(1)) << "Caps Lock and Scroll Lock";
}

TEST_F(HotKeys, FireOnceWhenHeldDown) {
  // How long it takes the server to repeat a key, seen at one of another program's.
  ASSERT_TRUE(other_.grab(KEY_F7, XCB_MOD_MASK_ANY));
  const Clock::time_point begin = Clock::now();
  other_.down(KEY_F7);
  int presses = 0;
  ASSERT_TRUE(Eventually([&] { return (presses += other_.takeKeyPresses()) >= 4; })) << "the server repeats no keys";
  const std::chrono::duration<double> held = Clock::now() - begin;
  other_.up(KEY_F7);

  const HLHotKeyRegistration registration = add(kF5, 0);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  other_.down(KEY_F5);
  loop_.runFor(held.count() * 1.5);
  other_.up(KEY_F5);
  EXPECT_THAT(fired(), ElementsAre(1));
  other_.press({KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(1));
}

TEST_F(HotKeys, AreTakenWhileHeldElsewhere) {
  ASSERT_TRUE(other_.grab(KEY_F5, XCB_MOD_MASK_CONTROL));
  const HLHotKeyRegistration registration = add(kF5, HLHotKeyControl);
  EXPECT_EQ(registration.status, HLHotKeyStatus::taken);
  EXPECT_EQ(registration.hotKey, nullptr);
  other_.ungrab(KEY_F5, XCB_MOD_MASK_CONTROL);
  EXPECT_EQ(add(kF5, HLHotKeyControl).status, HLHotKeyStatus::success);
}

TEST_F(HotKeys, GrabNothingWhenPartlyHeldElsewhere) {
  ASSERT_TRUE(other_.grab(KEY_F5, XCB_MOD_MASK_LOCK));
  EXPECT_EQ(add(kF5, 0).status, HLHotKeyStatus::taken);
  EXPECT_TRUE(other_.canGrab(KEY_F5, 0));
  EXPECT_TRUE(other_.canGrab(KEY_F5, XCB_MOD_MASK_2));
}

TEST_F(HotKeys, AreGivenBackAtTheirEnd) {
  HLHotKeyRegistration registration = add(kF5, 0);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  constexpr std::uint16_t kBoth = XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2;
  for (std::uint16_t locks : std::vector<std::uint16_t>{0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, kBoth}) {
    EXPECT_FALSE(other_.canGrab(KEY_F5, locks));
  }
  registration.hotKey = nullptr;
  EXPECT_TRUE(other_.canGrab(KEY_F5, XCB_MOD_MASK_ANY));
  other_.press({KEY_F5});
  EXPECT_THAT(fired(), IsEmpty());
  registration = add(kF5, 0, 2);
  other_.press({KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(2));
}

TEST_F(HotKeys, AreToldApartWithinOneProgram) {
  const HLHotKeyRegistration one = add(kF5, 0, 1);
  const HLHotKeyRegistration two = add(kF5, HLHotKeyShift, 2);
  const HLHotKeyRegistration three = add(kN, HLHotKeyOption, 3);
  other_.press({KEY_LEFTALT, KEY_N});
  other_.press({KEY_F5});
  other_.press({KEY_LEFTSHIFT, KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(3, 1, 2));
  EXPECT_EQ(add(kF5, 0).status, HLHotKeyStatus::taken) << "it is held by this program itself";
}

TEST_F(HotKeys, FailForUnknownKeys) {
  EXPECT_EQ(add(0xFFFF, kThree).status, HLHotKeyStatus::failed);
  EXPECT_EQ(add(0x7F, kThree).status, HLHotKeyStatus::failed);
}

TEST_F(HotKeys, MayBeReplacedByTheirHandler) {
  HLHotKeyRegistration registration = add(kF5, 0);
  keys_->installHandler([&](const std::optional<HLHotKeyIdentity>& identity) {
    fired_.push_back(identity.value_or(kNoIdentity).id);
    if (identity.value_or(kNoIdentity).id != 1) return HLHotKeyStatus::success;
    registration.hotKey = nullptr;
    registration = add(kF5, HLHotKeyShift, 2);
    return HLHotKeyStatus::success;
  });
  other_.press({KEY_F5});
  ASSERT_TRUE(runUntil([this] { return fired_.size() == 1; }));
  other_.press({KEY_F5});
  other_.press({KEY_LEFTSHIFT, KEY_F5});
  EXPECT_THAT(fired(), ElementsAre(1, 2));
}

TEST_F(HotKeys, FollowAChangeOfTheModifiers) {
  const HLHotKeyRegistration registration = add(kN, HLHotKeyCommand);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  ASSERT_FALSE(other_.canGrab(KEY_N, XCB_MOD_MASK_4));
  ASSERT_TRUE(other_.canGrab(KEY_N, XCB_MOD_MASK_3));
  other_.changeModifiers([](xcb_keycode_t* codes, int width) {
    std::swap_ranges(codes + kThird * width, codes + kFourth * width, codes + kFourth * width);
  });
  EXPECT_TRUE(runUntil([this] { return !other_.canGrab(KEY_N, XCB_MOD_MASK_3); }));
  EXPECT_TRUE(other_.canGrab(KEY_N, XCB_MOD_MASK_4));
  other_.press({KEY_LEFTMETA, KEY_N});
  EXPECT_THAT(fired(), ElementsAre(1));
}

TEST_F(HotKeys, OutliveTheirMaker) {
  const HLHotKeyRegistration registration = add(kF5, 0);
  keys_ = nullptr;
  other_.press({KEY_F5});
  EXPECT_TRUE(runUntil([this] { return fired_.size() == 1; }));
}

// The server grants the grab, and is never told of the key.
TEST_F(HotKeys, AvoidTheXServerOnWayland) {
  setenv("WAYLAND_DISPLAY", "wayland-7", 1);
  EXPECT_EQ(HLQtHotKeys(loop_, "com.example.program").registerHotKey(kF5, 0, {"HLhk", 1}).status,
            HLHotKeyStatus::success)
      << "the name has outlived its compositor";

  const Listener compositor(session_.environment().at("XDG_RUNTIME_DIR") + "/wayland-7");
  for (const char* type : {"tty", "", "wayland"}) {
    setenv("XDG_SESSION_TYPE", type, 1);
    EXPECT_EQ(HLQtHotKeys(loop_, "com.example.program").registerHotKey(kF5, 0, {"HLhk", 1}).status,
              HLHotKeyStatus::failed)
        << "there is no portal; type " << type;
  }
}

TEST_F(HotKeys, EndQuietlyWithTheirServer) {
  const HLHotKeyRegistration registration = add(kF5, 0);
  ASSERT_EQ(registration.status, HLHotKeyStatus::success);
  setenv("DISPLAY", ":54321", 1);
  HLQtHotKeys none(loop_, "com.example.program");
  EXPECT_EQ(none.registerHotKey(kF5, 0, {"HLhk", 1}).status, HLHotKeyStatus::failed) << "there is no such display";
  unsetenv("DISPLAY");
  EXPECT_EQ(none.registerHotKey(kF5, 0, {"HLhk", 1}).status, HLHotKeyStatus::failed);
  loop_.runFor(0.01);
}

}  // namespace
