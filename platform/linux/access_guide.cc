#include "platform/linux/access_guide.h"

HLAccessGuide HLLinuxAccessGuide() {
  return {
      "%@ clears notification banners by pressing their close buttons for you. It reaches them through the "
      "accessibility interface of your desktop, which is switched off now. It only looks at the program that shows "
      "your notifications, and nothing leaves your computer.",
      "1. Click Open Accessibility Settings. This switches accessibility on.\n"
      "2. If your desktop opens its own settings, leave accessibility on there.\n"
      "3. Come back here. This window updates by itself.",
      "While accessibility is on, all programs of your desktop, not only %@, offer their windows to assistive "
      "programs. That can make some of them a little slower. Programs that are already running, the one that shows "
      "your notifications among them, may have to be started again: log out and in once if banners stay.",
  };
}
