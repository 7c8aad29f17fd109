#include "app/conventions.h"

#include "app/shortcut_label.h"

const HLConventions& HLMacConventions() {
  static const HLConventions conventions = {
      "%@ clears notification banners by pressing their close buttons for you. macOS calls this Accessibility access. "
      "It only looks at Notification Center, and nothing leaves your Mac.",
      "1. Click Open Accessibility Settings.\n2. Turn on %@ in the list.\n3. Come back here. This window updates by "
      "itself.",
      "Already on, but it still asks? Select %@ in the list, remove it with the minus button, then click Open "
      "Accessibility Settings again and turn it on.",
      "Open Accessibility Settings",
      "menu bar icon",
      "",
      "Command, Option or Control",
      HLShortcutLabel,
  };
  return conventions;
}
