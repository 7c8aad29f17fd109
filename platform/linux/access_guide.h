// How the user gives access to the screen on a Linux desktop.
#pragma once

#include "platform/application/application_platform.h"

[[nodiscard]] HLAccessGuide HLLinuxAccessGuide();
