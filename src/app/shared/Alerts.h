#pragma once

#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/shared/Tones.h"

class QDialog;
class QWidget;

namespace corvane {

/// Every alert of the program. An alert blocks its own window only and never runs an event loop of
/// its own. GUI thread.
class Alerts {
 public:
  /// What an alert says and asks. All texts are plain. A question in several paragraphs has its
  /// first one in bold.
  struct Sign {
    const char* symbol;  ///< as Symbols.h names it
    Tone tone;
  };
  struct Question {
    QMessageBox::Icon icon = QMessageBox::Warning;
    std::optional<Sign> sign{};                 ///< in place of the icon
    QString title;                              ///< in the classic style
    QString text;                               ///< in the classic style, or without a heading
    QString detail{};                           ///< more of it
    QStringList buttons{QStringLiteral("OK")};  ///< an "&" marks the key that presses the button
    int preset = 0;                             ///< the button that Enter presses
    bool dismissible = false;                   ///< Escape presses none of them
    QString subject{};  ///< the title in the modern style, else the window's: "Delete – anna@host"
    QString heading{};  ///< what has happened or is asked, in the modern style
    QString advice{};   ///< a plain sentence or two on what to do, in the modern style
    /// Facts in a card: of one cell a line, of two a label and its text, of more a label and texts
    /// side by side, below the titles in a first row without a label.
    std::vector<QStringList> facts{};
    int fixedFact = -1;  ///< the row of the facts whose texts stand in fixed width
    QString note{};      ///< below the card, in less weight
    QString field{};     ///< the label of a field for something secret, which gets the focus
    std::function<void(const std::string&)> entered{};  ///< gets it before the answer comes
    /// What each button does, the last one aside: it makes them choices, as more than three are.
    QStringList explanations{};
    std::map<int, QString> unavailable{};  ///< choices that cannot be made, and why not
    QString tick{};                        ///< the text of a check box
    bool ticks = false;                    ///< it is set at first
    std::function<void(bool)> ticked{};    ///< gets its state before the answer comes
  };
  using Answer = std::function<void(int button)>;
  using Responder = std::function<int(const Question&)>;

  /// What Escape gives in place of a button where the question can be dismissed.
  static constexpr int kDismissed = -1;

  /// Shows the alert over `window`; `then` gets the index of the pressed button. Escape, and
  /// closing the alert, press the last one or, where the question is dismissible, give kDismissed.
  /// If the window goes first, `then` is never called.
  static void Show(QWidget* window, const Question& question, Answer then = {});
  /// The same, for who has to close the alert again; null where no window shows it.
  static QPointer<QDialog> Open(QWidget* window, const Question& question, Answer then = {});

  /// Answers every later alert without showing it; an empty responder ends that.
  static void AnswerWith(Responder responder);
};

}  // namespace corvane
