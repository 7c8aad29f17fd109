#include "platform/linux/qt/window/qt_alerts.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QString>
#include <vector>

#include "platform/linux/qt/window/qt_text.h"

std::size_t HLQtAlerts::runModal(const HLAlert& alert) {
  QMessageBox box;
  box.setWindowTitle(QString::fromStdString(title_));
  box.setIcon(QMessageBox::Information);
  box.setTextFormat(Qt::PlainText);
  box.setText(QString::fromStdString(alert.title));
  box.setInformativeText(QString::fromStdString(alert.message));
  // setTextFormat() does not apply to the label of the informative text.
  if (auto* message = box.findChild<QLabel*>("qt_msgbox_informativelabel")) message->setTextFormat(Qt::PlainText);

  std::vector<const QAbstractButton*> buttons;
  // One role for all buttons: with different roles the desktop's style would reorder them.
  for (const std::string& title : alert.buttons) {
    buttons.push_back(box.addButton(HLQtPlain(title), QMessageBox::ActionRole));
  }
  box.setDefaultButton(qobject_cast<QPushButton*>(box.buttons().isEmpty() ? nullptr : box.buttons().first()));
  box.setEscapeButton(const_cast<QAbstractButton*>(buttons.back()));
  box.exec();
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    if (buttons[i] == box.clickedButton()) return i;
  }
  return buttons.size() - 1;
}
