// The application's texts and behavior on a Linux desktop.
#pragma once

#include "platform/application/conventions.h"

[[nodiscard]] HLConventions HLLinuxConventions();
