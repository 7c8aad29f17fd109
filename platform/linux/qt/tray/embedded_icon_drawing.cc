// Draws the tray window.
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/linux/qt/tray/embedded_icon.h"

namespace {

constexpr std::size_t kColorParts = 3;  // red, green, blue, of 16 bits each
constexpr std::uint8_t kDepthOfRGB = 24;

bool isDark(QImage image) {
  return image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0).lightness() < 128;
}

}  // namespace

// Returns the pixels behind the item: transparent if the window has an alpha channel, else its parent's drawing.
// Returns a null image while the window is not on screen.
QImage HLEmbeddedIcon::background() const {
  QImage image(width_, height_, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  if (visual_.depth != kDepthOfRGB) return image;
  xcb_clear_area(x_.get(), 0, window_, 0, 0, 0, 0);
  const auto cookie = xcb_get_image(x_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, 0, 0,
                                    static_cast<std::uint16_t>(width_), static_cast<std::uint16_t>(height_), ~0U);
  const HLXReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(x_.get(), cookie, nullptr));
  if (reply == nullptr || xcb_get_image_data_length(reply.get()) < image.sizeInBytes()) return {};  // not on screen
  QImage behind(xcb_get_image_data(reply.get()), width_, height_, QImage::Format_RGB32);
  return behind.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// Contrasts with the background if its pixels are known. Else uses the tray's _NET_SYSTEM_TRAY_COLORS, which is less
// reliable: some trays report their theme's color although the user has set another background.
QColor HLEmbeddedIcon::color(const QImage& background) const {
  if (visual_.depth == kDepthOfRGB) return isDark(background) ? HLTrayLightColor : HLTrayDarkColor;
  const std::vector<std::uint32_t> parts = x_.property(tray_, x_.atom("_NET_SYSTEM_TRAY_COLORS"), XCB_ATOM_CARDINAL);
  if (parts.size() < kColorParts) return HLTrayLightColor;
  return {static_cast<int>(parts[0] >> 8), static_cast<int>(parts[1] >> 8), static_cast<int>(parts[2] >> 8)};
}

void HLEmbeddedIcon::draw() {
  if (window_ == XCB_NONE || width_ <= 0 || height_ <= 0) return;
  QImage image = background();
  if (image.isNull()) return;
  const int size = std::min(width_, height_);
  const QImage picture = item_.draw(size, color(image));
  QPainter(&image).drawImage((width_ - size) / 2, (height_ - size) / 2, picture);
  xcb_put_image(x_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_, static_cast<std::uint16_t>(width_),
                static_cast<std::uint16_t>(height_), 0, 0, 0, visual_.depth,
                static_cast<std::uint32_t>(image.sizeInBytes()), image.constBits());
  xcb_flush(x_.get());
}
