#include "app/shared/Alerts.h"

#include <QTimer>
#include <QWidget>
#include <utility>

#include "app/shared/QuestionBox.h"

namespace corvane {
namespace {

Alerts::Responder& TheResponder() {
  static Alerts::Responder responder;
  return responder;
}

}  // namespace

void Alerts::Show(QWidget* window, const Question& question, Answer then) {
  (void)Open(window, question, std::move(then));
}

QPointer<QDialog> Alerts::Open(QWidget* window, const Question& question, Answer then) {
  if (TheResponder()) {
    const int button = TheResponder()(question);
    QTimer::singleShot(0, window, [then = std::move(then), button] {
      if (then) then(button);
    });
    return {};
  }
  auto* box = new QuestionBox(question, window);
  box->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(
      box, &QDialog::finished, window,
      [box, ticked = question.ticked, entered = question.entered, then = std::move(then)] {
        if (entered) entered(box->Entered());
        if (ticked) ticked(box->Ticked());
        if (then) then(box->Answer());
      });
  box->open();
  return box;
}

void Alerts::AnswerWith(Responder responder) {
  TheResponder() = std::move(responder);
}

}  // namespace corvane
