#include "tests/swarm/watch_application.h"

#include <utility>
#include <variant>

namespace {

class WatchedWindow : public ForwardingWindow {
 public:
  WatchedWindow(std::unique_ptr<HLWindow> inner, bool& isOpen) : ForwardingWindow(std::move(inner)), isOpen_(isOpen) {}

  void makeKeyAndOrderFront() override {
    isOpen_ = true;
    ForwardingWindow::makeKeyAndOrderFront();
  }

 private:
  bool& isOpen_;
};

void check(Watcher& watcher, HLControl& control) {
  if (auto* button = std::get_if<HLButton>(&control)) button->action = Checked(watcher, std::move(button->action));
  if (auto* box = std::get_if<HLCheckBox>(&control)) box->action = Checked(watcher, std::move(box->action));
}

}  // namespace

int WatchedApplication::run(HLApplicationHandlers handlers) {
  auto& course = watcher_.course;
  return ForwardingApplication::run({[&course, launch = std::move(handlers.didFinishLaunching)] {
                                       launch();
                                       course.launched = true;
                                     },
                                     std::move(handlers.didReopen)});
}

std::unique_ptr<HLKeyMonitor> WatchedApplication::addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) {
  return std::make_unique<Counted<HLKeyMonitor>>(
      ForwardingApplication::addKeyMonitor(Checked(watcher_, std::move(handler))), watcher_.course, "key monitors");
}

void WatchedStatusItem::install(HLStatusItemDescription description) {
  description.action = Checked(watcher_, std::move(description.action));
  for (HLMenuItem& item : description.menu.items) item.action = Checked(watcher_, std::move(item.action));
  ForwardingStatusItem::install(std::move(description));
}

void WatchedStatusItem::setTitle(const std::string& title) {
  watcher_.course.title = title;
  ForwardingStatusItem::setTitle(title);
}

void WatchedStatusItem::setImage(const HLSymbolImage& image) {
  watcher_.course.image = image.name;
  ForwardingStatusItem::setImage(image);
}

std::unique_ptr<HLWindow> WatchedWindows::makeWindow(HLWindowDescription description) {
  Course& course = watcher_.course;
  bool& isOpen = description.title == "Hushlet Settings" ? course.settingsIsOpen : course.setupIsOpen;
  description.willClose = [&isOpen, close = std::move(description.willClose)] {
    isOpen = false;
    if (close) close();
  };
  for (HLStackItem& item : description.stack) {
    if (auto* button = std::get_if<HLButton>(&item.what)) button->action = Checked(watcher_, std::move(button->action));
    if (auto* box = std::get_if<HLCheckBox>(&item.what)) box->action = Checked(watcher_, std::move(box->action));
    if (auto* row = std::get_if<HLRow>(&item.what)) {
      for (HLControl& control : row->controls) check(watcher_, control);
    }
  }
  return std::make_unique<WatchedWindow>(ForwardingWindows::makeWindow(std::move(description)), isOpen);
}

HLHotKeyRegistration WatchedHotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) {
  HLHotKeyRegistration registration = ForwardingHotKeys::registerHotKey(code, modifiers, identity);
  if (registration.hotKey != nullptr) {
    registration.hotKey =
        std::make_unique<Counted<HLHotKey>>(std::move(registration.hotKey), watcher_.course, "hot keys");
  }
  return registration;
}
