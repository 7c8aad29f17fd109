// Reads other processes' elements. Every error of the platform becomes a missing value: nullopt, nullptr, an empty
// list, (NaN, NaN) or the null rectangle. Stateless; any thread; each call may block until the other process responds.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/accessibility.h"
#include "platform/geometry.h"

[[nodiscard]] std::optional<HLValue> HLCopyAttribute(const HLElement& element, std::string_view name);

// Returns a string as it is, a number or boolean in decimal; nullopt for any other type.
[[nodiscard]] std::optional<std::string> HLStringAttribute(const HLElement& element, std::string_view name);

// Returns nullptr unless the value is an element.
[[nodiscard]] HLElementRef HLElementAttribute(const HLElement& element, std::string_view name);

[[nodiscard]] std::vector<std::string> HLActionNames(const HLElement& element);

[[nodiscard]] HLPoint HLPointAttribute(const HLElement& element, std::string_view name);
[[nodiscard]] HLSize HLSizeAttribute(const HLElement& element, std::string_view name);

// Returns the null rectangle unless position and size are known and the size is positive.
[[nodiscard]] HLRect HLFrameForElement(const HLElement& element);

// Whether the subrole, in any letter case, is of one of Notification Center's own items.
[[nodiscard]] bool HLIsNotificationBannerSubrole(std::string_view subrole);

// Whether this process may read and press other processes' controls. Not cached: trust changes while the process runs.
// With prompt, the system asks the user; the call does not wait for the answer.
[[nodiscard]] bool HLIsAccessibilityTrusted(bool prompt);
