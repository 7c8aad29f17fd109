// The menu-bar application. Its methods stand in seven sources: launch.cc, status_item.cc, dismiss_action.cc,
// setup_window.cc, shortcut.cc, settings_window.cc and update_check.cc.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "autoclose/auto_closer.h"
#include "core/dismissal/result.h"
#include "platform/application/application.h"
#include "platform/application/application_platform.h"
#include "platform/application/hot_keys.h"
#include "platform/application/http_client.h"
#include "platform/application/windows.h"
#include "platform/run_loop.h"
#include "platform/value.h"

// Made before the run loop starts and kept until the process ends, by a shared_ptr. Main thread only; the one thing
// that leaves it is the dismissal itself. There is no tear-down: quitting ends the process.
class HLAppDelegate : public std::enable_shared_from_this<HLAppDelegate> {
 public:
  // The platform must outlive the delegate.
  explicit HLAppDelegate(const HLApplicationPlatform& host) : host_(host) {}
  HLAppDelegate(const HLAppDelegate&) = delete;
  HLAppDelegate& operator=(const HLAppDelegate&) = delete;

  // Launch
  void applicationDidFinishLaunching();
  void quit();

  // Status item and menu
  void handleStatusItemClick();
  void menuNeedsUpdate();
  void refreshStatusItem();
  void runSelfCheckFromMenu();

  // Dismissing
  void dismissNotifications();  // one request at a time: during one, another is dropped
  void dismissNotificationsFromMenu() { dismissNotifications(); }

  // The setup window. It asks each second whether the grant has come, for as long as it is open.
  void showSetupWindow();
  void updateSetupState();
  void setupPrimaryAction();
  void openAccessibilitySettings();

  // The global shortcut
  [[nodiscard]] std::int64_t storedKeyCode() const;  // negative for none
  [[nodiscard]] std::uint64_t storedModifiers() const;
  [[nodiscard]] std::string storedShortcutLabel() const;
  std::int32_t applyStoredHotKey();  // the host's status; 0 too where there is no shortcut
  void toggleRecording();
  void recordEvent(const HLKeyEvent& event);
  void stopRecording();  // does not register the stored shortcut again
  void clearShortcut();

  // The settings window. It shows what was so when it was last refreshed; it does not poll.
  void showSettingsWindow();
  void updateSettingsState();
  void toggleAutoClose(bool on);
  void updateAutoCloser();
  void toggleOpenAtLogin(bool on);

  // Updates
  void checkForUpdates();

 private:
  void installStatusItem();
  void observeRelaunches();
  void followLaunchSwitches();
  void writeWindowSnapshots(const std::string& directory);

  void showProgress(std::int64_t count);
  void finishDismissal(const HLDismissResult& result, std::int64_t elapsedMilliseconds);
  void handleAccessDeniedIfNeeded();

  [[nodiscard]] HLWindowDescription setupWindowDescription();
  [[nodiscard]] HLWindowDescription settingsWindowDescription();

  void registerDefaultShortcut();
  void installHotKeyHandler();
  void unregisterHotKey() { hotKeyRef_ = nullptr; }
  [[nodiscard]] std::optional<std::string> storedKeyLabel() const;
  void storeShortcut(std::int64_t code, std::uint64_t modifiers, const std::optional<std::string>& label);
  void setShortcutNote(const std::string& text, HLTextColor color);
  void setRecordButtonTitle(const std::string& title);

  void showUpdateVerdict(const HLHTTPAnswer& answer, const HLDictionary& information);

  const HLApplicationPlatform& host_;

  bool dismissInFlight_ = false;
  bool promptedAccessibilityThisRun_ = false;
  std::unique_ptr<HLHotKey> hotKeyRef_;
  std::unique_ptr<HLKeyMonitor> recordMonitor_;  // there while a shortcut is recorded
  std::unique_ptr<HLAutoCloser> autoCloser_;

  // Made when they are first shown.
  std::unique_ptr<HLWindow> setupWindow_;
  std::unique_ptr<HLTimer> trustPollTimer_;  // while the setup window is open
  std::unique_ptr<HLWindow> settingsWindow_;
};

// Runs the application until the user quits; the exit code. Where the host cannot show one, 1 and a line on err.
[[nodiscard]] int HLRunApplication(std::ostream& err);
