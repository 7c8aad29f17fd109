// A Qt window of some 1,400 accessible elements.
#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kRows = 200;  // of seven elements each, the row itself among them

QWidget* makeRow(int number) {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(new QLabel(QString("Title %1").arg(number)));
  layout->addWidget(new QLabel(QString("What number %1 has to say").arg(number)));
  layout->addWidget(new QPushButton(QString("Open %1").arg(number)));
  layout->addWidget(new QCheckBox(QString("Read %1").arg(number)));
  layout->addWidget(new QLineEdit);
  auto* close = new QToolButton;
  close->setText("x");
  layout->addWidget(close);
  return row;
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QScrollArea window;
  window.setWindowTitle("Many elements");
  auto* rows = new QWidget;
  auto* layout = new QVBoxLayout(rows);
  layout->setSpacing(0);
  for (int i = 0; i < kRows; ++i) layout->addWidget(makeRow(i));
  window.setWidget(rows);
  window.resize(800, argc > 1 ? QString(argv[1]).toInt() : 600);
  window.show();
  return QApplication::exec();
}
