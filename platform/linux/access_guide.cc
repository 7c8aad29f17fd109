#include "platform/linux/access_guide.h"

HLAccessGuide HLLinuxAccessGuide() {
  return {
      "%@ clears notification banners by pressing their close buttons for you. It reaches them through your "
      "desktop's accessibility interface. It only looks at the program that shows your notifications, and nothing "
      "leaves your computer.",
      "1. Click Open Accessibility Settings. This switches accessibility on.\n"
      "2. If your desktop shows its own settings, there is nothing to change in them.\n"
      "3. Come back here. This window updates by itself.",
      "From then on all programs of your desktop, not only %@, offer their windows to assistive programs. That may "
      "make "
      "some of them a little slower. Programs that are running already may have to be started again before they do: if "
      "banners stay, log out and in once. Accessibility stays on until you switch it off in your desktop's settings; "
      "some desktops forget it when you log out.",
  };
}
