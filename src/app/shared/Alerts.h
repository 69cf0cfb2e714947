#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

namespace corvane {

/// Every alert of the program. An alert blocks its own window only and never runs an event loop of
/// its own. GUI thread.
class Alerts {
 public:
  struct Question {
    QMessageBox::Icon icon = QMessageBox::Warning;
    QString title;
    QString text;
    QString detail{};                           ///< more of it, in smaller letters
    QStringList buttons{QStringLiteral("OK")};  ///< an "&" marks the key that presses the button
    int preset = 0;                             ///< the button that Enter presses
    bool dismissible = false;                   ///< Escape presses none of them
  };
  using Answer = std::function<void(int button)>;
  using Responder = std::function<int(const Question&)>;

  /// What Escape gives in place of a button where the question can be dismissed.
  static constexpr int kDismissed = -1;

  /// Shows the alert over `window`; `then` gets the index of the pressed button. Escape, and
  /// closing the alert, press the last one or, where the question is dismissible, give kDismissed.
  /// If the window goes first, `then` is never called.
  static void Show(QWidget* window, const Question& question, Answer then = {});

  /// Answers every later alert without showing it; an empty responder ends that.
  static void AnswerWith(Responder responder);
};

}  // namespace corvane
