// The one place that reads other processes' elements. Every error of the platform becomes a missing value here:
// nothing, an empty list, (NaN, NaN) or the null rectangle. Stateless; any thread; each call may block until the other
// process answers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/accessibility.h"
#include "platform/geometry.h"

[[nodiscard]] std::optional<HLValue> HLCopyAttribute(const HLElement& element, std::string_view name);

// A string as it is, a number or boolean in decimal; nothing for a value of any other type.
[[nodiscard]] std::optional<std::string> HLStringAttribute(const HLElement& element, std::string_view name);

// The element that the attribute holds; nullptr when it holds none.
[[nodiscard]] HLElementRef HLElementAttribute(const HLElement& element, std::string_view name);

[[nodiscard]] std::vector<std::string> HLActionNames(const HLElement& element);

[[nodiscard]] HLPoint HLPointAttribute(const HLElement& element, std::string_view name);
[[nodiscard]] HLSize HLSizeAttribute(const HLElement& element, std::string_view name);

// What the functions above make of answers that have been read already.
[[nodiscard]] std::optional<std::string> HLStringFromAttribute(const HLAttribute& attribute);
[[nodiscard]] HLPoint HLPointFromAttribute(const HLAttribute& attribute);
[[nodiscard]] HLSize HLSizeFromAttribute(const HLAttribute& attribute);
// The null rectangle unless position and size are known and the size is positive in both directions. Negative
// coordinates are kept: screens lie left of and above the main one.
[[nodiscard]] HLRect HLFrameFromPointAndSize(HLPoint point, HLSize size);
// The members of a list that are elements, in their order; members of any other type are skipped.
[[nodiscard]] std::vector<HLElementRef> HLElementsFromAttribute(const HLAttribute& attribute);

// Whether the subrole, in any letter case, names one of Notification Center's own items.
[[nodiscard]] bool HLIsNotificationBannerSubrole(std::string_view subrole);

// Whether this process may read and press other processes' controls, asked afresh each time: trust comes and goes while
// the process runs. With prompt, the system asks the user; the call does not wait for the answer.
[[nodiscard]] bool HLIsAccessibilityTrusted(bool prompt);
