// Questions, answered without a screen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/application/alerts.h"
#include "tests/platform/linux/qt/offscreen.h"

namespace {

using testing::ElementsAre;

const HLAlert kQuestion = {"Hushlet 2.0 is available", "You have 1.0. <b>Bold</b> & plain.", {"Download", "Later"}};

// Asks, and does this with the dialog once it is open.
std::size_t ask(const HLAlert& alert, const std::function<void(QMessageBox&)>& user) {
  QTimer::singleShot(0, [&user] { user(*qobject_cast<QMessageBox*>(QApplication::activeModalWidget())); });
  return Offscreen().alerts().runModal(alert);
}

void press(QWidget& widget, int key) {
  QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(&widget, &event);
}

TEST(Alerts, ReturnIndexOfChosenButton) {
  EXPECT_EQ(ask(kQuestion, [](QMessageBox& box) { box.buttons().at(0)->click(); }), 0U);
  EXPECT_EQ(ask(kQuestion, [](QMessageBox& box) { box.buttons().at(1)->click(); }), 1U);
}

TEST(Alerts, ShowButtonsInTheGivenOrder) {
  std::vector<std::string> titles;
  (void)ask({"Title", "Message", {"One", "Two", "Three"}}, [&titles](QMessageBox& box) {
    QList<QAbstractButton*> buttons = box.buttons();
    std::sort(buttons.begin(), buttons.end(), [](const auto* a, const auto* b) { return a->x() < b->x(); });
    for (const QAbstractButton* button : buttons) titles.push_back(button->text().toStdString());
    box.close();
  });
  EXPECT_THAT(titles, ElementsAre("One", "Two", "Three"));
}

TEST(Alerts, ReturnLastButtonWhenDismissed) {
  EXPECT_EQ(ask(kQuestion, [](QMessageBox& box) { press(box, Qt::Key_Escape); }), 1U);
  EXPECT_EQ(ask(kQuestion, [](QMessageBox& box) { box.close(); }), 1U);
  EXPECT_EQ(ask({"Title", "Message", {"OK"}}, [](QMessageBox& box) { press(box, Qt::Key_Escape); }), 0U);
}

TEST(Alerts, ReturnChoosesTheFirstButton) {
  EXPECT_EQ(ask(kQuestion, [](QMessageBox& box) { press(box, Qt::Key_Return); }), 0U);
}

TEST(Alerts, TextsAreTakenAsTheyStand) {
  (void)ask(kQuestion, [](QMessageBox& box) {
    EXPECT_EQ(box.text(), "Hushlet 2.0 is available");
    for (const auto* label : box.findChildren<QLabel*>()) {
      if (label->text().isEmpty()) continue;
      EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    }
    EXPECT_EQ(box.informativeText(), "You have 1.0. <b>Bold</b> & plain.");
    box.close();
  });
}

TEST(Alerts, KeepMainRunLoopServed) {
  (void)Offscreen();  // a descriptor is watched by the toolkit that is there
  // As the application does it: the loop's descriptor is watched, and nested loops watch it too.
  std::optional<bool> served;
  QSocketNotifier notifier(OffscreenRunLoop().descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [] { OffscreenRunLoop().serve(); });
  (void)ask(kQuestion, [&served](QMessageBox& box) {
    OffscreenRunLoop().postToMainQueueAfter(0.01, [&] {
      served = true;
      box.close();
    });
  });
  EXPECT_EQ(served, true);
}

}  // namespace
