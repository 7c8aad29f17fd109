// Windows as they are described, drawn without a screen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <fstream>
#include <optional>
#include <utility>
#include <vector>

#include "platform/application/application.h"
#include "platform/linux/qt/window/colors.h"
#include "tests/platform/linux/qt/offscreen.h"
#include "tests/platform/linux/qt/qt_descriptions.h"

namespace {

using testing::ElementsAre;

class Windows : public testing::Test {
 protected:
  void TearDown() override {
    window_ = nullptr;
    QApplication::setPalette(lightPalette_);
  }

  HLWindow& make(HLWindowDescription description) {
    window_ = windows_.makeWindow(std::move(description));
    return *window_;
  }

  [[nodiscard]] QWidget& widget() const { return dynamic_cast<QWidget&>(*window_); }

  template <class Widget>
  [[nodiscard]] Widget& find(const char* name) const {
    return *widget().findChild<Widget*>(name);
  }

  // A control's place in the content; the layout is done as when it is shown.
  [[nodiscard]] QRect place(const char* name) const {
    QWidget& control = find<QWidget>(name);
    widget().ensurePolished();
    window_->makeKeyAndOrderFront();
    return {control.mapTo(&widget(), QPoint(0, 0)), control.size()};
  }

  void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(QApplication::focusWidget() == nullptr ? &widget() : QApplication::focusWidget(), &event);
  }

  HLWindows& windows_ = Offscreen().windows();
  const QPalette lightPalette_ = QApplication::palette();
  std::unique_ptr<HLWindow> window_;
};

void keepPicture(const HLWindowView& view, const std::string& name) {
  const std::optional<std::string> png = view.png();
  ASSERT_TRUE(png);
  std::ofstream(std::string(HL_PICTURES) + "/" + name, std::ios::binary) << *png;
}

double contrast(const QColor& a, const QColor& b) {
  const auto luminance = [](const QColor& color) {
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
  };
  const double first = luminance(a) + 0.05;
  const double second = luminance(b) + 0.05;
  return std::max(first, second) / std::min(first, second);
}

TEST_F(Windows, HaveTheDescribedFixedSize) {
  make(SettingsWindow());
  EXPECT_EQ(widget().size(), QSize(420, 280));
  EXPECT_EQ(widget().minimumSize(), widget().maximumSize());
  EXPECT_FALSE(widget().windowFlags() & Qt::WindowMinimizeButtonHint);
  EXPECT_TRUE(widget().windowFlags() & Qt::WindowCloseButtonHint);
  EXPECT_EQ(widget().windowTitle(), "Hushlet Settings");
}

TEST_F(Windows, PlaceStackByMarginsAndSpacings) {
  make(SetupWindow()).fitHeight();
  const QRect heading = place("heading");
  const QRect explanation = place("explanation");
  const QRect steps = place("steps");
  const QRect note = place("note");
  const QRect status = place("status");
  const QRect primary = place("primary");
  const auto gap = [](const QRect& above, const QRect& below) { return below.top() - (above.top() + above.height()); };
  EXPECT_EQ(heading.topLeft(), QPoint(24, 22));
  EXPECT_EQ(gap(heading, explanation), 6);
  EXPECT_EQ(gap(explanation, steps), 12);
  EXPECT_EQ(gap(steps, note), 12);
  EXPECT_EQ(gap(note, status), 18);
  EXPECT_EQ(gap(status, primary), 12);
  EXPECT_EQ(primary.left(), 24);
  EXPECT_EQ(primary.top() + primary.height() + 22, widget().height());
}

TEST_F(Windows, StretchOnlyFullWidthItems) {
  make(SetupWindow()).fitHeight();
  for (const char* name : {"explanation", "steps", "note", "status"}) EXPECT_EQ(place(name).width(), 460 - 48) << name;
  for (const char* name : {"heading", "primary"}) EXPECT_LT(place(name).width(), 300) << name;
}

TEST_F(Windows, FitTheirHeightToTheirTexts) {
  HLWindow& window = make(SetupWindow());
  window.fitHeight();
  const int height = widget().height();
  EXPECT_EQ(widget().width(), 460);
  window.setLabel("status",
                  "Allowed. Press this or that, or the other thing, or click the tray icon to clear "
                  "notifications, or what else stands there.",
                  HLTextColor::green);
  window.fitHeight();
  EXPECT_GT(widget().height(), height);
  window.setLabel("status", "Allowed.", HLTextColor::green);
  window.fitHeight();
  EXPECT_EQ(widget().height(), height);
  window.setLabel("status", "", HLTextColor::green);
  window.fitHeight();
  EXPECT_LT(widget().height(), height) << "an empty label takes no room";
}

TEST_F(Windows, ShowEveryTextWhole) {
  for (const HLWindowDescription& description : {SetupWindow(), SettingsWindow()}) {
    make(description).fitHeight();
    window_->makeKeyAndOrderFront();
    for (const auto* label : widget().findChildren<QLabel*>()) {
      EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
      const QRect needed =
          label->fontMetrics().boundingRect(QRect(0, 0, label->width(), 0), Qt::TextWordWrap, label->text());
      EXPECT_GE(label->width(), needed.width()) << label->text().toStdString();
    }
  }
}

