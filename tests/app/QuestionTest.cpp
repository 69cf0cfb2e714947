#include "AppFixture.h"
#include "app/shared/QuestionBox.h"

namespace corvane {
namespace {

class Questions : public AppFixture {
 protected:
  Questions() { Alerts::AnswerWith({}); }

  /// Shows the question, presses the key and gives the answer.
  int Ask(const Alerts::Question& question, Qt::Key key) {
    std::optional<int> answer;
    Alerts::Show(window_, question, [&answer](int button) { answer = button; });
    const QPointer<QuestionBox> box = window_->findChild<QuestionBox*>();
    EXPECT_TRUE(QTest::qWaitForWindowActive(box));
    texts_.clear();
    for (const QAbstractButton* button : box->findChildren<QAbstractButton*>()) {
      texts_ << button->text();
    }
    shown_ = {box->windowTitle(), box->accessibleName()};
    focus_ = qobject_cast<QPushButton*>(box->focusWidget());
    EXPECT_TRUE(focus_ != nullptr && focus_->isDefault());
    if (key == Qt::Key_Down) {
      box->findChild<QRadioButton*>()->setFocus();
      QTest::keyClick(box->focusWidget(), key);
    }
    const QString verb = focus_->text();
    QTest::keyClick(box, key == Qt::Key_Escape ? key : Qt::Key_Return);
    EXPECT_TRUE(Gone(box));
    verb_ = verb;
    return answer.value_or(-2);
  }

  QStringList texts_;
  std::pair<QString, QString> shown_;
  QPointer<QPushButton> focus_;
  QString verb_;
};

TEST_F(Questions, TheSafeAnswerStandsLastAndEscapeHarmsNothing) {
  const QStringList delete_{"&Delete", "&Cancel"};
  const QStringList again{"&Connect Again", "Cancel"};
  const QStringList many{"&Skip", "&Overwrite", "Keep &both", "Cancel"};
  // Buttons, preset, dismissible; the key, the answer, and the verb of the filled button.
  const std::tuple<QStringList, int, bool, Qt::Key, int, const char*> cases[] = {
      {delete_, 1, false, Qt::Key_Return, 1, "&Cancel"},
      {delete_, 0, false, Qt::Key_Escape, 1, "&Delete"},
      {delete_, 1, true, Qt::Key_Escape, Alerts::kDismissed, "&Cancel"},
      {again, 0, false, Qt::Key_Return, 0, "&Connect Again"},
      {again, 0, false, Qt::Key_Escape, 1, "&Connect Again"},
      {many, 0, false, Qt::Key_Return, 0, "Skip"},
      {many, 0, false, Qt::Key_Down, 1, "Overwrite"},
      {many, 2, false, Qt::Key_Escape, 3, "Keep both"},
  };
  for (const auto& [buttons, preset, dismissible, key, answer, verb] : cases) {
    EXPECT_EQ(Ask({.title = "Alert!",
                   .text = "Why?",
                   .buttons = buttons,
                   .preset = preset,
                   .dismissible = dismissible},
                  key),
              answer);
    EXPECT_EQ(verb_, verb);
    if (buttons != many) EXPECT_EQ(texts_.last(), verb);
    EXPECT_EQ(shown_.first, window_->windowTitle());
  }
}

TEST_F(Questions, EachStyleHasItsWording) {
  const Alerts::Question question{.title = "Alert!",
                                  .text = "Do you?",
                                  .subject = "Delete",
                                  .heading = "<b>Delete this?",
                                  .advice = "It is gone then."};
  for (const bool classic : {false, true}) {
    settings_.classicStyle = classic;
    ProcessSettings::Set(settings_);
    (void)Ask(question, Qt::Key_Return);
    const auto expected = classic ? std::pair<QString, QString>("Alert!", "Do you?")
                                  : std::pair<QString, QString>("Delete", "<b>Delete this?");
    EXPECT_EQ(shown_, expected);
  }
}

TEST_F(Questions, WhateverAServerSaysTheButtonsStayOnTheScreen) {
  const int tallest = QGuiApplication::primaryScreen()->availableGeometry().height();
  std::vector<QStringList> facts;
  for (int i = 0; i < 200; ++i) facts.push_back({"File", QString(300, 'x')});
  for (const QString& text : {QString(5000, 'x'), QString("line\n").repeated(5000)}) {
    QuestionBox box({.text = text, .detail = "2", .heading = "1", .advice = "3", .facts = facts},
                    window_);
    box.show();
    EXPECT_TRUE(Wait([&] { return box.isVisible(); }));
    EXPECT_LE(box.height(), tallest);
    EXPECT_LE(box.width(), 600);
  }
}

}  // namespace
}  // namespace corvane
