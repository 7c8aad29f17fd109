// The application delegate. Its methods are defined in launch.cc, status_button.cc, dismiss_action.cc, setup_window.cc,
// shortcut.cc, settings_window.cc, trial_button.cc and update_check.cc.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/trial.h"
#include "autoclose/auto_closer.h"
#include "autoclose/user_rules.h"
#include "core/dismissal/result.h"
#include "platform/application/application.h"
#include "platform/application/application_platform.h"
#include "platform/application/conventions.h"
#include "platform/application/hot_keys.h"
#include "platform/application/windows.h"
#include "platform/run_loop.h"

// The line under the shortcut in the settings window.
struct HLShortcutNote {
  std::string text;
  HLTextColor color = HLTextColor::secondary;
};

// Created in a shared_ptr before the run loop starts; work that is posted shares it. Main thread only; the dismissal
// itself runs on a background queue.
class HLAppDelegate : public std::enable_shared_from_this<HLAppDelegate> {
 public:
  // The platform must outlive the delegate.
  explicit HLAppDelegate(const HLApplicationPlatform& host) : host_(host) {}
  HLAppDelegate(const HLAppDelegate&) = delete;
  HLAppDelegate& operator=(const HLAppDelegate&) = delete;
  ~HLAppDelegate();

  // Launch
  void applicationDidFinishLaunching();
  void quit();

  // Status item and menu
  void handleStatusItemClick();
  void menuNeedsUpdate();
  void refreshStatusItem();
  void runSelfCheckFromMenu();

  // Dismissing
  void dismissNotifications();  // ignored while a request is in flight
  void dismissNotificationsFromMenu() { dismissNotifications(); }

  // The setup window. Polls for the permission once a second while open.
  void showSetupWindow();
  void updateSetupState();
  void setupPrimaryAction();
  void openAccessibilitySettings();

  // The global shortcut
  [[nodiscard]] std::int64_t storedKeyCode() const;  // negative without a shortcut
  [[nodiscard]] std::uint64_t storedModifiers() const;
  [[nodiscard]] std::string storedShortcutLabel() const;
  HLHotKeyStatus applyStoredHotKey();  // success too if no shortcut is stored
  void toggleRecording();
  void recordEvent(const HLKeyEvent& event);
  void stopRecording();  // leaves the hot key unregistered
  void clearShortcut();

  // The settings window. Refreshed by these calls only; it does not poll.
  void showSettingsWindow();
  void updateSettingsState();
  void toggleAutoClose(bool on);
  void updateAutoCloser();
  void toggleOpenAtLogin(bool on);

  // Trials, on hosts that offer them. Ignored while a trial or a dismissal is in flight.
  void tryIt();

  // Updates
  void checkForUpdates();

 private:
  void installStatusItem();
  [[nodiscard]] static std::string toolTip();
  void welcomeWithoutIcon();
  void observeRelaunches();
  void followLaunchSwitches();

  void showProgress(std::int64_t count);
  void finishDismissal(const HLDismissResult& result, std::int64_t elapsedMilliseconds, bool leftBanner);
  void explainFailure(const std::string& reason);
  void withdrawFailure();
  void showFailureInSettings(const std::string& reason);
  void handleAccessDeniedIfNeeded();

  [[nodiscard]] HLWindowDescription setupWindowDescription();
  [[nodiscard]] HLWindowDescription settingsWindowDescription();
  void bringToFront(HLWindow& window);
  [[nodiscard]] const HLConventions& conventions() const;

  void readUserRules();
  void addAutoClose(HLWindowDescription& window);
  void addHostChoice(HLWindowDescription& window);
  void addTrial(HLWindowDescription& window, std::vector<HLControl> besides);
  void refreshTrialButtons();
  void finishTrial(const HLTrialReport& report);
  void showTrialReport(const HLTrialReport& report);

  void registerDefaultShortcut();
  void installHotKeyHandler();
  void unregisterHotKey() { hotKeyRef_ = nullptr; }
  [[nodiscard]] bool isShortcutInactive() const;      // stored, but known not to work
  [[nodiscard]] std::string shownShortcut() const;    // for display; storedShortcutLabel() is for logs
  [[nodiscard]] std::string dismissHint() const;      // for the user: how to clear notifications
  [[nodiscard]] std::string shortcutRefusal() const;  // for the user: why the latest registration failed
  [[nodiscard]] HLShortcutNote noteOnStoredShortcut() const;
  void setShortcutNote(const HLShortcutNote& note);
  void setRecordButtonTitle(const std::string& title);

  const HLApplicationPlatform& host_;

  bool dismissInFlight_ = false;
  bool trialInFlight_ = false;
  bool promptedAccessibilityThisRun_ = false;
  std::unique_ptr<HLHotKey> hotKeyRef_;
  HLHotKeyStatus hotKeyStatus_ = HLHotKeyStatus::success;  // of the latest registration
  std::unique_ptr<HLKeyMonitor> recordMonitor_;            // non-null while recording
  HLShortcutNote shortcutNote_;
  HLShortcutNote noteBeforeRecording_;
  HLUserRules userRules_;
  std::unique_ptr<HLAutoCloser> autoCloser_;
  std::unique_ptr<HLTimer> failureTimer_;   // while the status item explains a failure
  std::optional<bool> loggedAvailability_;  // the latest in the log

  // Created when first shown.
  std::unique_ptr<HLWindow> setupWindow_;
  std::unique_ptr<HLTimer> trustPollTimer_;  // while the setup window is open
  std::unique_ptr<HLWindow> settingsWindow_;
};

// Runs the application until the user quits. Returns the exit code: 1, with a line on `err`, if the host cannot show
// windows.
[[nodiscard]] int HLRunApplication(std::ostream& err);
