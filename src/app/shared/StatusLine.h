#pragma once

#include <QWidget>

#include "app/shared/Tones.h"

class QLabel;

namespace corvane {

class BusySign;
class ElidedLabel;
class SmallView;

/// The line at the foot of a window: what goes on, with a sign while it is waited for, a figure at
/// the right, and room for a sign with words behind a line. GUI thread.
class StatusLine : public QWidget {
  Q_OBJECT

 public:
  explicit StatusLine(QWidget* parent);

  /// What goes on; read out to those who do not see it.
  void SetText(const QString& text);
  [[nodiscard]] QString Text() const;
  void SetBusy(bool busy);
  [[nodiscard]] bool IsBusy() const;
  /// The figure at the right.
  [[nodiscard]] SmallView& Figure() { return *figure_; }
  /// What stands behind the line, in that tone; an empty text takes it and the line away.
  void SetSign(const char* symbol, const QString& text, Tone tone);
  /// Tab leads to the sign from `before`.
  void PutSignBehind(QWidget& before);

 Q_SIGNALS:
  void SignPressed();

 private:
  class Sign;

  BusySign* busy_;
  ElidedLabel* text_;
  SmallView* figure_;
  Sign* sign_;
};

}  // namespace corvane
