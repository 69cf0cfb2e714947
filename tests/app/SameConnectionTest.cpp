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
    View().SelectRow(0);
    Command(Qt::Key_D);
    EXPECT_TRUE(Begins(before));
  }
};

TEST_F(SameConnection, TheListingWaitsForEveryEnd) {
  const std::pair<TransferEnd, const char*> cases[] = {
      {TransferEnd::Finished, "file (7 of 12 files)"},
      {TransferEnd::Failed, "file: 550 Denied."},
      {TransferEnd::Cancelled, "file: Cancelled."},
  };
  for (const auto& [end, text] : cases) {
    Download();
    TransferUi& row = *here_.back()->row;
    EXPECT_FALSE(View().IsEnabled());
    View().SelectRow(1);  // must not bring the commands back
    const std::size_t begun = here_.size();
    Command(Qt::Key_D);
    alerts_.clear();
    window_->MessageReceived(With("DWLD"_what, "FileName", "other"));
    EXPECT_TRUE(Alerted(1)) << "the connection is in use";
    EXPECT_EQ(here_.size(), begun);
    row.BeginFile("file");
    row.Progress().files = 7;
    row.Progress().allFiles = 12;
    if (end == TransferEnd::Cancelled) {
      Command(Qt::Key_Period);
      EXPECT_TRUE(here_.back()->Cancelled());
      EXPECT_FALSE(View().IsEnabled()) << "the connection is still in use";
    }
    row.SetEndState(end, Text::Raw(end == TransferEnd::Failed ? "550 Denied." : ""));
    EXPECT_TRUE(Wait([&] { return View().IsEnabled(); }));
    EXPECT_EQ(window_->findChild<QLabel*>("FileName")->text(), text);
    EXPECT_FALSE(window_->findChild<TransferPane*>()->Ticking());
  }
  EXPECT_TRUE(transfers_.empty());
}

TEST_F(SameConnection, ClosingTheWindowAsksAndCancels) {
  Download();
  for (const int button : {1, 0}) {
    ASSERT_FALSE(window_.isNull() || here_[0]->Cancelled());
    button_ = button;
    window_->close();
    QApplication::processEvents();
  }
  EXPECT_TRUE(Gone(window_) && here_[0]->Cancelled());
  EXPECT_EQ(alerts_.size(), 2U);
  EXPECT_FALSE(here_[0]->row->SetEndState(TransferEnd::Cancelled, {}));
}

TEST_F(SameConnection, QuittingAsksOnceWhileAnythingRuns) {
  Download();
  app_->Transfers().Add({}, {});
  for (const auto& [button, question] :
       {std::pair(1, "2 transfers are running."), {0, "1 transfer is running."}}) {
    alerts_.clear();
    button_ = button;
    for (int time = 0; time < 2; ++time) app_->QuitRequested();
    ASSERT_TRUE(Alerted(1));
    EXPECT_EQ(alerts_[0].detail.toStdString(), question);
    EXPECT_EQ(alerts_[0].preset, 1);
    EXPECT_EQ(app_->Transfers().isVisible(), button == 1);
    if (button == 0) break;
    here_[0]->row->SetEndState(TransferEnd::Finished, {});
    EXPECT_TRUE(Wait([&] { return View().IsEnabled(); }));
  }
  EXPECT_TRUE(transfers_[0]->Cancelled());
}

}  // namespace
}  // namespace corvane
