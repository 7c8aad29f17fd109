// The program's texts and behavior on a Linux desktop.
#pragma once

#include "platform/application/conventions.h"
#include "platform/platform.h"

[[nodiscard]] HLConventions HLLinuxConventions();

[[nodiscard]] HLCommandAdvice HLLinuxCommandAdvice();
