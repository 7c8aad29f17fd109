// What stands in the tray, drawn without a screen.
#include "platform/linux/qt/tray/tray_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QPolygon>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/linux/qt/tray/application_icon.h"
#include "platform/linux/qt/tray/tray.h"
#include "tests/platform/linux/qt/offscreen.h"

namespace {

const std::vector<HLTrayLook> kLooks = {{"bell.slash", ""},    {"exclamationmark.triangle", ""},
                                        {"bell.slash", "5"},   {"bell.slash", "12"},
                                        {"bell.slash", "128"}, {"", "HL"},
                                        {"", "HL!"},           {"", "HL…"},
                                        {"", "HL 5"},          {"", "HL 12"}};
constexpr int kSizes[] = {22, 24, 32, 44};

class TrayPicture : public testing::Test {
 protected:
  void SetUp() override { (void)Offscreen(); }
};

// Returns the pixels whose lightness differs from the background's by more than `difference`; black and white differ by
// 255.
QPolygon strongPixels(const QImage& picture, const QColor& background, int difference = 110) {
  QImage image(picture.size(), QImage::Format_RGB32);
  image.fill(background);
  QPainter(&image).drawImage(0, 0, picture);
  QPolygon points;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (std::abs(image.pixelColor(x, y).lightness() - background.lightness()) > difference) points << QPoint(x, y);
    }
  }
  return points;
}

// By how much more is free to the left of them than to the right, and above them than below.
QPoint offCenter(const QImage& picture, const QColor& background) {
  const QRect bounds = strongPixels(picture, background).boundingRect();
  return bounds.topLeft() + bounds.bottomRight() - picture.rect().bottomRight();
}

TEST_F(TrayPicture, DiffersBetweenLooksAtEachSize) {
  for (int size : kSizes) {
    for (const HLTrayLook& look : kLooks) {
      const QImage picture = HLDrawTrayPicture(look, size, HLTrayLightColor);
      EXPECT_EQ(picture.size(), QSize(size, size));
      for (const HLTrayLook& other : kLooks) {
        EXPECT_EQ(picture == HLDrawTrayPicture(other, size, HLTrayLightColor), look == other);
      }
    }
  }
}

TEST_F(TrayPicture, StandsOutFromLightAndDark) {
  for (const HLTrayLook& look : kLooks) {
    const int least = 22 * 22 / 12;
    EXPECT_GT(strongPixels(HLDrawTrayPicture(look, 22, HLTrayLightColor), Qt::black).size(), least) << look.title;
    EXPECT_GT(strongPixels(HLDrawTrayPicture(look, 22, HLTrayDarkColor), Qt::white).size(), least) << look.title;
  }
}

TEST_F(TrayPicture, IsReadableOnEquallyLightPanel) {
  for (const HLTrayLook& look : kLooks) {
    const QPolygon contour = strongPixels(HLDrawTrayPicture(look, 22, HLTrayLightColor), HLTrayLightColor, 54);
    EXPECT_GT(contour.size(), 22) << look.symbol << look.title;
  }
}

TEST_F(TrayPicture, NothingTouchesTheEdge) {
  for (const HLTrayLook& look : kLooks) {
    const QImage picture = HLDrawTrayPicture(look, 44, HLTrayLightColor);
    const QColor color = HLTrayLightColor;
    for (int i = 0; i < 44; ++i) {
      for (const QPoint at : {QPoint(i, 0), QPoint(i, 43), QPoint(0, i), QPoint(43, i)}) {
        EXPECT_LT(picture.pixelColor(at).alpha() * picture.pixelColor(at).lightness(), 255 * color.lightness() / 2)
            << look.symbol << look.title;
      }
    }
  }
}

TEST_F(TrayPicture, IsInTheMiddle) {
  for (const HLTrayLook& look :
       {HLTrayLook{"bell.slash", ""}, {"exclamationmark.triangle", ""}, {"", "HL"}, {"", "HL!"}}) {
    const QPoint off = offCenter(HLDrawTrayPicture(look, 160, HLTrayLightColor), Qt::black);
    EXPECT_NEAR(off.x(), 0, 4) << look.symbol << look.title;
    EXPECT_NEAR(off.y(), 0, 4) << look.symbol << look.title;
  }
  const QPoint off = offCenter(HLDrawApplicationIcon(128), QColor("#27306e"));
  EXPECT_NEAR(off.x(), 0, 1);
  EXPECT_NEAR(off.y(), 0, 1);
}

