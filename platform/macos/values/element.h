// Elements of other processes.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include "platform/accessibility.h"

// A handle that has its own reference to the element.
[[nodiscard]] HLElementRef HLMakeElement(AXUIElementRef element);

// What the handle stands for, for as long as the handle lives; nullptr for one of another platform.
[[nodiscard]] AXUIElementRef HLSystemElement(const HLElement& element);
