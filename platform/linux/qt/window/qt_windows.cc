#include "platform/linux/qt/window/qt_windows.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QBuffer>
#include <QByteArray>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QPixmap>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

#include "platform/linux/qt/window/label.h"
#include "platform/linux/qt/window/qt_text.h"

namespace {

constexpr Qt::WindowFlags kWindowFlags =
    Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

constexpr int kButtonPadding = 16;  // added to the style's own, which lets a title touch the edges
constexpr int kButtonHeight = 24;

int pixels(double points) { return static_cast<int>(std::lround(points)); }

void setTitle(QPushButton& button, const std::string& title) {
  button.setText(HLQtPlain(title));
  button.setMinimumSize(button.sizeHint() + QSize(kButtonPadding, 0));
  button.setMinimumHeight(std::max(button.sizeHint().height(), kButtonHeight));
}

std::optional<std::string> pictureOf(QWidget& widget) {
  QByteArray png;
  QBuffer buffer(&png);
  if (!buffer.open(QIODevice::WriteOnly) || !widget.grab().save(&buffer, "PNG")) return std::nullopt;
  return png.toStdString();
}

HLWindowView viewOf(QWidget* widget) {
  HLWindowView view;
  view.title = widget->windowTitle().toStdString();
  view.visible = widget->isVisible();
  view.width = widget->width();
  view.height = widget->height();
  view.png = [window = QPointer(widget)]() -> std::optional<std::string> {
    return window == nullptr ? std::nullopt : pictureOf(*window);
  };
  return view;
}

// Qt reports a plain QWidget as a pane, not as a window, to assistive technologies.
QAccessibleInterface* accessibleWindow(const QString&, QObject* object) {
  auto* window = dynamic_cast<HLQtWindow*>(object);
  return window == nullptr ? nullptr
                           : new QAccessibleWidget(window, QAccessible::Dialog);  // NOLINT: Qt takes ownership
}

}  // namespace

HLQtWindow::HLQtWindow(HLWindowDescription description)
    : QWidget(nullptr, kWindowFlags), description_(std::move(description)), stack_(new QVBoxLayout(this)) {
  QAccessible::installFactory(accessibleWindow);  // Qt ignores repeated calls with the same factory
  setWindowTitle(QString::fromStdString(description_.title));
  const int side = pixels(description_.sideMargin);
  const int vertical = pixels(description_.verticalMargin);
  stack_->setContentsMargins(side, vertical, side, vertical);
  stack_->setSpacing(0);
  for (const HLStackItem& item : description_.stack) {
    addItem(item);
    if (&item != &description_.stack.back()) stack_->addSpacing(pixels(item.after));
  }
  stack_->addStretch();
  setFixedSize(pixels(description_.width), pixels(description_.height));
  growToFit();
}

void HLQtWindow::addItem(const HLStackItem& item) {
  QWidget* widget = std::visit(
      [this](const auto& what) {
        if constexpr (std::is_same_v<std::decay_t<decltype(what)>, HLRow>) {
          return makeRow(what);
        } else {
          return makeControl(what);
        }
      },
      item.what);
  stack_->addWidget(widget, 0, item.fullWidth ? Qt::Alignment() : Qt::AlignLeading);
}

QWidget* HLQtWindow::makeRow(const HLRow& row) {
  auto* widget = new QWidget(this);
  auto* layout = new QHBoxLayout(widget);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(pixels(row.spacing));
  for (const HLControl& control : row.controls) layout->addWidget(makeControl(control), 0, Qt::AlignVCenter);
  return widget;
}

