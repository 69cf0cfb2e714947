#include "app/shared/Alerts.h"

#include <QAbstractButton>
#include <QPushButton>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

Alerts::Responder& TheResponder() {
  static Alerts::Responder responder;
  return responder;
}

/// Keeps the buttons on the screen whatever a server says.
QString Shortened(const QString& text) {
  constexpr qsizetype kMost = 1000;
  return text.size() <= kMost ? text : text.first(kMost) + QChar(0x2026);
}

/// All buttons as wide as the widest.
void EvenOut(const QList<QAbstractButton*>& buttons) {
  int widest = 0;
  for (const QAbstractButton* button : buttons) {
    widest = std::max(widest, button->sizeHint().width());
  }
  for (QAbstractButton* button : buttons) button->setMinimumWidth(widest);
}

}  // namespace

void Alerts::Show(QWidget* window, const Question& question, Answer then) {
  if (TheResponder()) {
    const int button = TheResponder()(question);
    QTimer::singleShot(0, window, [then = std::move(then), button] {
      if (then) then(button);
    });
    return;
  }
  auto* box = new QMessageBox(window);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setIcon(question.icon);
  box->setWindowTitle(question.title);
  box->setTextFormat(Qt::PlainText);
  box->setText(Shortened(question.text));
  box->setInformativeText(Harmless(Shortened(question.detail)));
  QList<QAbstractButton*> buttons;
  for (const QString& label : question.buttons) {
    const bool last = buttons.size() + 1 == question.buttons.size();
    buttons.append(box->addButton(
        label, last && !buttons.isEmpty() ? QMessageBox::RejectRole : QMessageBox::AcceptRole));
  }
  EvenOut(buttons);
  box->setDefaultButton(qobject_cast<QPushButton*>(buttons.at(question.preset)));
  const auto otherwise = question.dismissible ? kDismissed : static_cast<int>(buttons.size()) - 1;
  if (question.dismissible) {
    // The toolkit lets Escape press nothing but a button.
    box->setEscapeButton(box->addButton(QMessageBox::Cancel));
    box->escapeButton()->hide();
  } else {
    box->setEscapeButton(buttons.last());
  }
  QObject::connect(box, &QMessageBox::finished, window,
                   [box, buttons, otherwise, then = std::move(then)] {
                     const auto pressed = static_cast<int>(buttons.indexOf(box->clickedButton()));
                     if (then) then(pressed < 0 ? otherwise : pressed);
                   });
  box->open();
}

void Alerts::AnswerWith(Responder responder) {
  TheResponder() = std::move(responder);
}

}  // namespace corvane
