// A label that wraps its text to its width.
#pragma once

#include <QEvent>
#include <QLabel>
#include <QSize>

#include "platform/application/windows.h"

class HLQtLabel : public QLabel {
 public:
  // The size hint is the width of the text on one line, at most `widest`.
  HLQtLabel(const HLLabel& label, int widest, QWidget* parent);

  // A label without text is hidden and takes no room.
  void setText(const QString& text);
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
