#include "platform/linux/qt/tray/qt_status_item.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <utility>

namespace {

constexpr int kFrame = 16;  // milliseconds, at 60 frames per second

}  // namespace

HLQtStatusItem::HLQtStatusItem(HLQtApplication& application, std::string identifier, std::string displayName)
    : application_(application) {
  item_.identifier = QString::fromStdString(identifier);
  item_.displayName = QString::fromStdString(displayName);
  drawing_.setSingleShot(true);
  QObject::connect(&drawing_, &QTimer::timeout, [this] {
    if (embedded_ != nullptr) embedded_->redraw();
    if (notifier_ != nullptr) notifier_->redraw();
  });
}

void HLQtStatusItem::install(HLStatusItemDescription description) {
  description_ = std::move(description);
  menu_ = std::make_unique<HLTrayMenu>(description_.menu);
  setToolTip(description_.toolTip);
  item_.draw = [this](int size, const QColor& color) { return HLDrawTrayPicture(look_, size, color); };
  item_.clicked = [this](const HLTrayClick& click) { this->click(click); };
  if (QDBusConnection bus = QDBusConnection::sessionBus(); bus.isConnected()) {
    new HLStatusNotifierMenu(menu_.get());  // NOLINT: the menu owns it
    bus.registerObject(HLStatusNotifierMenuPath, menu_.get());
    notifier_ = std::make_unique<HLStatusNotifier>(item_);
  }
  const auto changed = [this](bool hasTray) {
    isEmbedded_ = hasTray;
    if (notifier_ != nullptr) notifier_->setWanted(!hasTray);
  };
  // Prefer an X11 tray: its clicks carry modifiers. A StatusNotifier tray may show its own menu or none.
  if (QGuiApplication::platformName() == "xcb") embedded_ = HLEmbeddedIcon::open(item_, changed);
  if (embedded_ == nullptr) changed(false);
}

void HLQtStatusItem::setTitle(const std::string& title) {
  if (std::exchange(look_.title, title) != title) redraw();
}

void HLQtStatusItem::setImage(const HLSymbolImage& image) {
  if (std::exchange(look_.symbol, image.name) != image.name) redraw();
}

void HLQtStatusItem::setToolTip(const std::string& toolTip) {
  item_.toolTip = QString::fromStdString(toolTip);
  if (notifier_ != nullptr) notifier_->announceToolTip();
}

bool HLQtStatusItem::isVisible() { return isEmbedded_ || (notifier_ != nullptr && notifier_->isRegistered()); }

void HLQtStatusItem::redraw() {
  if (!drawing_.isActive()) drawing_.start(kFrame);
}

void HLQtStatusItem::setMenuItem(std::string_view name, const std::string& title, bool on) {
  if (menu_ != nullptr) menu_->setItem(name, title, on);
}

void HLQtStatusItem::popUpMenu() {
  if (menu_ == nullptr) return;
  menu_->open(place_.topLeft().isNull() ? QRect(QCursor::pos(), QSize()) : place_);
}

void HLQtStatusItem::click(const HLTrayClick& click) {
  place_ = click.item;
  application_.perform({click.type, click.modifiers}, description_.action);
}
