// What the application asks of the system besides windows, as far as it can be looked at without a user.
#import <AppKit/AppKit.h>
#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/macos/system/macos_hot_keys.h"
#include "platform/macos/system/macos_login_item.h"
#include "platform/macos/system/macos_user_notifications.h"
#include "platform/macos/system/macos_workspace.h"

namespace {

// This program has no bundle.
TEST(UserNotifications, ReportErrorOutsideBundle) {
  HLMacUserNotifications notifications;
  std::optional<std::string> asked;
  bool allowed = true;
  notifications.requestAuthorization([&](bool granted, std::optional<std::string> error) {
    allowed = granted;
    asked = std::move(error);
  });
  EXPECT_FALSE(allowed);
  EXPECT_TRUE(asked.has_value());
  std::optional<std::string> added;
  notifications.add({"test", "Title", "Body", 1, false},
                    [&](std::optional<std::string> error) { added = std::move(error); });
  EXPECT_TRUE(added.has_value());
}

TEST(LoginItem, IsNotEnabledOutsideABundle) { EXPECT_NE(HLMacLoginItem().status(), HLLoginItemStatus::enabled); }

TEST(Workspace, OpensNoAddressWithoutAScheme) {
  HLMacWorkspace workspace;
  EXPECT_FALSE(workspace.openAddress(""));
  EXPECT_FALSE(workspace.openAddress("example.com/download"));
}

class HotKeys : public testing::Test {
 protected:
  static constexpr std::uint32_t kF19 = 80;
  static constexpr std::uint32_t kModifiers = HLHotKeyCommand | HLHotKeyControl | HLHotKeyOption;
  const HLHotKeyIdentity identity_{"HLhk", 1};
  HLMacHotKeys hotKeys_;

  // What the handlers answer to a press of the hot key with that identity, or without any.
  static OSStatus press(const EventHotKeyID* identity) {
    EventRef event = nullptr;
    EXPECT_EQ(CreateEvent(nullptr, kEventClassKeyboard, kEventHotKeyPressed, 0, kEventAttributeNone, &event), noErr);
    if (identity != nullptr) {
      SetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, sizeof *identity, identity);
    }
    const OSStatus status = SendEventToEventTarget(event, GetApplicationEventTarget());
    ReleaseEvent(event);
    return status;
  }
};

TEST_F(HotKeys, AreGivenBackWhenTheyEnd) {
  for (int round = 0; round < 2; ++round) {
    const HLHotKeyRegistration registration = hotKeys_.registerHotKey(kF19, kModifiers, identity_);
    EXPECT_EQ(registration.status, HLHotKeyStatus::success);
    EXPECT_NE(registration.hotKey, nullptr);
  }
}

TEST_F(HotKeys, AreTakenWhileProgramHoldsThem) {
  const HLHotKeyRegistration first = hotKeys_.registerHotKey(kF19, kModifiers, identity_);
  const HLHotKeyRegistration second = hotKeys_.registerHotKey(kF19, kModifiers, {"HLhk", 2});
  EXPECT_EQ(second.status, HLHotKeyStatus::taken);
  EXPECT_EQ(second.hotKey, nullptr);
}

TEST_F(HotKeys, TellHandlerWhichWasPressed) {
  std::optional<HLHotKeyIdentity> pressed;
  hotKeys_.installHandler([&](const std::optional<HLHotKeyIdentity>& identity) {
    pressed = identity;
    return identity == identity_ ? HLHotKeyStatus::success : HLHotKeyStatus::notHandled;
  });
  const EventHotKeyID ours{'HLhk', 1};
  EXPECT_EQ(press(&ours), noErr);
  EXPECT_EQ(pressed, identity_);
  const EventHotKeyID another{'abcd', 7};
  EXPECT_EQ(press(&another), eventNotHandledErr);
  EXPECT_EQ(pressed, (HLHotKeyIdentity{"abcd", 7}));
  EXPECT_EQ(press(nullptr), eventNotHandledErr);
  EXPECT_FALSE(pressed.has_value());
}

}  // namespace
