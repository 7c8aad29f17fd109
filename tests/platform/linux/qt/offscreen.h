// The window toolkit without a screen. One for the whole test program, since a process can have only one.
#pragma once

#include "platform/linux/session/desktop_module.h"
#include "platform/linux/session/linux_run_loop.h"

[[nodiscard]] HLLinuxRunLoop& OffscreenRunLoop();

// Never destroyed, as in the program itself, whose process ends with the toolkit still there.
HLDesktop& Offscreen();
