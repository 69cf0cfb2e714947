#include "app/shared/UserQuestions.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "app/shared/Alerts.h"
#include "app/shared/GuiThread.h"
#include "app/shared/QuestionTexts.h"

namespace corvane {
namespace {

/// Whether the user would read the same words.
bool AskTheSame(const UserQuestion& one, const UserQuestion& other) {
  const UserQuestion::Subject& a = one.About();
  const UserQuestion::Subject& b = other.About();
  return a.kind == b.kind && a.host == b.host && a.port == b.port && a.file == b.file &&
         a.certificate.sha256 == b.certificate.sha256;
}

bool IsGone(const QPointer<QWidget>& window) {
  return window.isNull() || window->isHidden();
}

}  // namespace

UserQuestions& UserQuestions::TheOne() {
  static QPointer<UserQuestions> one;
  if (one.isNull()) one = new UserQuestions(qApp);
  return *one;
}

void UserQuestions::Ask(QWidget* window, const std::shared_ptr<UserQuestion>& question) {
  UserQuestions& all = TheOne();
  if (window->isHidden()) window->show();
  all.Add(window, question);
  const std::weak_ptr<UserQuestion> weak = question;
  question->WhenOver([weak, one = QPointer<UserQuestions>(&all)] {
    OnGuiThread([weak, one] {
      const std::shared_ptr<UserQuestion> over = weak.lock();
      if (over != nullptr && !one.isNull()) one->Withdrawn(over.get());
    });
  });
}

void UserQuestions::Add(QWidget* window, const std::shared_ptr<UserQuestion>& question) {
  window->removeEventFilter(this);
  window->installEventFilter(this);
  connect(window, &QObject::destroyed, this, &UserQuestions::Sweep, Qt::UniqueConnection);
  const auto same = std::ranges::find_if(asked_, [&](const Asked& asked) {
    return AskTheSame(*asked.askers.front().question, *question);
  });
  if (same != asked_.end()) {
    same->askers.push_back({window, question});
    if (window->isActiveWindow()) Follow(window);
    return;
  }
  asked_.push_back({.askers = {{window, question}}});
  Show(asked_.back(), window);
}

void UserQuestions::Show(Asked& asked, QWidget* window) {
  asked.over = window;
  Alerts::Question alert = AlertFor(asked.askers.front().question->About());
  alert.ticked = [&asked](bool ticked) { asked.ticked = ticked; };
  alert.entered = [&asked](const std::string& text) { asked.entered = text; };
  const int shown = ++asked.shown;
  asked.box = Alerts::Open(
      asked.over, alert, [this, which = &asked, shown](int button) { Give(which, shown, button); });
}

void UserQuestions::Give(const Asked* asked, int shown, int button) {
  const auto place =
      std::ranges::find_if(asked_, [asked](const Asked& each) { return &each == asked; });
  if (place == asked_.end() || place->shown != shown) return;
  const Asked answered = std::move(*place);
  asked_.erase(place);
  for (const Asker& asker : answered.askers) {
    asker.question->Give(AnswerOf(asker.question->About().kind, button, answered.ticked),
                         answered.entered);
  }
}

void UserQuestions::Withdrawn(const UserQuestion* question) {
  for (auto asked = asked_.begin(); asked != asked_.end(); ++asked) {
    const auto removed = std::erase_if(
        asked->askers, [question](const Asker& each) { return each.question.get() == question; });
    if (removed == 0 || !asked->askers.empty()) continue;
    delete asked->box;
    asked_.erase(asked);
    return;
  }
}

void UserQuestions::Sweep() {
  for (auto asked = asked_.begin(); asked != asked_.end();) {
    std::vector<Asker> gone;
    std::erase_if(asked->askers, [&gone](const Asker& each) {
      if (!IsGone(each.window)) return false;
      gone.push_back(each);
      return true;
    });
    const bool boxGone = IsGone(asked->over);
    if (boxGone) delete asked->box;
    if (asked->askers.empty()) {
      asked = asked_.erase(asked);
    } else {
      if (boxGone) Show(*asked, asked->askers.front().window);
      ++asked;
    }
    for (const Asker& each : gone) each.question->Give(UserQuestion::Answer::No);
  }
}

// Behind a window that waits for it too the question would not be seen.
void UserQuestions::Follow(QWidget* window) {
  for (Asked& asked : asked_) {
    const bool waits = std::ranges::any_of(
        asked.askers, [window](const Asker& asker) { return asker.window == window; });
    if (!waits || asked.over == window || asked.box.isNull()) continue;
    delete asked.box;
    Show(asked, window);
  }
}

bool UserQuestions::eventFilter(QObject* target, QEvent* event) {
  if (event->type() == QEvent::WindowActivate) {
    QTimer::singleShot(0, this, [this, window = QPointer(static_cast<QWidget*>(target))] {
      if (!IsGone(window)) Follow(window);
    });
  }
  if (event->type() == QEvent::Hide && !event->spontaneous()) {
    QTimer::singleShot(0, this, &UserQuestions::Sweep);
  }
  return false;
}

}  // namespace corvane
