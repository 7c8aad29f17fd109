// The window toolkit without a screen. One for the whole test program, since a process can have but one.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QWidget>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/linux/session/desktop_module.h"
#include "platform/linux/session/linux_run_loop.h"

// The font library keeps what it has read of the system's fonts for good. One source of a program includes this.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }
// The thread sanitizer does not see how libraries synchronize that are not built with it.
extern "C" const char* __tsan_default_options() { return "ignore_noninstrumented_modules=1"; }

inline HLLinuxRunLoop& OffscreenRunLoop() {
  static HLLinuxRunLoop runLoop;
  return runLoop;
}

// Never destroyed, as in the program itself, whose process ends with the toolkit still there.
inline HLDesktop& Offscreen() {
  static HLDesktop* const desktop = [] {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    HLDesktopAnswer answer;
    HLMakeDesktop({"com.example.offscreen", "Offscreen", OffscreenRunLoop()}, answer);
    return answer.desktop.release();
  }();
  return *desktop;
}
