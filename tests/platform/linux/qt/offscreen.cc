#include "tests/platform/linux/qt/offscreen.h"

#include <cstdlib>

// The font library never frees what it has read of the system's fonts.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }
// The thread sanitizer does not see how libraries synchronize that are not built with it.
extern "C" const char* __tsan_default_options() { return "ignore_noninstrumented_modules=1"; }

HLLinuxRunLoop& OffscreenRunLoop() {
  static HLLinuxRunLoop runLoop;
  return runLoop;
}

HLDesktop& Offscreen() {
  static HLDesktop* const desktop = [] {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    HLDesktopAnswer answer;
    HLMakeDesktop({"com.example.offscreen", "Offscreen", OffscreenRunLoop()}, answer);
    return answer.desktop.release();
  }();
  return *desktop;
}
