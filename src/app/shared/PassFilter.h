#pragma once

#include <QObject>

class QKeyEvent;

namespace corvane {

class Password;

/// Hands the keys of its Password field to its hidden text, before the field sees them. GUI thread.
class PassFilter : public QObject {
  Q_OBJECT

 public:
  /// `field` owns the filter.
  explicit PassFilter(Password* field);

  /// Does what the key does to the hidden text. True when the field is not to see the key.
  bool Filter(const QKeyEvent& key);

  bool eventFilter(QObject* target, QEvent* event) override;

 private:
  Password& field_;
};

}  // namespace corvane