TEST_F(Windows, GrowWhenATextGetsLonger) {
  HLWindow& window = make(SettingsWindow());
  std::string text;
  for (int i = 0; i < 40; ++i) text += "A long remark. ";
  window.setLabel("note", text, HLTextColor::orange);
  EXPECT_GT(widget().height(), 280);
}

TEST_F(Windows, SetFontPixelSizesAndWeights) {
  make(SetupWindow());
  const QFont heading = find<QLabel>("heading").font();
  EXPECT_EQ(heading.pixelSize(), 20);
  EXPECT_EQ(heading.weight(), QFont::DemiBold);
  EXPECT_EQ(find<QLabel>("note").font().pixelSize(), 12);
  EXPECT_EQ(find<QLabel>("note").font().weight(), QFont::Normal);
  EXPECT_EQ(find<QLabel>("status").font().weight(), QFont::Medium);
}

TEST_F(Windows, HaveLegibleColorsInBothAppearances) {
  for (bool dark : {false, true}) {
    if (dark) Offscreen().application().setDarkAppearance();
    HLWindow& window = make(SettingsWindow());
    for (HLTextColor color : {HLTextColor::label, HLTextColor::secondary, HLTextColor::green, HLTextColor::orange}) {
      window.setLabel("access", "Allowed", color);
      const QPalette palette = find<QLabel>("access").palette();
      EXPECT_GE(contrast(palette.color(QPalette::WindowText), widget().palette().color(QPalette::Window)), 4.5)
          << static_cast<int>(color) << (dark ? " dark" : " light");
    }
  }
}

TEST_F(Windows, TurnDarkWhileOpen) {
  make(SettingsWindow()).makeKeyAndOrderFront();
  const QColor before = find<QLabel>("access").palette().color(QPalette::WindowText);
  Offscreen().application().setDarkAppearance();
  QApplication::processEvents();
  EXPECT_LT(widget().palette().color(QPalette::Window).lightness(), 80);
  const QColor after = find<QLabel>("access").palette().color(QPalette::WindowText);
  EXPECT_NE(after, before);
  EXPECT_EQ(after, HLQtTextColor(HLTextColor::orange, QApplication::palette()));
}

TEST_F(Windows, NameControlsForAssistiveTechnologies) {
  make(SettingsWindow());
  std::vector<std::string> names;
  for (QWidget* control : widget().findChildren<QWidget*>()) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(control);
    const QString name = accessible->text(QAccessible::Name);
    if (accessible->role() != QAccessible::Client) names.push_back(name.toStdString());
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre(
                         "Shortcut", "Ctrl+Alt+Shift+Super+Backspace", "Record Shortcut", "Clear",
                         "Works from any app. Needs at least one of Super, Alt or Ctrl, or an F key.", "Accessibility",
                         "Not allowed yet", "Set Up Accessibility", "Open at Login"));
}

TEST_F(Windows, AssistiveTechnologiesFindAWindow) {
  make(SettingsWindow());
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&widget());
  EXPECT_EQ(accessible->role(), QAccessible::Dialog);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Hushlet Settings");
  EXPECT_GT(accessible->childCount(), 0);
}

TEST_F(Windows, ReturnPressesTheKeyButton) {
  int pressed = 0;
  make(SetupWindow({.primary = [&] { ++pressed; }})).makeKeyAndOrderFront();
  press(Qt::Key_Return);
  EXPECT_EQ(pressed, 1);
  press(Qt::Key_Enter, Qt::KeypadModifier);
  EXPECT_EQ(pressed, 2);
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(pressed, 2);
  EXPECT_TRUE(widget().isVisible());
}

TEST_F(Windows, CloseOnEscapeAndCtrlW) {
  int pressed = 0;
  int closed = 0;
  HLWindow& window = make(SetupWindow({.primary = [&] { ++pressed; }, .willClose = [&] { ++closed; }}));
  for (const auto& [key, modifiers] :
       {std::pair(Qt::Key_Escape, Qt::NoModifier), std::pair(Qt::Key_W, Qt::ControlModifier)}) {
    closed = 0;
    window.makeKeyAndOrderFront();
    press(key, modifiers);
    EXPECT_FALSE(widget().isVisible()) << key;
    EXPECT_EQ(closed, 1) << key;
  }
  EXPECT_EQ(pressed, 0);
}

