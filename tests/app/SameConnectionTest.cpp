#include <QCheckBox>

#include "AppFixture.h"
#include "app/DownLoadWin.h"
#include "app/TransferPane.h"

namespace corvane {
namespace {

class SameConnection : public AppFixture {
 protected:
  SameConnection()
      : bar_(window_->findChild<QWidget*>("StatusBar")),
        pane_(window_->findChild<TransferPane*>()) {
    List({File("file", 1000), File("other")});
    window_->findChild<QCheckBox*>("SameCon")->setChecked(true);
  }
  void Download() {
    View().SelectRow(2);
    QTest::keyClick(window_, Qt::Key_D, Qt::ControlModifier);
  }
  [[nodiscard]] QColor BarColour() const {
    return bar_->grab().toImage().pixelColor(4, bar_->height() / 2);
  }
  [[nodiscard]] QString Shown(const char* view) const {
    return window_->findChild<QLabel*>(view)->text();
  }

  QWidget* bar_;
  TransferPane* pane_;
};

TEST_F(SameConnection, TheListingWaitsForEveryEnd) {
  const std::tuple<TransferEnd, QColor, const char*> cases[] = {
      {TransferEnd::Finished, {0, 0, 154}, "file (7 done)"},
      {TransferEnd::Failed, {228, 0, 0}, "file: 550 Denied."},
      {TransferEnd::Cancelled, {228, 0, 0}, "file: Cancelled."},
  };
  for (const auto& [end, colour, text] : cases) {
    Download();
    TransferUi& row = *here_.back()->row;
    EXPECT_FALSE(View().IsEnabled() || link_->IsListingEnabled());
    View().SelectRow(3);  // must not bring the commands back
    const std::size_t begun = here_.size();
    QTest::keyClick(window_, Qt::Key_D, Qt::ControlModifier);
    window_->MessageReceived(With("DWLD"_what, "FileName", "other"));
    EXPECT_EQ(here_.size(), begun);
    row.BeginFile("file");
    row.Progress().files = 7;
    row.Progress().done = 500;
    row.Progress().elapsed = 1'000'000;
    row.Progress().changed = true;
    EXPECT_TRUE(Wait([&] { return Shown("BPSECSVIEW") == "500 bytes/sec"; }));
    EXPECT_EQ(BarColour(), QColor(0, 152, 51));
    if (end == TransferEnd::Cancelled) {
      QTest::keyClick(window_, Qt::Key_Period, Qt::ControlModifier);
      EXPECT_TRUE(here_.back()->Cancelled());
      EXPECT_FALSE(View().IsEnabled()) << "the connection is still in use";
    }
    row.SetEndState(end, end == TransferEnd::Failed ? "550 Denied." : "");
    EXPECT_TRUE(Wait([&] { return View().IsEnabled(); }));
    EXPECT_EQ(BarColour(), colour);
    EXPECT_EQ(Shown("FileName"), text);
    EXPECT_FALSE(pane_->Ticking());
  }
  EXPECT_TRUE(transfers_.empty());
  noEngine_ = true;
  Download();
  EXPECT_FALSE(View().IsEnabled());
  EXPECT_TRUE(Wait([&] { return View().IsEnabled(); }));
}

TEST_F(SameConnection, ClosingTheWindowCancels) {
  Download();
  window_->close();
  EXPECT_TRUE(here_[0]->Cancelled());
  EXPECT_TRUE(Wait([&] { return window_.isNull(); }));
  EXPECT_FALSE(here_[0]->row->SetEndState(TransferEnd::Cancelled, ""));
}

TEST_F(SameConnection, QuittingAsksOnceWhileAnythingRuns) {
  Download();
  app_->Transfers().AddUpload({});
  button_ = 1;
  app_->QuitRequested();
  app_->QuitRequested();
  QApplication::processEvents();
  ASSERT_EQ(alerts_.size(), 1U);
  EXPECT_EQ(alerts_[0].text, "Quit and stop 2 transfers?");
  EXPECT_EQ(alerts_[0].preset, 1);
  EXPECT_TRUE(app_->Transfers().isVisible());
  here_[0]->row->SetEndState(TransferEnd::Finished, "");
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
