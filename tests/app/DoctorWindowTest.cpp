#include "app/doctor/DoctorWindow.h"

#include "app/AppFixture.h"
#include "app/doctor/StepList.h"
#include "app/shared/Strip.h"

namespace corvane {
namespace {

using Kind = DiagnosisStep::Kind;
using Sign = DiagnosisStep::Sign;

/// Sees what the test has it see.
struct IdleDoctor final : public MThread {
  IdleDoctor(Site where, std::shared_ptr<DiagnosisUi> shown)
      : site(std::move(where)), window(std::move(shown)) {}
  std::int32_t Execute() override { return 0; }
  const Site site;
  const std::shared_ptr<DiagnosisUi> window;
};

class DoctorWindows : public AppFixture {
 protected:
  DoctorWindows() {
    factory_.doctor = [this](const Site& site, std::shared_ptr<DiagnosisUi> window) {
      return doctor_ = std::make_shared<IdleDoctor>(site, std::move(window));
    };
    app_ = std::make_unique<TambleApp>(factory_);
    connects_ = false;
    app_->ReadyToRun(With("OPNC"_what, "host", "server.test"));
    window_ = app_->WindowList().back();
    PutInFront(*window_);
  }
  /// The server does not let the window in, and the user asks why.
  DoctorWindow& Ask() {
    Message failed("FERR"_what);
    failed.AddText("error", Text("Stopped."));
    link_->PostMessage(failed);
    auto* ask = window_->findChild<QWidget*>("FailurePage")->findChild<QPushButton*>("Diagnose");
    EXPECT_TRUE(Wait([&] { return ask->isVisible(); }));
    ask->click();
    EXPECT_TRUE(Wait([&] { return doctor_ != nullptr; }));
    return *window_->findChild<DoctorWindow*>();
  }
  void See(Kind kind, Sign sign, const char* name, const Text& seen) const {
    doctor_->window->ShowStep({.kind = kind,
                               .sign = sign,
                               .name = Text::Raw(name),
                               .seen = seen,
                               .took = std::chrono::milliseconds(10'040)});
  }
  std::shared_ptr<IdleDoctor> doctor_;
};

TEST_F(DoctorWindows, ShowsWhatIsWrongAndMendsIt) {
  QPointer<DoctorWindow> window = &Ask();
  EXPECT_EQ(doctor_->site.host, "server.test");
  See(Kind::Address, Sign::Good, "Find", Text::Raw("<b>\x1b[2J</b>"));
  See(Kind::Active, Sign::Running, "List", {});
  auto* const steps = window->findChild<StepList*>();
  ASSERT_TRUE(Wait([&] { return steps->count() == 2; }));
  EXPECT_EQ(steps->item(1)->text(), "Under way: List.");
  See(Kind::Active, Sign::Bad, "List", Text::Raw("No."));
  See(Kind::Clock, Sign::LeftOut, "Clock", {});
  Advice advice{.fix = Advice::Fix::TurnOnPassive,
                .verdict = Text::Raw("Listings fail."),
                .heading = Text::Raw("Be passive."),
                .reason = Text::Raw("A router."),
                .site = doctor_->site};
  advice.site.passive = true;
  doctor_->window->ShowAdvice(advice);
  auto* const fix = window->findChild<QPushButton*>("Fix");
  ASSERT_TRUE(Wait([&] { return fix->isVisible(); }));
  EXPECT_EQ(steps->item(1)->text(), "Wrong: List. No. 10.0 s");
  EXPECT_EQ(steps->item(2)->text(), "Left out: Clock.");
  EXPECT_EQ(window->findChild<QLabel*>("Heading")->text(), "Listings fail.");
  EXPECT_TRUE(window->findChild<QLabel*>("Count")->text().startsWith("2 of 3 steps"));
  EXPECT_EQ(window->findChild<Strip*>()->Heading(), "Be passive.");

  window->findChild<QPushButton*>("CopyReport")->click();
  const QString report = QApplication::clipboard()->text();
  EXPECT_TRUE(report.contains("[Wrong] List (10.0 s)\n    No.\n")) << report.toStdString();
  EXPECT_TRUE(report.contains("Be passive.\nA router."));
  EXPECT_FALSE(report.contains(QChar(0x1b)));

  const std::size_t before = connections_.size();
  fix->click();
  ASSERT_TRUE(Wait([&] { return connections_.size() == before + 1; }));
  EXPECT_TRUE(connections_.back().passive);
  EXPECT_TRUE(Gone(window));
}

// A transfer's connection is looked at too, and what helps is tried in a browser window.
TEST_F(DoctorWindows, LooksAtTheConnectionOfATransfer) {
  DownLoadWin& transfers = app_->Transfers();
  transfers.Add({.site = {.host = "other.test", .port = 2121}, .jobs = {{"/3", "/4"}}}, {});
  transfers.show();
  auto* const list = transfers.findChild<QAbstractItemView*>();
  list->setCurrentIndex(list->model()->index(0, 0));
  transfers.MessageReceived(Message("DIAG"_what));
  ASSERT_TRUE(Wait([&] { return doctor_ != nullptr; }));
  EXPECT_EQ(doctor_->site.port, 2121);
  Advice advice{.site = doctor_->site};
  advice.site.port = 21;
  doctor_->window->ShowAdvice(advice);
  auto* const fix = transfers.findChild<DoctorWindow*>()->findChild<QPushButton*>("Fix");
  ASSERT_TRUE(Wait([&] { return fix->isVisible(); }));
  fix->click();
  ASSERT_TRUE(Wait([&] { return connections_.back().host == "other.test"; }));
  EXPECT_EQ(connections_.back().port, 21);
}

TEST_F(DoctorWindows, BeginsAnewAndEndsWithItsWindow) {
  QPointer<DoctorWindow> window = &Ask();
  const auto first = doctor_;
  first->window->ShowAdvice({});
  auto* const again = window->findChild<QPushButton*>("CheckAgain");
  ASSERT_TRUE(Wait([&] { return again->isEnabled(); }));
  again->click();
  ASSERT_NE(doctor_, first);
  EXPECT_FALSE(first->window->ShowStep({}));  // what is late belongs nowhere
  QTest::keyClick(window, Qt::Key_Escape);
  EXPECT_TRUE(Gone(window));
  EXPECT_TRUE(doctor_->Cancelled());
  EXPECT_FALSE(doctor_->window->ShowStep({}));
}

}  // namespace
}  // namespace corvane