QWidget* HLQtWindow::makeControl(const HLControl& control) {
  QWidget* widget = nullptr;
  if (const auto* label = std::get_if<HLLabel>(&control)) {
    widget = new HLQtLabel(*label, pixels(description_.width - 2 * description_.sideMargin), this);
    widget->setObjectName(QString::fromStdString(label->name));
  } else if (const auto* button = std::get_if<HLButton>(&control)) {
    auto* made = new QPushButton(this);
    setTitle(*made, button->title);
    made->setObjectName(QString::fromStdString(button->name));
    connect(made, &QPushButton::clicked, [action = button->action] { action(); });
    if (button->keyEquivalent == "\r") {
      made->setDefault(true);
      keyButton_ = made;
    }
    widget = made;
  } else if (const auto* box = std::get_if<HLCheckBox>(&control)) {
    auto* made = new QCheckBox(HLQtPlain(box->title), this);
    made->setObjectName(QString::fromStdString(box->name));
    // Unlike toggled(), clicked() is not emitted for setChecked().
    connect(made, &QCheckBox::clicked, [action = box->action](bool on) { action(on); });
    widget = made;
  }
  return widget;
}

template <class Widget>
Widget* HLQtWindow::find(std::string_view name) const {
  return name.empty() ? nullptr
                      : findChild<Widget*>(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
}

void HLQtWindow::setLabel(std::string_view name, const std::string& text, HLTextColor color) {
  auto* label = find<HLQtLabel>(name);
  if (label == nullptr) return;
  label->setText(QString::fromStdString(text));
  label->setColor(color);
  growToFit();
}

void HLQtWindow::setButtonTitle(std::string_view name, const std::string& title) {
  if (auto* button = find<QPushButton>(name)) setTitle(*button, title);
}

void HLQtWindow::setCheckBox(std::string_view name, bool on) {
  if (auto* box = find<QCheckBox>(name)) box->setChecked(on);
}

void HLQtWindow::setEnabled(std::string_view name, bool enabled) {
  if (auto* control = find<QWidget>(name)) control->setEnabled(enabled);
}

int HLQtWindow::neededHeight() const {
  stack_->invalidate();
  return stack_->hasHeightForWidth() ? stack_->totalHeightForWidth(width()) : stack_->totalSizeHint().height();
}

void HLQtWindow::fitHeight() { setFixedHeight(neededHeight()); }

// Grows so that a longer text is not cut off.
void HLQtWindow::growToFit() { setFixedHeight(std::max(height(), neededHeight())); }

void HLQtWindow::center() {
  const QScreen* screen = QApplication::primaryScreen();
  if (screen == nullptr) return;
  QRect frame = frameGeometry();
  frame.moveCenter(screen->availableGeometry().center());
  move(frame.topLeft());
}

void HLQtWindow::makeKeyAndOrderFront() {
  show();
  raise();
  activateWindow();
}

void HLQtWindow::close() {
  if (description_.willClose) description_.willClose();
  hide();
}

void HLQtWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the window is hidden, not destroyed
  close();
}

void HLQtWindow::keyPressEvent(QKeyEvent* event) {
  const int key = event->key();
  const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
  const bool isPlain = modifiers == Qt::NoModifier;
  const bool withControl = modifiers == Qt::ControlModifier;
  if (isPlain && (key == Qt::Key_Return || key == Qt::Key_Enter) && keyButton_ != nullptr) {
    keyButton_->click();
  } else if ((isPlain && key == Qt::Key_Escape) || (withControl && key == Qt::Key_W)) {
    close();
  } else if (withControl && key == Qt::Key_Q) {
    QApplication::quit();
  } else {
    QWidget::keyPressEvent(event);
  }
}

std::unique_ptr<HLWindow> HLQtWindows::makeWindow(HLWindowDescription description) {
  auto window = std::make_unique<HLQtWindow>(std::move(description));
  made_.emplace_back(window.get());
  return window;
}

std::vector<HLWindowView> HLQtWindows::views() {
  std::erase(made_, nullptr);
  std::vector<HLWindowView> views;
  for (const auto& window : made_) views.push_back(viewOf(window));
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    const bool known = std::find(made_.begin(), made_.end(), widget) != made_.end();
    if (!known && widget->windowType() == Qt::Dialog) views.push_back(viewOf(widget));
  }
  return views;
}
