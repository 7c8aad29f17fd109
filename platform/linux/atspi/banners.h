// Finds notification banners, and the controls that close them, in the elements of a notification server. Servers are
// distinguished by the structure of their elements, never by name. All functions are pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/atspi/raw_tree.h"
#include "platform/linux/notifications/open_notifications.h"

struct HLBanner {
  int node = -1;  // the whole banner is at or below this node
  // Below the node, in tree order. Nodes below a label or a button are not listed.
  std::vector<int> labels;
  std::vector<int> buttons;
};

// Returns the banners on screen in tree order. Uses no actions and no extents.
[[nodiscard]] std::vector<HLBanner> HLFindBanners(const HLRawTree& tree);

// Returns the action that presses the banner's close control. Returns nullopt unless exactly one button is certainly
// the server's own close control: a button of the notifying application must never be pressed. Uses the actions and
// extents of the banner and its buttons.
[[nodiscard]] std::optional<HLRawAction> HLFindCloseControl(const HLRawTree& tree, const HLBanner& banner);

// Returns why a button of the banner is not its close control: the rule that it fails. Uses what HLFindCloseControl()
// uses.
[[nodiscard]] std::string_view HLCloseDoubt(const HLRawTree& tree, const HLBanner& banner, int button);

// Returns "application, title, body", without ", body" if there is none. The application is empty where the server
// hides it. Uses the extents of the labels, if known, to sort them.
[[nodiscard]] std::string HLBannerText(const HLRawTree& tree, const HLBanner& banner);

// Returns all texts of the banner that are not empty, in reading order: the application first where the server shows
// it, then title and body. Uses the extents of the labels, if known, to sort them.
[[nodiscard]] HLShownTexts HLBannerTexts(const HLRawTree& tree, const HLBanner& banner);

// Whether an AT-SPI action of this name is a click.
[[nodiscard]] bool HLIsPressAction(std::string_view name);
