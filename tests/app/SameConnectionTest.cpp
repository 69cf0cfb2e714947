#include "AppFixture.h"
#include "app/transfers/TransferPane.h"

namespace corvane {
namespace {

class SameConnection : public AppFixture {
 protected:
  SameConnection() {
    List({File("file", 1000), File("other")});
    window_->findChild<QCheckBox*>("SameCon")->setChecked(true);
  }
  void Download() {
    const std::size_t before = transfers_.size() + here_.size();
    View().SelectRow(2);
    Command(Qt::Key_D);
    EXPECT_TRUE(Begins(before));
  }
  [[nodiscard]] QString Shown(const char* view) const {
    return window_->findChild<QLabel*>(view)->text();
  }

  TransferPane* pane_ = window_->findChild<TransferPane*>();
};

TEST_F(SameConnection, TheListingWaitsForEveryEnd) {
  const std::pair<TransferEnd, const char*> cases[] = {
      {TransferEnd::Finished, "file (7 done)"},
      {TransferEnd::Failed, "file: 550 Denied."},
      {TransferEnd::Cancelled, "file: Cancelled."},
  };
  for (const auto& [end, text] : cases) {
    Download();
    TransferUi& row = *here_.back()->row;
    EXPECT_FALSE(View().IsEnabled());
    View().SelectRow(3);  // must not bring the commands back
    const std::size_t begun = here_.size();
    Command(Qt::Key_D);
    alerts_.clear();
    window_->MessageReceived(With("DWLD"_what, "FileName", "other"));
    EXPECT_TRUE(Wait([&] { return alerts_.size() == 1; })) << "the connection is in use";
    EXPECT_EQ(here_.size(), begun);
    row.BeginFile("file");
    row.Progress().files = 7;
    row.Progress().done = 500;
    row.Progress().elapsed = 1'000'000;
    row.Progress().changed = true;
    EXPECT_TRUE(Wait([&] { return Shown("BPSECSVIEW") == "500 bytes/sec"; }));
    if (end == TransferEnd::Cancelled) {
      Command(Qt::Key_Period);
      EXPECT_TRUE(here_.back()->Cancelled());
      EXPECT_FALSE(View().IsEnabled()) << "the connection is still in use";
    }
    row.SetEndState(end, Text::Raw(end == TransferEnd::Failed ? "550 Denied." : ""));
    EXPECT_TRUE(Wait([&] { return View().IsEnabled(); }));
    EXPECT_EQ(Shown("FileName"), text);
    EXPECT_FALSE(pane_->Ticking());
  }
  EXPECT_TRUE(transfers_.empty());
}

TEST_F(SameConnection, ClosingTheWindowAsksAndCancels) {
  Download();
  button_ = 1;
  window_->close();
  QApplication::processEvents();
  ASSERT_FALSE(window_.isNull() || here_[0]->Cancelled());
  button_ = 0;
  window_->close();
  QApplication::processEvents();
  EXPECT_EQ(alerts_.size(), 2U);
  EXPECT_TRUE(here_[0]->Cancelled());
  EXPECT_TRUE(Wait([&] { return window_.isNull(); }));
  EXPECT_FALSE(here_[0]->row->SetEndState(TransferEnd::Cancelled, {}));
}

TEST_F(SameConnection, QuittingAsksOnceWhileAnythingRuns) {
  Download();
  app_->Transfers().Add({}, {});
  button_ = 1;
  app_->QuitRequested();
  app_->QuitRequested();
  QApplication::processEvents();
  ASSERT_EQ(alerts_.size(), 1U);
  EXPECT_EQ(alerts_[0].text, "Quit and stop 2 transfers?");
  EXPECT_EQ(alerts_[0].preset, 1);
  EXPECT_TRUE(app_->Transfers().isVisible());
  here_[0]->row->SetEndState(TransferEnd::Finished, {});
  EXPECT_TRUE(Wait([&] { return View().IsEnabled(); }));
  button_ = 0;
  app_->QuitRequested();
  QApplication::processEvents();
  EXPECT_EQ(alerts_[1].text, "Quit and stop 1 transfer?");
  EXPECT_FALSE(app_->Transfers().isVisible());
  EXPECT_TRUE(transfers_[0]->Cancelled());
}

}  // namespace
}  // namespace corvane
