#include <thread>

#include "AppFixture.h"
#include "app/DownLoadWin.h"

namespace corvane {
namespace {

class Transfers : public AppFixture {
 protected:
  Transfers() : transferWindow_(app_->Transfers()), list_(transferWindow_.List()) {
    transferWindow_.activateWindow();
    list_.setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&transferWindow_));
  }

  TransferItem& Start(const std::string& host = "server.test") {
    DownloadRequest request;
    request.connection.host = host;
    request.size = 1000;
    request.items.push_back(File("file", 1000));
    transferWindow_.AddDownload(std::move(request));
    return list_.Items().At(list_.Items().Count() - 1);
  }
  void Select(int row) { list_.setCurrentIndex(list_.Items().index(row)); }
  void End(std::size_t transfer, TransferEnd state, const char* why = "") {
    transfers_[transfer]->row->SetEndState(state, why);
    ASSERT_TRUE(Wait([&] { return !list_.Items().At(static_cast<int>(transfer)).Running(); }));
  }
  /// The colour of the last row's bar near its left end.
  QColor BarColour() {
    list_.scrollToBottom();
    const QRect area = list_.visualRect(list_.Items().index(list_.Items().Count() - 1));
    return list_.viewport()->grab().toImage().pixelColor(area.left() + 9, area.bottom() - 9);
  }

  DownLoadWin& transferWindow_;
  TransferListView& list_;
};

TEST_F(Transfers, EveryEndShowsItsColourAndItsReason) {
  const QColor good(0, 0, 154);
  const QColor bad(228, 0, 0);
  const std::tuple<TransferEnd, const char*, QColor, const char*> cases[] = {
      {TransferEnd::Finished, "", good, ""},
      {TransferEnd::Failed, "550 No such file.", bad, "550 No such file."},
      {TransferEnd::Failed, "", bad, "The transfer failed."},
      {TransferEnd::Cancelled, "", bad, "Cancelled."},
  };
  for (const auto& [end, why, colour, shown] : cases) {
    const TransferItem& item = Start();
    transfers_.back()->row->BeginFile("file");
    TransferProgress& progress = transfers_.back()->row->Progress();
    progress.start = 300;  // what was there before counts for the total, not for the rate
    progress.done = 200;
    progress.elapsed = 2'000'000;
    EXPECT_EQ(item.RateText(), "100 bytes/sec");
    EXPECT_EQ(BarColour(), QColor(0, 152, 51));
    End(transfers_.size() - 1, end, why);
    EXPECT_EQ(BarColour(), colour);
    EXPECT_EQ(item.FailureText(), shown);
    EXPECT_EQ(item.TotalText(), "500/1000");
    EXPECT_TRUE(item.Summary().contains(item.Finished() ? "Finished" : shown));
  }
  EXPECT_FALSE(list_.Ticking());
}

TEST_F(Transfers, CancelStopsTheWorkerAndDeselects) {
  const TransferItem& item = Start();
  Select(0);
  QTest::keyClick(&transferWindow_, Qt::Key_Period, Qt::ControlModifier);
  EXPECT_TRUE(transfers_[0]->Cancelled());
  EXPECT_TRUE(item.Failed());
  EXPECT_TRUE(list_.SelectedRows().empty());
  End(0, TransferEnd::Finished);  // the worker knows better: everything had arrived
  EXPECT_TRUE(Wait([&] { return item.Finished(); }));
}

TEST_F(Transfers, RemovesWhatHasEndedAndRefusesWhatRuns) {
  for (const char* host : {"0", "1", "2"}) Start(host);
  End(1, TransferEnd::Finished);
  Select(0);
  QTest::keyClick(&list_, Qt::Key_Backspace);
  ASSERT_EQ(alerts_.size(), 1U);
  EXPECT_EQ(alerts_[0].text, "You need to cancel the transfer to remove this item.");
  EXPECT_EQ(list_.Items().Count(), 3);
  Select(1);
  QTest::keyClick(&list_, Qt::Key_Backspace);
  ASSERT_EQ(list_.Items().Count(), 2);
  EXPECT_EQ(list_.Items().At(1).ServerLine(), "Server: 2");
  EXPECT_EQ(list_.SelectedRows(), std::vector<int>{1});
}

TEST_F(Transfers, FinishedOnesLeaveByThemselvesWhereAsked) {
  settings_.removeItem = true;
  ProcessSettings::Set(settings_);
  Start();
  Start();
  transfers_[0]->row->PostMessage(With("FERR"_what, "error", "Could not connect."));
  End(0, TransferEnd::Failed);
  transfers_[1]->row->SetEndState(TransferEnd::Finished, "");
  EXPECT_TRUE(Wait([&] { return list_.Items().Count() == 1; }));
  EXPECT_EQ(list_.Items().At(0).FailureText(), "Could not connect.");
}

TEST_F(Transfers, ClosingHidesAndARowMayGoWhileItsWorkerTalks) {
  Start();
  transferWindow_.close();
  EXPECT_FALSE(transferWindow_.isVisible());
  ASSERT_EQ(list_.Items().Count(), 1);
  std::thread worker([row = transfers_[0]->row] {
    while (row->SetLabel("working") && row->BeginFile("file")) {
    }
  });
  list_.Items().At(0).Cancel();
  QApplication::processEvents();
  list_.Items().Remove(0);
  worker.join();
  EXPECT_FALSE(transfers_[0]->row->SetEndState(TransferEnd::Finished, ""));
}

}  // namespace
}  // namespace corvane
