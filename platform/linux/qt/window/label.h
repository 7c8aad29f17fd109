// A text that breaks its lines to fit its width.
#pragma once

#include <QEvent>
#include <QLabel>
#include <QSize>

#include "platform/application/windows.h"

class HLQtLabel : public QLabel {
 public:
  // It asks to be as wide as its text is in one line, at most that wide.
  HLQtLabel(const HLLabel& label, int widest, QWidget* parent);

  void setColor(HLTextColor color);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void applyColor();

  const int widest_;
  HLTextColor color_;
};
