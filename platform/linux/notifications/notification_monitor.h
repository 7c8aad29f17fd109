// The thread that watches the session bus for notifications.
#pragma once

#include <functional>
#include <thread>

#include "platform/linux/notifications/notification_table.h"
#include "platform/linux/notifications/open_notifications.h"
#include "platform/threads/thread_safety.h"

// Has two connections. On the first it is a monitor of the bus: nothing is written there. On the second it answers the
// questions of other processes (docs/linux-backend.md), as long as no earlier process does. The thread wakes up for
// messages only; it reads all that the bus lets through for HLMonitorRules.
//
// The table is emptied when the bus ends. Thread-safe.
class HLNotificationMonitor {
 public:
  // Both must outlive this. `answers` answers other processes, on the monitor's thread.
  HLNotificationMonitor(HLNotificationTable& table, HLOpenNotifications& answers) : table_(table), answers_(answers) {}
  HLNotificationMonitor(const HLNotificationMonitor&) = delete;
  HLNotificationMonitor& operator=(const HLNotificationMonitor&) = delete;
  ~HLNotificationMonitor();

  // Starts the thread unless it runs. Does not wait until it watches; without a bus it ends at once.
  void start();

  // Waits until the started thread watches or has ended, for HLBusTimeout at most.
  void waitUntilStarted();

  // Whether what happens on the bus now comes into the table.
  [[nodiscard]] bool isWatching() const;

 private:
  void run();
  void watch();
  void setWatching(bool isWatching);

  HLNotificationTable& table_;
  HLOpenNotifications& answers_;
  mutable HLMutex mutex_;
  HLCondition changed_;
  std::thread thread_ HL_GUARDED_BY(mutex_);
  bool isRunning_ HL_GUARDED_BY(mutex_) = false;
  bool isWatching_ HL_GUARDED_BY(mutex_) = false;
  int stop_ = -1;  // readable once the thread is to end
};
