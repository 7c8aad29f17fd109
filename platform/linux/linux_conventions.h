// The program's texts and behavior on a Linux desktop.
#pragma once

#include <functional>

#include "platform/application/conventions.h"
#include "platform/platform.h"

[[nodiscard]] HLConventions HLLinuxConventions();

// `showsUnclosableBanners` says whether banners are left that only a running Hushlet could close.
[[nodiscard]] HLCommandAdvice HLLinuxCommandAdvice(std::function<bool()> showsUnclosableBanners);
