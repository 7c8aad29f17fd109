// The services that every mode uses, as the scene has them.
#pragma once

#include <vector>

#include "platform/property_lists.h"
#include "platform/sim/desktop/desktop.h"
#include "platform/user_notifications.h"

class HLSimPropertyLists : public HLPropertyLists {
 public:
  explicit HLSimPropertyLists(const HLSimDesktop& desktop) : desktop_(desktop) {}

  [[nodiscard]] std::optional<HLDictionary> readDictionary(const std::string& path) override;

 private:
  const HLSimDesktop& desktop_;
};

// Answers at once, on the calling thread.
class HLSimUserNotifications : public HLUserNotifications {
 public:
  explicit HLSimUserNotifications(HLSimDesktop& desktop) : desktop_(desktop) {}

  void requestAuthorization(std::function<void(bool granted, std::optional<std::string> error)> answer) override;
  void add(const HLUserNotification& notification,
           std::function<void(std::optional<std::string> error)> answer) override;

 private:
  HLSimDesktop& desktop_;
};
