// The smallest program with an icon in the tray.
#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QPixmap picture(22, 22);
  picture.fill(Qt::transparent);
  QPainter(&picture).fillRect(4, 4, 14, 14, Qt::white);
  QSystemTrayIcon icon{QIcon(picture)};
  icon.show();
  return QApplication::exec();
}
