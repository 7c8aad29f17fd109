// Windows of Qt widgets, built from their descriptions.
#pragma once

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/application/windows.h"

class QPushButton;
class HLQtLabel;

// Escape and Ctrl+W close the window, Ctrl+Q quits the application, Return clicks the button with that key.
class HLQtWindow : public QWidget, public HLWindow {
 public:
  explicit HLQtWindow(HLWindowDescription description);

  void setLabel(std::string_view name, const std::string& text, HLTextColor color) override;
  void setButtonTitle(std::string_view name, const std::string& title) override;
  void setCheckBox(std::string_view name, bool on) override;
  void setEnabled(std::string_view name, bool enabled) override;
  void fitHeight() override;
  void center() override;
  void makeKeyAndOrderFront() override;
  void close() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* makeControl(const HLControl& control);
  QWidget* makeRow(const HLRow& row);
  void addItem(const HLStackItem& item);
  void growToFit();
  [[nodiscard]] int neededHeight() const;

  template <class Widget>
  [[nodiscard]] Widget* find(std::string_view name) const;

  const HLWindowDescription description_;
  QVBoxLayout* stack_;
  QPushButton* keyButton_ = nullptr;
};

class HLQtWindows : public HLWindows {
 public:
  [[nodiscard]] std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) override;
  // In order of creation, then dialogs that Qt created itself.
  [[nodiscard]] std::vector<HLWindowView> views() override;

 private:
  std::vector<QPointer<QWidget>> made_;
};
