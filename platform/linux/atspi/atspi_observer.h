// Accessibility notifications about a notification server.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/accessibility.h"
#include "platform/linux/session/bus.h"
#include "platform/linux/session/linux_run_loop.h"

// The bus's events differ from toolkit to toolkit, come before what they tell of is complete, and are missing for some
// changes. So they are taken as hints that something has changed: the windows and banners are read anew and compared
// with what was there before, and the differences are told in the home platform's words.
//
//   a new window            AXWindowCreated
//   a new banner            AXCreated and AXLayoutChanged about it
//   a banner's new text     AXValueChanged and AXLayoutChanged about it
//   a window's new title    AXTitleChanged
//   a window's other list   AXChildrenChanged
//   something has gone      AXUIElementDestroyed
//
// "AXAnnouncementRequested" can be registered and is never sent: the bus knows no such event.
class HLLinuxObserver : public HLObserver {
 public:
  // Takes the connection, on which the events are watched already.
  HLLinuxObserver(HLLinuxRunLoop& runLoop, std::unique_ptr<HLBus> events, HLElementRef application,
                  HLObserverCallback callback);
  ~HLLinuxObserver() override;

  HLAXError addNotification(const HLElementRef& element, std::string_view notification) override;
  HLAXError removeNotification(const HLElementRef& element, std::string_view notification) override;
  void attach() override;
  void detach() override;

 private:
  // A window, or a banner in one.
  struct Shown {
    HLElementRef element;
    HLElementRef window;  // of a banner
    std::string text;     // a banner's description, a window's title
  };
  using Registration = std::pair<HLElementRef, std::string>;

  [[nodiscard]] std::vector<Shown> read() const;
  [[nodiscard]] bool takeEvents();
  void compare(const std::vector<Shown>& before, const std::vector<Shown>& now);
  void tell(const Shown& about, std::string_view notification);

  HLLinuxRunLoop& runLoop_;
  const std::unique_ptr<HLBus> events_;
  const HLElementRef application_;
  const HLObserverCallback callback_;
  std::vector<Registration> registrations_;
  std::vector<Shown> shown_;
  int source_ = 0;  // 0 when detached
};

// Watches the events of the application of that name on the accessibility bus. Nothing when the bus cannot be reached.
[[nodiscard]] std::unique_ptr<HLBus> HLWatchAccessibilityEvents(const std::string& busAddress,
                                                                const std::string& application);
