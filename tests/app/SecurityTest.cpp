#include "AppFixture.h"
#include "app/browser/BrowserView.h"
#include "app/browser/FailurePage.h"
#include "app/browser/PathField.h"
#include "app/connect/ShortCutEditWindow.h"
#include "app/program/PrefWindow.h"
#include "app/shared/EncryptionField.h"
#include "app/shared/Password.h"
#include "app/shared/QuestionBox.h"
#include "remote/Outcome.h"

namespace corvane {
namespace {

using Kind = UserQuestion::Kind;
using Answer = UserQuestion::Answer;

Certificate Shown(std::uint32_t problems = Certificate::kSelfSigned) {
  return {.name = "www.example.net",
          .names = {"a.test", "b.test"},
          .issuer = "www.example.net",
          .notBefore = 1767312000,  // 2 Jan 2026
          .notAfter = 1830384000,   // 2 Jan 2028
          .sha256 = std::string(32, '\x5e'),
          .problems = problems};
}

std::shared_ptr<UserQuestion> Question(Kind kind, const std::string& host = "server.test") {
  return std::make_shared<UserQuestion>(
      UserQuestion::Subject{.kind = kind,
                            .host = host,
                            .certificate = Shown(),
                            .known = KnownCertificate{.certificate = Shown(0), .since = 0},
                            .file = "/home/me/key.p12"});
}

/// The answer, where there is one within a moment; nobody waits for ever.
std::string AnswerTo(UserQuestion& question) {
  int polls = 0;
  bool withdrawn = false;
  const Answer answer = question.Wait([&] {
    QApplication::processEvents();
    withdrawn = ++polls > 20;
    return !withdrawn;
  });
  if (withdrawn) return "none";
  return answer == Answer::No ? "no" : answer == Answer::Once ? "once" : "always";
}

class SecurityWindows : public AppFixture {
 protected:
  QPointer<QuestionBox> Box(const QWidget* over) {
    EXPECT_TRUE(Wait([&] { return over->findChild<QuestionBox*>() != nullptr; }));
    return over->findChild<QuestionBox*>();
  }
  /// Whether a symbol of that meaning is seen in the path field.
  bool LockSays(const QString& meaning) {
    return std::ranges::any_of(window_->View().Path().actions(), [&](const QAction* each) {
      return each->isVisible() && each->text() == meaning;
    });
  }
  QAbstractButton& Sign() { return *window_->findChild<QAbstractButton*>("Sign"); }
};

TEST_F(SecurityWindows, EveryButtonGivesItsAnswerAndEscapeIsNo) {
  Alerts::AnswerWith({});
  const std::tuple<Kind, const char*, bool, const char*> cases[] = {
      {Kind::UnknownCertificate, "Trust &Once", false, "once"},
      {Kind::UnknownCertificate, "&Always Trust", false, "always"},
      {Kind::UnknownCertificate, "&Don’t Connect", false, "no"},
      {Kind::UnknownCertificate, nullptr, false, "no"},
      {Kind::ChangedCertificate, "&Trust the New One", false, "always"},
      {Kind::ChangedCertificate, nullptr, false, "no"},
      {Kind::NoMoreEncryption, "Connect &Unencrypted", false, "once"},
      {Kind::PlainPassword, "&Send Unencrypted", true, "always"},
      {Kind::PlainPassword, "&Don’t Connect", true, "no"},
      {Kind::Passphrase, nullptr, false, "no"},
  };
  for (const auto& [kind, button, ticked, answer] : cases) {
    const auto question = Question(kind);
    link_->Ask(question);
    const QPointer<QuestionBox> box = Box(window_);
    ASSERT_TRUE(QTest::qWaitForWindowActive(box));
    const auto* focused = qobject_cast<QPushButton*>(box->focusWidget());
    EXPECT_EQ(kind == Kind::Passphrase, focused == nullptr || focused->text() != "&Don’t Connect");
    if (auto* tick = box->findChild<QCheckBox*>()) tick->setChecked(ticked);
    if (button == nullptr) {
      QTest::keyClick(box, Qt::Key_Escape);
    } else {
      for (auto* each : box->findChildren<QPushButton*>()) {
        if (each->text() == button) each->click();
      }
    }
    EXPECT_EQ(AnswerTo(*question), answer) << button;
    EXPECT_TRUE(Gone(box));
  }
}

TEST_F(SecurityWindows, APassphraseGoesWithItsAnswer) {
  Alerts::AnswerWith({});
  const auto question = Question(Kind::Passphrase);
  link_->Ask(question);
  const QPointer<QuestionBox> box = Box(window_);
  ASSERT_TRUE(QTest::qWaitForWindowActive(box));
  QTest::keyClicks(box->focusWidget(), "secret");
  QTest::keyClick(box->focusWidget(), Qt::Key_Return);
  EXPECT_EQ(AnswerTo(*question) + question->Text(), "oncesecret");
}

TEST_F(SecurityWindows, WhatIsAskedTwiceIsAskedOnceAndGoesWithTheLast) {
  Alerts::AnswerWith({});
  transfers_.clear();
  app_->Transfers().Add({.jobs = {{"/3", "/4"}}}, {});
  const auto first = Question(Kind::UnknownCertificate);
  const auto second = Question(Kind::UnknownCertificate);
  const auto other = Question(Kind::UnknownCertificate, "other.test");
  link_->Ask(first);
  const QPointer<QuestionBox> box = Box(window_);
  transfers_[0]->row->Ask(second);
  transfers_[0]->row->Ask(other);
  const QPointer<QuestionBox> beside = Box(&app_->Transfers());
  EXPECT_EQ(app_->Transfers().findChildren<QuestionBox*>().size(), 1);
  first->Give(Answer::No);  // withdrawn; the other still waits
  other->Give(Answer::No);
  EXPECT_TRUE(Gone(beside));
  EXPECT_FALSE(box.isNull());
  window_->CloseNow();
  const QPointer<QuestionBox> moved = Box(&app_->Transfers());
  EXPECT_TRUE(Gone(box));
  moved->findChildren<QPushButton*>().first()->click();
  EXPECT_EQ(AnswerTo(*second), "once");
  EXPECT_TRUE(Gone(moved));
  const auto third = Question(Kind::ChangedCertificate);
  app_->Transfers().hide();
  transfers_[0]->row->Ask(third);
  const QPointer<QuestionBox> last = Box(&app_->Transfers());
  EXPECT_TRUE(app_->Transfers().isVisible()) << "nobody sees a question over a hidden window";
  app_->Transfers().close();
  EXPECT_EQ(AnswerTo(*third), "no");
  EXPECT_TRUE(Gone(last));
}

TEST_F(SecurityWindows, AQuestionFollowsTheUserToAWindowThatWaitsToo) {
  Alerts::AnswerWith({});
  transfers_.clear();
  app_->Transfers().Add({.jobs = {{"/3", "/4"}}}, {});
  const auto first = Question(Kind::UnknownCertificate);
  const auto second = Question(Kind::UnknownCertificate);
  link_->Ask(first);
  const QPointer<QuestionBox> box = Box(window_);
  transfers_[0]->row->Ask(second);
  app_->Transfers().activateWindow();
  const QPointer<QuestionBox> moved = Box(&app_->Transfers());
  EXPECT_TRUE(QTest::qWaitForWindowActive(moved) && Gone(box));
  moved->findChildren<QPushButton*>().first()->click();
  EXPECT_EQ(AnswerTo(*first) + AnswerTo(*second), "onceonce");
}

TEST_F(SecurityWindows, SayInPlainWordsWhatDoesNotFit) {
  const std::pair<std::uint32_t, const char*> cases[] = {
      {Certificate::kSelfSigned, "Nobody whom this computer trusts has signed"},
      {Certificate::kExpired, "expired on 02 Jan 2028."},
      {Certificate::kNotYetValid, "not valid before 02 Jan 2026."},
      {Certificate::kOtherHost, "other names: a.test, b.test."},
      {Certificate::kWeak, "easily forged"},
  };
  for (const auto& [problem, words] : cases) {
    Anew();
    const auto question = std::make_shared<UserQuestion>(
        UserQuestion::Subject{.host = "h", .certificate = Shown(problem)});
    link_->Ask(question);
    ASSERT_TRUE(Alerted(1));
    for (const auto& [other, sentence] : cases) {
      EXPECT_EQ(alerts_[0].advice.contains(sentence), other == problem) << sentence;
    }
    EXPECT_EQ(alerts_[0].heading, "Is this really h?");
  }
}

TEST_F(SecurityWindows, ThePadlockTellsTheTruthWhileThereIsAConnection) {
  EXPECT_FALSE(Sign().isVisible() || LockSays("") || LockSays("Not encrypted"));
  const std::tuple<Protection, const char*, std::size_t> cases[] = {
      {{true, "TLS 1.3", "TLS_AES", Shown()}, "Encrypted, TLS 1.3", 7}, {{}, "Not encrypted", 0}};
  for (const auto& [protection, words, facts] : cases) {
    Anew();
    link_->ShowProtection(protection);
    const QString shown(words);
    EXPECT_TRUE(Wait([&] { return Sign().text() == shown; }));
    EXPECT_TRUE(Sign().isVisible() && LockSays(shown));
    QTest::keyClick(window_, Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(Alerted(1));
    EXPECT_EQ(alerts_[0].facts.size(), facts);
    Sign().click();
    EXPECT_TRUE(Alerted(2));
  }
  link_->PostMessage(With("LOST"_what, "warning", "gone"));
  EXPECT_TRUE(Wait([&] { return !Sign().isVisible(); }));
  EXPECT_FALSE(LockSays("Not encrypted"));
  QTest::keyClick(window_, Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(alerts_.size(), 2U);
}

TEST_F(SecurityWindows, WhereEncryptionFailsAnotherWayCanBeTried) {
  connects_ = false;
  app_->PostMessage(With("OPNC"_what, "host", "h"));
  window_ = app_->WindowList().back();
  Message failed("FERR"_what);
  failed.AddText("error", Text("1"));
  failed.AddInt32("kind", static_cast<std::int32_t>(Outcome::Trouble::NoEncryption));
  link_->PostMessage(std::move(failed));
  auto& field = *window_->findChild<FailurePage*>()->findChild<EncryptionField*>();
  EXPECT_TRUE(Wait([&] { return field.isVisible(); }));
  field.Choose(Security::Implicit);
  window_->findChild<QPushButton*>("TryAgain")->click();
  EXPECT_TRUE(Wait([&] { return connections_.back().security == Security::Implicit; }));
  EXPECT_EQ(connections_.back().port, 990);
}

TEST_F(SecurityWindows, AnotherTryAtAnotherHostIsNotTakenForTheFirst) {
  connects_ = false;
  app_->PostMessage(With("OPNC"_what, "host", "127.0.0.1"));
  window_ = app_->WindowList().back();
  EXPECT_FALSE(connections_.back().warnsOfPlain);
  Site other = connections_.back();
  other.host = "127.example";
  Q_EMIT window_->View().TryAgainPressed(other);
  EXPECT_TRUE(connections_.back().warnsOfPlain);
  EXPECT_TRUE(window_->windowTitle().contains("127.example"));
}

TEST_F(SecurityWindows, TheEditorGivesBackWhatItWasFilledWith) {
  for (const Security security :
       {Security::Automatic, Security::Required, Security::Implicit, Security::Plain}) {
    const Shortcut record{.label = "l",
                          .site = {.host = "h",
                                   .port = UsualPort(security),
                                   .security = security,
                                   .encoding = security == Security::Plain ? "CP1251" : "x-own",
                                   .clientCertificate = "/k\xE4y.pem",
                                   .asksPassword = true,
                                   .connections = security == Security::Plain ? 8 : 0}};
    std::optional<Shortcut> changed;
    app_->ShowEditor(record, *window_, [&changed](const Shortcut& now) {
      changed = now;
      return true;
    });
    EXPECT_EQ(Line(app_->Editor(), "Port").text(), "");
    app_->Editor()->findChild<QPushButton*>("ok")->click();
    ASSERT_TRUE(Wait([&] { return changed.has_value(); }));
    EXPECT_TRUE(*changed == record);
    EXPECT_TRUE(Gone(app_->Editor()));
  }
  // The usual port follows the encryption, another one stays.
  StartWin& start = app_->ConnectionWindow();
  auto& field = *start.findChild<EncryptionField*>();
  for (const auto& [port, connects] : {std::pair("", 990), std::pair("2121", 2121)}) {
    field.Choose(Security::Automatic);
    Line(&start, "Host").setText("h");
    Line(&start, "Port").setText(port);
    field.Choose(Security::Implicit);
    EXPECT_EQ(Line(&start, "Port").placeholderText(), "990");
    start.MessageReceived(Message("CNNT"_what));
    EXPECT_EQ(connections_.back().port, connects);
  }
}

TEST_F(SecurityWindows, TrustedCertificatesGoOnlyWithSave) {
  std::vector<std::string> removed;
  const TrustedCertificates trusted{
      [] {
        return std::vector<KnownServers::Entry>{{"b.test", 2121, {Shown(), 0}}, {"a.test", 21, {}}};
      },
      [&removed](const std::string& host, std::uint16_t) { removed.push_back(host); }};
  for (const char* button : {"cancel", "save"}) {
    const QPointer<PrefWindow> window = new PrefWindow(trusted);
    auto* list = window->findChild<QTreeWidget*>("Trusted");
    EXPECT_EQ(list->topLevelItem(1)->text(0), "b.test:2121");
    list->setCurrentItem(list->topLevelItem(1));
    Anew();
    window->findChild<QPushButton*>("ShowTrusted")->click();
    ASSERT_EQ(alerts_.size(), 1U);
    EXPECT_TRUE(alerts_[0].text.contains("b.test"));
    EXPECT_FALSE(window->Changed());
    window->findChild<QPushButton*>("RemoveTrusted")->click();
    EXPECT_TRUE(window->Changed() && removed.empty());
    window->findChild<QPushButton*>(button)->click();
    EXPECT_TRUE(Gone(window));
  }
  EXPECT_EQ(removed, std::vector<std::string>{"b.test"});
}

}  // namespace
}  // namespace corvane
