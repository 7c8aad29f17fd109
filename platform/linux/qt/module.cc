// HLMakeDesktop, the module's only exported function, and the object that owns the Qt backends.
#include <QApplication>
#include <array>
#include <clocale>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/qt/services/linux_hot_keys.h"
#include "platform/linux/qt/services/qt_http_client.h"
#include "platform/linux/qt/tray/application_icon.h"
#include "platform/linux/qt/tray/qt_status_item.h"
#include "platform/linux/qt/window/display.h"
#include "platform/linux/qt/window/qt_alerts.h"
#include "platform/linux/qt/window/qt_application.h"
#include "platform/linux/qt/window/qt_windows.h"
#include "platform/linux/session/desktop_module.h"

namespace {

// QApplication keeps references to argc and argv. It gets no program arguments: it would consume those it recognizes.
class Arguments {
 public:
  explicit Arguments(std::string platform) : platform_(std::move(platform)) {
    if (platform_.empty()) count_ = 1;
  }

  [[nodiscard]] int& count() { return count_; }
  [[nodiscard]] char** values() { return values_.data(); }

 private:
  std::string program_ = "hushlet";
  std::string switch_ = "-platform";
  std::string platform_;
  std::array<char*, 4> values_ = {program_.data(), switch_.data(), platform_.data(), nullptr};
  int count_ = 3;
};

class Desktop : public HLDesktop {
 public:
  Desktop(const HLDesktopRequest& request, const std::string& platform)
      : arguments_(platform),
        toolkit_(arguments_.count(), arguments_.values()),
        application_(request),
        statusItem_(application_, request.identifier, request.displayName),
        alerts_(request.displayName),
        hotKeys_(request.runLoop, request.identifier) {
    QApplication::setApplicationName(QString::fromStdString(request.identifier));
    QApplication::setDesktopFileName(QString::fromStdString(request.identifier));
    QApplication::setWindowIcon(HLApplicationIcon());
    QApplication::setQuitOnLastWindowClosed(false);
    // QApplication set the user's locale. Numbers are parsed and formatted in the C locale everywhere.
    std::setlocale(LC_NUMERIC, "C");
  }

  [[nodiscard]] HLApplication& application() override { return application_; }
  [[nodiscard]] HLStatusItem& statusItem() override { return statusItem_; }
  [[nodiscard]] HLWindows& windows() override { return windows_; }
  [[nodiscard]] HLAlerts& alerts() override { return alerts_; }
  [[nodiscard]] HLHotKeys& hotKeys() override { return hotKeys_; }
  [[nodiscard]] HLHTTPClient& httpClient() override { return httpClient_; }

 private:
  Arguments arguments_;
  QApplication toolkit_;
  HLQtApplication application_;
  HLQtStatusItem statusItem_;
  HLQtWindows windows_;
  HLQtAlerts alerts_;
  HLQtHotKeys hotKeys_;
  HLQtHTTPClient httpClient_;
};

}  // namespace

extern "C" void HLMakeDesktop(const HLDesktopRequest& request, HLDesktopAnswer& answer) {
  const HLQtDisplay display = HLQtFindDisplay();
  answer.failure = display.failure;
  if (answer.failure.empty()) answer.desktop = std::make_unique<Desktop>(request, display.platform);
}