TEST_F(Windows, IgnoreKeysWithOtherModifiers) {
  HLWindow& window = make(SetupWindow());
  window.makeKeyAndOrderFront();
  press(Qt::Key_Escape, Qt::ShiftModifier);
  press(Qt::Key_W);
  press(Qt::Key_Q);
  press(Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(widget().isVisible());
}

TEST_F(Windows, QuitTheApplicationOnCtrlQ) {
  make(SetupWindow()).makeKeyAndOrderFront();
  constexpr int kGaveUp = 9;
  constexpr int kTimeout = 10'000;  // milliseconds
  QTimer::singleShot(0, [this] { press(Qt::Key_Q, Qt::ControlModifier); });
  QTimer timeout;
  QObject::connect(&timeout, &QTimer::timeout, [] { QApplication::exit(kGaveUp); });
  timeout.start(kTimeout);
  EXPECT_EQ(QApplication::exec(), 0);
}

TEST_F(Windows, RunActionsOnlyOnUserClicks) {
  int recorded = 0;
  std::vector<bool> states;
  HLWindow& window =
      make(SettingsWindow({.record = [&] { ++recorded; }, .check = [&](bool on) { states.push_back(on); }}));
  find<QPushButton>("record").click();
  EXPECT_EQ(recorded, 1);
  find<QCheckBox>("openAtLogin").click();
  find<QCheckBox>("openAtLogin").click();
  EXPECT_THAT(states, ElementsAre(true, false));
  window.setCheckBox("openAtLogin", true);
  EXPECT_TRUE(find<QCheckBox>("openAtLogin").isChecked());
  EXPECT_THAT(states, ElementsAre(true, false));
  window.setEnabled("openAtLogin", false);
  find<QCheckBox>("openAtLogin").click();
  EXPECT_THAT(states, ElementsAre(true, false));
}

TEST_F(Windows, ShowTitlesAndTextsVerbatim) {
  HLWindow& window = make(SettingsWindow());
  window.setButtonTitle("record", "Salt & Pepper");
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&find<QPushButton>("record"))->text(QAccessible::Name),
            "Salt & Pepper");
  window.setLabel("access", "<b>bold</b>", HLTextColor::label);
  EXPECT_EQ(find<QLabel>("access").textFormat(), Qt::PlainText);
  window.setLabel("nobody", "x", HLTextColor::label);
  window.setButtonTitle("nobody", "x");
  window.setCheckBox("nobody", true);
  window.setEnabled("nobody", true);
}

TEST_F(Windows, HideAndReportHoweverClosed) {
  int closed = 0;
  HLWindow& window = make(SetupWindow({.willClose = [&] { ++closed; }}));
  window.makeKeyAndOrderFront();
  window.close();
  EXPECT_EQ(closed, 1);
  EXPECT_FALSE(widget().isVisible());

  window.makeKeyAndOrderFront();
  QCloseEvent event;
  QApplication::sendEvent(&widget(), &event);
  EXPECT_EQ(closed, 2);
  EXPECT_FALSE(widget().isVisible());

  window.makeKeyAndOrderFront();
  EXPECT_TRUE(widget().isVisible());
}

TEST_F(Windows, CenterOnTheScreen) {
  HLWindow& window = make(SetupWindow());
  window.fitHeight();
  window.center();
  const QRect screen = widget().screen()->availableGeometry();
  EXPECT_LE(std::abs(widget().frameGeometry().center().x() - screen.center().x()), 1);
  EXPECT_LE(std::abs(widget().frameGeometry().center().y() - screen.center().y()), 1);
}

TEST_F(Windows, ListViewsInCreationOrder) {
  const std::unique_ptr<HLWindow> setup = windows_.makeWindow(SetupWindow());
  const std::unique_ptr<HLWindow> settings = windows_.makeWindow(SettingsWindow());
  settings->makeKeyAndOrderFront();
  const std::vector<HLWindowView> views = windows_.views();
  ASSERT_EQ(views.size(), 2U);
  EXPECT_EQ(views[0].title, "Set Up Hushlet");
  EXPECT_FALSE(views[0].visible);
  EXPECT_EQ(views[1].title, "Hushlet Settings");
  EXPECT_TRUE(views[1].visible);
  EXPECT_EQ(views[1].width, 420);
  EXPECT_EQ(views[1].height, 280);
  const std::optional<std::string> png = views[1].png();
  ASSERT_TRUE(png);
  EXPECT_EQ(QImage::fromData(reinterpret_cast<const uchar*>(png->data()), static_cast<int>(png->size())).size(),
            QSize(420, 280));
}

TEST_F(Windows, SavePicturesInLightAndDark) {
  for (bool dark : {false, true}) {
    if (dark) Offscreen().application().setDarkAppearance();
    const std::unique_ptr<HLWindow> setup = windows_.makeWindow(SetupWindow());
    const std::unique_ptr<HLWindow> settings = windows_.makeWindow(SettingsWindow());
    settings->setCheckBox("openAtLogin", true);
    setup->fitHeight();
    setup->makeKeyAndOrderFront();
    settings->makeKeyAndOrderFront();
    keepPicture(windows_.views().at(0), dark ? "setup-dark.png" : "setup-light.png");
    keepPicture(windows_.views().at(1), dark ? "settings-dark.png" : "settings-light.png");
  }
}

}  // namespace
