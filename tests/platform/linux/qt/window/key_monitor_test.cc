// Key presses in the program's windows, as macOS numbers them.
#include "platform/linux/qt/window/key_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <QApplication>
#include <QKeyEvent>
#include <memory>
#include <vector>

#include "platform/application/application.h"
#include "platform/linux/qt/services/key_codes.h"
#include "tests/platform/linux/qt/offscreen.h"
#include "tests/platform/linux/qt/qt_descriptions.h"

namespace {

QKeyEvent keyPress(int key, quint32 kernelKey, Qt::KeyboardModifiers modifiers, const QString& text = "") {
  return {QEvent::KeyPress, key, modifiers, kernelKey + HLKeycodeOffsetOfXKB, 0, 0, text};
}

class KeyMonitor : public testing::Test {
 protected:
  void SetUp() override {
    window_ = Offscreen().windows().makeWindow(SetupWindow({.primary = [this] { ++pressed_; }}));
    window_->makeKeyAndOrderFront();
  }

  std::unique_ptr<HLKeyMonitor> monitor() {
    return Offscreen().application().addKeyMonitor([this](const HLKeyEvent& key) { keys_.push_back(key); });
  }

  void send(QKeyEvent event) { QApplication::sendEvent(dynamic_cast<QWidget*>(window_.get()), &event); }

  std::unique_ptr<HLWindow> window_;
  std::vector<HLKeyEvent> keys_;
  int pressed_ = 0;
};

TEST_F(KeyMonitor, ReportsPositionModifiersAndCharacter) {
  const auto watching = monitor();
  send(keyPress(Qt::Key_N, KEY_N, Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier, "\x0E"));
  send(keyPress(Qt::Key_F5, KEY_F5, Qt::ShiftModifier));
  ASSERT_EQ(keys_.size(), 2U);
  EXPECT_EQ(keys_[0].code, 45);
  EXPECT_EQ(keys_[0].modifiers, HLModifierControl | HLModifierOption | HLModifierCommand);
  EXPECT_EQ(keys_[0].charactersIgnoringModifiers, "n");
  EXPECT_EQ(keys_[1].code, 96);
  EXPECT_EQ(keys_[1].modifiers, HLModifierShift);
  EXPECT_EQ(keys_[1].charactersIgnoringModifiers, "");
}

TEST_F(KeyMonitor, IgnoresKeyboardLayout) {
  const auto watching = monitor();
  send(keyPress(Qt::Key_Z, KEY_Y, Qt::AltModifier));  // a German keyboard
  ASSERT_EQ(keys_.size(), 1U);
  EXPECT_EQ(keys_[0].code, 16);
  EXPECT_EQ(keys_[0].charactersIgnoringModifiers, "z");
}

TEST_F(KeyMonitor, WhatItSeesGoesNoFurther) {
  auto watching = monitor();
  send(keyPress(Qt::Key_Return, KEY_ENTER, Qt::NoModifier, "\r"));
  EXPECT_EQ(keys_.size(), 1U);
  EXPECT_EQ(pressed_, 0);
  watching = nullptr;
  send(keyPress(Qt::Key_Return, KEY_ENTER, Qt::NoModifier, "\r"));
  EXPECT_EQ(keys_.size(), 1U);
  EXPECT_EQ(pressed_, 1);
}

TEST_F(KeyMonitor, MayEndInItsOwnHandler) {
  std::unique_ptr<HLKeyMonitor> watching;
  watching = Offscreen().application().addKeyMonitor([&](const HLKeyEvent& key) {
    watching = nullptr;
    keys_.push_back(key);
  });
  send(keyPress(Qt::Key_Return, KEY_ENTER, Qt::NoModifier));
  EXPECT_EQ(keys_.size(), 1U);
  EXPECT_EQ(pressed_, 0);
  send(keyPress(Qt::Key_Return, KEY_ENTER, Qt::NoModifier));
  EXPECT_EQ(keys_.size(), 1U);
  EXPECT_EQ(pressed_, 1);
}

TEST_F(KeyMonitor, IgnoresModifierKeysAlone) {
  const auto watching = monitor();
  send(keyPress(Qt::Key_Control, KEY_LEFTCTRL, Qt::NoModifier));
  EXPECT_TRUE(keys_.empty());
}

}  // namespace