TEST_F(TrayPicture, AnUnknownSymbolIsNoPicture) {
  EXPECT_TRUE(HLTraySymbol("dogcow").isEmpty());
  EXPECT_TRUE(strongPixels(HLDrawTrayPicture({"dogcow", ""}, 22, HLTrayLightColor), Qt::black).empty());
}

// The outline as SVG writes it.
std::string pathData(const QPainterPath& path) {
  std::ostringstream data;
  const auto point = [](const QPainterPath::Element& element) {
    return QStringLiteral("%1 %2").arg(element.x, 0, 'f', 2).arg(element.y, 0, 'f', 2).toStdString();
  };
  for (int i = 0; i < path.elementCount(); ++i) {
    const QPainterPath::Element element = path.elementAt(i);
    if (element.isMoveTo()) data << (i == 0 ? "M" : " M") << point(element);
    if (element.isLineTo()) data << " L" << point(element);
    if (element.isCurveTo()) {
      data << " C" << point(element) << " " << point(path.elementAt(i + 1)) << " " << point(path.elementAt(i + 2));
      i += 2;
    }
  }
  return data.str() + " Z";
}

TEST_F(TrayPicture, MatchesDrawingsInIconFiles) {
  for (const auto& [symbol, file] :
       {std::pair("bell.slash", "hushlet.svg"), std::pair("bell.slash", "hushlet-symbolic.svg"),
        std::pair("exclamationmark.triangle", "hushlet-attention-symbolic.svg")}) {
    std::ostringstream content;
    content << std::ifstream(std::string(HL_ICONS) + "/" + file).rdbuf();
    EXPECT_THAT(content.str(), testing::HasSubstr("d=\"" + pathData(HLTraySymbolBody(symbol)) + "\"")) << file;
  }
}

TEST_F(TrayPicture, MatchesColorsOfApplicationIconFile) {
  std::ostringstream content;
  content << std::ifstream(HL_ICONS "/hushlet.svg").rdbuf();
  const QImage icon = HLDrawApplicationIcon(128);
  for (const auto& [place, color] : {std::pair(QPoint(64, 10), "#4b5fc4"), std::pair(QPoint(64, 117), "#27306e"),
                                     std::pair(QPoint(64, 39), "#ffffff"), std::pair(QPoint(64, 89), "#d5dcf7")}) {
    EXPECT_THAT(content.str(), testing::HasSubstr(color));
    const QColor drawn = icon.pixelColor(place);
    const QColor wanted(color);
    EXPECT_LT(std::abs(drawn.red() - wanted.red()) + std::abs(drawn.green() - wanted.green()) +
                  std::abs(drawn.blue() - wanted.blue()),
              24)
        << color << " is " << drawn.name().toStdString();
  }
}

TEST_F(TrayPicture, IsSavedForInspection) {
  QImage sheet(static_cast<int>(kLooks.size()) * 56, 4 * 60 * 2, QImage::Format_RGB32);
  QPainter painter(&sheet);
  for (int row = 0; row < 8; ++row) {
    const QColor background = row < 4 ? QColor(0x2B, 0x2B, 0x2E) : QColor(0xEC, 0xEC, 0xEE);
    painter.fillRect(0, row * 60, sheet.width(), 60, background);
    for (std::size_t i = 0; i < kLooks.size(); ++i) {
      const QImage picture =
          HLDrawTrayPicture(kLooks[i], kSizes[row % 4], row < 4 ? HLTrayLightColor : HLTrayDarkColor);
      painter.drawImage(QPoint(static_cast<int>(i) * 56 + 6, row * 60 + 6), picture);
    }
  }
  EXPECT_TRUE(sheet.save(HL_PICTURES "/tray.png"));
  EXPECT_TRUE(HLDrawApplicationIcon(128).save(HL_PICTURES "/application.png"));
}

}  // namespace
