// Open notifications as a test lists them.
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/notifications/open_notifications.h"

// Matches a banner by its last two texts, summary and body.
class KnownNotifications : public HLOpenNotifications {
 public:
  KnownNotifications() = default;
  ~KnownNotifications() override { ::close(changed_); }

  void post(std::uint32_t number, const std::string& application, const std::string& summary, const std::string& body) {
    const std::lock_guard lock(mutex_);
    open_.push_back({{number, "", ""}, application, summary, body});
    eventfd_write(changed_, 1);
  }

  void setReadable(bool isReadable) {
    const std::lock_guard lock(mutex_);
    isReadable_ = isReadable;
  }
  void setTakesClosing(bool takes) {
    const std::lock_guard lock(mutex_);
    takesClosing_ = takes;
  }
  void setTraits(const HLServerTraits& traits) { traits_ = traits; }

  [[nodiscard]] std::vector<std::uint32_t> closed() {
    const std::lock_guard lock(mutex_);
    return closed_;
  }
  // Of each match() the banners.
  [[nodiscard]] const std::vector<std::vector<HLShownTexts>>& asked() const { return asked_; }

  std::vector<std::optional<HLNotificationName>> match(const std::vector<HLShownTexts>& banners) override {
    const std::lock_guard lock(mutex_);
    asked_.push_back(banners);
    std::vector<HLListedNotification> left = open_;
    std::vector<std::optional<HLNotificationName>> names;
    for (const HLShownTexts& texts : banners) {
      const auto found = std::find_if(left.begin(), left.end(), [&texts](const HLListedNotification& each) {
        return texts.size() >= 2 && texts[texts.size() - 2] == each.summary && texts.back() == each.body;
      });
      names.push_back(found == left.end() ? std::nullopt : std::optional(found->name));
      if (found != left.end()) left.erase(found);
    }
    return names;
  }

  HLServerTraits serverTraits() override { return traits_; }

  std::optional<std::vector<HLListedNotification>> shown() override {
    const std::lock_guard lock(mutex_);
    return isReadable_ ? std::optional(open_) : std::nullopt;
  }

  bool close(const HLNotificationName& name) override {
    const std::lock_guard lock(mutex_);
    closed_.push_back(name.number);
    if (!takesClosing_) return false;
    std::erase_if(open_, [&name](const HLListedNotification& each) { return each.name == name; });
    eventfd_write(changed_, 1);
    return true;
  }

  std::unique_ptr<HLNotificationChanges> watch() override { return std::make_unique<Changes>(changed_); }

 private:
  class Changes : public HLNotificationChanges {
   public:
    explicit Changes(int descriptor) : descriptor_(descriptor) {}
    [[nodiscard]] int descriptor() const override { return descriptor_; }
    bool take() override {
      eventfd_t count = 0;
      (void)eventfd_read(descriptor_, &count);
      return true;
    }

   private:
    const int descriptor_;
  };

  const int changed_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  std::mutex mutex_;
  std::vector<HLListedNotification> open_;  // oldest first
  bool isReadable_ = true;
  bool takesClosing_ = true;
  HLServerTraits traits_;
  std::vector<std::uint32_t> closed_;
  std::vector<std::vector<HLShownTexts>> asked_;
};
