// Accessibility notifications about a notification server.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/accessibility.h"
#include "platform/linux/atspi/shown_application.h"
#include "platform/linux/session/linux_run_loop.h"

// AT-SPI events differ between toolkits, precede the change that they report, or are missing. On any event the observer
// therefore reads windows and banners again and reports the differences as AX notifications:
//
//   a new window            AXWindowCreated
//   a new banner            AXCreated and, once it can be closed, AXLayoutChanged about it
//   a banner's new text     AXValueChanged and, once it can be closed, AXLayoutChanged about it
//   a window's new title    AXTitleChanged
//   a window's new list     AXChildrenChanged, when banners were added to it or removed
//   a removed element       AXUIElementDestroyed
//
// "AXAnnouncementRequested" can be registered, but AT-SPI has no such event.
class HLLinuxObserver : public HLObserver {
 public:
  // `events` are those of the application.
  HLLinuxObserver(HLLinuxRunLoop& runLoop, std::vector<HLEventSource> events, HLElementRef application,
                  HLObserverCallback callback);
  ~HLLinuxObserver() override;

  HLAXError addNotification(const HLElementRef& element, std::string_view notification) override;
  HLAXError removeNotification(const HLElementRef& element, std::string_view notification) override;
  void attach() override;
  void detach() override;

 private:
  // A window or a banner.
  struct Shown {
    HLElementRef element;
    HLElementRef window;  // of the banner; nullptr for a window
    std::string text;     // the banner's description or the window's title
    bool isClosable = false;
  };
  using Registration = std::pair<HLElementRef, std::string>;

  [[nodiscard]] std::vector<Shown> read() const;
  [[nodiscard]] bool takeEvents(const HLEventSource& source);
  void compare(const std::vector<Shown>& before, const std::vector<Shown>& now);
  void notify(const Shown& about, std::string_view notification);

  HLLinuxRunLoop& runLoop_;
  const std::vector<HLEventSource> events_;
  const HLElementRef application_;
  const HLObserverCallback callback_;
  std::vector<Registration> registrations_;
  std::vector<Shown> shown_;
  std::vector<int> sources_;  // in the run loop; empty when detached
};
