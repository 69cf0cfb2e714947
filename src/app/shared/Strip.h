#pragma once

#include <QWidget>

#include "app/shared/Tones.h"

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace corvane {

/// A message that stands where the work stands: a symbol, what happened in bold, a sentence, and
/// what can be done about it. GUI thread.
class Strip : public QWidget {
  Q_OBJECT

 public:
  Strip(const char* symbol, Tone tone, QWidget* parent);

  void Set(const QString& heading, const QString& text);
  /// A button at the right; the caller connects it.
  QPushButton* AddButton(const QString& text);
  [[nodiscard]] QString Heading() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const char* symbol_;
  Tone tone_;
  QLabel* heading_;
  QLabel* text_;
  QHBoxLayout* layout_;
};

}  // namespace corvane
